#include "zvmath/kernelpls.h"

#include "kpls_builder.h"
#include "vector_loops.h"
#include "zvsystem/errors.h"

#include <Eigen/LU>
#include <Eigen/SVD>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace ZVMath
{

namespace
{

/// sum of the squares of the elements.
double SquaredNorm(const std::vector<double>& v)
{
    return Dot(v.data(), v.data(), v.size());
}

double LargestElement(const std::vector<double>& v)
{
    double largest = 0.0;
    for (const double element : v)
        largest = std::max(largest, std::fabs(element));
    return largest;
}

bool PositiveAndFinite(double value)
{
    return value > 0.0 && std::isfinite(value);
}

}  // namespace

ZVKPLSBuilder::ZVKPLSBuilder(const ZVSquareMatrix& kernelMatrix,
                             const std::vector<double>& responses, unsigned int featureCap)
    : kernel(kernelMatrix.GetData().data()), response(responses.data())
{
    const unsigned int rows = kernelMatrix.GetNumRows();
    if (kernelMatrix.GetNumColumns() != rows || responses.size() < rows)
        return;
    n = rows;
    maxFeatures = featureCap >= 1 && featureCap <= rows ? featureCap : rows;
    residual.assign(response, response + n);
}

bool ZVKPLSBuilder::Build()
{
    while (numFeatures < maxFeatures) {
        CalcNextFeature();
        if (!LastFeatureCarries())
            break;
        ++numFeatures;
        if (!CanBuild()) {
            --numFeatures;
            break;
        }
    }
    return BuildModel();
}

void ZVKPLSBuilder::CalcNextFeature()
{
    const size_t index = numFeatures;
    features.resize(index + 1);
    Feature& feature = features[index];

    // w = K u is formed from the weight as it comes, so that scaling needs no further pass over K.
    std::vector<double>& u = feature.weight;
    std::vector<double>& w = feature.image;
    u = residual;
    w.resize(n);
    MatrixTimesVector(w.data(), kernel, n, n, u.data());
    largestImage = std::max(largestImage, LargestElement(w));
    weightNorm = Dot(u.data(), w.data(), n);
    const double scale = 1.0 / std::sqrt(weightNorm);
    Scale(u.data(), scale, n);
    Scale(w.data(), scale, n);

    // t = P w. Its coefficients q_i . w are the new column of M.
    const Eigen::Index k = static_cast<Eigen::Index>(index);
    system.conservativeResize(k + 1, k + 1);
    std::vector<double>& t = feature.score;
    t = w;
    for (Eigen::Index i = 0; i < k; ++i) {
        const Feature& former = features[static_cast<size_t>(i)];
        system(i, k) = Dot(former.loading.data(), w.data(), n);
        AddScaled(t.data(), -system(i, k), former.score.data(), n);
    }
    scoreNorm = SquaredNorm(t);

    // q = P^T t / t.t
    std::vector<double>& q = feature.loading;
    q = t;
    for (size_t i = 0; i < index; ++i) {
        const Feature& former = features[i];
        AddScaled(q.data(), -Dot(former.score.data(), t.data(), n), former.loading.data(), n);
    }
    Scale(q.data(), 1.0 / scoreNorm, n);

    const double responseOnScore = Dot(response, t.data(), n);
    feature.yLoading = responseOnScore / scoreNorm;
    for (Eigen::Index j = 0; j <= k; ++j)
        system(k, j) = Dot(q.data(), features[static_cast<size_t>(j)].image.data(), n);

    AddScaled(residual.data(), -responseOnScore, q.data(), n);
}

bool ZVKPLSBuilder::LastFeatureCarries() const
{
    if (!PositiveAndFinite(weightNorm) || !PositiveAndFinite(scoreNorm))
        return false;
    const double expected = std::sqrt(weightNorm);
    if (!(std::fabs(features.back().yLoading * scoreNorm - expected) <= 0.01 * expected))
        return false;
    // Only a score this small can be rounding, and only then another pass over K is worth while.
    constexpr double suspicious = 1e-9;
    return LargestElement(features.back().score) * expected > suspicious * largestImage ||
           !ScoreIsRounding();
}

bool ZVKPLSBuilder::ScoreIsRounding() const
{
    const Feature& last = features.back();
    std::vector<double> imageTerms(n, 0.0);  // |K| |u|
    for (size_t i = 0; i < n; ++i)
        for (size_t j = 0; j < n; ++j)
            imageTerms[i] += std::fabs(kernel[i * n + j] * last.weight[j]);
    std::vector<double> scoreTerms = imageTerms;  // |P| |K| |u|
    for (size_t f = 0; f + 1 < features.size(); ++f) {
        double coefficient = 0.0;
        for (size_t i = 0; i < n; ++i)
            coefficient += std::fabs(features[f].loading[i]) * imageTerms[i];
        for (size_t i = 0; i < n; ++i)
            scoreTerms[i] += std::fabs(features[f].score[i]) * coefficient;
    }
    constexpr double rounding = 8.0 * std::numeric_limits<double>::epsilon();
    for (size_t i = 0; i < n; ++i)
        if (std::fabs(last.score[i]) > rounding * scoreTerms[i])
            return false;
    return true;
}

bool ZVKPLSBuilder::CanBuild() const
{
    if (numFeatures == 0)
        return false;
    return CanInvert(system.topLeftCorner(numFeatures, numFeatures));
}

bool ZVKPLSBuilder::CanInvert(const Eigen::MatrixXd& matrix) const
{
    // Of a matrix with a NaN the decomposition returns memory that was never set.
    if (!matrix.allFinite())
        return false;
    if (matrix.size() == 0)
        return true;

    // The smallest singular value is at least 1 / ||M^-1||_F. An inverse computed with rounding
    // can be trusted to say so while the condition is far from 1 / epsilon; and a sum of squares
    // that overflows, as for an inverse above 1e154, leaves the question to the decomposition.
    constexpr double trustedCondition = 1e10;
    constexpr double smallestNormal = std::numeric_limits<double>::min();
    const Eigen::MatrixXd inverse = matrix.partialPivLu().inverse();
    if (matrix.norm() * inverse.norm() < trustedCondition)
        return true;

    const Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(matrix);
    return (decomposition.singularValues().array().abs() >= smallestNormal).all();
}

bool ZVKPLSBuilder::BuildModel()
{
    if (numFeatures == 0)
        return false;
    const Eigen::MatrixXd m = system.topLeftCorner(numFeatures, numFeatures);
    Eigen::VectorXd c(numFeatures);
    for (unsigned int i = 0; i < numFeatures; ++i)
        c[i] = features[i].yLoading;
    const Eigen::VectorXd z = m.partialPivLu().solve(c);
    bValues.assign(n, 0.0);
    for (unsigned int i = 0; i < numFeatures; ++i)
        AddScaled(bValues.data(), z[i], features[i].weight.data(), n);
    // c0 - (q0^T K) . B, and q0^T K u_j is element (0, j) of M.
    b0 = c[0] - m.row(0).dot(z);
    return true;
}

Eigen::MatrixXd ZVKPLSBuilder::Deflation() const
{
    const Eigen::Index size = static_cast<Eigen::Index>(n);
    Eigen::MatrixXd p = Eigen::MatrixXd::Identity(size, size);
    for (const Feature& feature : features)
        p -= Eigen::VectorXd::Map(feature.score.data(), size) *
             Eigen::VectorXd::Map(feature.loading.data(), size).transpose();
    return p;
}

bool ZVKernelPLS::Fit(const ZVSquareMatrix& kernel, const std::vector<double>& response,
                      unsigned int maxFeatures)
{
    ZVKPLSBuilder builder(kernel, response, maxFeatures);
    if (!builder.Build()) {
        ZVSystem::ZVThrow.Warning("Kernel PLS failed due to singular matrix!");
        return false;
    }
    bValues = std::move(builder.bValues);
    b0 = builder.GetB0();
    numFeaturesUsed = builder.GetNumFeaturesUsed();
    return true;
}

double ZVKernelPLS::Predict(const std::vector<double>& kernelRow) const
{
    if (bValues.empty()) {
        ZVSystem::ZVThrow.Warning("Cannot make prediction.  Model has not been built!");
        return std::numeric_limits<double>::max();
    }
    if (kernelRow.size() < bValues.size())
        return std::numeric_limits<double>::max();
    return b0 + Dot(kernelRow.data(), bValues.data(), bValues.size());
}

}  // namespace ZVMath
