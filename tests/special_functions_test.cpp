#include "zvmath/special_functions.h"

#include "check.h"
#include "references/special_functions_reference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

using namespace ZVMath;
using namespace ZVTest;

namespace
{

constexpr double failure = 1.7976931348623157e308;

const auto SeriesForm = ZVIncompleteGammaSeriesForm;
const auto Fraction = ZVComplementaryIncompleteGammaContinuedFractionForm;

// The bounds are those that the header states.

double LogGammaBound(double value)
{
    return (16.0 + 3.0 * std::abs(value)) * epsilon;
}

double IncompleteGammaBound(double a)
{
    return 6e-15 * (a + 4.0);
}

double IncompleteBetaBound(double a, double b)
{
    return 1e-14 * (a + b + 4.0);
}

TEST(SpecialFunctions, KeepTheErrorBounds)
{
    for (const auto& [x, value] : logGammaReferences)
        EXPECT_TRUE(Near(ZVlgamma(x), value, LogGammaBound(value))) << "lgamma " << Show(x);
    for (const auto& [x, digamma, trigamma] : polyGammaReferences) {
        const double ulp = std::nextafter(std::abs(digamma), inf) - std::abs(digamma);
        EXPECT_TRUE(Near(ZVDiGamma(x), digamma,
                         x < 10.0 ? epsilon * (8.0 + 7.0 * std::abs(digamma)) : 2.0 * ulp))
            << "digamma " << Show(x);
        const double ulpOfTrigamma = std::nextafter(trigamma, inf) - trigamma;
        EXPECT_TRUE(Near(ZVTriGamma(x), trigamma, (x < 100.0 ? 8.0 : 3.0) * ulpOfTrigamma))
            << "trigamma " << Show(x);
    }
    for (const auto& [a, x, p, q] : gammaReferences) {
        const double bound = IncompleteGammaBound(a);
        EXPECT_TRUE(Near(ZVIncompleteGamma(a, x), p, bound * p)) << "P " << a << ", " << Show(x);
        if (x >= a + 1.0) {
            EXPECT_TRUE(Near(Fraction(a, x), q, bound * q)) << "Q " << a << ", " << Show(x);
        }
    }
    for (const auto& [a, b, x, value] : betaReferences) {
        const double bound = IncompleteBetaBound(a, b);
        const bool below = x < (a + 1.0) / (a + b + 2.0);
        EXPECT_TRUE(Near(ZVIncompleteBeta(a, b, x), value, below ? bound * value : bound))
            << "I " << a << ", " << b << ", " << Show(x);
    }
    for (const auto& [n, value] : harmonicReferences)
        EXPECT_TRUE(Near(ZVExactHarmonicNumber(static_cast<uint64_t>(n)), value,
                         (256.0 + std::log2(n)) * 0.5 * epsilon * value))
            << "H " << n;
}

/// Cases are arguments, then the result.
template <size_t N, class Function>
void ExpectBits(const char* name, Function function,
                const std::vector<std::array<double, N + 1>>& cases)
{
    for (const std::array<double, N + 1>& c : cases) {
        std::array<double, N> arguments;
        std::copy_n(c.begin(), N, arguments.begin());
        EXPECT_TRUE(SameBits(std::apply(function, arguments), c[N]))
            << name << " of " << testing::PrintToString(arguments);
    }
}

TEST(SpecialFunctions, GiveTheStatedValuesOutsideTheirRange)
{
    const double bad = failure;
    // clang-format off
    ExpectBits<1>("lgamma", ZVlgamma,
        {{std::nextafter(-1.0, -2.0), bad}, {-2, bad}, {-inf, bad}, {-1, NaN}, {-0.5, NaN},
         {-0.0, NaN}, {0, inf}, {1.8e-307, inf}, {2.56e305, inf}, {inf, NaN}, {NaN, NaN}});
    ExpectBits<1>("digamma", ZVDiGamma,
        {{0, bad}, {-1, bad}, {-inf, bad}, {5.5e-309, -inf}, {inf, inf}, {NaN, NaN}});
    ExpectBits<1>("trigamma", ZVTriGamma,
        {{0, bad}, {-1, bad}, {-inf, bad}, {7.4e-155, inf}, {inf, 0}, {NaN, NaN}});
    const std::pair<const char*, double (*)(double, double)> incompleteGammas[] = {
        {"P", ZVIncompleteGamma}, {"series", SeriesForm}, {"fraction", Fraction}};
    for (const auto& [name, function] : incompleteGammas)
        ExpectBits<2>(name, function,
            {{0, 1, bad}, {1, 0, bad}, {-1, 1, bad}, {1, -1, bad}, {NaN, 0, bad}, {0, NaN, bad},
             {NaN, 1, NaN}, {1, NaN, NaN}, {inf, 1, NaN}, {1, inf, NaN}, {inf, inf, NaN}});
    ExpectBits<2>("fraction, x + 1 = a", Fraction, {{3, 2, NaN}, {1e5, 99999, bad}});
    ExpectBits<3>("I", ZVIncompleteBeta,
        {{0, 1, 0.5, bad}, {1, 0, 0.5, bad}, {1, 1, 1.5, bad}, {1, 1, -1e-300, bad},
         {NaN, 1, 0, bad}, {1, NaN, 1, bad}, {1, 1, NaN, bad}, {inf, 1, 0.5, NaN},
         {1, inf, 0.5, NaN}, {inf, 2, 0, 0}, {3, 2, -0.0, 0}, {3, inf, 1, 1}});
    ExpectBits<3>("beta fraction", ZVIncompleteBetaContinuedFraction,
        {{0, 1, 0.5, bad}, {1, 0, 0.5, bad}, {1, 1, 0, bad}, {NaN, 1, 0.5, NaN},
         {1, NaN, 0.5, NaN}, {1, 1, NaN, NaN}, {inf, 1, 0.5, NaN}, {1, inf, 0.5, NaN},
         {1, 1, 1, 9.979201547673599e291}}); // the first denominator is 0
    // clang-format on
    EXPECT_TRUE(Near(Fraction(2.0, 1e-10), -1e272, 1e270)) << "far below a + 1";
}

TEST(SpecialFunctions, ConvergeUpToTheStatedArguments)
{
    // The number of terms depends on no function of the C library: it is the same everywhere.
    for (int a = 1; a <= 586; ++a)
        ASSERT_LE(ZVIncompleteGamma(a, std::nextafter(a + 1.0, 0.0)), 1.0) << a;
    EXPECT_LE(SeriesForm(593.0, 593.0), 1.0);
    for (int a = 1; a <= 9856; ++a)
        ASSERT_GE(ZVIncompleteGamma(a, a + 1.0), 0.0) << a;
    for (int a = 1; a <= 34231; a += 5)
        ASSERT_TRUE(Near(ZVIncompleteBeta(a, a, 0.5), 0.5, IncompleteBetaBound(a, a))) << a;

    EXPECT_EQ(SeriesForm(594.0, 594.0), failure);
    EXPECT_EQ(ZVIncompleteGamma(587.0, std::nextafter(588.0, 0.0)), failure);
    EXPECT_EQ(Fraction(9857.0, 9858.0), failure);
    EXPECT_EQ(ZVIncompleteGamma(9857.0, 9858.0), -failure);
    EXPECT_EQ(ZVIncompleteBetaContinuedFraction(34232.0, 34232.0, 0.5), failure);
    EXPECT_EQ(ZVIncompleteBeta(34232.0, 34232.0, 0.5), -inf);
}

// The formulas term by term, to the bit: a constant that is wrong in its last digit, or a sum in
// another order, is far below the error bounds.

double PlainLogGamma(double x)
{
    const double c[] = {57.15623566586292,       -59.59796035547549,     14.136097974741746,
                        -0.4919138160976202,     3.399464998481189e-05,  4.652362892704858e-05,
                        -9.837447530487956e-05,  0.0001580887032249125,  -0.00021026444172410488,
                        0.00021743961811521265,  -0.0001643181065367639, 8.441822398385275e-05,
                        -2.6190838401581408e-05, 3.6899182659531625e-06};
    double sum = 0.9999999999999971;
    for (int j = 1; j <= 14; ++j)
        sum += c[j - 1] / (x + j);
    return x < -1.0
               ? failure
               : -4.323248966795327 - x + (x + 0.5) * std::log(x + 5.2421875) + std::log(sum / x);
}

double Horner(const std::vector<double>& coefficients, double t)
{
    double sum = coefficients[0];
    for (size_t i = 1; i < coefficients.size(); ++i)
        sum = sum * t + coefficients[i];
    return sum;
}

double PlainDiGamma(double x)
{
    if (x < 1e-16)
        return -1.0 / x - 0.577215664901533;
    double shifts = 0.0;
    std::vector<double> c = {1.0 / 240, -1.0 / 252, 1.0 / 120, -1.0 / 12};
    if (x < 100.0) {
        for (int k = 0; k < 10 && x < 10.0; ++k, x += 1.0)
            shifts += 1.0 / x;
        c.insert(c.begin(), {-1.0 / 12, 691.0 / 32760, -1.0 / 132});
    }
    const double t = 1.0 / (x * x);
    return std::log(x) - shifts - 0.5 / x + Horner(c, t) * t;
}

double PlainTriGamma(double x)
{
    if (x < 1e-16)
        return 1.0 / (x * x);
    double shifts = 0.0;
    std::vector<double> c = {-1.0 / 30, 1.0 / 42, -1.0 / 30, 1.0 / 6};
    if (x < 100.0) {
        for (int k = 0; k < 10 && x < 10.0; ++k, x += 1.0)
            shifts += 1.0 / (x * x);
        c = {1.1666666666666665, -691.0 / 2730, 5.0 / 66, -1.0 / 30, 1.0 / 42, -1.0 / 30, 1.0 / 6};
    }
    const double u = 1.0 / x, t = u * u;
    return (Horner(c, t) * t + 0.5 * u + 1.0) * u + shifts;
}

double PlainIncompleteGamma(double a, double x)
{
    const double factor = std::exp(a * std::log(x) - (PlainLogGamma(a) + x));
    int n = 0;
    if (x < a + 1.0) {
        double term = 1.0 / a, sum = term, ap = a;
        do {
            ++n;
            ap += 1.0;
            term = term * x / ap;
            sum += term;
        } while (term > sum * 2.220446049250313e-15 && n < 200);
        return n == 200 ? failure : sum * factor;
    }
    double b = x + 1.0 - a, c = 0x1p970, d = 1.0 / b, h = d, step = c * d;
    for (; std::fabs(step - 1.0) > epsilon && n < 200; h *= step) {
        ++n;
        const double an = (a - n) * n;
        b += 2.0;
        d = 1.0 / (an * d + b);
        c = b + an / c;
        step = d * c;
    }
    return 1.0 - (n == 200 ? failure : h * factor);
}

double PlainBetaFraction(double a, double b, double x)
{
    double c = 1.0, d = 1.0 / (1.0 - (a + b) * x / (a + 1.0)), h = d, step = d;
    int m = 0;
    while (std::fabs(step - 1.0) > epsilon && m < 200) {
        ++m;
        for (const bool even : {true, false}) {
            const double aa = even ? m * (b - m) * x / ((a - 1.0 + 2 * m) * (a + 2 * m))
                                   : -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 1.0 + 2 * m));
            d = 1.0 / (1.0 + aa * d);
            c = 1.0 + aa / c;
            step = d * c;
            h = even ? h * d * c : h * step;
        }
    }
    return m == 200 ? failure : h;
}

