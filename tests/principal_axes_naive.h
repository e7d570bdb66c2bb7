#pragma once

#include "check.h"
#include "references/roots.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

/// Polynomials and symmetric 3 x 3 matrices in the plainest way, and such to try it on.
namespace ZVTest
{

template <class Real> struct Grid
{
    Real m[3][3] = {};
};
template <class Real> const Grid<Real> identity = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

template <class Real> std::vector<double> List(const Real* values, size_t n)
{
    return {values, values + n};
}
template <class Real> std::vector<double> List(const Grid<Real>& grid)
{
    return List(grid.m[0], 9);
}
/// GCC 12 drops the rounding of double to float and back where it makes vectors of them.
inline double Rounded(double value)
{
    const volatile float rounded = static_cast<float>(value);
    return rounded;
}
template <class To, class From> Grid<To> Convert(const Grid<From>& from)
{
    Grid<To> to;
    for (int i = 0; i < 9; ++i) {
        const volatile To value = static_cast<To>(from.m[i / 3][i % 3]);
        to.m[i / 3][i % 3] = value;
    }
    return to;
}
/// Of 00 10 11 20 21 22.
inline Grid<double> Symmetric(const double* e)
{
    return {{{e[0], e[1], e[3]}, {e[1], e[2], e[4]}, {e[3], e[4], e[5]}}};
}

/// Three values and where they came from, in descending order; equal ones stay as they are.
template <class Real> void PlainOrder(Real* values, unsigned* order, bool byMagnitude)
{
    const auto size = [=](int i) { return byMagnitude ? std::fabs(values[i]) : values[i]; };
    std::iota(order, order + 3, 0u);
    for (const int i : {0, 1, 0})
        if (size(i + 1) > size(i)) {
            std::swap(values[i], values[i + 1]);
            std::swap(order[i], order[i + 1]);
        }
}

inline double PlainCubeRoot(double x)
{
    return x >= 0 ? std::pow(x, 0.3333333333333333) : -std::pow(-x, 0.3333333333333333);
}

inline int PlainLinear(double* roots, double a, double b)
{
    if (std::fabs(a) < 1e-6)
        return 0;
    roots[0] = -b / a;
    return 1;
}

/// `clears`: the variant that takes the coefficients first and clears slots.
inline int PlainQuadratic(bool clears, double* roots, double a, double b, double c)
{
    if (std::fabs(a) < 1e-6 && clears)
        roots[1] = 0;
    if (std::fabs(a) < 1e-6)
        return PlainLinear(roots, b, c);
    const double disc = b * b + (-4 * a) * c;
    const double q = -0.5 * (b + (b < 0 ? -1.0 : 1.0) * std::sqrt(disc));
    if (disc == 0)
        return PlainLinear(roots, 1, b / (2 * a));
    if (disc < 0)
        return 0;
    roots[0] = q / a;
    roots[1] = c / q;
    return 2;
}

/// t^3 + 3 p t + 2 q = 0 with x = t - s. `angle` is 2 pi / 3, to the digits that the caller has;
/// it is 0 where a double root is meant.
inline void PlainRoots(double* roots, double p, double q, double s, double angle)
{
    const double r = std::sqrt(-p * p * p), u = PlainCubeRoot(-q);
    const double phi = std::acos(-q / r) * 0.3333333333333333, tau = 2 * PlainCubeRoot(r);
    for (int i = 0; i < 3; ++i)
        roots[i] = (angle != 0 ? tau * std::cos(phi + i * angle) : i == 0 ? 2 * u : -u) - s;
}

inline int PlainCubic(bool clears, double* roots, double a, double b, double c, double d)
{
    if (std::fabs(a) < 1e-6 && clears)
        roots[2] = 0;
    if (std::fabs(a) < 1e-6)
        return PlainQuadratic(clears, roots, b, c, d);
    const double s = b / (3 * a), p = (c - b * s) / (3 * a);
    const double q = (d + (2 * a * (s * s) - c) * s) / (2 * a), cube = p * p * p, D = q * q + cube;
    std::fill(roots, roots + 3, D == 0 || clears ? -s : NaN);
    if (D != 0 ? !std::isnan(D) : !clears && cube != 0)
        PlainRoots(roots, p, q, s, D > 0 ? 0 : 2.0943951024);
    if (D == 0)
        return clears ? 1 : 3;
    return D < 0 ? 3 : D > 0 ? 2 : 1;
}

inline int PlainQuartic(double* roots, double a, double b, double c, double d, double e)
{
    if (std::fabs(a) < 1e-6)
        return PlainCubic(false, roots, b, c, d, e);
    const double k = 1 / a, B = b * k, C = c * k, D = d * k, E = e * k, h = -0.25 * B;
    const double P = -0.375 * (B * B) + C, Q = (-0.5 * B) * (C - B * B / 4) + D;
    const double R = ((C - 0.75 * (B * B) / 4) * h + D) * h + E;
    const double p = (12 * R + P * P) * -0.1111111111111111, shift = 0.6666666666666666 * P;
    const double q = 0.5 * ((-4 * R + 0.1111111111111111 * (P * P)) * -shift - Q * Q);
    const double DD = q * q + p * p * p;
    if (DD > 0) {
        const double A = PlainCubeRoot(std::sqrt(DD) - q), V = -PlainCubeRoot(std::sqrt(DD) + q);
        const double w = A + V, S = std::sqrt(w - shift), g = P * 1.3333333333333333 + w;
        const double mag = 0.5 * std::sqrt(g * g + 3 * ((A - V) * (A - V)));
        const double angle = std::atan(-1.7320508075 * (A - V) / g);
        const double alpha = angle < 0 ? 3.1415926536 - angle : angle;
        const double T = 2 * std::cos(alpha / 2) * std::sqrt(mag), kappa = Q > 0 ? -0.5 : 0.5;
        roots[0] = h + kappa * (S - T);
        roots[1] = h + kappa * (S + T);
        return 2;
    }
    const double c0 = PlainCubeRoot(-q), half = Q < 0 ? -0.5 : 0.5;
    double u[] = {-c0 - shift, -c0 - shift, 2 * c0 - shift};
    if (DD < 0)
        PlainRoots(u, p, q, shift, 2.0943951024);
    if (u[0] < 0 || u[1] < 0 || u[2] < 0)
        return 0;
    const double r1 = std::sqrt(u[0]), r2 = std::sqrt(u[1]), r3 = std::sqrt(u[2]);
    roots[0] = h - half * (r1 + r2 + r3);
    roots[1] = h - half * (r1 - r2 - r3);
    roots[2] = h + half * (r1 - r2 + r3);
    roots[3] = h + half * (r1 + r2 - r3);
    return 4;
}

/// The roots of x^3 + beta x^2 + gamma x + delta, whose coefficients are formed as Reals.
template <class Real> void PlainCharacteristic(bool clears, double* roots, const Grid<Real>& a)
{
    const auto& m = a.m;
    const Real beta = -(m[1][1] + m[0][0] + m[2][2]);
    const Real gamma = (m[1][1] + m[0][0]) * m[2][2] + m[1][1] * m[0][0] -
                       (m[1][0] * m[0][1] + m[2][1] * m[1][2] + m[2][0] * m[0][2]);
    const Real delta =
        (m[1][0] * m[0][1] * m[2][2] + m[2][1] * m[1][2] * m[0][0] + m[2][0] * m[0][2] * m[1][1]) -
        (m[1][0] * m[2][1] * m[0][2] + m[1][1] * m[0][0] * m[2][2] + m[0][1] * m[1][2] * m[2][0]);
    PlainCubic(clears, roots, 1, beta, gamma, delta);
}

/// (first, second, 1), or else (first, 1, 0), of length 1, from place i on.
template <class Real> void PlainVector(Real* v, int i, Real first, Real second, bool thirdIsOne)
{
    const Real length = std::sqrt(first * first + 1);
    const Real scale = 1 / std::sqrt(first * first + second * second + 1);
    v[i] = thirdIsOne ? first * scale : first / length;
    v[(i + 1) % 3] = thirdIsOne ? second * scale : 1 / length;
    v[(i + 2) % 3] = thirdIsOne ? scale : 0;
}

template <class Real> Real PlainMinor(const Grid<Real>& a, Real lambda, int i)
{
    const int j = (i + 1) % 3;
    return (lambda - a.m[j][j]) * (a.m[i][i] - lambda) + a.m[j][i] * a.m[i][j];
}

/// The vector of lambda from rows i and i + 1; `fixed`: from rows 0 and 1, whatever they are.
template <class Real>
void PlainElimination(Real* v, const Grid<Real>& grid, Real lambda, int i, bool fixed)
{
    const auto& m = grid.m;
    const int j = (i + 1) % 3, k = (i + 2) % 3;
    const Real a = m[i][i] - lambda, b = m[i][j], delta = PlainMinor(grid, lambda, i);
    const Real g = b / a - (m[j][j] - lambda) / m[j][i];
    const Real second =
        fixed ? (m[j][k] / m[j][i] - m[i][k] / a) / g : (m[j][k] * a - m[j][i] * m[i][k]) / delta;
    if (fixed ? std::fabs(g) >= Real(1e-6) : !(std::fabs(delta) < Real(1e-6)))
        PlainVector<Real>(v, i, -(b * second + m[i][k]) / a, second, true);
    else
        PlainVector<Real>(v, i, -(b / a), 1, false);
}

template <class Real> void PlainCross(Real* w, const Real* u, const Real* v)
{
    for (int i = 0; i < 3; ++i)
        w[i] = u[(i + 1) % 3] * v[(i + 2) % 3] - u[(i + 2) % 3] * v[(i + 1) % 3];
}
template <class Real> Real PlainDot(const Real* u, const Real* v)
{
    return u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
}

/// In double make_rmat, where a mode that is not 0 asks for the values only; in float make_rmat1.
template <class Real> int PlainRmat(double* wide, const Grid<float>& in, Grid<float>& out, int mode)
{
    constexpr bool isDouble = std::is_same_v<Real, double>;
    const auto small = [](Real x) { return std::fabs(x) < Real(1e-6); };
    const Grid<Real> grid = Convert<Real>(in);
    Grid<Real> rowGrid;
    const auto& m = grid.m;
    auto& rows = rowGrid.m;
    const bool diagonal = small(m[0][1]) && small(m[0][2]) && small(m[1][0]) && small(m[1][2]) &&
                          small(m[2][0]) && small(m[2][1]);
    double roots[] = {m[0][0], m[1][1], m[2][2]};
    if (!diagonal)
        PlainCharacteristic(false, roots, grid);
    Real values[3];
    for (int i = 0; i < 3; ++i)
        values[i] = Real(isDouble ? roots[i] : Rounded(roots[i]));
    unsigned order[3];
    PlainOrder(values, order, false);
    std::copy(values, values + 3, wide);
    const bool ordered =
        small(m[0][0] - values[0]) && small(m[1][1] - values[1]) && small(m[2][2] - values[2]);
    for (int i = 0; i < 3; ++i)
        rows[i][diagonal ? order[i] : unsigned(i)] = 1;
    if (diagonal || ordered) {
        out = Convert<float>(rowGrid);
        return diagonal ? 4 : 2;
    }
    if (isDouble ? mode != 0 : mode < 0 || mode > 2)
        return 0;

    int pivots[3] = {};
    for (int row = 2; row >= 0; --row) {
        const Real lambda = values[row];
        const auto merit = [&](int n) {
            return isDouble ? -std::fabs(m[n][n] - lambda) : std::fabs(PlainMinor(grid, lambda, n));
        };
        int& i = pivots[row];
        for (const int other : {1, 2})
            i = mode == 0 && merit(other) > merit(i) ? other : i;
        for (const int other : {0, 1, 2})
            i = isDouble && m[other][other] == lambda ? other : i;
        for (const int n : {0, 1, 2})
            rows[row][n] = n == i ? Real(1) : Real(0);
        if (!isDouble || std::fabs(m[i][i] - lambda) >= Real(1e-6))
            PlainElimination(rows[row], grid, lambda, i, mode != 0);
    }
    if (mode == 1) {
        const double eta = rows[2][1], zeta = rows[2][2];
        const double sigma = std::sqrt(1 / (zeta * zeta / (eta * eta) + 1));
        rows[0][0] = 0;
        rows[0][1] = static_cast<Real>(eta == 0 ? 1 : -zeta * sigma / eta);
        rows[0][2] = static_cast<Real>(eta == 0 ? 0 : sigma);
        PlainCross(rows[1], rows[0], rows[2]);
    }
    if (mode == 0) {
        if (pivots[0] == pivots[1] && pivots[1] == pivots[2])
            rowGrid = identity<Real>;
        if (values[0] == values[1])
            PlainCross(rows[1], rows[0], rows[2]);
        if (values[1] == values[2])
            PlainCross(rows[2], rows[1], rows[0]);
        const auto negate = [&](int row) {
            std::transform(rows[row], rows[row] + 3, rows[row], std::negate<Real>());
        };
        Real normal[3];
        PlainCross(normal, rows[1], rows[2]);
        if (PlainDot(rows[0], normal) < 0)
            negate(2);
        for (const int row : {0, 1})
            if (rows[row][row] < 0) {
                negate(row);
                negate(2);
            }
    }
    out = Convert<float>(rowGrid);
    return 0;
}

constexpr double firstTrial[] = {0.343257, 0.847359, 0.127438};

/// The axes that a trial vector gives. `alternating`: which of its components is changed depends on
/// which product is zero.
struct PlainAxes
{
    PlainAxes(const Grid<double>& a, const double* moments, bool alternating)
    {
        double x[3], y[3] = {}, z[3] = {}, w[3];
        std::copy(firstTrial, firstTrial + 3, x);
        const auto apply = [&a](double* out, double lambda, const double* v) {
            Grid<double> shifted = a;
            for (int i = 0; i < 3; ++i) {
                shifted.m[i][i] -= lambda;
                out[i] = PlainDot(shifted.m[i], v);
            }
            return std::fabs(out[0]) + std::fabs(out[1]) + std::fabs(out[2]) == 0;
        };
        for (; trials < 16; ++trials) {
            const bool yIsZero = apply(y, moments[2], x), zIsZero = apply(z, moments[1], y);
            if (!yIsZero && !zIsZero)
                break;
            x[alternating && yIsZero ? 0 : 1] -= 0.1;
        }
        for (int i = 0; i < 3; ++i)
            hasNaN = hasNaN || std::isnan(y[i]) || std::isnan(z[i]);
        PlainCross(w, y, z);
        PlainCross(rows.m[1], w, z);
        for (int i = 0; i < 3; ++i) {
            rows.m[0][i] = z[i];
            rows.m[2][i] = w[i];
        }
        for (auto& row : rows.m) {
            const double squared = PlainDot(row, row), length = std::sqrt(squared);
            for (double& component : row)
                component = squared == 0 ? component : component / length;
        }
    }

