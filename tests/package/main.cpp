// Calls the library and its own Eigen and prints every result to the bit. What it prints may not
// depend on how it is compiled, so it computes nothing itself but with small integers.

#include <Eigen/LU>
#include <cstdio>
#include <zvmath/lasso.h>
#include <zvmath/zvmath.h>
#include <zvplatform/alloca.h>
#include <zvplatform/binary_dump.h>
#include <zvsystem/errors.h>

namespace
{

unsigned int state = 1;

/// A small integer, by a linear congruential generator (Knuth and Lewis: Numerical Recipes, 1992).
double Next()
{
    state = state * 1664525u + 1013904223u;
    return static_cast<double>(static_cast<int>(state >> 24) - 128);
}

template <class Matrix> Matrix Random(Matrix matrix)
{
    for (unsigned int r = 0; r < matrix.GetNumRows(); ++r) {
        std::vector<double> row(matrix.GetNumColumns());
        for (double& element : row)
            element = Next();
        matrix.SetRowData(r, row);
    }
    return matrix;
}

void Print(const char* name, const std::vector<double>& values)
{
    std::printf("%s:", name);
    for (const double value : values)
        std::printf(" %a", value);
    std::printf("\n");
}

/// Floats are exact as doubles.
void Print(const char* name, const float* values, size_t count)
{
    Print(name, std::vector<double>(values, values + count));
}

void PrintEigen(const char* name, const Eigen::MatrixXd& m)
{
    Print(name, std::vector<double>(m.data(), m.data() + m.size()));
}

}  // namespace

