#include "allocations.h"
#include "check.h"
#include "zvmath/simple_shapes.h"
#include "zvplatform/alloca.h"

#include <array>
#include <new>

using namespace ZVMath;
using namespace ZVTest;

namespace
{

using Point = std::array<float, 3>;
using Points = std::vector<Point>;

struct Outcome
{
    bool found = false;
    float rotation[3] = {};
};

Outcome Search(const Points& points, unsigned int numSteps)
{
    Outcome outcome = {false, {-1.0f, -1.0f, -1.0f}};
    outcome.found = ZVGetSmallestEnclosingBoxRotation(
        outcome.rotation, points.empty() ? nullptr : points[0].data(),
        static_cast<unsigned int>(points.size()), numSteps);
    return outcome;
}

testing::AssertionResult Same(const Outcome& actual, const Outcome& expected)
{
    if (actual.found != expected.found)
        return testing::AssertionFailure() << "returns " << actual.found;
    const auto angles = [](const Outcome& o) {
        return std::vector<double>(o.rotation, o.rotation + 3);
    };
    return SameBits(angles(actual), angles(expected));
}

/// Turns coordinates a and a + 1: about z with a = 0, about x with a = 1.
void Turn(Points& to, const Points& from, size_t a, float s, float c)
{
    for (size_t p = 0; p < from.size(); ++p) {
        const Point point = from[p];
        to[p] = point;
        to[p][a] = c * point[a] - s * point[a + 1];
        to[p][a + 1] = point[a + 1] * c + point[a] * s;
    }
}

float Volume(const Points& points)
{
    Point most = points[0], least = points[0];
    for (const Point& point : points)
        for (size_t axis = 0; axis < 3; ++axis) {
            if (point[axis] > most[axis])
                most[axis] = point[axis];
            if (point[axis] < least[axis])
                least[axis] = point[axis];
        }
    return ((most[0] - least[0]) * (most[1] - least[1])) * (most[2] - least[2]);
}

/// The definition, orientation by orientation and point by point.
Outcome SearchLiterally(const Points& points, unsigned int n)
{
    if (points.empty() || n < 2)
        return {};
    std::vector<float> angle, s, c;
    for (unsigned int k = 0; k < n; ++k) {
        angle.push_back(static_cast<float>((k * 1.5707963267948966) * (1.0 / (n - 1))));
        s.push_back(std::sin(angle[k]));
        c.push_back(std::cos(angle[k]));
    }
    Points first(points), second(points), third(points);
    constexpr float largest = std::numeric_limits<float>::max();
    float best = largest;
    size_t index[3] = {};
    for (size_t i = 0; i < n; ++i) {
        Turn(first, points, 0, s[i], c[i]);
        for (size_t j = 0; j < n; ++j) {
            Turn(second, first, 1, s[j], c[j]);
            for (size_t k = 0; k < n; ++k) {
                Turn(third, second, 0, s[k], c[k]);
                const float volume = Volume(third);
                if (volume < best) {
                    best = volume;
                    index[0] = i;
                    index[1] = j;
                    index[2] = k;
                }
            }
        }
    }
    return {best < largest, {angle[index[0]], angle[index[1]], angle[index[2]]}};
}

/// Shapes of which few points are extreme, many, or all; with ties; and with volumes of zero.
const char* const shapes[] = {"box",       "cube",    "cloud",   "ball",  "sphere",
                              "ellipsoid", "lattice", "corners", "plane", "line"};

Point Draw(size_t shape, std::mt19937& random)
{
    const auto u = [&] { return static_cast<float>(Uniform(random)); };
    const auto whole = [&](size_t n) { return static_cast<float>(random() % n); };
    Point p = {u(), u(), u()};
    float square = 0.0f;
    while (square < 0.01f || square > 1.0f) {
        p = {u(), u(), u()};
        square = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
    }
    const float unit = 1.0f / std::sqrt(square);
    switch (shape) {
    case 0:
        return {u(), 2 * u(), 3 * u()};
    case 1:
        return {u(), u(), u()};
    case 2:
        return {p[0] / (1.1f + u()), p[1] / (1.2f + u()), p[2]};
    case 3:
        return p;
    case 4:
        return {p[0] * unit, p[1] * unit, p[2] * unit};
    case 5:
        return {p[0] * unit, 1.1f * p[1] * unit, 1.3f * p[2] * unit};
    case 6:
        return {whole(4), whole(3), whole(4)};
    case 7:
        return {whole(2), whole(2), whole(2)};
    case 8:
        return {u(), u(), 0.0f};
    default:
        return {p[0], -2 * p[0], 4 * p[0]};
    }
}

/// What happens to a shape.
const char* const changes[] = {"turned",          "as it is",   "with duplicates",    "far away",
                               "of mixed scales", "at a scale", "with special values"};

void Change(Points& points, size_t change, std::mt19937& random)
{
    const auto scale = [&](int count, int least) {
        return std::pow(10.0f,
                        static_cast<float>(static_cast<int>(random() % 100) % count + least));
    };
    const float factor = scale(84, -45), distance = scale(9, 0);
    const float specials[] = {float(inf), -float(inf), float(NaN), 3e38f, -1e37f,
                              9e36f,      1e20f,       -0.0f,      1e-44f};
    const size_t rarity = 1 + random() % 5 * points.size();
    for (Point& point : points) {
        const float ownFactor = scale(40, -40);
        const Point& other = points[random() % points.size()];
        switch (change) {
        case 2:
            point = random() % 2 == 0 ? point : other;
            break;
        case 3:
            point = {point[0] + distance, point[1], point[2] - distance};
            break;
        case 4:
            point = {point[0] * ownFactor, point[1] * ownFactor, point[2] * ownFactor};
            break;
        case 5:
            point = {point[0] * factor, point[1] * factor, point[2] * factor};
            break;
        case 6:
            for (float& coordinate : point)
                if (random() % rarity == 0)
                    coordinate = specials[random() % std::size(specials)];
            break;
        default:
            break;
        }
    }
    if (change == 0)
        for (const size_t a : {size_t{1}, size_t{0}}) {
            const float angle = static_cast<float>(Uniform(random));
            Turn(points, points, a, std::sin(angle), std::cos(angle));
        }
}

void ExpectTheLiteralResult(size_t shape, size_t change, size_t count, unsigned int numSteps,
                            std::mt19937& random)
{
    Points points(count);
    for (Point& point : points)
        point = Draw(shape, random);
    Change(points, change, random);
    ASSERT_TRUE(Same(Search(points, numSteps), SearchLiterally(points, numSteps)))
        << shapes[shape] << ' ' << changes[change] << ", " << count << " points, " << numSteps
        << " steps";
}

TEST(EnclosingBox, IsTheLiteralSearchsForAnyPoints)
{
    std::mt19937 random(1);
    for (unsigned int trial = 0; trial < 25; ++trial)
        for (size_t shape = 0; shape < std::size(shapes); ++shape)
            for (size_t change = 0; change < std::size(changes); ++change) {
                const size_t counts[] = {1 + random() % 12,
                                         8 * (1 + random() % 8) + random() % 3 - 1,
                                         62 + random() % 5, 254 + random() % 5, 1 + random() % 600};
                const size_t count = counts[random() % std::size(counts)];
                auto numSteps = static_cast<unsigned int>(random() % 41);
                while (count * numSteps * numSteps * numSteps > 120000)
                    --numSteps;
                ExpectTheLiteralResult(shape, change, count, numSteps, random);
            }
}

TEST(EnclosingBox, IsTheLiteralSearchsForManyPoints)
{
    std::mt19937 random(2);
    for (size_t shape = 0; shape < std::size(shapes); ++shape)
        for (size_t change = 0; change < 3; ++change)
            ExpectTheLiteralResult(shape, change, 600 + random() % 2000,
                                   static_cast<unsigned int>(9 + random() % 8), random);
}

TEST(EnclosingBox, DefinedCases)
{
    const float quarter = 0.785398185f;  // of pi
    const float tiny = 1e-16f;
    Points cube;
    for (unsigned int corner = 0; corner < 8; ++corner)
        cube.push_back({float(corner & 1), float(corner >> 1 & 1), float(corner >> 2)});
    const struct
    {
        const char* name;
        Points points;
        unsigned int numSteps;
        Outcome outcome;
    } cases[] = {
        {"no points", {}, 10, {}},
        {"no steps", cube, 0, {}},
        {"one step", cube, 1, {}},
        {"one point", {{1, 2, 3}}, 10, {true, {0, 0, 0}}},
        {"equal points", Points(70, {0.1f, 0.2f, 0.3f}), 10, {true, {0, 0, 0}}},
        {"equal boxes of a cube: the first one", cube, 2, {true, {0, 0, 0}}},
        {"a cube, smaller by rounding", cube, 5, {true, {quarter, 0, quarter}}},
        {"volumes that vanish", {{0, 0, 0}, {tiny, tiny, tiny}}, 5, {true, {0, 0, 0}}},
        {"volumes that overflow", {{0, 0, 0}, {2e13f, 1e13f, 3e13f}}, 2, {}},
        {"not a number in the first point", {{1, float(NaN), 3}, {4, 5, 6}}, 4, {}},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(Same(Search(c.points, c.numSteps), c.outcome)) << c.name;
        EXPECT_TRUE(Same(SearchLiterally(c.points, c.numSteps), c.outcome)) << c.name;
    }
}

TEST(EnclosingBox, TakesMemoryFromWhereItIsTold)
{
    std::mt19937 random(3);
    Points points(1000);
    for (Point& point : points)
        point = Draw(4, random);
    const Outcome expected = SearchLiterally(points, 12);
    const auto failuresUntilDone = [&] {
        for (int failures = 0;; ++failures)
            try {
                Outcome outcome;
                {
                    FailingAllocation next(failures);
                    outcome = Search(points, 12);
                }
                EXPECT_TRUE(Same(outcome, expected));
                return failures;
            } catch (const std::bad_alloc&) {
            }
    };
    EXPECT_EQ(failuresUntilDone(), 0);  // the stack is enough
    const size_t threshold = ZVPlatform::ZVSetAllocaThreshold(0);
    EXPECT_EQ(failuresUntilDone(), 2);  // points and angles
    ZVPlatform::ZVSetAllocaThreshold(threshold);
}

}  // namespace
