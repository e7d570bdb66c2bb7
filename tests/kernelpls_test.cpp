#include "zvmath/kernelpls.h"

#include "allocations.h"
#include "check.h"
#include "kpls_builder.h"
#include "references/kernelpls_peer.h"
#include "references/kernelpls_reference.h"

#include <Eigen/SVD>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <new>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace ZVMath;
using namespace ZVTest;

namespace
{

double Largest(const std::vector<double>& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0,
                           [](double a, double b) { return std::max(a, std::abs(b)); });
}

std::vector<double> RowByRow(const Eigen::MatrixXd& matrix)
{
    const Eigen::MatrixXd transpose = matrix.transpose();
    return std::vector<double>(transpose.data(), transpose.data() + transpose.size());
}

void Extract(ZVKPLSBuilder& builder, size_t count)
{
    while (builder.numFeatures < count) {
        builder.CalcNextFeature();
        EXPECT_TRUE(builder.LastFeatureCarries()) << "feature " << builder.numFeatures;
        ++builder.numFeatures;
        EXPECT_TRUE(builder.CanBuild()) << "feature " << builder.numFeatures - 1;
    }
}

TEST(KPLSBuilder, StepsMatchHighPrecision)
{
    for (const KernelPLSReference& r : kernelPLSReferences) {
        SCOPED_TRACE(r.name);
        const ZVSquareMatrix kernel = MakeSquare(r.kernel);
        ZVKPLSBuilder builder(kernel, r.response, 0);
        Extract(builder, r.yLoadings.size());
        ASSERT_TRUE(builder.BuildModel());

        std::vector<double> weights, scores, loadings, yLoadings;
        for (const ZVKPLSBuilder::Feature& f : builder.features) {
            weights.insert(weights.end(), f.weight.begin(), f.weight.end());
            scores.insert(scores.end(), f.score.begin(), f.score.end());
            loadings.insert(loadings.end(), f.loading.begin(), f.loading.end());
            yLoadings.push_back(f.yLoading);
        }
        const auto n = static_cast<Eigen::Index>(r.response.size());
        const auto k = static_cast<Eigen::Index>(r.yLoadings.size());
        const Eigen::MatrixXd deflation =
            Eigen::MatrixXd::Identity(n, n) -
            Eigen::MatrixXd::Map(r.scores.data(), n, k) *
                Eigen::MatrixXd::Map(r.loadings.data(), n, k).transpose();
        // The amplification was measured with the same steps in another order of rounding, so it
        // tells the size of the errors and not their limit.
        const double bound = 8.0 * r.amplification * epsilon;
        EXPECT_TRUE(Near(weights, r.weights, bound * Largest(r.weights)));
        EXPECT_TRUE(Near(scores, r.scores, bound * Largest(r.scores)));
        EXPECT_TRUE(Near(loadings, r.loadings, bound * Largest(r.loadings)));
        EXPECT_TRUE(Near(yLoadings, r.yLoadings, bound * Largest(r.yLoadings)));
        EXPECT_TRUE(Near(RowByRow(builder.Deflation()), RowByRow(deflation),
                         bound * std::max(1.0, Largest(RowByRow(deflation)))));
        EXPECT_TRUE(Near(RowByRow(builder.system), r.system, bound * Largest(r.system)));
        EXPECT_TRUE(Near(builder.GetBValues(), r.bValues, bound * Largest(r.bValues)));
        EXPECT_TRUE(Near(builder.GetB0(), 0.0, bound * std::abs(r.yLoadings[0])));
    }
}

TEST(KPLSBuilder, CapsTheFeaturesAtTheSizeOfTheKernel)
{
    const ZVSquareMatrix kernel(3, 1.0);
    const std::vector<double> response(3, 1.0), tooShort(2, 1.0);
    for (const auto& [cap, expected] : {std::pair{0u, 3u}, {2u, 2u}, {3u, 3u}, {4294967295u, 3u}})
        EXPECT_EQ(ZVKPLSBuilder(kernel, response, cap).maxFeatures, expected);
    EXPECT_EQ(ZVKPLSBuilder(kernel, tooShort, 2).maxFeatures, 0u);
}

