#include "zvsystem/beta_rng.h"

#include "beta_draws.h"

#include <cmath>
#include <limits>

namespace ZVMath
{

namespace
{

struct EngineSource
{
    ZVRanNumEngine& engine;

    /// Of an engine that returns more, the lower bits.
    uint64_t Get31Bits() { return engine.getUnsigned() & 0x7fffffffu; }
    uint64_t Get62Bits()
    {
        const uint64_t high = Get31Bits();
        return high << 31 | Get31Bits();
    }
};

}  // namespace

ZVBetaRNG::Gamma ZVBetaRNG::MakeGamma(double shape)
{
    const double d = shape - 0.3333333333333333;
    const double c = 0.3333333333333333 / std::sqrt(d);
    // The squeeze of Marsaglia and Tsang is for d = 2/3, the least there is: 0.0331 of x^4. It
    // shrinks with 1/d, which is 9 c^2.
    return {d / inverseOfScale, c, 0.0331 * 6.0 * (c * c)};
}

ZVBetaRNG::ZVBetaRNG(double alphaParameter, double betaParameter)
    : alpha(alphaParameter), beta(betaParameter)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto drawConstant = [this](double value) { alpha = value; };
    if (std::isnan(alpha) || std::isnan(beta) || (alpha <= 0.0 && beta <= 0.0))
        drawConstant(std::numeric_limits<double>::quiet_NaN());
    else if (alpha <= 0.0)
        drawConstant(0.0);
    else if (beta <= 0.0)
        drawConstant(1.0);
    else if (alpha == infinity || beta == infinity)
        drawConstant(alpha != infinity ? 0.0 : beta != infinity ? 1.0 : 0.5);
    else if (alpha == 1.0 && beta == 1.0)
        kind = Kind::uniform;
    else {
        kind = alpha <= 1.0 && beta <= 1.0 ? Kind::bothSmall
               : alpha < 1.0 || beta < 1.0 ? Kind::oneSmall
                                           : Kind::gammas;
        x = MakeGamma(alpha < 1.0 ? alpha + 1.0 : alpha);
        y = MakeGamma(beta < 1.0 ? beta + 1.0 : beta);
    }
}

double ZVBetaRNG::operator()(ZVRanNumEngine& engine)
{
    EngineSource source{engine};
    return BetaDraws<EngineSource>(source).Draw(*this);
}

}  // namespace ZVMath
