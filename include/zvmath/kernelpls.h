#pragma once

#include "zvmath/export.h"
#include "zvmath/matrix.h"

#include <vector>

namespace ZVMath
{

/// Kernel partial least squares regression of one response.
///
/// Learns from the n x n matrix K of kernel values between n training objects and their responses
/// y, and predicts a new object's response from its kernel values k against the training objects:
///
///     prediction(k) = B0 + sum over i of k_i * B_i
///
/// No kernel function is evaluated, and nothing is centred, scaled or regularised: centre K, y and
/// the rows given to `Predict` beforehand if the model is to have an intercept.
///
/// Method: nonlinear iterative partial least squares in the dual form of Rosipal and Trejo (2001,
/// J. Machine Learning Research 2), with one response.
class ZVMATH_EXPORT ZVKernelPLS
{
public:
    /// Fits the model with at most `maxFeatures` latent features; 0, or more than n, stands for n.
    ///
    /// `kernel`: n x n, element (i, j) the kernel value of training objects i and j. Meant to be
    /// symmetric and positive semidefinite, which is not asked of it: with another matrix the
    /// features end where s below is not positive.
    /// `response`: n values; more are ignored.
    ///
    /// Extraction stops before the first feature that can't be used: one that makes the small
    /// system of the features singular, or one that carries nothing. With P = I - sum of t_i q_i^T
    /// the deflation so far, r = P^T y and s = r.Kr, the score t of a feature has y.t = sqrt(s) in
    /// exact arithmetic. It carries nothing when s or t.t is not positive and finite, when
    /// |y.t - sqrt(s)| > 0.01 * sqrt(s), or when every element of P K r is rounding: at most
    /// 8 * 2^-52 times the same sums of absolute values, (I + sum of |t_i| |q_i|^T) |K| |r|. (This
    /// is asked of scores below 1e-9 of the largest |K r| so far.) So `maxFeatures` = 0 is safe in
    /// practice, but slow where a kernel has many features to give (n = 1000: half a minute). It
    /// is not a choice of model: the number of features that predicts best is found on objects
    /// that were not fitted.
    ///
    /// False, with the warning "Kernel PLS failed due to singular matrix!" through
    /// `ZVSystem::ZVThrow` and the model left as it was: when not even one feature can be used, and
    /// when n = 0, when `response` holds fewer than n values, or when `kernel` is not square.
    /// An allocation that fails leaves the model as it was, too.
    ///
    /// Cost for k features: k passes over K (another for each score so small), and of the order of
    /// n * k^2 + k^4 operations besides; memory 4 * n * k + k^2 doubles and a few n, no copy of K.
    bool Fit(const ZVSquareMatrix& kernel, const std::vector<double>& response,
             unsigned int maxFeatures);

    /// The predicted response of an object whose kernel values against training objects 0 .. n-1
    /// are `kernelRow`; more values than n are ignored.
    ///
    /// Without a model: the largest finite double, 1.7976931348623157e308, and the warning "Cannot
    /// make prediction.  Model has not been built!". With fewer than n values: the largest
    /// finite double, without a warning. Cost: n multiplications and additions, in an order that is
    /// the same on every machine.
    double Predict(const std::vector<double>& kernelRow) const;

    /// B, one coefficient per training object; empty while there is no model.
    const std::vector<double>& GetBValues() const { return bValues; }
    /// B0, the constant. It is the rounding residue of the first feature's equation, so close to 0.
    double GetB0() const { return b0; }
    /// The number of latent features in the model; 0 while there is none.
    unsigned int GetNumFeaturesUsed() const { return numFeaturesUsed; }

private:
    unsigned int numFeaturesUsed = 0;
    double b0 = 0.0;
    std::vector<double> bValues;
};

}  // namespace ZVMath