TEST(KPLSBuilder, BuildsNothingWithoutAnInvertibleSystem)
{
    const ZVSquareMatrix kernel = MakeSquare({2, 0, 0, 1});
    const std::vector<double> response = {1, 1};
    ZVKPLSBuilder builder(kernel, response, 0);
    EXPECT_FALSE(builder.CanBuild());
    EXPECT_FALSE(builder.BuildModel());
    EXPECT_TRUE(builder.GetBValues().empty());
    Extract(builder, 2);
    builder.system.row(1).setZero();
    EXPECT_FALSE(builder.CanBuild());
    builder.numFeatures = 1;
    EXPECT_TRUE(builder.CanBuild());
}

TEST(KPLSBuilder, InvertsWhatHasNoSubnormalSingularValue)
{
    const std::tuple<const char*, std::vector<double>, bool> cases[] = {
        {"zero", {0}, false},
        {"negative", {-3}, true},
        {"smallest normal", {2.2250738585072014e-308}, true},
        {"largest subnormal", {2.2250738585072009e-308}, false},
        {"far below 1", {1e-300}, true},
        {"subnormal", {1e-310}, false},
        {"largest", {1.7976931348623157e308}, true},
        {"not a number", {NaN}, false},
        {"infinite", {-inf}, false},
        {"one not a number", {1, NaN, 1}, false},
        {"ill-conditioned", {1, 1e-300}, true},
        {"subnormal beside a normal", {1e-310, 1}, false},
        {"zero beside a huge", {1e300, 0}, false},
        {"squares overflow", {1e200, 1e300}, true},
        {"squares underflow", {1e-200, 1e-300, 1e-250}, true},
    };
    const ZVSquareMatrix none;
    const ZVKPLSBuilder builder(none, {}, 0);
    for (const auto& [name, diagonal, invertible] : cases) {
        const Eigen::Index n = static_cast<Eigen::Index>(diagonal.size());
        const Eigen::VectorXd values = Eigen::VectorXd::Map(diagonal.data(), n);
        EXPECT_EQ(builder.CanInvert(values.asDiagonal()), invertible) << name;
    }
    // Of random matrices, many of them singular: what a singular value decomposition says.
    std::mt19937 random(3);
    unsigned int singular = 0;
    for (int trial = 0; trial < 4000; ++trial) {
        const Eigen::Index n = 1 + trial % 7;
        Eigen::MatrixXd matrix(n, n);
        for (Eigen::Index i = 0; i < n * n; ++i)
            matrix(i) = std::floor(3.0 * Uniform(random)) + (trial % 3 == 0 ? Uniform(random) : 0);
        if (trial % 5 == 0)
            matrix.col(n - 1) = 2.0 * matrix.col(0);
        if (trial % 11 == 0)
            matrix.row(0) *= 0x1p-900;
        const Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(matrix, Eigen::ComputeThinU |
                                                                          Eigen::ComputeThinV);
        const bool expected = decomposition.singularValues().minCoeff() >= 2.2250738585072014e-308;
        singular += expected ? 0 : 1;
        ASSERT_EQ(builder.CanInvert(matrix), expected) << matrix;
    }
    EXPECT_GT(singular, 200u);
    // Elimination with row exchanges grows like 2^n on this one, which is far from singular.
    Eigen::MatrixXd grows = Eigen::MatrixXd::Identity(120, 120);
    grows.triangularView<Eigen::StrictlyLower>().setConstant(-1.0);
    grows.col(119).setOnes();
    EXPECT_TRUE(builder.CanInvert(grows));
    EXPECT_FALSE(builder.CanInvert(Eigen::MatrixXd::Ones(120, 120)));
}

const char* const fitFailed = "Kernel PLS failed due to singular matrix!";
const char* const notBuilt = "Cannot make prediction.  Model has not been built!";