double PlainIncompleteBeta(double a, double b, double x)
{
    const double factor = std::exp(PlainLogGamma(a + b) - (PlainLogGamma(a) + PlainLogGamma(b)) +
                                   a * std::log(x) + b * std::log(1.0 - x));
    return x < (a + 1.0) / (a + b + 2.0) ? factor * PlainBetaFraction(a, b, x) / a
                                         : 1.0 - factor * PlainBetaFraction(b, a, 1.0 - x) / b;
}

TEST(SpecialFunctions, HaveTheBitsOfTheirFormulas)
{
    std::mt19937 random(1);
    for (int trial = 0; trial < 20000; ++trial) {
        // By turns from -1 to 9, to 110 and over all magnitudes.
        const double u = Uniform(random);
        const double x = trial % 3 == 0   ? 4.0 + 5.0 * u
                         : trial % 3 == 1 ? 55.0 + 55.0 * u
                                          : std::exp2(500.0 * u);
        ASSERT_TRUE(SameBits(ZVlgamma(x), PlainLogGamma(x))) << Show(x);
        if (x > 0.0) {
            ASSERT_TRUE(SameBits(ZVDiGamma(x), PlainDiGamma(x))) << Show(x);
            ASSERT_TRUE(SameBits(ZVTriGamma(x), PlainTriGamma(x))) << Show(x);
        }
        const double a = std::exp2(12.0 * Uniform(random)), b = std::exp2(12.0 * Uniform(random));
        const double near = a * std::exp(Uniform(random) / std::sqrt(a));
        ASSERT_TRUE(SameBits(ZVIncompleteGamma(a, near), PlainIncompleteGamma(a, near)))
            << Show(a) << ", " << Show(near);
        const double part = 0.5 + 0.5 * Uniform(random);
        if (part > 0.0) {
            ASSERT_TRUE(SameBits(ZVIncompleteBeta(a, b, part), PlainIncompleteBeta(a, b, part)))
                << Show(a) << ", " << Show(b) << ", " << Show(part);
        }
    }
}

