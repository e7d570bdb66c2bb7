// The gamma and beta functions of this library and of others at given arguments, for
// special_functions_accuracy.py, which knows the true values.
//
// Standard input: a line for each question, a function and its arguments, "lgamma 0x1.8p+1".
// Standard output: first the names of who answers, then a line for each question with their
// values in that order, "-" from one who does not know the function. Numbers are hexadecimal.

#include "zvmath/special_functions.h"

#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#ifdef ZVMATH_HAVE_GSL
#include <gsl/gsl_errno.h>
#include <gsl/gsl_sf.h>
#endif
#ifdef ZVMATH_HAVE_BOOST
#include <boost/math/special_functions.hpp>
#endif

namespace
{

/// What one contestant calls a function; a function of fewer arguments ignores the others.
using Function = std::function<double(double, double, double)>;

struct Contestant
{
    const char* name;
    /// In the order of `functions`; an empty one is not known.
    std::vector<Function> answers;
};

const char* const functions[] = {"lgamma", "digamma", "trigamma", "P", "Q", "I", "harmonic"};

constexpr double euler = 0.57721566490153286;

#ifdef ZVMATH_HAVE_BOOST
/// Errors give NaN or infinity instead of an exception.
template <class Promotion> Contestant Boost(const char* name)
{
    namespace m = boost::math;
    namespace p = boost::math::policies;
    using Policy =
        p::policy<p::domain_error<p::ignore_error>, p::pole_error<p::ignore_error>,
                  p::overflow_error<p::ignore_error>, p::underflow_error<p::ignore_error>,
                  p::denorm_error<p::ignore_error>, p::rounding_error<p::ignore_error>,
                  p::evaluation_error<p::ignore_error>,
                  p::indeterminate_result_error<p::ignore_error>, Promotion>;
    const Policy policy;
    return {name,
            {[=](double x, double, double) { return m::lgamma(x, policy); },
             [=](double x, double, double) { return m::digamma(x, policy); },
             [=](double x, double, double) { return m::trigamma(x, policy); },
             [=](double a, double x, double) { return m::gamma_p(a, x, policy); },
             [=](double a, double x, double) { return m::gamma_q(a, x, policy); },
             [=](double a, double b, double x) { return m::ibeta(a, b, x, policy); },
             [=](double n, double, double) { return m::digamma(n + 1.0, policy) + euler; }}};
}
#endif

std::vector<Contestant> Contestants()
{
    std::vector<Contestant> all;
    all.push_back({"zvmath",
                   {[](double x, double, double) { return ZVMath::ZVlgamma(x); },
                    [](double x, double, double) { return ZVMath::ZVDiGamma(x); },
                    [](double x, double, double) { return ZVMath::ZVTriGamma(x); },
                    [](double a, double x, double) { return ZVMath::ZVIncompleteGamma(a, x); },
                    [](double a, double x, double) {
                        return ZVMath::ZVComplementaryIncompleteGammaContinuedFractionForm(a, x);
                    },
                    ZVMath::ZVIncompleteBeta,
                    [](double n, double, double) {
                        return ZVMath::ZVExactHarmonicNumber(static_cast<uint64_t>(n));
                    }}});
    all.push_back(
        {"libm",
         {[](double x, double, double) { return std::lgamma(x); }, {}, {}, {}, {}, {}, {}}});
#ifdef ZVMATH_HAVE_GSL
    gsl_set_error_handler_off();
    all.push_back(
        {"gsl",
         {[](double x, double, double) { return gsl_sf_lngamma(x); },
          [](double x, double, double) { return gsl_sf_psi(x); },
          [](double x, double, double) { return gsl_sf_psi_1(x); },
          [](double a, double x, double) { return gsl_sf_gamma_inc_P(a, x); },
          [](double a, double x, double) { return gsl_sf_gamma_inc_Q(a, x); }, gsl_sf_beta_inc,
          [](double n, double, double) { return gsl_sf_psi(n + 1.0) + euler; }}});
#endif
#ifdef ZVMATH_HAVE_BOOST
    // Boost's default is to compute in long double and round the result.
    all.push_back(Boost<boost::math::policies::promote_double<true>>("boost"));
    all.push_back(Boost<boost::math::policies::promote_double<false>>("boost-double"));
#endif
    return all;
}

}  // namespace

int main()
{
    const std::vector<Contestant> contestants = Contestants();
    for (const Contestant& c : contestants)
        std::printf("%s%c", c.name, &c == &contestants.back() ? '\n' : ' ');
    char line[256], name[16];
    while (std::fgets(line, sizeof line, stdin)) {
        double x[3] = {};
        const int count = std::sscanf(line, "%15s %la %la %la", name, &x[0], &x[1], &x[2]) - 1;
        size_t which = 0;
        while (which < std::size(functions) && name != std::string(functions[which]))
            ++which;
        if (count < 1 || which == std::size(functions)) {
            std::fprintf(stderr, "special_functions_accuracy: not a question: %s", line);
            return 1;
        }
        for (const Contestant& c : contestants) {
            const char end = &c == &contestants.back() ? '\n' : ' ';
            if (c.answers[which])
                std::printf("%a%c", c.answers[which](x[0], x[1], x[2]), end);
            else
                std::printf("-%c", end);
        }
    }
    return 0;
}