    Grid<double> rows;
    int trials = 0;  // that failed
    bool hasNaN = false;
};

/// What rows R are as axes of A.
struct Quality
{
    Quality(const Grid<double>& rows, const Grid<double>& a)
    {
        const Grid<long double> r = Convert<long double>(rows);
        for (const double entry : List(a))
            largest = std::max(largest, std::fabs(entry));
        for (int i = 0; i < 9; ++i) {
            long double turned = 0, normal[3];
            for (int j = 0; j < 9; ++j)
                turned += a.m[j / 3][j % 3] / static_cast<long double>(largest) *
                          r.m[i / 3][j / 3] * r.m[i % 3][j % 3];
            const int same = i % 4 == 0 ? 1 : 0;
            PlainCross(normal, r.m[1], r.m[2]);
            see(skewness, PlainDot(r.m[0], normal) - 1);
            see(skewness, PlainDot(r.m[i / 3], r.m[i % 3]) - same);
            see(offDiagonal, same ? 0 : turned);
            values[i / 3] = same ? double(turned) : values[i / 3];
        }
    }
    static void see(double& worst, long double value)
    {
        worst = std::isnan(worst) || std::fabs(value) <= worst ? worst : double(std::fabs(value));
    }

    double largest = 0, skewness = 0, offDiagonal = 0;  // of A; of R R^T - I, det R - 1; of R A R^T
    double values[3] = {};                              // the diagonal of R A R^T, to the largest
};

/// Whether rows from a trial vector are more than rounding: otherwise others replace them.
inline bool AreSound(const Quality& quality, const double* m)
{
    const double near = 0.01 * std::fabs(m[0]);
    const bool differ = std::fabs(m[0] - m[1]) > near && std::fabs(m[1] - m[2]) > near &&
                        std::fabs(m[2] - m[0]) > near;
    return quality.skewness <= 1e-9 && quality.offDiagonal <= (differ ? 1e-6 : 1e-8);
}

/// The plain rows to the bit; where these are not sound, a rotation that makes `a` diagonal, its
/// entries in the order of the moments, or by magnitude where these are all the same, to `bound`.
template <class Real>
testing::AssertionResult AreAxes(const Grid<Real>& rows, const Grid<double>& plain,
                                 const Grid<double>& a, const double* moments, double bound)
{
    const std::vector<double> entries = List(a);
    if (!std::all_of(entries.begin(), entries.end(), [](double e) { return std::isfinite(e); }) ||
        AreSound({plain, a}, moments))
        return SameBits(List(rows), List(Convert<Real>(plain)));
    const Quality quality(Convert<double>(rows), a);
    double worst = std::max(quality.skewness, quality.offDiagonal);
    const bool byMagnitude = moments[0] == moments[1] && moments[1] == moments[2];
    for (int i = 0; i < 9; ++i) {
        const double u = quality.values[i / 3], v = quality.values[i % 3];
        if (byMagnitude ? i / 3 < i % 3 : moments[i / 3] > moments[i % 3])
            worst = std::max(worst, byMagnitude ? std::fabs(v) - std::fabs(u) : v - u);
    }
    return Near(worst, 0, bound);
}

/// Values to `error` of the largest, and axes up to their signs, of matrices whose values differ.
inline testing::AssertionResult AreExact(const double* values, const Grid<double>& rows,
                                         const AxesReference& r, double error)
{
    std::vector<double> axes(r.axes, r.axes + 9);
    for (int i = 0; i < 9; ++i)
        axes[size_t(i)] *= PlainDot(rows.m[i / 3], r.axes + i / 3 * 3) < 0 ? -1 : 1;
    const auto result = Near(List(values, 3), List(r.values, 3), error * std::fabs(r.values[0]));
    return result ? Near(List(rows), axes, 1e4 * error) : result;  // they differ by 1e-3 and more
}

constexpr double oddValues[] = {
    0.0,  -0.0,   inf,    -inf,   NaN,  1e-6, -1e-6, 0x1.0c6f7a0b5ed8cp-20,
    5e-7, 2.5e-7, 1e-160, 5e-324, 1e20, -1.0, 1.0,   -1e308};

/// Of these the first trial vector makes exact zeros: the first or the second product is 0, with
/// roots to ten decimals or with full ones.
constexpr double retried[][6] = {
    {-0x1.343632c122d86p-2, 0x1.42a7ecefe3eeap-5, -0x1.f57acc1bd88d4p-3, -0x1.5896d272fd388p-6,
     0x1.d84886fd5b676p-4, -0x1.d7dad38c78708p-1},
    {-0x1.6d7531497ade4p-6, 0x1.62a6aeda61ebap-2, 0x1.2603805728346p-1, -0x1.9be3aa0ac5d1ap-3,
     0x1.27d7549791576p-2, -0x1.3e19a9b0dc5d7p-1},
    {-0x1.c52bd84fe2102p-2, 0x1.d121f44f5c7f5p-3, -0x1.677bc80d2e2acp-4, -0x1.cb257b732f8cap-3,
     0x1.a122396cefe2ap-3, -0x1.6e5dc71a6932ap-1},
    {-0x1.48d39489fb368p-1, 0x1.e6ca4e4481e78p-6, -0x1.767ce8bf7c416p-1, -0x1.7cac2120e7fdfp-2,
     0x1.53c30566f2b9fp-4, -0x1.074ff13511104p-2},
};

inline double Whole(std::mt19937& random, int most)
{
    return int(random() % unsigned(2 * most + 1)) - most;
}

/// Two eigenvalues of a `pair` agree to a share of 1e-1 to 1e-17; of an `axis` exactly, and entries
/// are whole; one axis of `trial` is the first trial vector. The last three are not for accuracy.
enum Kind { uniform, whole, nearDiagonal, correlation, pair, axis, trialVector, scaled, odd, skew };

inline Grid<double> AnyMatrix(std::mt19937& random, Kind kind)
{
    const auto draw = [&] {
        return kind == whole || kind == axis ? Whole(random, 3) : Uniform(random);
    };
    double u[3], v[3], w[3], lambda[] = {draw(), draw(), draw()};
    for (int i = 0; i < 3; ++i) {
        u[i] = kind == trialVector ? firstTrial[i] : draw();
        v[i] = draw();
    }
    if (kind == pair)
        lambda[1] = lambda[0] * (1 + std::pow(10, -9 + 8 * Uniform(random)));
    PlainCross(w, u, v);
    PlainCross(v, u, w);
    const double squares[] = {PlainDot(u, u), PlainDot(v, v), PlainDot(w, w)};
    const int exponent = int(random() % (random() % 2 ? 2100 : 260));
    Grid<double> a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j <= i; ++j) {
            double entry = draw();
            if (kind == axis)
                entry = lambda[0] * u[i] * u[j] + (i == j ? lambda[1] : 0);
            if (kind == pair || kind == trialVector)
                entry = lambda[0] * v[i] * v[j] / squares[1] +
                        lambda[1] * w[i] * w[j] / squares[2] + lambda[2] * u[i] * u[j] / squares[0];
            if (kind == nearDiagonal)
                entry = i == j ? Whole(random, 3) : 5e-7 * Whole(random, 3);
            if (kind == correlation && i == j)
                entry = 1;
            if (kind == scaled)
                entry = std::ldexp(entry, exponent > 260 ? exponent - 1080 : exponent - 130);
            if (kind == odd && random() % 4 == 0)
                entry = oddValues[random() % 16];
            a.m[i][j] = entry;
            a.m[j][i] = kind == skew ? draw() : entry;
        }
    if (random() % 8 != 0 || (kind != trialVector && kind != nearDiagonal))
        return a;
    const double off = 1.5e-4 * (1 + 6e-8 * Whole(random, 3)), nearly[] = {0, off, 1, 0, 0, 2};
    return Symmetric(kind == trialVector ? retried[random() % 4] : nearly);
}

}  // namespace ZVTest
