#include "zvmath/special_functions.h"

#include "elementary.h"
#include "multiversion.h"
#include "partial_sums.h"

#include <cmath>
#include <limits>

namespace ZVMath
{

namespace
{

constexpr double failure = std::numeric_limits<double>::max();
constexpr int maxTerms = 200;

constexpr double epsilon = 2.220446049250313e-16;        // 2^-52
constexpr double seriesEpsilon = 2.220446049250313e-15;  // 10 * 2^-52
// What Lentz's method puts in place of a denominator of zero: 2^-970, the smallest normal number
// over epsilon, and its inverse.
constexpr double tiny = 1.0020841800044864e-292;
constexpr double inverseOfTiny = 9.9792015476736e291;

// Lanczos' approximation with g = 607/128: ln Gamma(x) = -lanczosConstant - x
// + (x + 1/2) ln(x + g + 1/2) + ln((lanczosFirst + sum over j of lanczos[j-1] / (x + j)) / x).
constexpr double lanczosConstant = 4.323248966795327;  // g + 1/2 - ln(sqrt(2 pi))
constexpr double lanczosShift = 5.2421875;             // g + 1/2
constexpr double lanczosFirst = 0.9999999999999971;
constexpr size_t numLanczos = 14;
constexpr double lanczos[numLanczos] = {
    57.15623566586292,       -59.59796035547549,     14.136097974741746,     -0.4919138160976202,
    3.399464998481189e-05,   4.652362892704858e-05,  -9.837447530487956e-05, 0.0001580887032249125,
    -0.00021026444172410488, 0.00021743961811521265, -0.0001643181065367639, 8.441822398385275e-05,
    -2.6190838401581408e-05, 3.6899182659531625e-06};

double LogGamma(double x)
{
    if (x < -1.0)
        return failure;
    // The divisions don't depend on one another and go two at a time; the sum keeps its order.
    typedef double Vec2 __attribute__((vector_size(16)));
    double sum = lanczosFirst;
    Vec2 terms[numLanczos / 2];
    for (size_t j = 0; j < numLanczos; j += 2) {
        const Vec2 offset = {static_cast<double>(j + 1), static_cast<double>(j + 2)};
        const Vec2 numerator = {lanczos[j], lanczos[j + 1]};
        terms[j / 2] = numerator / (x + offset);
    }
    for (const Vec2& pair : terms) {
        sum += pair[0];
        sum += pair[1];
    }
    return -lanczosConstant - x + (x + 0.5) * Log(x + lanczosShift) + Log(sum / x);
}

/// x^a e^-x / Gamma(a), the factor of both forms of the incomplete gamma function.
double GammaFactor(double a, double x)
{
    return Exp(a * Log(x) - (LogGamma(a) + x));
}

/// A denominator or numerator of a continued fraction, kept off zero.
double NotZero(double value)
{
    return std::fabs(value) < tiny ? tiny : value;
}

/// 1 / (start + i), i < 2^31. Exact denominators up to 2^53: adding up so many would take a month.
struct Reciprocals
{
    using Group = FourTerms;
    double start;

