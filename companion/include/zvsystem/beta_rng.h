#pragma once

#include "zvsystem/random_engine.h"

namespace ZVMath
{

template <class Source> class BetaDraws;

/// Draws from the Beta(alpha, beta) distribution, whose density is in proportion to
/// x^(alpha-1) (1-x)^(beta-1) on [0, 1].
///
/// Exact for all positive parameters, but for the rounding of each draw (shapes near 0.001: 1e-12
/// of it). Others draw a constant and use nothing of the engine: 0.0 where alpha <= 0 < beta, 1.0
/// where beta <= 0 < alpha, NaN where both are <= 0 or one is a NaN; 1.0 where alpha is infinite,
/// 0.0 where beta is, 0.5 where both are.
///
/// Draws lie in [0, 1]; the ends come up where no double is closer. Those of (1, 1) are multiples
/// of 2^-53 below 1. Whatever the engine returns, a draw ends: rejections are limited to a number
/// that a fair engine meets less than once in 10^60 draws. Of its outputs the lower 31 bits count.
///
/// Method: X / (X + Y) for draws X and Y of the gamma distributions with these shapes, by Marsaglia
/// and Tsang (2000, ACM Transactions on Mathematical Software 26) from normal ones of their
/// ziggurat (2000, Journal of Statistical Software 5; each of 62 random bits, as Doornik 2005
/// asks). A shape below 1 takes theirs of shape + 1 times U^(1/shape), by an exponential draw, so
/// that it can't vanish; two shapes up to 1 that of Joehnk (1964, Metrika 8). (1, 1) is one uniform
/// draw.
///
/// Nothing is carried from one draw to the next. Cost: six outputs of the engine as a rule, two
/// more and an exponential function of the C library where a shape is below 1, two for (1, 1); now
/// and then more outputs and a logarithm or an exponential function. Setting up costs two square
/// roots.
class ZVCOMPANION_EXPORT ZVBetaRNG
{
public:
    /// Draws of Beta(alpha, beta).
    ZVBetaRNG(double alpha, double beta);

    /// One draw, from `engine`'s `getUnsigned`.
    double operator()(ZVRanNumEngine& engine);

private:
    template <class Source> friend class BetaDraws;

    /// What gamma draws are divided by, so that no sum of two overflows. Only their ratio counts.
    static constexpr double inverseOfScale = 1024.0;

    /// How to draw from a gamma distribution whose shape is at least 1.
    struct Gamma
    {
        double d;        // shape - 1/3, divided by 2^10
        double c;        // 1 / sqrt(9 (shape - 1/3))
        double squeeze;  // of the fourth power
    };
    enum class Kind : unsigned char { constant, uniform, gammas, oneSmall, bothSmall };

    ZVCOMPANION_HIDDEN static Gamma MakeGamma(double shape);

    Gamma x = {};
    Gamma y = {};
    double alpha = 0.0;  // the constant, if it is one
    double beta = 0.0;
    Kind kind = Kind::constant;
};

}  // namespace ZVMath