int main()
{
    using namespace ZVMath;
    const ZVMatrix thirds = Random(ZVMatrix(40, 30)) * (1.0 / 3.0);
    const ZVMatrix product = thirds * thirds.Transpose();
    Print("product", product.GetData());

    const ZVSquareMatrix square = Random(ZVSquareMatrix(9, 0.0));
    Print("determinant", {square.Determinant()});
    Print("inverse", square.Invert().GetData());

    // An Eigen of the program's own, in vectors and factorisations, beside the library's.
    Eigen::MatrixXd own(12, 12);
    for (Eigen::Index i = 0; i < own.size(); ++i)
        own.data()[i] = Next();
    const Eigen::MatrixXd ownProduct = own * own.transpose();
    PrintEigen("own product", ownProduct);
    const Eigen::VectorXd solution =
        (8.0 * Eigen::MatrixXd::Identity(12, 12)).eval().partialPivLu().solve(own.col(0));
    PrintEigen("own solution", solution);

    ZVSquareMatrix kernel(40);
    for (unsigned int r = 0; r < 40; ++r)
        kernel.SetRowData(r, std::vector<double>(product.GetData().begin() + r * 40,
                                                 product.GetData().begin() + (r + 1) * 40));
    std::vector<double> response(40);
    for (double& y : response)
        y = Next();
    ZVKernelPLS model;
    const bool fitted = model.Fit(kernel, response, 6);
    Print("B", model.GetBValues());
    Print("prediction", {fitted ? model.Predict(kernel.GetData()) : 0.0});

    const ZVDBSCAN clusters(Random(ZVSquareMatrix(50)), -70.0, 12);
    for (const int label : clusters.GetLabels())
        std::printf("%d ", label);
    for (const unsigned int center : clusters.GetClusterCenters())
        std::printf("center %u ", center);
    std::printf("\n");

    const std::vector<double>& values = product.GetData();
    const std::vector<double> others(values.rbegin(), values.rend());
    Print("statistics", {ZVMean(values), ZVMedian(values), ZVMeanAbsDeviation(values, others),
                         ZVMedianAbsDeviation(values, others), ZVRMSE(values, others),
                         ZVRSquared(values, others)});
    Print("deviations", ZVAbsDeviations(response, others));
    Print("special functions", {ZVlgamma(0.375), ZVDiGamma(0.375), ZVTriGamma(0.375),
                                ZVIncompleteGamma(2.5, 1.25), ZVIncompleteGamma(2.5, 9.0),
                                ZVIncompleteBeta(2.5, 7.0, 0.3125), ZVExactHarmonicNumber(10007)});

    const Eigen::MatrixXd table = own.leftCols(7);
    ZVLasso lasso;
    lasso.Fit(table, own.col(11));
    Print("path", lasso.GetCoefficients().back());
    for (const unsigned int active : lasso.GetActives())
        std::printf("%u ", active);
    std::printf("\n");

    ZVBetaThompson thompson(12);
    ZVMultiThompson combinations({7, 1, 9, 6}, 1);
    combinations.SetupBatchDraw(2);
    std::vector<unsigned int> taken, next;
    while (taken.size() < 400 && combinations.Draw()) {
        taken.push_back(thompson.Sample());
        thompson.UpdateFailure(taken.back());
        while (combinations.GetNext(next)) {
            combinations.UpdateSuccess(next);
            taken.insert(taken.end(), next.begin(), next.end());
        }
    }
    for (const unsigned int arm : taken)
        std::printf("%u ", arm);
    ZVBetaDistribution beta(0.5, 7.0);
    MtRng<Mt32Traits> engine(7);
    Print("draws",
          {beta.Rand(), engine.getUnitDouble(), static_cast<double>(engine.getUnsigned())});

    std::vector<float> points(600);
    for (float& coordinate : points)
        coordinate = static_cast<float>(Next());
    ZVBox box;
    float rotation[3];
    box.Setup(points.data(), 200, 0.125f);
    ZVPlatform::ZVSetAllocaThreshold(1000);
    const bool found = ZVGetSmallestEnclosingBoxRotation(rotation, points.data(), 200, 12);
    Print("box", {box.GetVolume(), box.GetArea(), found ? 1.0 : 0.0});
    Print("rotation", rotation, 3);

    const double tensor[] = {5, 1, -2, 1, 7, 0.5, -2, 0.5, 9};
    double moments[3], axes[9];
    ZVMakeRotationMatrix(moments, axes, tensor);
    Print("moments", std::vector<double>(moments, moments + 3));
    Print("axes", std::vector<double>(axes, axes + 9));
    float symmetric[3][3] = {{5, 1, -2}, {1, 7, 0.5f}, {-2, 0.5f, 9}}, frame[3][3], roots[3];
    zv_make_rmat2(symmetric, frame, 0);
    get_roots_3_3(symmetric, roots);
    Print("frame", frame[0], 9);
    Print("roots", roots, 3);

    ZVMultPrecInt sum(1);
    for (int bit = 0; bit < 2000; ++bit)
        sum += sum;
    sum -= 3;
    std::printf("integer: %s\n", ZVMultPrecInt(sum).GetImpl() ? "copied" : "lost");

    ZVDataSeries series;
    series.SetTitle("sums");
    for (int i = 0; i < 3; ++i)
        series.AddPoint({static_cast<double>(i), values[static_cast<size_t>(i)], 0.0, 0.25});
    ZVPlatform::zvomemorystream text, record;
    ZVPrintDataSeries(series, text);
    ZVPrintMatrix(square, text);
    std::printf("%s", text.text().c_str());
    unsigned int status = 0, budget = 1000000;
    const ZVPlatform::ZVBinaryDump::ZVImpl<ZVMatrix> dump;
    dump.Write(record, false, product, status, budget);
    ZVMatrix copy;
    ZVPlatform::zvimemorystream source(record.contents().data(), record.contents().size());
    dump.Read(source, false, false, false, 1, copy, status, budget);
    std::printf("record: %u %u\n", status, budget);
    Print("copy", copy.GetData());

    ZVSystem::ZVThrow.SetWarningSink(
        {[](void*, const char* message) { std::printf("warned: %s\n", message); }, nullptr});
    Print("without a model", {ZVKernelPLS().Predict({})});
    const double tiny[9] = {0, 1e-10, 0, 1e-10, 0, 0, 0, 0, 0};
    Print("no axes", {static_cast<double>(ZVPMIFromInertialTensor(moments, tiny))});
    return 0;
}
