#include "bench.h"
#include "zvmath/special_functions.h"

#ifdef ZVMATH_HAVE_BOOST
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/digamma.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/special_functions/trigamma.hpp>
#endif
#ifdef ZVMATH_HAVE_GSL
#include <gsl/gsl_sf_gamma.h>
#include <gsl/gsl_sf_psi.h>
#endif

#include <cmath>
#include <random>

#ifdef ZVMATH_BENCH_CLONES
#define CLONES __attribute__((target_clones("avx2", "default")))
#else
#define CLONES
#endif

namespace
{

/// One call's; a function of fewer arguments than three ignores the others.
struct Arguments
{
    double x, a, b;
};

struct Batch
{
    /// `draw` gives the arguments of a call.
    template <class Draw> explicit Batch(Draw draw) : results(1000)
    {
        std::mt19937 random(1);
        for (size_t i = 0; i < results.size(); ++i)
            calls.push_back(draw(random));
    }

    std::vector<Arguments> calls;
    std::vector<double> results;
};

/// From 0.5 to 100, as many in each octave.
double Spread(std::mt19937& random)
{
    return 0.5 * std::exp2(std::uniform_real_distribution<double>(0.0, std::log2(200.0))(random));
}

double DrawGamma(std::mt19937& random, double a)
{
    return std::gamma_distribution<double>(a)(random);
}

Batch& Positive()
{
    static Batch batch([](std::mt19937& random) { return Arguments{Spread(random), 0.0, 0.0}; });
    return batch;
}

/// x comes from the distribution that P(a, x) is the distribution function of.
Batch& GammaDistributed()
{
    static Batch batch([](std::mt19937& random) {
        const double a = Spread(random);
        return Arguments{DrawGamma(random, a), a, 0.0};
    });
    return batch;
}

/// The same for I_x(a, b).
Batch& BetaDistributed()
{
    static Batch batch([](std::mt19937& random) {
        const double a = Spread(random), b = Spread(random);
        const double first = DrawGamma(random, a), second = DrawGamma(random, b);
        return Arguments{first / (first + second), a, b};
    });
    return batch;
}

// What the results are held against: by other formulas than any contestant's, in long double.

/// The terms of the two asymptotic series for x >= 30, after a shift by the recurrences.
double KnownDigamma(const Arguments& call)
{
    long double x = call.x, shifts = 0.0L;
    for (; x < 30.0L; x += 1.0L)
        shifts += 1.0L / x;
    const long double t = 1.0L / (x * x);
    const long double series =
        t * (1.0L / 12 - t * (1.0L / 120 - t * (1.0L / 252 - t * (1.0L / 240 - t / 132))));
    return static_cast<double>(std::log(x) - shifts - 0.5L / x - series);
}

double KnownTrigamma(const Arguments& call)
{
    long double x = call.x, shifts = 0.0L;
    for (; x < 30.0L; x += 1.0L)
        shifts += 1.0L / (x * x);
    const long double t = 1.0L / (x * x);
    const long double series =
        1.0L / 6 - t * (1.0L / 30 - t * (1.0L / 42 - t * (1.0L / 30 - t * 5.0L / 66)));
    return static_cast<double>(shifts + 1.0L / x + t / 2 + t / x * series);
}

double KnownLgamma(const Arguments& call)
{
    return static_cast<double>(std::lgamma(static_cast<long double>(call.x)));
}

/// factor * (1 + r(1) + r(1) r(2) + ..), all terms positive.
template <class Ratio> double Series(long double factor, Ratio ratio)
{
    long double sum = 1.0L, term = 1.0L;
    for (int n = 1; term > 1e-20L * sum; ++n) {
        term *= ratio(static_cast<long double>(n));
        sum += term;
    }
    return static_cast<double>(factor * sum);
}

double KnownIncompleteGamma(const Arguments& call)
{
    const long double a = call.a, x = call.x;
    return Series(std::exp(a * std::log(x) - x - std::lgamma(a + 1.0L)),
                  [=](long double n) { return x / (a + n); });
}

double KnownIncompleteBeta(const Arguments& call)
{
    const long double a = call.a, b = call.b, x = call.x;
    const long double logBeta = std::lgamma(a + 1.0L) + std::lgamma(b) - std::lgamma(a + b);
    return Series(std::exp(a * std::log(x) + b * std::log1p(-x) - logBeta),
                  [=](long double n) { return (a + b + n - 1.0L) / (a + n) * x; });
}

/// One function, of a thousand different arguments.
struct Row
{
    std::string workload;
    Batch& (*batch)();
    double (*known)(const Arguments&);

