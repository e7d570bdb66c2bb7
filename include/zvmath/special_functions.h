#pragma once

#include "zvmath/export.h"

#include <cstdint>

/// Gamma and beta functions in double precision, and harmonic numbers.
///
/// Each is evaluated by fixed formulas, with a fixed order of operations. The only steps that may
/// differ in the last bit from one machine to another are the C library's `log` and `exp`;
/// `ZVTriGamma` and `ZVExactHarmonicNumber` use neither. What the formulas can and cannot do is
/// measured in docs/special_functions.md of the source tree: accuracy by argument range, and maps
/// of where the incomplete functions converge.
///
/// Failure is told in the result: the largest finite double, 1.7976931348623157e308 (below: the
/// failure value), for arguments outside the domain and for what has not converged within 200
/// terms. A NaN argument gives NaN where nothing else is said. So may the incomplete functions for
/// parameters below 1e-300 or above 1e150, where a step overflows or vanishes (some of these values
/// are right). No function keeps state.
namespace ZVMath
{

/// ln Gamma(x), x > 0, by the approximation of Lanczos (1964) with g = 607/128 and 14 terms.
///
/// x < -1: the failure value. -1 <= x <= -0.0 and infinity: NaN. Below 1.83e-307, 0.0 included, and
/// above 2.556e305: infinity.
/// Error: at most (16 + 3 |ln Gamma(x)|) * 2^-52 for x between the latter. (So the zeros at 1 and 2
/// are met to 4e-15, but a result near zero may have no correct digit.)
/// Cost: 15 divisions, two at a time, and two logarithms.
ZVMATH_EXPORT double ZVlgamma(double x);

/// The digamma function, d/dx ln Gamma(x), x > 0.
///
/// By the asymptotic series (Bernardo 1976), from below 10 after shifting x there by the
/// recurrence; below 1e-16 by -1/x - 0.577215664901533. x <= 0: the failure value. Below 5.56e-309:
/// -infinity. Infinity: infinity.
/// Error: at most (8 + 7 |psi|) * 2^-52, psi being the result; 2 ulp for x >= 10.
/// Cost: a logarithm, at most 12 divisions.
ZVMATH_EXPORT double ZVDiGamma(double x);

/// The trigamma function, the second derivative of ln Gamma(x), x > 0.
///
/// By the asymptotic series (Schneider 1978), from below 10 after shifting x there by the
/// recurrence; below 1e-16 by 1/x^2, which is infinite below 7.458e-155. x <= 0: the failure value.
/// Infinity: 0.0.
/// Error: at most 8 ulp for x >= 7.5e-155, 3 ulp for x >= 100. Cost: at most 11 divisions.
ZVMATH_EXPORT double ZVTriGamma(double x);

/// The regularised lower incomplete gamma function, a > 0, x > 0:
///
///     P(a, x) = 1/Gamma(a) * integral from 0 to x of t^(a-1) e^-t dt
///
/// `ZVIncompleteGammaSeriesForm` where x < a + 1, otherwise 1 minus the continued fraction. a <= 0
/// or x <= 0 (so x = 0 too, where P is 0): the failure value. Infinite arguments: NaN, even for x,
/// where P is 1. Where the series does not converge: the failure value. Where the fraction does
/// not: 1 minus it, -1.7976931348623157e308. So `std::fabs(P) < 2` tells values from failures; 1
/// may be exceeded by the rounding error.
/// The limit of 200 terms is met near x = a, and first at x = a + 1: by the series from a = 587 on
/// (at x = a from 593.3), by the fraction from about a = 8700 on, for some x and not for others,
/// since it ends only when a factor is within 2^-52 of 1.
/// Error of what converges: at most 6e-15 (a + 4) P for a in [0.01, 9800] and P >= 1e-15.
ZVMATH_EXPORT double ZVIncompleteGamma(double a, double x);

/// P(a, x) by its power series, e^-x x^a / Gamma(a) * sum over n of x^n / (a (a+1) .. (a+n)).
///
/// Meant for x < a + 1, with the error given there. a <= 0 or x <= 0, or 200 terms used up: the
/// failure value. Infinite arguments: NaN. Cost: one division a term, waiting for that before.
ZVMATH_EXPORT double ZVIncompleteGammaSeriesForm(double a, double x);

/// The complement Q(a, x) = 1 - P(a, x) by its continued fraction, evaluated by the method of Lentz
/// (1976) as modified by Thompson and Barnett (1986).
///
/// Meant for x >= a + 1, and accurate for small Q, where 1 - P is not: error at most
/// 6e-15 (a + 4) Q for a in [0.01, 9800] and Q >= 1e-15. For smaller x the value may be wrong
/// altogether: -1e272 for (2, 1e-10). a <= 0 or x <= 0, or 200 terms used up: the failure value.
/// a = x + 1, where the first denominator is zero: NaN, or the failure value for large a. An
/// infinite argument: NaN. Cost: two divisions a term, side by side, that depend on the term
/// before.
ZVMATH_EXPORT double ZVComplementaryIncompleteGammaContinuedFractionForm(double a, double x);

/// The regularised incomplete beta function, a > 0, b > 0, 0 <= x <= 1:
///
///     I_x(a, b) = Gamma(a+b) / (Gamma(a) Gamma(b))
///                 * integral from 0 to x of t^(a-1) (1-t)^(b-1) dt
///
/// By `ZVIncompleteBetaContinuedFraction`, of (b, a, 1 - x) instead where x >= (a+1) / (a+b+2).
/// x = 0: 0.0; x = 1: 1.0. Other arguments, and any NaN: the failure value. Infinite a or b, and x
/// between 0 and 1: NaN.
/// A failure of the fraction is not caught; it is multiplied by the factor before the integral.
/// This happens near the mean, x = a / (a+b), when both a and b exceed about 8000 (if they are
/// equal, about 27000; of whole numbers first 34232), for some arguments and not for others; and
/// far above the mean when b exceeds about 1e10, however small a is, or far below it when a does.
/// The result is then infinite, or a number far outside [0, 1]; only when a and b together exceed
/// 1e14, where rounding leaves nothing of the factor anyway, it may be any number. So test
/// `std::fabs(I) < 2` for each value: in a comparison an infinity passes for less or more.
/// Error of what converges, for a and b in [0.01, 30000]: at most 1e-14 (a + b + 4); and at most
/// that times I where x < (a+1) / (a+b+2) and I >= 1e-15.
ZVMATH_EXPORT double ZVIncompleteBeta(double a, double b, double x);

/// The continued fraction of the incomplete beta function,
///
///     I_x(a, b) = x^a (1-x)^b Gamma(a+b) / (a Gamma(a) Gamma(b)) * fraction(a, b, x)
///
/// evaluated by the modified method of Lentz. It converges fast for x < (a+1) / (a+b+2). a <= 0,
/// b <= 0 or x <= 0, or 200 steps used up: the failure value. Infinite a or b: NaN. x >= 1 is not
/// refused, and gives a number of no use, or NaN.
/// Cost: six divisions a step, of which two must wait for one another.
ZVMATH_EXPORT double ZVIncompleteBetaContinuedFraction(double a, double b, double x);

/// The harmonic number H(n) = 1 + 1/2 + .. + 1/n, added up term by term; 0.0 for n = 0.
///
/// The sum has the order of additions of the sums in stats.h, element i being 1/(i+1).
/// Error: at most (256 + log2(n)) * 2^-53 * H(n). Cost: n divisions, four at a time, so half a
/// second for n = 1e9.
ZVMATH_EXPORT double ZVExactHarmonicNumber(uint64_t n);

}  // namespace ZVMath
