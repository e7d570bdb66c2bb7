#pragma once

#include "elementary.h"

#include <cmath>
#include <utility>

/// What the inertial alignment and the eigenvector rotations share: the roots of a depressed cubic,
/// and the axes of a symmetric 3 x 3 matrix from a trial vector.
namespace ZVMath
{

/// pow(x, 1/3) with the sign of x.
inline double CubeRoot(double x)
{
    constexpr double third = 0.3333333333333333;
    return x >= 0.0 ? Pow(x, third) : -Pow(-x, third);
}

/// The three real roots, less `shift`, of t^3 + 3pt + 2q = 0 with q^2 + p^3 <= 0 (Viete). The
/// caller names its 2 pi / 3 and 4 pi / 3: they differ in their digits.
inline void TrigonometricRoots(double* roots, double p, double q, double shift, double twoThirdsPi,
                               double fourThirdsPi)
{
    const double r = std::sqrt(-p * p * p);
    const double phi = Acos(-q / r) * 0.3333333333333333;
    const double tau = 2.0 * CubeRoot(r);
    roots[0] = tau * Cos(phi) - shift;
    roots[1] = tau * Cos(phi + twoThirdsPi) - shift;
    roots[2] = tau * Cos(phi + fourThirdsPi) - shift;
}

/// The roots when two of them are one, less `shift`.
inline void SimpleAndDoubleRoot(double* roots, double q, double shift)
{
    const double u = CubeRoot(-q);
    roots[0] = 2.0 * u - shift;
    roots[1] = roots[2] = -u - shift;
}

/// Sorts three values, and `order` with them, so that before(next, previous) is nowhere true; what
/// is equal keeps its order.
template <class Value, class Before>
void SortThree(Value* values, unsigned int* order, Before before)
{
    const auto exchange = [&](unsigned int i) {
        if (before(values[i + 1], values[i])) {
            std::swap(values[i], values[i + 1]);
            std::swap(order[i], order[i + 1]);
        }
    };
    exchange(0);
    exchange(1);
    exchange(0);
}

inline bool GreaterMagnitude(double a, double b)
{
    return std::abs(a) > std::abs(b);
}

/// y = (a - lambda * I) x.
inline void TimesShifted(double* y, const double (&a)[3][3], double lambda, const double* x)
{
    y[0] = (a[0][0] - lambda) * x[0] + a[0][1] * x[1] + a[0][2] * x[2];
    y[1] = a[1][0] * x[0] + (a[1][1] - lambda) * x[1] + a[1][2] * x[2];
    y[2] = a[2][0] * x[0] + a[2][1] * x[1] + (a[2][2] - lambda) * x[2];
}

template <class Real> void SetIdentity(Real (&m)[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m[i][j] = i == j ? Real(1) : Real(0);
}

inline bool IsZero(const double* v)
{
    return std::abs(v[0]) + std::abs(v[1]) + std::abs(v[2]) == 0.0;
}

template <class Real> void Cross(Real* out, const Real* u, const Real* v)
{
    out[0] = u[1] * v[2] - u[2] * v[1];
    out[1] = u[2] * v[0] - u[0] * v[2];
    out[2] = u[0] * v[1] - u[1] * v[0];
}

template <class Real> Real Dot(const Real* u, const Real* v)
{
    return u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
}

/// So many trial vectors are tried before the axes are built directly.
constexpr int maxTrials = 16;

/// The axes of symmetric `a` from y = (a - c*I) x and z = (a - b*I) y, where x was the trial vector
/// and moments = {a, b, c}: z lies along the first axis, and y in the plane of the first two. Rows
/// are unit vectors, right-handed, and mended.
void AxesFromTrial(double (&rows)[3][3], const double* y, const double* z, const double (&a)[3][3],
                   const double* moments);

/// The rows may be little more than rounding errors: where moments agree, where the trial vector is
/// almost across an axis, or where the moments are wrong. So rows are replaced by those of
/// BuildAxes if they are not orthonormal to 1e-9, or leave more than 1e-6 of the largest entry of
/// `a` off the diagonal, or more than 1e-8 where two moments agree to a hundredth: such moments are
/// themselves not more accurate than that. With a NaN or an infinity in `a` they stay.
void MendAxes(double (&rows)[3][3], const double (&a)[3][3], const double* moments);

/// Without a trial vector, from plane rotations (Jacobi 1846): orthonormal and right-handed, in the
/// order of the moments, whatever these are worth. `a` must be finite.
void BuildAxes(double (&rows)[3][3], const double (&a)[3][3], const double* moments);

}  // namespace ZVMath
