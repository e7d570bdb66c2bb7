#pragma once

#include "zvmath/export.h"

#include <Eigen/Core>
#include <cstddef>
#include <vector>

namespace ZVMath
{

/// A linear model y = X beta by least-angle regression, with its whole path: the coefficients after
/// each step. Each step lets one more variable in, the one whose correlation with what is left of y
/// catches up with that of the others; all active coefficients then move so that these correlations
/// stay equal. No variable leaves: where a coefficient changes its sign, the path goes on as that
/// of least angles, not of the L1 penalty.
///
/// X (n rows, the observations; p columns, the variables) and y are used as they are: nothing is
/// centred or scaled, and there is no intercept. For the method of the books bring the columns of X
/// to mean 0 and one length, and y to mean 0.
///
/// Method: Efron, Hastie, Johnstone, Tibshirani: Least angle regression. Annals of Statistics 32
/// (2004).
///
/// This header needs Eigen 3.3 or later, and only its Core: the only one of the library that does,
/// so it is not part of zvmath.h. No object of Eigen's passes into the library; whatever flags the
/// program and its Eigen are compiled with, the path has the same bits. Fewer than 2^32 rows and
/// columns.
class ZVMATH_EXPORT ZVLasso
{
public:
    /// Computes the path of at most `maxSteps` steps: min(maxSteps, n - 1, p), and none when X has
    /// no rows or y fewer than n values; more values than n are ignored. Replaces a path that was
    /// there. Returns true, even where there are no steps.
    ///
    /// With c = X^T (y - X beta), the first variable to enter is that of the largest |c_i|; of
    /// equal ones the lowest index. Each step moves the active coefficients by gamma * w, with G
    /// the Gram matrix of the active columns, s_i = 1 for active c_i >= 0 and -1 for c_i < 0,
    ///
    ///     w = A G^-1 s,  A = (s^T G^-1 s)^(-1/2),  C = the largest |c_i|,  h = X^T X_active w,
    ///
    /// and gamma the smallest positive one among (C + c_m) / (A + h_m) and (C - c_m) / (A - h_m)
    /// over the inactive m, whose variable enters next; of equal ones the lowest index. If the
    /// steps are not cut short by `maxSteps`, the last goes the whole way to the least-squares fit:
    /// gamma = C / A. c is updated: c - gamma * h.
    ///
    /// Every input comes to its end with as many steps, and no variable enters twice:
    /// - A candidate for gamma that is not a number is none. Where there is no positive one, as
    ///   with y = 0, gamma is 0 and the last inactive variable enters next (that has a candidate,
    ///   if any has). The first to enter has a correlation that is a number, if any has.
    /// - A variable left behind, its correlation equal to that of the first, has gamma 0 and is no
    ///   candidate, so the step goes on to the next. Rounding may make it a candidate with a tiny
    ///   gamma.
    /// - An infinite candidate (A + h_m or A - h_m is 0) is one; taken, if no other is positive, it
    ///   leaves coefficients that are infinite or NaN.
    /// - Where active columns are linearly dependent (a column of zeros, a duplicate, two that are
    ///   constant), the coefficients from there on mean nothing: they may be large, infinite, NaN.
    ///   When a duplicate of an active column enters is for rounding to say; so the step before may
    ///   be cut short.
    /// - A column with a NaN is never a candidate, so it enters after all that are, with gamma 0 in
    ///   the step before it. The coefficients are NaN from there on.
    /// - With a NaN in y, or an infinity in X or y, the coefficients mean nothing.
    ///
    /// Cost for k steps: n p k multiplications and as many additions in k + 1 readings of X, or
    /// from k = p / 2 on n p^2 / 2 in one reading by blocks of rows; of the order of p k^2 + k^3
    /// besides; memory p * k + k^2 / 2 doubles (p^2 instead of p * k) beside the path. When memory
    /// runs out, the former path is left.
    bool Fit(const Eigen::MatrixXd& X, const Eigen::VectorXd& y, unsigned int maxSteps)
    {
        static_assert(!Eigen::MatrixXd::IsRowMajor,
                      "columns must be stored one after the other: EIGEN_DEFAULT_TO_ROW_MAJOR");
        return FitColumns(X.data(), static_cast<unsigned int>(X.rows()),
                          static_cast<unsigned int>(X.cols()), y.data(),
                          static_cast<std::size_t>(y.size()), maxSteps);
    }

    /// The whole path: `maxSteps` = p.
    bool Fit(const Eigen::MatrixXd& X, const Eigen::VectorXd& y)
    {
        return Fit(X, y, static_cast<unsigned int>(X.cols()));
    }

    /// The path: entry s holds the s + 1 coefficients of the variables `GetActives()[0 .. s]` after
    /// step s; those of all others are 0. Empty without a fit, and after one without steps.
    ///
    /// A copy, as is that of `GetActives`: keep it in a variable.
    /// `for (double b : model.GetCoefficients().back())` would loop over what is gone.
    std::vector<std::vector<double>> GetCoefficients() const { return coefficients; }

    /// The active variables (columns of X), in the order in which they entered: a copy.
    std::vector<unsigned int> GetActives() const { return actives; }

private:
    /// X column by column.
    bool FitColumns(const double* x, unsigned int rows, unsigned int columns, const double* y,
                    std::size_t ySize, unsigned int maxSteps);

    std::vector<std::vector<double>> coefficients;
    std::vector<unsigned int> actives;
};

}  // namespace ZVMath
