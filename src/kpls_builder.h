#pragma once

#include "zvmath/matrix.h"

#include <Eigen/Core>
#include <vector>

namespace ZVMath
{

/// Extracts the latent features of kernel PLS one at a time and turns them into a model.
///
/// With K the kernel, y the response, and all vectors of n elements, feature i has
///
///     u    weight   P^T y, scaled so that u.Ku = 1
///     w    image    K u
///     t    score    P w
///     q    loading  P^T t / t.t
///     c    yLoading y.t / t.t
///
/// after which P becomes P - t q^T. P starts as the identity, so it always is I - sum of t_i q_i^T:
/// it is held as those terms and applied to vectors, and K is read once per feature. The model
/// solves the k x k system M z = c with M(i, j) = q_i . w_j; then B = sum of z_j u_j.
///
/// Call the constructor, `Build` once, the accessors. The steps of `Build` are open to tests, as
/// are the members.
class ZVKPLSBuilder
{
public:
    /// Reads `kernel` and `response` until `Build` ends, without a copy: they must live so long.
    /// Caps the number of features at n; `maxFeatures` = 0 stands for n. With a kernel that is not
    /// square, or a response of fewer than n values, n counts as 0.
    ZVKPLSBuilder(const ZVSquareMatrix& kernel, const std::vector<double>& response,
                  unsigned int maxFeatures);

    /// Extracts features until the cap, or until one can't be used, and builds the model of those
    /// before it. False when there is none.
    bool Build();

    /// Extracts the feature with index `numFeatures`, without counting it, and deflates P. To be
    /// counted (++numFeatures) before the next one is extracted.
    void CalcNextFeature();

    /// Whether the feature extracted last carries more than rounding. With r = P^T y and s = r.Kr:
    ///     s and t.t are positive and finite;
    ///     |c * t.t - sqrt(s)| <= 0.01 * sqrt(s), which are equal in exact arithmetic;
    ///     t is not all rounding, see `ScoreIsRounding`.
    /// The second sees that P is no longer the projection it should be. It can't see that the
    /// features before have used up the rank of K: then noise is as consistent as signal.
    bool LastFeatureCarries() const;

    /// Whether M of the first `numFeatures` features can be inverted; false without features.
    bool CanBuild() const;

    /// Whether no singular value of the square `matrix` is below 2.2250738585072014e-308, the
    /// smallest normal double. False when an element is not finite.
    bool CanInvert(const Eigen::MatrixXd& matrix) const;

    /// Computes `bValues` and `b0` from the first `numFeatures` features; false without features.
    bool BuildModel();

    /// P, formed from its terms.
    Eigen::MatrixXd Deflation() const;

    const std::vector<double>& GetBValues() const { return bValues; }
    double GetB0() const { return b0; }
    unsigned int GetNumFeaturesUsed() const { return numFeatures; }

    struct Feature
    {
        std::vector<double> weight;   // u
        std::vector<double> image;    // w = K u
        std::vector<double> score;    // t
        std::vector<double> loading;  // q
        double yLoading = 0.0;        // c
    };

    unsigned int maxFeatures = 0;
    unsigned int numFeatures = 0;
    double b0 = 0.0;
    std::vector<double> bValues;
    std::vector<Feature> features;  // those retained, then perhaps one extracted and not retained
    Eigen::MatrixXd system;         // M of all `features`

private:
    /// Whether every element of t = P K u is no larger than rounding may have made it: at most
    /// 8 * 2^-52 times the same sums with the absolute values of all their terms.
    bool ScoreIsRounding() const;

    const double* kernel = nullptr;
    const double* response = nullptr;
    size_t n = 0;
    std::vector<double> residual;  // P^T y
    double weightNorm = 0.0;       // s of the feature extracted last
    double scoreNorm = 0.0;        // t.t of the feature extracted last
    double largestImage = 0.0;     // the largest element of K P^T y so far
};

}  // namespace ZVMath