/// The sum of 1/k from k = first in the order that stats.h states: `count` terms of one block.
double SumOfBlock(uint64_t first, uint64_t count)
{
    double sums[16] = {};
    for (uint64_t i = 0; i < count; ++i)
        sums[i % 16] += 1.0 / static_cast<double>(first + i);
    for (size_t half = 8; half > 0; half /= 2)
        for (size_t j = 0; j < half; ++j)
            sums[j] += sums[j + half];
    return sums[0];
}

TEST(HarmonicNumber, AddsInTheStatedOrder)
{
    for (uint64_t n = 0; n <= 4096; n += n < 70 ? 1 : 61)
        EXPECT_TRUE(SameBits(ZVExactHarmonicNumber(n), SumOfBlock(1, n))) << n;
    const double a = SumOfBlock(1, 4096), b = SumOfBlock(4097, 4096), c = SumOfBlock(8193, 4096),
                 d = SumOfBlock(12289, 4096);
    ExpectBits<1>("H", ZVExactHarmonicNumber,
                  {{4097, a + SumOfBlock(4097, 1)},
                   {8191, a + SumOfBlock(4097, 4095)},
                   {8192, a + b},
                   {8193, (a + b) + SumOfBlock(8193, 1)},
                   {12289, (a + b) + (c + SumOfBlock(12289, 1))},
                   {16384, (a + b) + (c + d)},
                   {16407, ((a + b) + (c + d)) + SumOfBlock(16385, 23)}});
}

