#pragma once

#include "zvsystem/random_engine.h"

namespace ZVMath
{

/// Draws from the Beta(alpha, beta) distribution, whose density is in proportion to
/// x^(alpha-1) (1-x)^(beta-1) on [0, 1].
///
/// Exact, as far as doubles go, for all positive parameters: the result is X / (X + Y) for draws X
/// and Y of the gamma distributions with these shapes. Other parameters draw a constant and use
/// nothing of the engine: with alpha <= 0 < beta 0.0, with beta <= 0 < alpha 1.0, with both <= 0 or
/// a NaN NaN; alpha infinite 1.0, beta infinite 0.0, both 0.5.
///
/// Draws lie in [0, 1]; the ends come up where no double is closer to the value (with (1, 1), whose
/// draws are multiples of 2^-53, below that). Whatever the
/// engine returns, a draw ends: rejections are limited to a number that a fair engine meets less
/// than once in 10^60 draws.
///
/// Method: gamma draws of Marsaglia and Tsang (2000, ACM Transactions on Mathematical Software 26)
/// from normal ones of their ziggurat (2000, Journal of Statistical Software 5; each of 62 random
/// bits, as Doornik 2005 asks); for shapes below 1 their U^(1/shape), taken as an exponential draw,
/// so that it can't vanish. (1, 1) is one uniform draw.
///
/// Nothing is carried from one draw to the next. Cost: six outputs of the engine as a rule, two
/// more and an exponential function of the C library with a shape below 1, two for (1, 1); now and
/// then more outputs and a logarithm or an exponential function. Setting up costs two square roots.
class ZVCOMPANION_EXPORT ZVBetaRNG
{
public:
    ZVBetaRNG(double alpha, double beta);

    /// One draw, from `engine`'s `getUnsigned`.
    double operator()(ZVRanNumEngine& engine);

private:
    /// How to draw from a gamma distribution whose shape is at least 1.
    struct Gamma
    {
        double d;        // shape - 1/3, times 2^-10
        double c;        // 1 / sqrt(9 (shape - 1/3))
        double squeeze;  // of the fourth power
    };
    enum class Kind : unsigned char { constant, uniform, gammas, smallShapes };

    ZVCOMPANION_HIDDEN static Gamma MakeGamma(double shape);
    ZVCOMPANION_HIDDEN static double Draw(const Gamma& gamma, ZVRanNumEngine& engine);

    Gamma x = {};
    Gamma y = {};
    double alpha = 0.0;  // the constant, if it is one
    double beta = 0.0;
    Kind kind = Kind::constant;
};

}  // namespace ZVMath
