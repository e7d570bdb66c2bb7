#pragma once

#include "elementary.h"
#include "ziggurat.h"
#include "zvsystem/beta_rng.h"

#include <cmath>
#include <cstdint>

/// How ZVBetaRNG draws, for any source of random words: that of an engine behind its interface, and
/// that of one whose outputs can be had without a call.
namespace ZVMath
{

/// `Source` has `Get31Bits()`, a uniform random integer below 2^31, and `Get62Bits()`, two of
/// these, the first one higher.
template <class Source> class BetaDraws
{
public:
    explicit BetaDraws(Source& randomSource) : source(randomSource) {}

    double Draw(const ZVBetaRNG& beta)
    {
        switch (beta.kind) {
        case ZVBetaRNG::Kind::constant:
            return beta.alpha;
        case ZVBetaRNG::Kind::uniform:
            return static_cast<double>(source.Get62Bits() >> 9) * twoToMinus53;
        case ZVBetaRNG::Kind::bothSmall:
            return DrawOfSmallShapes(beta.alpha, beta.beta);
        default:
            break;
        }
        const double x = Gamma(beta.x);
        const double y = Gamma(beta.y);
        if (beta.kind == ZVBetaRNG::Kind::gammas)
            return x / (x + y);
        // A draw of a shape below 1 is one of shape + 1 times e^(-E / shape), E exponential. In two
        // halves, of which the last leads below the normal numbers, if anything does: so these are
        // rounded once. (Rounding may lead above 1.)
        const double least = beta.alpha < beta.beta ? beta.alpha : beta.beta;
        const double half = Exp(-0.5 * (Exponential() / least));
        const double halfX = beta.alpha < beta.beta ? half : 1.0;
        const double halfY = beta.alpha < beta.beta ? 1.0 : half;
        const double draw = x / (x * (halfX * halfX) + y * (halfY * halfY)) * halfX * halfX;
        return draw < 1.0 ? draw : 1.0;
    }

private:
    static constexpr double twoToMinus31 = 4.656612873077393e-10;
    static constexpr double twoToMinus53 = 1.1102230246251565e-16;
    static constexpr double twoToMinus62 = 2.168404344971009e-19;

    // A fair engine is rejected once in sixteen times at most, and one time in two by Joehnk's
    // method, so this often never; one that returns the same for ever would be rejected for ever.
    static constexpr int maxAttempts = 64;
    static constexpr int maxAttemptsOfJoehnk = 256;

    struct LayerPoint
    {
        unsigned int layer;
        unsigned int sign;  // an independent bit
        double x;           // uniform from 0 to the layer's edge
    };

    /// In (0, 1].
    double Uniform() { return (static_cast<double>(source.Get62Bits() >> 9) + 0.5) * twoToMinus53; }

    LayerPoint Point(const double* edges)
    {
        const uint64_t bits = source.Get62Bits();
        const unsigned int layer = bits % zigguratLayers;
        const double unit = static_cast<double>(bits >> 9) * twoToMinus53;
        return {layer, static_cast<unsigned int>(bits / zigguratLayers % 2), unit * edges[layer]};
    }

    /// Whether a random height within the layer is below the density, `density` at the point.
    bool IsBelow(double density, unsigned int layer, const double* heights)
    {
        const double low = heights[layer];
        return low + Uniform() * (heights[layer + 1] - low) < density;
    }

    double NormalTail()
    {
        const double start = normalEdges[1];
        double beyond = 0.0;
        for (int attempt = 0; attempt < maxAttempts; ++attempt) {
            beyond = -Log(Uniform()) / start;
            if (-2.0 * Log(Uniform()) > beyond * beyond)
                break;
        }
        return start + beyond;
    }

    double Normal()
    {
        // A table: half of the branches on a random bit would be predicted wrongly.
        constexpr double signs[] = {1.0, -1.0};
        for (int attempt = 0; attempt < maxAttempts; ++attempt) {
            const LayerPoint point = Point(normalEdges);
            double x = point.x;
            if (x >= normalEdges[point.layer + 1]) {
                if (point.layer == 0)
                    x = NormalTail();
                else if (!IsBelow(Exp(-0.5 * x * x), point.layer, normalHeights))
                    continue;
            }
            return x * signs[point.sign];
        }
        return 0.0;
    }

    double Exponential()
    {
        double start = 0.0;
        for (int attempt = 0; attempt < maxAttempts; ++attempt) {
            const LayerPoint point = Point(exponentialEdges);
            if (point.x < exponentialEdges[point.layer + 1])
                return start + point.x;
            if (point.layer == 0)  // the tail is a whole exponential distribution again
                start += exponentialEdges[1];
            else if (IsBelow(Exp(-point.x), point.layer, exponentialHeights))
                return start + point.x;
        }
        return start;
    }

    /// Of Marsaglia and Tsang, times 2^-10.
    double Gamma(const ZVBetaRNG::Gamma& gamma)
    {
        for (int attempt = 0; attempt < maxAttempts; ++attempt) {
            const double x = Normal();
            const double root = 1.0 + gamma.c * x;
            if (root <= 0.0)
                continue;
            const double v = root * root * root;
            // Half the bits of a uniform number nearly always tell which side it is on.
            const double xx = x * x;
            const uint64_t high = source.Get31Bits();
            if (static_cast<double>(high + 1) * twoToMinus31 <= 1.0 - gamma.squeeze * (xx * xx))
                return gamma.d * v;
            const uint64_t bits = high << 31 | source.Get31Bits();
            const double uniform = (static_cast<double>(bits) + 0.5) * twoToMinus62;
            const double d = gamma.d * ZVBetaRNG::inverseOfScale;
            if (Log(uniform) < 0.5 * xx + d * (1.0 - v + Log(v)))
                return gamma.d * v;
        }
        return gamma.d;
    }

    /// Of Joehnk: U^(1/alpha) / (U^(1/alpha) + V^(1/beta)), if the sum is at most 1, where U and V
    /// are e^-E of exponential draws. E / shape may overflow, for both: so all is made out of
    /// E * least / shape.
    double DrawOfSmallShapes(double alpha, double beta)
    {
        const double least = alpha < beta ? alpha : beta;
        double ratio = 0.0;
        bool isSmaller = false;
        for (int attempt = 0; attempt < maxAttemptsOfJoehnk; ++attempt) {
            const double ex = Exponential() * (least / alpha);
            const double ey = Exponential() * (least / beta);
            isSmaller = ex > ey;
            ratio = Exp(-(std::fabs(ex - ey) / least));
            // -ln of the larger power must be at least ln(1 + ratio), which two fractions enclose.
            const double larger = (isSmaller ? ey : ex) / least;
            if (larger >= ratio * (6.0 + ratio) / (6.0 + 4.0 * ratio))
                break;
            if (larger >= 2.0 * ratio / (2.0 + ratio) && larger >= Log(1.0 + ratio))
                break;
        }
        const double numerators[] = {1.0, ratio};
        return numerators[isSmaller] / (1.0 + ratio);
    }

    Source& source;
};

}  // namespace ZVMath