TEST(SpecialFunctions, KeepTheRecurrences)
{
    // Each links two arguments, often of two branches. The bounds are those of both sides.
    std::mt19937 random(2);
    for (int trial = 0; trial < 3000; ++trial) {
        const double x = std::exp2(7.0 * Uniform(random));
        const double lower = ZVlgamma(x), upper = ZVlgamma(x + 1.0);
        EXPECT_TRUE(
            Near(upper - lower, std::log(x), 1.2 * (LogGammaBound(lower) + LogGammaBound(upper))))
            << "lgamma " << Show(x);
        const double psi = ZVDiGamma(x), trigamma = ZVTriGamma(x);
        EXPECT_TRUE(Near(ZVDiGamma(x + 1.0) - psi, 1.0 / x,
                         epsilon * (24.0 + 8.0 * std::abs(psi) + 8.0 / x)))
            << "digamma " << Show(x);
        EXPECT_TRUE(Near(ZVTriGamma(x + 1.0) + 1.0 / x / x, trigamma, 20.0 * epsilon * trigamma))
            << "trigamma " << Show(x);

        const double a = std::exp2(4.5 + 4.5 * Uniform(random));
        const double nearA = a * std::exp(2.0 * Uniform(random) / std::sqrt(a));
        const double gammaStep = std::exp(a * std::log(nearA) - nearA - std::lgamma(a + 1.0));
        EXPECT_TRUE(Near(ZVIncompleteGamma(a, nearA) - ZVIncompleteGamma(a + 1.0, nearA), gammaStep,
                         4.0 * IncompleteGammaBound(a)))
            << "P " << a << ", " << Show(nearA);
        const double b = std::exp2(4.5 + 4.5 * Uniform(random));
        const double t = a / (a + b) + 0.5 * Uniform(random) * std::min(a, b) / (a + b);
        const double betaStep = std::exp(std::lgamma(a + b) - std::lgamma(a + 1.0) -
                                         std::lgamma(b) + a * std::log(t) + b * std::log1p(-t));
        const double bound = 4.0 * IncompleteBetaBound(a, b);
        const double value = ZVIncompleteBeta(a, b, t);
        EXPECT_TRUE(Near(value - ZVIncompleteBeta(a + 1.0, b, t), betaStep, bound))
            << "I " << a << ", " << b << ", " << Show(t);
        EXPECT_TRUE(Near(value + ZVIncompleteBeta(b, a, 1.0 - t), 1.0, bound))
            << "I " << a << ", " << b << ", " << Show(t);
    }
}

}  // namespace