/// Name, kernel, response, `maxFeatures`, features of the model (0: no fit), B.
using FitCase = std::tuple<const char*, std::vector<double>, std::vector<double>, unsigned int,
                           unsigned int, std::vector<double>>;
const FitCase fitCases[] = {
    {"one object", {4}, {3}, 0, 1, {0.75}},
    {"more values than objects", {4}, {3, NaN}, 7, 1, {0.75}},
    {"eigenvector", {2, 1, 1, 2}, {1, 1}, 1, 1, {1.0 / 3, 1.0 / 3}},
    {"eigenvector, no cap", {2, 1, 1, 2}, {1, 1}, 0, 1, {1.0 / 3, 1.0 / 3}},
    {"two eigenvectors", {2, 0, 0, 1}, {1, 1}, 0, 2, {0.5, 1}},
    {"eigenvectors of one eigenvalue", {1, 0, 0, 1}, {1, 0}, 0, 1, {1, 0}},
    {"rank 2, both eigenvalues 9", {5, 4, -2, 4, 5, 2, -2, 2, 8}, {9, 0, 9}, 0, 1, {1, 0, 1}},
    {"indefinite, seen by the second", {1, 2, 2, 1}, {1, 0}, 0, 1, {0.2, 0}},
    {"indefinite, seen by the first", {1, 2, 2, 1}, {1, -1}, 0, 0, {}},
    {"negative", {-4}, {3}, 0, 0, {}},
    {"skew: u.Ku is 0", {0, 1, -1, 0}, {1, 2}, 0, 0, {}},
    {"no objects", {}, {1}, 0, 0, {}},
    {"too few responses", {2, 0, 0, 1}, {1}, 0, 0, {}},
    {"zero response", {2, 0, 0, 1}, {0, -0.0}, 0, 0, {}},
    {"zero kernel", {0, 0, 0, 0}, {1, 1}, 0, 0, {}},
    {"NaN in the kernel", {2, 0, 0, NaN}, {1, 0}, 0, 0, {}},
    {"infinity in the kernel", {2, inf, 0, 1}, {1, 1}, 0, 0, {}},
    {"NaN in the response", {2, 0, 0, 1}, {1, NaN}, 0, 0, {}},
    {"infinity in the response", {2, 0, 0, 1}, {-inf, 1}, 0, 0, {}},
    {"image overflows", {1e308, 1e308, 1e308, 1e308}, {1, 1}, 0, 0, {}},
    {"image overflows in one place", {1, 0, 1e308, 1}, {2, 0}, 0, 0, {}},
    {"norm underflows", {1}, {1e-170}, 0, 0, {}},
    {"norm overflows", {1}, {1e170}, 0, 0, {}},
    {"subnormal kernel", {1e-320}, {1}, 0, 0, {}},
};

void ExpectSame(const ZVKernelPLS& model, const ZVKernelPLS& former)
{
    EXPECT_EQ(model.GetNumFeaturesUsed(), former.GetNumFeaturesUsed());
    EXPECT_TRUE(SameBits(model.GetBValues(), former.GetBValues()));
    EXPECT_TRUE(SameBits(model.GetB0(), former.GetB0()));
}

TEST(KernelPLS, FitsOrWarnsAndKeepsTheModel)
{
    ZVKernelPLS former;
    ASSERT_TRUE(former.Fit(MakeSquare({2, 1, 1, 2}), {1e6, -3e6}, 0));
    ASSERT_NE(former.GetB0(), 0.0) << "a B0 that changes, or doesn't, would go unseen";
    for (const auto& [name, kernel, response, maxFeatures, features, bValues] : fitCases) {
        SCOPED_TRACE(name);
        const Warnings warnings;
        ZVKernelPLS model = former;
        EXPECT_EQ(model.Fit(MakeSquare(kernel), response, maxFeatures), features > 0);
        if (features == 0) {
            ExpectSame(model, former);
            EXPECT_EQ(warnings.messages, std::vector<std::string>{fitFailed});
            continue;
        }
        EXPECT_EQ(model.GetNumFeaturesUsed(), features);
        EXPECT_TRUE(Near(model.GetBValues(), bValues, 4 * epsilon));
        EXPECT_TRUE(Near(model.GetB0(), 0.0, 8 * epsilon));
        EXPECT_TRUE(warnings.messages.empty());
    }
    const Warnings warnings;
    for (const auto& [rows, columns] : {std::pair{2u, 3u}, std::pair{3u, 2u}, std::pair{0u, 2u}}) {
        ZVSquareMatrix kernel;
        static_cast<ZVMatrix&>(kernel) = ZVMatrix(rows, columns, 1.0);
        EXPECT_FALSE(ZVKernelPLS().Fit(kernel, {1, 2, 3}, 0)) << "not square";
    }
    EXPECT_EQ(warnings.messages, std::vector<std::string>(3, fitFailed));
}

