#include "zvsystem/beta_rng.h"

#include "../companion/src/ziggurat.h"
#include "check.h"
#include "references/beta_quantiles.h"
#include "zvmath/thompson.h"

#include <algorithm>

namespace
{

using namespace ZVTest;
using namespace ZVMath;

constexpr unsigned int largestWord = 2147483647u;
constexpr double wordToUnit = 4.656612873077393e-10;  // 2^-31

/// Hands out the words of a script, then those of a pattern again and again, and counts them.
class Scripted : public ZVRanNumEngine
{
public:
    explicit Scripted(std::vector<unsigned int> scriptWords,
                      std::vector<unsigned int> patternWords = {0})
        : script(std::move(scriptWords)), pattern(std::move(patternWords))
    {
    }
    unsigned int getUnsigned() override
    {
        if (count > 1'000'000)
            throw std::runtime_error("the draw does not end");
        const size_t i = count++;
        return i < script.size() ? script[i] : pattern[(i - script.size()) % pattern.size()];
    }
    double getUnitDouble() override { return getUnsigned() * wordToUnit; }

    size_t count = 0;

private:
    std::vector<unsigned int> script;
    std::vector<unsigned int> pattern;
};

struct Drawn
{
    double value;
    size_t words;
};

Drawn Draw(double alpha, double beta, const std::vector<unsigned int>& script)
{
    Scripted engine(script);
    const double value = ZVBetaRNG(alpha, beta)(engine);
    return {value, engine.count};
}

/// The part of all words for which `accepted` holds; it must hold for those below some word.
template <class Accepted> double PartAccepted(Accepted accepted)
{
    unsigned int begin = 0;
    unsigned int end = largestWord + 1;
    while (begin < end) {
        const unsigned int middle = begin + (end - begin) / 2;
        if (accepted(middle))
            begin = middle + 1;
        else
            end = middle;
    }
    return begin * wordToUnit;
}

TEST(BetaRNG, ParametersWithoutADistributionDrawConstants)
{
    const struct
    {
        double alpha, beta, value;
    } cases[] = {
        {0, 1, 0},      {-0.0, 1e-300, 0}, {-inf, inf, 0},  {1, 0, 1},       {5e-324, -2, 1},
        {inf, -inf, 1}, {0, 0, NaN},       {-1, -0.0, NaN}, {NaN, 1, NaN},   {1, NaN, NaN},
        {NaN, 0, NaN},  {-inf, NaN, NaN},  {NaN, NaN, NaN}, {inf, NaN, NaN}, {inf, 1, 1},
        {inf, 1e-3, 1}, {2, inf, 0},       {1e-3, inf, 0},  {inf, inf, 0.5}, {-inf, -inf, NaN},
    };
    for (const auto& c : cases) {
        const Drawn drawn = Draw(c.alpha, c.beta, {});
        EXPECT_TRUE(SameBits(drawn.value, c.value)) << c.alpha << ", " << c.beta;
        EXPECT_EQ(drawn.words, 0u);
    }
}

TEST(BetaRNG, ADrawIsANumberWhateverTheEngineReturns)
{
    // Words that give the first and the last layers of both signs, with the least and the largest
    // position; patterns of all pairs of them, and random ones.
    const unsigned int words[] = {0,          255,        256,         511,        0x40000000,
                                  0x7fffff00, 0x7ffffeff, largestWord, 0x80000000, 0xffffffff};
    std::vector<std::vector<unsigned int>> patterns;
    for (const unsigned int first : words)
        for (const unsigned int second : words)
            patterns.push_back({first, second});
    std::mt19937 random(1);
    for (size_t period = 3; period < 40; ++period) {
        patterns.emplace_back(period);
        for (unsigned int& word : patterns.back())
            word =
                random() % 4 == 0 ? static_cast<unsigned int>(random() >> 1) : words[random() % 10];
    }
    const double parameters[] = {5e-324, 1e-310, 1e-100, 1e-3,  0.5,   0.9999999999999999,    1,
                                 1.5,    40,     1e8,    1e150, 1e300, 1.7976931348623157e308};
    for (const double alpha : parameters)
        for (const double beta : parameters)
            for (const auto& pattern : patterns) {
                Scripted engine({}, pattern);
                const double draw = ZVBetaRNG(alpha, beta)(engine);
                SCOPED_TRACE(testing::Message() << alpha << ", " << beta << ", words "
                                                << testing::PrintToString(pattern));
                ASSERT_TRUE(draw >= 0.0 && draw <= 1.0) << Show(draw);
                if (alpha >= 1e150 && beta >= 1e150) {  // hardly random
                    const double mean = 1.0 / (1.0 + beta / alpha);
                    ASSERT_TRUE(Near(draw, mean, 4 * epsilon * mean));
                }
            }
}

TEST(BetaRNG, DrawsBelowTheNormalNumbersAreRounded)
{
    EXPECT_EQ(Draw(1e-3, 2, {0, 0, 0, 0, 0, 0, 271000000, 5}).value, 1.5e-323);
    EXPECT_EQ(Draw(1e-3, 2, {0, 0, 0, 0, 0, 0, 268000000, 5}).value, 6.27859e-320);
}

TEST(BetaRNG, OneAndOneIsOneUniformDraw)
{
    const unsigned int high = 0x12345678, low = 0x7edcba98;
    const Drawn drawn = Draw(1, 1, {high, low});
    EXPECT_TRUE(SameBits(drawn.value, std::ldexp((uint64_t{high} << 31 | low) >> 9, -53)));
    EXPECT_EQ(drawn.words, 2u);
}

// Of a gamma draw with normal draw x, a part e^(x^2 / 2 + d (1 - v + ln v)) is accepted. Six words
// are used when the squeeze alone accepts, and no more; a seventh when the words decide together.
TEST(BetaRNG, GammaDrawsAreAcceptedAsMarsagliaAndTsangSay)
{
    for (const double shape : {1.0, 1.05, 1.3, 2.0, 10.0, 1e3, 1e6})
        for (const unsigned int sign : {0u, 256u})
            for (unsigned int high = 0; high < 0.93 * largestWord; high += largestWord / 150) {
                const double x = (sign ? -1.0 : 1.0) * high * wordToUnit * normalEdges[0];
                const double d = shape - 1.0 / 3.0;
                const double root = 1.0 + x / (3.0 * std::sqrt(d));
                const double v = root * root * root;
                const auto draw = [&](unsigned int word) {
                    return Draw(shape, 40.0, {high, sign, word});
                };
                SCOPED_TRACE(testing::Message() << "shape " << shape << ", x = " << x);
                if (root <= 0.0) {
                    EXPECT_EQ(draw(0).words, 8u);
                    continue;
                }
                const double rule = std::exp(0.5 * x * x + d * (1.0 - v + std::log(v)));
                const double part = PartAccepted([&](auto word) { return draw(word).words <= 7; });
                const double squeeze =
                    PartAccepted([&](auto word) { return draw(word).words == 6; });
                ASSERT_TRUE(Near(part, rule, 2 * wordToUnit));
                ASSERT_LE(squeeze, part);
                if (part > 0.0) {
                    ASSERT_TRUE(
                        Near(draw(0).value, d * v / (d * v + 40.0 - 1.0 / 3.0), 16 * epsilon));
                }
            }
}

// Words are handed out so that the ziggurat's point is in the middle of what a layer has beyond the
// density's lower end. Two more words make the height; if it is not accepted, two are a new point.
TEST(BetaRNG, DrawsOfSmallShapesAreAcceptedAsJoehnkSays)
{
    // Words of layer 0: e is the first one's part of the layer's edge. X = e^(-ex / alpha), Y like
    // that; accepted where X + Y is at most 1.
    const double edge = exponentialEdges[0];
    for (const auto& [alpha, beta] : {std::pair{0.5, 0.5}, {1.0, 0.5}, {0.25, 1.0}})
        for (const unsigned int word : {largestWord / 100, largestWord / 20, largestWord / 3}) {
            const double x = std::exp(-(word * wordToUnit * edge) / alpha);
            const double part = PartAccepted([&, a = alpha, b = beta](unsigned int other) {
                return Draw(a, b, {word, 0, other, 0}).words != 4;
            });
            const double least = -std::log1p(-x) * beta / edge;
            EXPECT_TRUE(Near(part, least, 2 * wordToUnit)) << alpha << ", " << word;
        }
    // The one that is smaller by far wins as often as the shapes say, though both vanish.
    MtRng<Mt32Traits> engine(1);
    ZVBetaRNG tiny(5e-324, 1e-323);
    int ones = 0;
    for (int i = 0; i < 100'000; ++i)
        ones += tiny(engine) > 0.5 ? 1 : 0;
    EXPECT_NEAR(ones, 33'333, 5.5 * std::sqrt(100'000 * 2 / 9.0));
}

TEST(BetaRNG, LayersCoverTheDensity)
{
    const struct
    {
        const char* name;
        const double *edges, *heights;
        double tail;  // the integral of the density beyond edges[1]
        double (*density)(double x);
        double alpha;                       // of a distribution that
        std::vector<unsigned int> leading;  // draws this, when it has got so many words
        size_t words;                       // and uses so many in all, if the first point is taken
    } cases[] = {
        {"normal",
         normalEdges,
         normalHeights,
         0.00032339576466332,
         [](double x) { return std::exp(-0.5 * x * x); },
         1e6,
         {},
         8},
        {"exponential",
         exponentialEdges,
         exponentialHeights,
         0.00045413435384149,
         [](double x) { return std::exp(-x); },
         0.5,
         {0, 0, 0, 0, 0, 0},
         10},
    };
    for (const auto& c : cases) {
        const double area = c.edges[1] * c.heights[1] + c.tail;
        for (unsigned int layer = 0; layer < 256; ++layer) {
            SCOPED_TRACE(testing::Message() << c.name << ", layer " << layer);
            const double width = c.edges[layer];
            const double low = c.heights[layer];
            const double top = c.heights[layer + 1];
            EXPECT_TRUE(Near(width * (top - low), area, 1e-10 * area));
            if (layer == 0)
                continue;
            const double unit = 0.5 * (1.0 + c.edges[layer + 1] / width);
            const unsigned int high = static_cast<unsigned int>(unit / wordToUnit);
            const double x = high * wordToUnit * width;
            const double part = PartAccepted([&](unsigned int word) {
                std::vector<unsigned int> script = c.leading;
                script.insert(script.end(), {high, layer, word});
                return Draw(c.alpha, 1e6, script).words == c.words;
            });
            const double lower = c.density(width);
            const double upper = c.density(c.edges[layer + 1]);
            EXPECT_TRUE(Near(part, (c.density(x) - lower) / (upper - lower), 2 * wordToUnit));
        }
    }
}

TEST(BetaRNG, TailsOfTheDensities)
{
    // Beyond r the normal density is that of r + e / r, e exponential, of which a part is accepted.
    const double shape = 1e6;
    const double d = shape - 1.0 / 3.0;
    for (const unsigned int sign : {0u, 256u})
        for (const unsigned int word : {1u << 10, 1u << 20, 1u << 30, largestWord - 5}) {
            const double e = -std::log((word + 0x1p-23) * wordToUnit) / normalEdges[1];
            const auto draw = [&](unsigned int other) {
                return Draw(shape, shape, {largestWord, sign, word, 0, other});
            };
            const double part = PartAccepted([&](auto other) { return draw(other).words == 10; });
            EXPECT_TRUE(Near(part, std::exp(-0.5 * e * e), 3 * wordToUnit)) << word;
            const double x = (normalEdges[1] + e) * (sign ? -1.0 : 1.0);
            const double v = std::pow(1.0 + x / (3.0 * std::sqrt(d)), 3.0);
            if (part > 0.0) {
                EXPECT_TRUE(Near(draw(0).value, v / (v + 1.0), 1e-12)) << word;
            }
        }
    // Beyond r the exponential density is that of r + e, e exponential.
    const unsigned int last = largestWord;
    const double r = exponentialEdges[1];
    const double xs[] = {2 * r + exponentialEdges[5] / 8, r + exponentialEdges[9] / 4};
    const Drawn drawn = Draw(0.5, 0.25, {last, 0, last, 0, 1u << 28, 5, last, 0, 1u << 29, 9});
    const double ratio = std::exp(xs[1] / 0.25 - xs[0] / 0.5);
    EXPECT_TRUE(Near(drawn.value, ratio / (1.0 + ratio), 1e-14));
    EXPECT_EQ(drawn.words, 10u);
}

// The counts of draws between fixed points. A false alarm comes less than once in 10^6 seeds (less
// than 3.4e-8 in each of 15 chi-square tests, by Wilson and Hilferty). 4e6 draws show with
// near certainty that half a per cent of the draws are elsewhere, or that the probabilities of all
// cells are off by half a per cent of themselves.
TEST(BetaRNG, DrawsHaveTheDistribution)
{
    constexpr int draws = 4'000'000;
    const auto check = [](double alpha, double beta, const double* points,
                          const double* probabilities) {
        std::vector<double> bounds, expected;
        double below = 0.0;
        for (size_t i = 0; i < std::size(betaPoints); ++i)
            if (points[i] < 1.0 &&
                std::min(probabilities[i] - below, 1.0 - probabilities[i]) * draws > 100) {
                bounds.push_back(points[i]);
                expected.push_back((probabilities[i] - below) * draws);
                below = probabilities[i];
            }
        expected.push_back((1.0 - below) * draws);
        std::vector<int> counts(expected.size());
        ZVBetaDistribution distribution(alpha, beta);
        for (int i = 0; i < draws; ++i) {
            const double draw = distribution.Rand();
            size_t cell = 0;
            for (const double bound : bounds)
                cell += draw >= bound;
            ++counts[cell];
        }
        double chiSquare = 0.0;
        for (size_t i = 0; i < counts.size(); ++i)
            chiSquare += std::pow(counts[i] - expected[i], 2) / expected[i];
        const double spread = 2.0 / (9.0 * static_cast<double>(bounds.size()));
        const double sigmas =
            (std::cbrt(chiSquare / static_cast<double>(bounds.size())) - 1.0 + spread) /
            std::sqrt(spread);
        EXPECT_LT(sigmas, 5.4) << alpha << ", " << beta << ": chi-square " << chiSquare;
        EXPECT_GE(bounds.size(), 5u);
    };
    for (const BetaTable& t : betaQuantiles)
        check(t.alpha, t.beta, t.values, betaProbabilities);
    for (const BetaTable& t : betaTails)
        check(t.alpha, t.beta, betaPoints, t.values);
}

}  // namespace