    template <class Function> void Add(const std::string& column, Function function) const
    {
        AddBenchmark(
            workload + ", 1000 calls", column, batch,
            [function](Batch& of) -> const std::vector<double>& {
                for (size_t i = 0; i < of.calls.size(); ++i)
                    of.results[i] = function(of.calls[i]);
                return of.results;
            },
            [expected = known](const Batch& of, const std::vector<double>& results) {
                for (size_t i = 0; i < of.calls.size(); ++i) {
                    const double value = expected(of.calls[i]);
                    if (!(std::fabs(results[i] - value) <= 1e-12 * (1.0 + std::fabs(value))))
                        return false;
                }
                return true;
            });
    }
};

#ifdef ZVMATH_HAVE_BOOST
/// In double throughout: by default Boost computes in long double.
using InDouble = boost::math::policies::policy<boost::math::policies::promote_double<false>>;
#endif

void AddFunctions()
{
    const Row lgamma{"lgamma", Positive, KnownLgamma};
    lgamma.Add("zvmath", [](const Arguments& c) { return ZVMath::ZVlgamma(c.x); });
    lgamma.Add("C library", [](const Arguments& c) { return std::lgamma(c.x); });
#ifdef ZVMATH_HAVE_GSL
    lgamma.Add("GSL", [](const Arguments& c) { return gsl_sf_lngamma(c.x); });
#endif
#ifdef ZVMATH_HAVE_BOOST
    lgamma.Add("Boost", [](const Arguments& c) { return boost::math::lgamma(c.x); });
    lgamma.Add("Boost in double",
               [](const Arguments& c) { return boost::math::lgamma(c.x, InDouble()); });
#endif

    const Row digamma{"digamma", Positive, KnownDigamma};
    digamma.Add("zvmath", [](const Arguments& c) { return ZVMath::ZVDiGamma(c.x); });
#ifdef ZVMATH_HAVE_GSL
    digamma.Add("GSL", [](const Arguments& c) { return gsl_sf_psi(c.x); });
#endif
#ifdef ZVMATH_HAVE_BOOST
    digamma.Add("Boost", [](const Arguments& c) { return boost::math::digamma(c.x); });
    digamma.Add("Boost in double",
                [](const Arguments& c) { return boost::math::digamma(c.x, InDouble()); });
#endif

    const Row trigamma{"trigamma", Positive, KnownTrigamma};
    trigamma.Add("zvmath", [](const Arguments& c) { return ZVMath::ZVTriGamma(c.x); });
#ifdef ZVMATH_HAVE_GSL
    trigamma.Add("GSL", [](const Arguments& c) { return gsl_sf_psi_1(c.x); });
#endif
#ifdef ZVMATH_HAVE_BOOST
    trigamma.Add("Boost", [](const Arguments& c) { return boost::math::trigamma(c.x); });
    trigamma.Add("Boost in double",
                 [](const Arguments& c) { return boost::math::trigamma(c.x, InDouble()); });
#endif

    const Row gamma{"incomplete gamma", GammaDistributed, KnownIncompleteGamma};
    gamma.Add("zvmath", [](const Arguments& c) { return ZVMath::ZVIncompleteGamma(c.a, c.x); });
#ifdef ZVMATH_HAVE_GSL
    gamma.Add("GSL", [](const Arguments& c) { return gsl_sf_gamma_inc_P(c.a, c.x); });
#endif
#ifdef ZVMATH_HAVE_BOOST
    gamma.Add("Boost", [](const Arguments& c) { return boost::math::gamma_p(c.a, c.x); });
    gamma.Add("Boost in double",
              [](const Arguments& c) { return boost::math::gamma_p(c.a, c.x, InDouble()); });
#endif

    const Row beta{"incomplete beta", BetaDistributed, KnownIncompleteBeta};
    beta.Add("zvmath", [](const Arguments& c) { return ZVMath::ZVIncompleteBeta(c.a, c.b, c.x); });
#ifdef ZVMATH_HAVE_GSL
    beta.Add("GSL", [](const Arguments& c) { return gsl_sf_beta_inc(c.a, c.b, c.x); });
#endif
#ifdef ZVMATH_HAVE_BOOST
    beta.Add("Boost", [](const Arguments& c) { return boost::math::ibeta(c.a, c.b, c.x); });
    beta.Add("Boost in double",
             [](const Arguments& c) { return boost::math::ibeta(c.a, c.b, c.x, InDouble()); });
#endif
}

/// Four doubles side by side.
typedef double Vec4 __attribute__((vector_size(32)));

/// n divisions by consecutive numbers, four at a time: nothing else takes as long.
CLONES double Divide(size_t n)
{
    constexpr size_t step = 16;
    const Vec4 one = {1.0, 1.0, 1.0, 1.0};
    Vec4 divisors[4], sums[4] = {};
    for (size_t k = 0; k < 4; ++k)
        for (size_t lane = 0; lane < 4; ++lane)
            divisors[k][lane] = static_cast<double>(4 * k + lane + 1);
    size_t i = 0;
    for (; i + step <= n; i += step)
        for (size_t k = 0; k < 4; ++k) {
            sums[k] += one / divisors[k];
            divisors[k] += static_cast<double>(step);
        }
    const Vec4 sum = (sums[0] + sums[1]) + (sums[2] + sums[3]);
    double total = (sum[0] + sum[1]) + (sum[2] + sum[3]);
    for (; i < n; ++i)
        total += 1.0 / static_cast<double>(i + 1);
    return total;
}

void AddHarmonicNumber()
{
    const auto million = []() -> const size_t& {
        static const size_t n = 1'000'000;
        return n;
    };
    const auto agrees = [](size_t n, double sum) {
        const double size = static_cast<double>(n);
        constexpr double euler = 0.57721566490153286;
        const double known = std::log(size) + euler + 0.5 / size - 1.0 / (12.0 * size * size);
        return std::fabs(sum - known) <= 1e-13 * known;
    };
    AddBenchmark("harmonic number n=1000000", "zvmath", million, ZVMath::ZVExactHarmonicNumber,
                 agrees);
    AddBenchmark(
        "harmonic number n=1000000", "floor", million, [](size_t n) { return Divide(n); }, agrees);
}

}  // namespace

void AddSpecialFunctionsBenchmarks()
{
    AddFunctions();
    AddHarmonicNumber();
}