TEST(KernelPLS, KeepsTheModelWhenMemoryRunsOut)
{
    const ZVSquareMatrix kernel = MakeSquare({2, 0, 0, 1});
    const std::vector<double> response = {1, 1};
    ZVKernelPLS former;
    ASSERT_TRUE(former.Fit(MakeSquare({4}), {3}, 0));
    ZVKernelPLS model = former;
    for (int successes = 0, fitted = 0; !fitted; ++successes) {
        ASSERT_LT(successes, 1000);
        try {
            const FailingAllocation failing(successes);
            fitted = model.Fit(kernel, response, 0);
        } catch (const std::bad_alloc&) {
            ExpectSame(model, former);
        }
    }
    EXPECT_TRUE(Near(model.GetBValues(), {0.5, 1}, 4 * epsilon));
}

TEST(KernelPLS, Predicts)
{
    constexpr double largest = std::numeric_limits<double>::max();
    ZVKernelPLS model;
    {
        const Warnings warnings;
        EXPECT_TRUE(SameBits(model.Predict({4}), largest));
        EXPECT_FALSE(model.Fit(ZVSquareMatrix(2, 0.0), {1, 1}, 0));
        EXPECT_TRUE(SameBits(model.Predict({}), largest));
        EXPECT_EQ(warnings.messages, (std::vector<std::string>{notBuilt, fitFailed, notBuilt}));
    }
    const Warnings warnings;
    ASSERT_TRUE(model.Fit(MakeSquare({2, 0, 0, 1}), {1, 1}, 0));
    const std::pair<std::vector<double>, double> cases[] = {
        {{2, 0}, 1},     {{0, 1}, 1},     {{8, -3}, 1},   {{0, 1, NaN, inf}, 1},
        {{2, NaN}, NaN}, {{inf, 0}, inf}, {{2}, largest}, {{}, largest},
    };
    for (const auto& [row, prediction] : cases)
        EXPECT_TRUE(Near(model.Predict(row), prediction, 16 * epsilon));
    // Its own coefficients as the response: they are read to the end before they change.
    ASSERT_TRUE(model.Fit(MakeSquare({2, 0, 0, 1}), model.GetBValues(), 0));
    EXPECT_TRUE(Near(model.GetBValues(), {0.25, 1}, 4 * epsilon));
    EXPECT_TRUE(warnings.messages.empty());
}

TEST(KernelPLS, PowersOfTwoScaleTheModelExactly)
{
    const KernelPLSReference& r = kernelPLSReferences[4];
    ZVKernelPLS plain;
    ASSERT_TRUE(plain.Fit(MakeSquare(r.kernel), r.response, 3));
    const auto times = [](std::vector<double> values, int power) {
        for (double& value : values)
            value = std::ldexp(value, power);
        return values;
    };
    for (const auto& [ofKernel, ofResponse] :
         {std::pair{-400, 0}, {-200, 200}, {0, -300}, {200, 0}, {400, -200}}) {
        SCOPED_TRACE(ofKernel);
        ZVKernelPLS scaled;
        ASSERT_TRUE(
            scaled.Fit(MakeSquare(times(r.kernel, ofKernel)), times(r.response, ofResponse), 3));
        EXPECT_TRUE(
            SameBits(scaled.GetBValues(), times(plain.GetBValues(), ofResponse - ofKernel)));
        EXPECT_TRUE(SameBits(scaled.GetB0(), std::ldexp(plain.GetB0(), ofResponse)));
    }
}

