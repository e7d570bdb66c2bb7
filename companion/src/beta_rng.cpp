#include "zvsystem/beta_rng.h"

#include "elementary.h"
#include "ziggurat.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace ZVMath
{

namespace
{

constexpr double twoToMinus31 = 4.656612873077393e-10;
constexpr double twoToMinus53 = 1.1102230246251565e-16;
constexpr double twoToMinus62 = 2.168404344971009e-19;

// A fair engine is rejected once in sixteen times at most, so this often never; one that returns
// the same for ever would be rejected for ever.
constexpr int maxAttempts = 64;

// So that no sum of two gamma draws overflows. Only their ratio counts.
constexpr double scale = 0.0009765625;  // 2^-10
constexpr double inverseOfScale = 1024.0;

uint64_t Next62Bits(ZVRanNumEngine& engine)
{
    const uint64_t high = engine.getUnsigned();
    return high << 31 | engine.getUnsigned();
}

/// In (0, 1].
double Uniform(ZVRanNumEngine& engine)
{
    return (static_cast<double>(Next62Bits(engine) >> 9) + 0.5) * twoToMinus53;
}

struct LayerPoint
{
    unsigned int layer;
    bool negative;  // an independent bit
    double x;       // uniform from 0 to the layer's edge
};

LayerPoint DrawPoint(ZVRanNumEngine& engine, const double* edges)
{
    const uint64_t bits = Next62Bits(engine);
    const unsigned int layer = bits % zigguratLayers;
    const double unit = static_cast<double>(bits >> 9) * twoToMinus53;
    return {layer, (bits & zigguratLayers) != 0, unit * edges[layer]};
}

/// Whether a random height within the layer is below the density, `density` at the point.
bool IsBelow(double density, unsigned int layer, const double* heights, ZVRanNumEngine& engine)
{
    const double low = heights[layer];
    return low + Uniform(engine) * (heights[layer + 1] - low) < density;
}

double NormalTail(ZVRanNumEngine& engine)
{
    const double start = normalEdges[1];
    double beyond = 0.0;
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        beyond = -Log(Uniform(engine)) / start;
        if (-2.0 * Log(Uniform(engine)) > beyond * beyond)
            break;
    }
    return start + beyond;
}

double Normal(ZVRanNumEngine& engine)
{
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const LayerPoint point = DrawPoint(engine, normalEdges);
        double x = point.x;
        if (x >= normalEdges[point.layer + 1]) {
            if (point.layer == 0)
                x = NormalTail(engine);
            else if (!IsBelow(Exp(-0.5 * x * x), point.layer, normalHeights, engine))
                continue;
        }
        return point.negative ? -x : x;
    }
    return 0.0;
}

double Exponential(ZVRanNumEngine& engine)
{
    double start = 0.0;
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const LayerPoint point = DrawPoint(engine, exponentialEdges);
        if (point.x < exponentialEdges[point.layer + 1])
            return start + point.x;
        if (point.layer == 0)  // the tail is a whole exponential distribution again
            start += exponentialEdges[1];
        else if (IsBelow(Exp(-point.x), point.layer, exponentialHeights, engine))
            return start + point.x;
    }
    return start;
}

}  // namespace

ZVBetaRNG::Gamma ZVBetaRNG::MakeGamma(double shape)
{
    const double d = shape - 0.3333333333333333;
    const double c = 0.3333333333333333 / std::sqrt(d);
    // The squeeze of Marsaglia and Tsang is for d = 2/3, the least there is: 0.0331 of x^4. It
    // shrinks with 1/d, which is 9 c^2.
    return {d * scale, c, 0.0331 * 6.0 * (c * c)};
}

double ZVBetaRNG::Draw(const Gamma& gamma, ZVRanNumEngine& engine)
{
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const double x = Normal(engine);
        const double root = 1.0 + gamma.c * x;
        if (root <= 0.0)
            continue;
        const double v = root * root * root;
        // Half the bits of a uniform number nearly always tell which side it is on.
        const double xx = x * x;
        const uint64_t high = engine.getUnsigned();
        if (static_cast<double>(high + 1) * twoToMinus31 <= 1.0 - gamma.squeeze * (xx * xx))
            return gamma.d * v;
        const uint64_t bits = high << 31 | engine.getUnsigned();
        const double uniform = (static_cast<double>(bits) + 0.5) * twoToMinus62;
        if (Log(uniform) < 0.5 * xx + gamma.d * inverseOfScale * (1.0 - v + Log(v)))
            return gamma.d * v;
    }
    return gamma.d;
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
        kind = alpha < 1.0 || beta < 1.0 ? Kind::smallShapes : Kind::gammas;
        x = MakeGamma(alpha < 1.0 ? alpha + 1.0 : alpha);
        y = MakeGamma(beta < 1.0 ? beta + 1.0 : beta);
    }
}

double ZVBetaRNG::operator()(ZVRanNumEngine& engine)
{
    switch (kind) {
    case Kind::constant:
        return alpha;
    case Kind::uniform:
        return static_cast<double>(Next62Bits(engine) >> 9) * twoToMinus53;
    default:
        break;
    }
    const double drawX = Draw(x, engine);
    const double drawY = Draw(y, engine);
    if (kind == Kind::gammas)
        return drawX / (drawX + drawY);
    // A draw of a shape below 1 is one of shape + 1 times e^(-E / shape), E exponential. Of both
    // factors only the ratio e^-t counts. E / shape may overflow, for both: so t is made out of
    // E * least / shape.
    const double least = alpha < beta ? alpha : beta;
    const double ex = alpha < 1.0 ? Exponential(engine) * (least / alpha) : 0.0;
    const double ey = beta < 1.0 ? Exponential(engine) * (least / beta) : 0.0;
    const double t = (ex - ey) / least;
    // In two halves, of which the last leads below the normal numbers, if anything does: so these
    // are rounded once. (Rounding may lead above 1.)
    const double half = Exp(-0.5 * std::fabs(t));
    const double halfX = t > 0.0 ? half : 1.0;
    const double halfY = t > 0.0 ? 1.0 : half;
    const double sum = drawX * (halfX * halfX) + drawY * (halfY * halfY);
    const double draw = drawX / sum * halfX * halfX;
    return draw < 1.0 ? draw : 1.0;
}

}  // namespace ZVMath
