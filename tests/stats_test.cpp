#include "zvmath/stats.h"

#include "check.h"
#include "references/stats_reference.h"
#include "utility.h"

#include <Eigen/Core>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace ZVMath;
using namespace ZVTest;

namespace
{

using Values = std::vector<double>;

/// The order of additions that stats.h states.
double PlainSum(const double* values, size_t n)
{
    size_t left = 4096;
    while (2 * left < n)
        left *= 2;
    if (n > 4096)
        return PlainSum(values, left) + PlainSum(values + left, n - left);
    double sums[16] = {};
    for (size_t i = 0; i < n; ++i)
        sums[i % 16] += values[i];
    for (size_t half = 8; half > 0; half /= 2)
        for (size_t j = 0; j < half; ++j)
            sums[j] += sums[j + half];
    return sums[0];
}

double PlainMean(const Values& values)
{
    const size_t n = values.size();
    return n == 0 ? 0.0 : PlainSum(values.data(), n) / double(n);
}

double PlainMedian(Values values)
{
    const size_t n = values.size();
    for (const double value : values)
        if (std::isnan(value))
            return NaN;
    std::sort(values.begin(), values.end(), [](double a, double b) {
        return a < b || (a == b && std::signbit(a) && !std::signbit(b));
    });
    if (n % 2 == 1)
        return values[n / 2];
    return n == 0 ? 0.0 : (values[n / 2] + values[n / 2 - 1]) * 0.5;
}

/// All that is asked of a reference and a prediction, by plain steps.
void ExpectPlain(const Values& reference, const Values& prediction)
{
    SCOPED_TRACE(reference.size());
    const size_t n = std::min(reference.size(), prediction.size());
    const double mean = PlainMean({reference.data(), reference.data() + n});
    Values absolute, squares, distances;
    for (size_t i = 0; i < n; ++i) {
        const double difference = reference[i] - prediction[i];
        absolute.push_back(std::fabs(difference));
        squares.push_back(difference * difference);
        distances.push_back((reference[i] - mean) * (reference[i] - mean));
    }
    EXPECT_TRUE(SameBits(ZVMean(reference), PlainMean(reference)));
    EXPECT_TRUE(SameBits(ZVAbsDeviations(reference, prediction), absolute));
    EXPECT_TRUE(SameBits(ZVSquareDeviations(reference, prediction), squares));
    EXPECT_TRUE(SameBits(ZVMeanAbsDeviation(reference, prediction), PlainMean(absolute)));
    EXPECT_TRUE(SameBits(ZVMedianAbsDeviation(reference, prediction), PlainMedian(absolute)));
    EXPECT_TRUE(SameBits(ZVMeanSquareDeviation(reference, prediction), PlainMean(squares)));
    EXPECT_TRUE(SameBits(ZVRMSE(reference, prediction), std::sqrt(PlainMean(squares))));
    EXPECT_TRUE(SameBits(ZVRSquared(reference, prediction),
                         1 - PlainSum(squares.data(), n) / PlainSum(distances.data(), n)));
}

/// Random, with magnitudes so far apart that hardly two orders of additions agree.
Values Scattered(std::mt19937& random, size_t n)
{
    Values values;
    for (size_t i = 0; i < n; ++i)
        values.push_back(std::ldexp(Uniform(random), int(random() % 40)));
    return values;
}

TEST(Stats, EqualThePlainSteps)
{
    std::mt19937 random(1);
    std::vector<size_t> lengths = {20479, 20480, 20481, 28673};
    for (size_t n = 0; n <= 40; ++n)
        lengths.push_back(n);
    for (size_t n = 4095; n <= 4097; ++n)
        lengths.insert(lengths.end(), {n, n + 4096, n + 8192});
    for (const size_t n : lengths) {
        const Values reference = Scattered(random, n);
        Values prediction = Scattered(random, n);
        ExpectPlain(reference, prediction);
        // A shorter prediction: the pairs there are. A longer one: its end is not looked at.
        ExpectPlain(reference, {prediction.data(), prediction.data() + n / 2});
        prediction.resize(n + 3, NaN);
        ExpectPlain(reference, prediction);
        // Special values, few or many of them.
        for (const double special : {-0.0, 0.0, inf, -inf, NaN, 1e308, -1e308, 1e-160, 5e-324})
            for (const size_t one : {size_t{1}, size_t{2}, n / 2 + 1}) {
                Values some = reference;
                for (double& value : some)
                    value = random() % one == 0 ? special : value;
                ExpectPlain(some, Values(n, special));
                ExpectPlain(some, Values(n, 0.0));
            }
    }
}

TEST(Stats, ErrorIsWithinTheBound)
{
    constexpr double tiny = 0x1p-1074;  // of squares and quotients below the normal numbers
    for (const StatsReference& r : statsReferences) {
        SCOPED_TRACE(r.name);
        uint64_t state = 1;
        const auto draw = [&state] {
            state = state * 6364136223846793005u + 1442695040888963407u;
            return static_cast<uint32_t>(state >> 32);
        };
        Values reference, prediction;
        for (size_t i = 0; i < r.n; ++i) {
            const int64_t common = int64_t{draw() >> (32 - r.bits)} - (1 << (r.bits - 1));
            for (Values* values : {&reference, &prediction}) {
                const int64_t own = draw() >> (32 - r.bits) >> 2;
                const int exponent = r.scale + int(draw() % (r.spread + 1));
                const double value = std::ldexp(double(r.offset + common + own), exponent);
                values->push_back(r.alternating && i % 2 == 1 ? -value : value);
            }
        }
        const double E = (256 + std::log2(double(r.n))) * 0x1p-53;
        const double rest = 1 - r.rSquared, square = r.meanSquareDeviation;
        const double variance = square / rest, meanError = E * r.meanAbs + tiny;
        EXPECT_TRUE(Near(ZVMean(reference), r.mean, meanError));
        EXPECT_TRUE(Near(ZVMeanAbsDeviation(reference, prediction), r.meanAbsDeviation,
                         E * r.meanAbsDeviation + tiny));
        EXPECT_TRUE(Near(ZVMeanSquareDeviation(reference, prediction), square, E * square + tiny));
        EXPECT_TRUE(Near(ZVRMSE(reference, prediction), r.rmse, E / 2 * r.rmse + std::sqrt(tiny)));
        // What underflow adds to either sum of squares counts only in the case made for it.
        EXPECT_TRUE(Near(
            ZVRSquared(reference, prediction), r.rSquared,
            (2 * E + meanError / variance * meanError + tiny / square + tiny / variance) * rest +
                0x1p-53 * std::abs(r.rSquared)));
    }
}

TEST(Stats, DefinedCases)
{
    EXPECT_EQ(ZVMean({1, 2, 3, 4}), 2.5);
    EXPECT_EQ(ZVMean({1e308, 1e308}), inf);
    EXPECT_EQ(ZVMedian({4, 1, 3, 2}), 2.5);
    EXPECT_EQ(ZVMedian({8.98e307, 8.98e307}), 8.98e307);
    EXPECT_EQ(ZVMedian({8.99e307, 8.99e307}), inf);
    EXPECT_EQ(ZVRMSE({1, 5}, {2, 2}), std::sqrt(5.0));
    EXPECT_EQ(ZVRMSE({1.34e154}, {0}), 1.34e154);
    EXPECT_EQ(ZVRMSE({1.35e154}, {0}), inf);
    EXPECT_EQ(ZVRMSE({1.57e-162}, {0}), 0.0);
    EXPECT_GT(ZVRMSE({1.58e-162}, {0}), 0.0);
    const std::tuple<Values, Values, double> cases[] = {
        {{}, {1}, NaN},
        {{1, 2, 3}, {1, 2, 3}, 1.0},
        {{1, 2, 3}, {2, 2, 2}, 0.0},
        {{1, 2, 3}, {3, 2, 1}, -3.0},
        {{3, 3}, {3, 4}, -inf},
        {{3, 3}, {3, 3}, NaN},
        {{1e-170, 2e-170}, {1, 1}, -inf},
        {{1, 2}, {1, inf}, -inf},
        {{1e200, -1e200}, {0, 0}, NaN},
    };
    for (const auto& [reference, prediction, expected] : cases)
        EXPECT_TRUE(SameBits(ZVRSquared(reference, prediction), expected));
}

void ExpectMedian(const Values& values, const std::string& name)
{
    SCOPED_TRACE(name + ", n = " + std::to_string(values.size()));
    const Values zeros(values.size());
    const Values absolute = ZVAbsDeviations(values, zeros);
    ASSERT_TRUE(SameBits(ZVMedian(values), PlainMedian(values)));
    ASSERT_TRUE(SameBits(ZVMedianAbsDeviation(values, zeros), PlainMedian(absolute)));
    ASSERT_TRUE(SameBits(ZVAbsDeviations(values, zeros), absolute)) << "values were rearranged";
}

TEST(Median, EqualsTheMiddleOfTheSortedValues)
{
    std::mt19937 random(2);
    size_t n = 0, i = 0;
    const std::pair<const char*, std::function<double()>> patterns[] = {
        {"random", [&] { return Uniform(random); }},
        {"equal", [&] { return 3.0; }},
        {"two values", [&] { return double(random() % 2); }},
        {"three values", [&] { return double(random() % 3) - 1; }},
        {"sorted", [&] { return double(i); }},
        {"reversed", [&] { return double(n - i); }},
        {"organ pipe", [&] { return double(std::min(i, n - i)); }},
        {"zeros", [&] { return random() % 2 ? 0.0 : -0.0; }},
        {"few positive zeros", [&] { return random() % n ? -0.0 : 0.0; }},
        {"a third zeros", [&] { return (double(random() % 3) - 1) * (double(random() % 3) - 1); }},
        {"subnormal", [&] { return 5e-324 * double(random() % 99); }},
        {"huge", [&] { return 1.7e308 * Uniform(random); }},
        {"infinite", [&] { return random() % 2 ? inf : -inf; }},
        {"rarely a NaN", [&] { return random() % n ? 1.0 : NaN; }},
    };
    for (size_t size = 0; size <= 320; ++size)
        for (const auto& [name, element] : patterns) {
            n = size <= 300 ? size : random() % 50000;
            Values values(n);
            for (i = 0; i < n; ++i)
                values[i] = element();
            ExpectMedian(values, name);
        }
    for (size_t period = 1; period <= 200; ++period) {
        Values values(3000);
        for (i = 0; i < values.size(); ++i)
            values[i] = double(i % period);
        ExpectMedian(values, "period " + std::to_string(period));
    }
}

/// Puts `low` and `high` by turns where src/stats.cpp samples bounds of the median (n > 256).
void Plant(Values& values, double low, double high)
{
    const size_t n = values.size();
    size_t size = 64;
    while (size * size * size < n * n)
        size *= 2;
    const size_t stride = n / size;
    uint32_t random = 1;
    for (size_t j = 0; j < size; ++j) {
        random = random * 1664525u + 1013904223u;
        values[j * stride + ((random >> 16) * stride >> 16)] = j % 2 == 0 ? low : high;
    }
}

TEST(Median, BearsASampleThatMisleads)
{
    std::mt19937 random(3);
    const double bounds[][2] = {{1, 3}, {1, 1}, {3, 3}, {-inf, inf}, {5, 6}, {-2, -1}, {-0.0, 0.0}};
    for (const auto& [low, high] : bounds) {
        // Elsewhere zeros, numbers from 1.5 to 2.5 and fours, in all proportions.
        for (size_t n = 320; n <= 321; ++n)
            for (size_t zeros = 0; zeros <= n; zeros += 3)
                for (size_t twos = 0; zeros + twos <= n; twos += zeros % 2 == 0 ? 5 : 32) {
                    Values values(n, 4.0);
                    for (size_t i = 0; i < zeros + twos; ++i)
                        values[i] = i < zeros ? 0.0 : 2.0 + Uniform(random) / 2.0;
                    std::shuffle(values.begin(), values.end(), random);
                    Plant(values, low, high);
                    ExpectMedian(values, Show(low));
                }
        Values values = Scattered(random, 40000);
        Plant(values, low, high);
        ExpectMedian(values, Show(low));
    }
    // One NaN, at each place.
    for (size_t i = 0; i < 400; ++i) {
        Values equal(400, 1.0), different = Scattered(random, 400);
        equal[i] = different[i] = -NaN;
        ExpectMedian(equal, "NaN among equal values");
        ExpectMedian(different, "NaN");
    }
}

TEST(Utility, ReplacesTheOutputByTheElements)
{
    Values output = {7, 8, 9};
    EigenVectorToVector(output, Eigen::Vector2d(1, -0.0));
    EXPECT_TRUE(SameBits(output, {1, -0.0}));
    Eigen::MatrixXd matrix(2, 3);
    matrix << 1, 2, 3, 4, 5, 6;
    EigenMatrixToVector(output, matrix);
    EXPECT_TRUE(SameBits(output, {1, 2, 3, 4, 5, 6}));
    for (const auto& [rows, columns] : {std::pair{0, 3}, {3, 0}, {0, 0}}) {
        output = {7};
        EigenMatrixToVector(output, Eigen::MatrixXd(rows, columns));
        EXPECT_TRUE(output.empty()) << rows << " x " << columns;
    }
}

}  // namespace