/// data/diabetes.tsv with its ten columns standardised, and its response centred.
struct Diabetes
{
    std::vector<std::vector<double>> rows = ReadTable("diabetes.tsv");
    std::vector<double> y;

    Diabetes()
    {
        const double count = static_cast<double>(rows.size());
        for (size_t c = 0; c <= 10; ++c) {
            double mean = 0.0, variance = 0.0;
            for (const auto& row : rows)
                mean += row.at(c) / count;
            for (const auto& row : rows)
                variance += (row[c] - mean) * (row[c] - mean) / count;
            for (auto& row : rows)
                row[c] = c == 10 ? row[c] - mean : (row[c] - mean) / std::sqrt(variance);
        }
        for (const auto& row : rows)
            y.push_back(row[10]);
    }
    /// x.z / 10
    double Linear(size_t i, size_t j) const
    {
        const std::vector<double>&x = rows[i], &z = rows[j];
        return std::inner_product(x.begin(), x.begin() + 10, z.begin(), 0.0) / 10.0;
    }
    /// exp(-|x - z|^2 / 20)
    double Gaussian(size_t i, size_t j) const
    {
        return std::exp(Linear(i, j) - (Linear(i, i) + Linear(j, j)) / 2.0);
    }
};

TEST(KernelPLS, FitsWhatThePeerFits)
{
    const Diabetes data;
    const unsigned int n = static_cast<unsigned int>(data.y.size());
    ASSERT_EQ(n, 442u);
    const auto linear = MakeSquare(n, [&](size_t i, size_t j) { return data.Linear(i, j); });
    std::vector<double> mean(n);
    for (size_t i = 0; i < size_t{n} * n; ++i)
        mean[i / n] += data.Gaussian(i / n, i % n) / n;
    const double overall = std::accumulate(mean.begin(), mean.end(), 0.0) / n;
    const auto gaussian = MakeSquare(
        n, [&](size_t i, size_t j) { return data.Gaussian(i, j) - mean[i] - mean[j] + overall; });
    for (size_t i = 0; i < std::size(kernelPLSPeerFeatures); ++i)
        for (const auto& [kernel, peer] : {std::pair{&linear, kernelPLSPeerLinear[i]},
                                           std::pair{&gaussian, kernelPLSPeerGaussian[i]}}) {
            ZVKernelPLS model;
            ASSERT_TRUE(model.Fit(*kernel, data.y, kernelPLSPeerFeatures[i]));
            EXPECT_EQ(model.GetNumFeaturesUsed(), kernelPLSPeerFeatures[i]);
            for (size_t j = 0; j < std::size(kernelPLSPeerRows); ++j) {
                const auto row = kernel->GetData().begin() + kernelPLSPeerRows[j] * n;
                // Half a unit of the table's last place, 5e-9; the peer's own error, 1e-10; and
                // 1e-10 for this: 2^-52 in the elements of the kernel moves the fits by 5e-12.
                EXPECT_TRUE(Near(model.Predict({row, row + n}), peer[j], 5.2e-9));
            }
        }
}

/// The sum of the squares of what the model of `kernel` leaves of the response.
double SquaredRest(const ZVKernelPLS& model, const ZVMatrix& kernel,
                   const std::vector<double>& response)
{
    double sum = 0.0;
    for (size_t i = 0; i < response.size(); ++i) {
        const auto row = kernel.GetData().begin() + static_cast<long>(i * response.size());
        sum += std::pow(model.Predict({row, kernel.GetData().end()}) - response[i], 2);
    }
    return sum;
}

