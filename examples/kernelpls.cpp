// Predicts how far diabetes has progressed after a year from ten measurements at its start, by
// kernel PLS, and looks for the number of features that predicts other patients best.

#include "table.h"

#include "zvmath/kernelpls.h"
#include "zvmath/stats.h"

using ZVMath::ZVDataSeries;
using ZVMath::ZVKernelPLS;
using ZVMath::ZVMean;
using ZVMath::ZVRMSE;
using ZVMath::ZVRSquared;
using ZVMath::ZVSquareMatrix;

namespace
{

using Rows = std::vector<std::vector<double>>;

// The width of the kernel. Of two training patients taken at random, the distance is 4.15 in the
// median, so the kernel tells near from far. A far smaller width learns the patients by heart; a
// far larger one leaves a linear model.
constexpr double sigma = 4.0;

constexpr unsigned int mostFeatures = 12;

/// A row for each patient: the kernel values against the training patients.
Rows KernelRows(const Rows& patients, const Rows& training)
{
    Rows kernel;
    for (const std::vector<double>& patient : patients) {
        kernel.emplace_back();
        for (const std::vector<double>& other : training)
            kernel.back().push_back(
                std::exp(-SquaredDistance(patient, other) / (2.0 * sigma * sigma)));
    }
    return kernel;
}

/// Moves the origin of the kernel's feature space to the mean of the training patients, whose
/// kernel rows have the means `trainingMeans`.
void Centre(Rows& kernel, const std::vector<double>& trainingMeans)
{
    const double meanOfAll = ZVMean(trainingMeans);
    for (std::vector<double>& row : kernel) {
        const double mean = ZVMean(row);
        for (size_t j = 0; j < row.size(); ++j)
            row[j] += meanOfAll - mean - trainingMeans[j];
    }
}

std::vector<double> Predict(const ZVKernelPLS& model, const Rows& kernel, double meanResponse)
{
    std::vector<double> predicted;
    for (const std::vector<double>& row : kernel)
        predicted.push_back(meanResponse + model.Predict(row));
    return predicted;
}

void Run(const std::string& data, const std::string& output)
{
    // The patients come in no particular order: every second one is kept for testing.
    Table all = ReadTable(data + "/diabetes.tsv");
    const std::vector<double> progression = TakeLastColumn(all);
    Rows training, test;
    std::vector<double> trainingMeasured, testMeasured;
    for (size_t i = 0; i < all.rows.size(); ++i) {
        (i % 2 == 0 ? training : test).push_back(all.rows[i]);
        (i % 2 == 0 ? trainingMeasured : testMeasured).push_back(progression[i]);
    }

    // Whatever is learnt from data is learnt from the training half alone.
    const std::vector<Scale> scales = ScalesOf(training);
    Standardise(training, scales);
    Standardise(test, scales);
    Rows trainingKernel = KernelRows(training, training);
    Rows testKernel = KernelRows(test, training);

    // The library takes the kernel and the response as they are. Centring both gives the model an
    // intercept, the mean response of the training half. Rows to predict from are centred alike.
    std::vector<double> trainingMeans;
    for (const std::vector<double>& row : trainingKernel)
        trainingMeans.push_back(ZVMean(row));
    Centre(trainingKernel, trainingMeans);
    Centre(testKernel, trainingMeans);
    const double meanResponse = ZVMean(trainingMeasured);
    std::vector<double> response = trainingMeasured;
    for (double& value : response)
        value -= meanResponse;

    ZVSquareMatrix kernel(static_cast<unsigned int>(training.size()));
    for (unsigned int i = 0; i < kernel.GetNumRows(); ++i)
        kernel.SetRowData(i, trainingKernel[i]);

    ZVDataSeries trainingErrors, testErrors, predictions;
    trainingErrors.SetTitle("features, RMSE of the training half");
    testErrors.SetTitle("features, RMSE of the test half");
    predictions.SetTitle("test half: measured, predicted with the best number of features");
    std::printf("%zu patients to learn from, %zu to test on; sigma = %.1f\n\n", training.size(),
                test.size(), sigma);
    std::printf("              training half        test half\n");
    std::printf("features     RMSE  R squared     RMSE  R squared\n");
    unsigned int bestFeatures = 0;
    std::vector<double> bestPredicted;
    for (unsigned int features = 1; features <= mostFeatures; ++features) {
        ZVKernelPLS model;
        if (!model.Fit(kernel, response, features))
            throw std::runtime_error("no feature can be learnt");
        const std::vector<double> learnt = Predict(model, trainingKernel, meanResponse);
        const std::vector<double> predicted = Predict(model, testKernel, meanResponse);
        const double trainingError = ZVRMSE(trainingMeasured, learnt);
        const double testError = ZVRMSE(testMeasured, predicted);
        std::printf("%8u  %7.2f  %9.3f  %7.2f  %9.3f\n", features, trainingError,
                    ZVRSquared(trainingMeasured, learnt), testError,
                    ZVRSquared(testMeasured, predicted));
        trainingErrors.AddPoint({static_cast<double>(features), trainingError});
        testErrors.AddPoint({static_cast<double>(features), testError});
        if (bestPredicted.empty() || testError < ZVRMSE(testMeasured, bestPredicted)) {
            bestFeatures = features;
            bestPredicted = predicted;
        }
    }
    // New patients would fare a little worse: for an honest figure the number of features is chosen
    // on a third set, or by cross-validation.
    std::printf("\nBest on the test half: %u features, RMSE %.2f. An optimistic figure, since the\n"
                "number of features was chosen on the same half.\n",
                bestFeatures, ZVRMSE(testMeasured, bestPredicted));

    for (size_t i = 0; i < test.size(); ++i)
        predictions.AddPoint({testMeasured[i], bestPredicted[i]});
    std::ofstream file = OpenForWriting(output + "/kernelpls.dat");
    AddSeries(file, {&trainingErrors, &testErrors, &predictions});
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}