    ZVMATH_INLINE void One(double* term, size_t i) const
    {
        *term = 1.0 / (start + static_cast<int>(i));
    }
    ZVMATH_INLINE void Four(FourTerms& terms, size_t i) const
    {
        const Vec4 offsets = {0.0, 1.0, 2.0, 3.0};
        terms.first = 1.0 / (start + static_cast<int>(i) + offsets);
    }
};

ZVMATH_CLONES double HarmonicBlocks(uint64_t first, size_t count)
{
    double total;
    SumBlocks(&total, 0, count, Reciprocals{static_cast<double>(first)});
    return total;
}

}  // namespace

double ZVlgamma(double x)
{
    return LogGamma(x);
}

double ZVDiGamma(double x)
{
    if (x <= 0.0)
        return failure;
    if (x < 1e-16)
        return -1.0 / x - 0.577215664901533;  // Euler's constant, to 15 digits
    if (x >= 100.0) {
        const double t = 1.0 / (x * x);
        const double series =
            (((t * 0.004166666666666667 - 0.003968253968253968) * t + 0.008333333333333333) * t -
             0.08333333333333333) *
            t;
        return Log(x) - 0.5 / x + series;
    }
    double shifts = 0.0;
    while (x < 10.0) {
        shifts += 1.0 / x;
        x += 1.0;
    }
    // Bernoulli numbers B_2k / 2k.
    const double t = 1.0 / (x * x);
    double series = t * -0.08333333333333333 + 0.021092796092796094;
    series = series * t - 0.007575757575757576;
    series = series * t + 0.004166666666666667;
    series = series * t - 0.003968253968253968;
    series = series * t + 0.008333333333333333;
    series = series * t - 0.08333333333333333;
    return Log(x) - shifts - 0.5 / x + series * t;
}

double ZVTriGamma(double x)
{
    if (x <= 0.0)
        return failure;
    if (x < 1e-16)
        return 1.0 / (x * x);
    if (x >= 100.0) {
        const double u = 1.0 / x;
        const double t = u * u;
        const double series =
            ((0.023809523809523808 - t * 0.03333333333333333) * t - 0.03333333333333333) * t +
            0.16666666666666666;
        return (series * t + 0.5 * u + 1.0) * u;
    }
    double shifts = 0.0;
    while (x < 10.0) {
        shifts += 1.0 / (x * x);
        x += 1.0;
    }
    // Bernoulli numbers B_2k; the first is one unit in the last place below 7/6.
    const double u = 1.0 / x;
    const double t = u * u;
    double series = 1.1666666666666665 * t - 0.2531135531135531;
    series = series * t + 0.07575757575757576;
    series = series * t - 0.03333333333333333;
    series = series * t + 0.023809523809523808;
    series = series * t - 0.03333333333333333;
    series = series * t + 0.16666666666666666;
    return (series * t + 0.5 * u + 1.0) * u + shifts;
}

double ZVIncompleteGammaSeriesForm(double a, double x)
{
    if (a <= 0.0 || x <= 0.0)
        return failure;
    double term = 1.0 / a;
    double sum = term;
    double denominator = a;
    int n = 0;
    do {
        ++n;
        denominator += 1.0;
        term = term * x / denominator;
        sum += term;
    } while (term > sum * seriesEpsilon && n < maxTerms);
    if (n == maxTerms)
        return failure;
    return sum * GammaFactor(a, x);
}

double ZVComplementaryIncompleteGammaContinuedFractionForm(double a, double x)
{
    if (a <= 0.0 || x <= 0.0)
        return failure;
    // c and d are the ratios of successive numerators and (inverse) denominators.
    double b = x + 1.0 - a;
    double c = inverseOfTiny;
    double d = 1.0 / b;
    double fraction = d;
    double factor = c * d;
    int n = 0;
    while (std::fabs(factor - 1.0) > epsilon && n < maxTerms) {
        ++n;
        const double numerator = (a - n) * n;
        b += 2.0;
        d = 1.0 / NotZero(numerator * d + b);
        c = NotZero(b + numerator / c);
        factor = d * c;
        fraction *= factor;
    }
    if (n == maxTerms)
        return failure;
    return fraction * GammaFactor(a, x);
}

double ZVIncompleteGamma(double a, double x)
{
    if (a <= 0.0 || x <= 0.0)
        return failure;
    if (x < a + 1.0)
        return ZVIncompleteGammaSeriesForm(a, x);
    return 1.0 - ZVComplementaryIncompleteGammaContinuedFractionForm(a, x);
}

double ZVIncompleteBetaContinuedFraction(double a, double b, double x)
{
    if (a <= 0.0 || b <= 0.0 || x <= 0.0)
        return failure;
    const double sum = a + b;
    const double above = a + 1.0;
    const double below = a - 1.0;
    double c = 1.0;
    double d = 1.0 / NotZero(1.0 - sum * x / above);
    double fraction = d;
    double factor = d;
    int step = 0;
    while (std::fabs(factor - 1.0) > epsilon && step < maxTerms) {
        ++step;
        const double m = step;
        const double m2 = 2 * step;
        const double even = m * (b - m) * x / ((below + m2) * (a + m2));
        d = 1.0 / NotZero(1.0 + even * d);
        c = NotZero(1.0 + even / c);
        fraction = fraction * d * c;
        const double odd = -(a + m) * (sum + m) * x / ((a + m2) * (above + m2));
        d = 1.0 / NotZero(1.0 + odd * d);
        c = NotZero(1.0 + odd / c);
        factor = d * c;
        fraction *= factor;
    }
    if (step == maxTerms)
        return failure;
    return fraction;
}

double ZVIncompleteBeta(double a, double b, double x)
{
    // So that NaN fails it.
    if (!(x >= 0.0 && x <= 1.0 && a > 0.0 && b > 0.0))
        return failure;
    if (x == 0.0)
        return 0.0;
    if (x == 1.0)
        return 1.0;
    const double factor =
        Exp(LogGamma(a + b) - (LogGamma(a) + LogGamma(b)) + a * Log(x) + b * Log(1.0 - x));
    if (x < (a + 1.0) / (a + b + 2.0))
        return factor * ZVIncompleteBetaContinuedFraction(a, b, x) / a;
    return 1.0 - factor * ZVIncompleteBetaContinuedFraction(b, a, 1.0 - x) / b;
}

double ZVExactHarmonicNumber(uint64_t n)
{
    return SumOfBlocks(
        0, n, [](size_t begin, size_t end) { return HarmonicBlocks(begin + 1, end - begin); });
}

}  // namespace ZVMath