TEST(KernelPLS, UsesFeaturesThatAreSmallButNotRounding)
{
    const struct
    {
        std::vector<double> diagonal, response;
    } cases[] = {
        {{1, 1e-8}, {1, 1e-7}},      {{1, 2}, {1, 1e-15}}, {{1, 1e-15}, {1, 1}},
        {{1e-100}, {1e160}},         {{1e100}, {1e-170}},  {{1e220}, {1e-50}},
        {{1e-3, 1, 1e3}, {1, 1, 1}},
    };
    for (const auto& c : cases) {
        const unsigned int n = static_cast<unsigned int>(c.diagonal.size());
        ZVKernelPLS model;
        ASSERT_TRUE(model.Fit(
            MakeSquare(n, [&](size_t i, size_t j) { return i == j ? c.diagonal[i] : 0.0; }),
            c.response, 0));
        for (unsigned int i = 0; i < n; ++i) {
            const double exact = c.response[i] / c.diagonal[i];
            EXPECT_TRUE(Near(model.GetBValues()[i], exact, 1e-9 * exact)) << c.diagonal[0];
        }
    }
}

TEST(KernelPLS, EndsAtTheRankOfTheKernel)
{
    std::mt19937 random(11);
    const auto integer = [&](auto...) { return std::floor(4.5 + 4.5 * Uniform(random)) - 4.0; };
    for (unsigned int trial = 0; trial < 2000; ++trial) {
        const unsigned int n = 2 + trial % 40, rank = 1 + trial % std::min(n, 8u);
        SCOPED_TRACE(testing::Message() << trial << ": n = " << n << ", rank at most " << rank);
        const ZVMatrix x = MakeMatrix(n, rank, integer);
        const ZVSquareMatrix kernel = MakeSquare((x * x.Transpose()).GetData());  // exact
        std::vector<double> response(n);
        std::generate(response.begin(), response.end(), integer);
        const Warnings warnings;
        ZVKernelPLS one, all;
        if (!one.Fit(kernel, response, 1))
            continue;  // the kernel reaches nothing of the response
        ASSERT_TRUE(all.Fit(kernel, response, 0));
        EXPECT_LE(all.GetNumFeaturesUsed(), rank);
        EXPECT_LE(SquaredRest(all, kernel, response), SquaredRest(one, kernel, response) + 1e-9);
    }
}

TEST(KernelPLS, EndsByItself)
{
    const Diabetes data;
    const auto trained = [](size_t i) { return i + i / 3; };  // all but each fourth row
    const unsigned int n = 332;
    std::vector<double> response(n), row(n);
    for (size_t i = 0; i < n; ++i)
        response[i] = data.y.at(trained(i));
    using Kernel = double (Diabetes::*)(size_t, size_t) const;
    // Ten columns give ten features at most. The Gaussian kernel has full rank, but only just.
    const std::tuple<Kernel, unsigned int, unsigned int> cases[] = {
        {&Diabetes::Linear, 8, 10}, {&Diabetes::Gaussian, 13, n * 9 / 10}};
    for (const auto& [function, fewest, most] : cases) {
        const auto element = [&, k = function](size_t i, size_t j) {
            return (data.*k)(i, trained(j));
        };
        const ZVSquareMatrix kernel =
            MakeSquare(n, [&](size_t i, size_t j) { return element(trained(i), j); });
        ZVKernelPLS twelve, all;
        ASSERT_TRUE(twelve.Fit(kernel, response, 12));
        ASSERT_TRUE(all.Fit(kernel, response, 0));
        EXPECT_GE(all.GetNumFeaturesUsed(), fewest);
        EXPECT_LE(all.GetNumFeaturesUsed(), most);
        EXPECT_LE(SquaredRest(all, kernel, response),
                  SquaredRest(twelve, kernel, response) * (1 + 1e-12));
        for (size_t i = 3; i < data.y.size(); i += 4) {
            for (size_t j = 0; j < n; ++j)
                row[j] = element(i, j);
            EXPECT_LE(std::abs(all.Predict(row)), 2 * Largest(response)) << "row " << i;
        }
    }
}

}  // namespace
