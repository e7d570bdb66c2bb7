#include "principal_axes.h"

#include <algorithm>

namespace ZVMath
{

namespace
{

void Normalise(double* v)
{
    const double squared = Dot(v, v);
    if (squared != 0.0) {
        const double length = std::sqrt(squared);
        for (int i = 0; i < 3; ++i)
            v[i] /= length;
    }
}

double LargestEntry(const double (&a)[3][3])
{
    double largest = 0.0;
    for (const auto& row : a)
        for (const double entry : row)
            largest = std::max(largest, std::abs(entry));
    return largest;
}

bool AreFinite(const double (&a)[3][3])
{
    double sum = 0.0;
    for (const auto& row : a)
        for (const double entry : row)
            sum += entry * 0.0;
    return sum == 0.0;
}

/// To 1e-9; false with a NaN.
bool AreOrthonormal(const double (&rows)[3][3])
{
    constexpr double bound = 1e-9;
    for (int i = 0; i < 3; ++i)
        for (int j = i; j < 3; ++j)
            if (!(std::abs(Dot(rows[i], rows[j]) - (i == j ? 1.0 : 0.0)) <= bound))
                return false;
    return true;
}

/// To `bound` times the largest entry; false with a NaN.
bool MakeDiagonal(const double (&rows)[3][3], const double (&a)[3][3], double bound)
{
    bound *= LargestEntry(a);
    for (int i = 1; i < 3; ++i) {
        double image[3];
        TimesShifted(image, a, 0.0, rows[i]);
        for (int j = 0; j < i; ++j)
            if (!(std::abs(Dot(rows[j], image)) <= bound))
                return false;
    }
    return true;
}

/// Whether two of them, by magnitude, largest first, agree to a hundredth of the largest, or are
/// not numbers that could be compared.
bool TwoAgree(const double* moments)
{
    const double bound = 0.01 * std::abs(moments[0]);
    return !(std::abs(moments[0] - moments[1]) > bound &&
             std::abs(moments[1] - moments[2]) > bound &&
             std::abs(moments[2] - moments[0]) > bound);
}

/// Turns the orthonormal u and v in their plane so that u^T a v = 0; false if it is to rounding,
/// the entries of `a` being 1 at most.
bool Diagonalise(double* u, double* v, const double (&a)[3][3])
{
    double au[3];
    double av[3];
    TimesShifted(au, a, 0.0, u);
    TimesShifted(av, a, 0.0, v);
    const double off = Dot(u, av);
    if (std::abs(off) < 1e-17)
        return false;
    const double theta = (Dot(v, av) - Dot(u, au)) / (2.0 * off);
    const double t =
        (theta < 0.0 ? -1.0 : 1.0) / (std::abs(theta) + std::sqrt(theta * theta + 1.0));
    const double c = 1.0 / std::sqrt(t * t + 1.0);
    const double s = t * c;
    for (int i = 0; i < 3; ++i) {
        const double before = u[i];
        u[i] = c * before - s * v[i];
        v[i] = s * before + c * v[i];
    }
    return true;
}

/// The places of three values in the order that `before` gives them.
template <class Before> void Rank(unsigned int* places, const double* values, Before before)
{
    double sorted[] = {values[0], values[1], values[2]};
    for (unsigned int i = 0; i < 3; ++i)
        places[i] = i;
    SortThree(sorted, places, before);
}

}  // namespace

void BuildAxes(double (&rows)[3][3], const double (&a)[3][3], const double* moments)
{
    // To a scale of 1, so that no product over- or underflows. (Elsewhere the scale is the
    // caller's.)
    const double scale = LargestEntry(a);
    double scaled[3][3];
    double axes[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            scaled[i][j] = a[i][j] / scale;
    // Convergence is quadratic: after four rounds, and mostly two, what is left is rounding.
    bool turned = true;
    for (int round = 0; round < 4 && turned; ++round) {
        turned = false;
        for (int i = 0; i < 3; ++i)
            turned |= Diagonalise(axes[i], axes[(i + 1) % 3], scaled);
    }

    double quotients[3];
    for (int i = 0; i < 3; ++i) {
        double image[3];
        TimesShifted(image, scaled, 0.0, axes[i]);
        quotients[i] = Dot(axes[i], image);
    }
    unsigned int from[3];
    unsigned int to[3];
    if (moments[0] == moments[1] && moments[1] == moments[2]) {
        Rank(from, quotients, GreaterMagnitude);  // they tell nothing; this is what they would be
        Rank(to, moments, GreaterMagnitude);
    } else {
        // By value: moments of opposite sign may have the same magnitude, to rounding.
        const auto greater = [](double next, double previous) { return next > previous; };
        Rank(from, quotients, greater);
        Rank(to, moments, greater);
    }
    for (int i = 0; i < 3; ++i)
        std::copy(axes[from[i]], axes[from[i]] + 3, rows[to[i]]);
    double normal[3];
    Cross(normal, rows[0], rows[1]);
    if (Dot(rows[2], normal) < 0.0)
        for (double& component : rows[2])
            component = -component;
}

void AxesFromTrial(double (&rows)[3][3], const double* y, const double* z, const double (&a)[3][3],
                   const double* moments)
{
    double w[3];
    Cross(w, y, z);
    std::copy(z, z + 3, rows[0]);
    Cross(rows[1], w, z);
    std::copy(w, w + 3, rows[2]);
    for (auto& row : rows)
        Normalise(row);

    MendAxes(rows, a, moments);
}

void MendAxes(double (&rows)[3][3], const double (&a)[3][3], const double* moments)
{
    if (AreOrthonormal(rows) && MakeDiagonal(rows, a, TwoAgree(moments) ? 1e-8 : 1e-6))
        return;
    if (AreFinite(a))
        BuildAxes(rows, a, moments);
}

}  // namespace ZVMath
