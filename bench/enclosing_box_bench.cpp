#include "bench.h"
#include "zvmath/simple_shapes.h"

#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <random>

#ifdef ZVMATH_HAVE_CGAL
#include "cgal_peer.h"
#endif

#ifdef ZVMATH_BENCH_CLONES
#define CLONES __attribute__((target_clones("avx2", "default")))
#else
#define CLONES
#endif

namespace
{

constexpr unsigned int numSteps = 30;
constexpr float largest = std::numeric_limits<float>::max();

/// What a search tells of one of the clouds: ours no volume, CGAL's no angles.
struct Found
{
    size_t cloud = 0;
    std::array<float, 3> rotation = {};
    double volume = 0.0;
};

struct Angles
{
    Angles()
    {
        for (unsigned int k = 0; k < numSteps; ++k) {
            angle.push_back(static_cast<float>((k * 1.5707963267948966) * (1.0 / (numSteps - 1))));
            sine.push_back(std::sin(angle[k]));
            cosine.push_back(std::cos(angle[k]));
        }
    }
    std::vector<float> angle, sine, cosine;
};

struct Cloud
{
    std::vector<float> coords;  // x, y, z triples
#ifdef ZVMATH_HAVE_CGAL
    std::shared_ptr<const CgalPoints> cgal;
#endif
};

/// Several clouds of a kind, searched one after the other: a processor would learn the branches of
/// one that comes again and again.
struct Clouds
{
    std::vector<Cloud> clouds;
    std::vector<Found> expected;
    mutable size_t next = 0;

    const Cloud& Next(Found& found) const
    {
        found.cloud = next++ % clouds.size();
        return clouds[found.cloud];
    }
};

Found Search(const Clouds& clouds)
{
    Found found;
    const std::vector<float>& coords = clouds.Next(found).coords;
    ZVMath::ZVGetSmallestEnclosingBoxRotation(found.rotation.data(), coords.data(),
                                              static_cast<unsigned int>(coords.size() / 3),
                                              numSteps);
    return found;
}

using Point = std::array<float, 3>;

float Volume(const std::vector<Point>& points)
{
    Point most = points[0], least = points[0];
    for (const Point& point : points)
        for (size_t axis = 0; axis < 3; ++axis) {
            most[axis] = most[axis] < point[axis] ? point[axis] : most[axis];
            least[axis] = point[axis] < least[axis] ? point[axis] : least[axis];
        }
    return ((most[0] - least[0]) * (most[1] - least[1])) * (most[2] - least[2]);
}

/// The definition as it is written.
Found SearchPlainly(const Clouds& clouds)
{
    Found found;
    const std::vector<float>& coords = clouds.Next(found).coords;
    const Angles angles;
    const auto turn = [&](std::vector<Point>& to, const std::vector<Point>& from, size_t axis,
                          size_t t) {
        const float s = angles.sine[t], c = angles.cosine[t];
        for (size_t p = 0; p < from.size(); ++p) {
            const Point point = from[p];
            to[p] = point;
            to[p][axis] = c * point[axis] - s * point[axis + 1];
            to[p][axis + 1] = point[axis + 1] * c + point[axis] * s;
        }
    };
    std::vector<Point> points(coords.size() / 3);
    for (size_t p = 0; p < points.size(); ++p)
        points[p] = {coords[3 * p], coords[3 * p + 1], coords[3 * p + 2]};
    std::vector<Point> first(points), second(points), third(points);
    float best = largest;
    for (size_t i = 0; i < numSteps; ++i) {
        turn(first, points, 0, i);
        for (size_t j = 0; j < numSteps; ++j) {
            turn(second, first, 1, j);
            for (size_t k = 0; k < numSteps; ++k) {
                turn(third, second, 0, k);
                if (const float volume = Volume(third); volume < best) {
                    best = volume;
                    found.rotation = {angles.angle[i], angles.angle[j], angles.angle[k]};
                }
            }
        }
    }
    found.volume = best;
    return found;
}

typedef float Vec8 __attribute__((vector_size(32)));

struct alignas(32) Eight  // or GCC would allocate it for plain x86-64 at multiples of 16
{
    Vec8 v;
};

float Extent(const Vec8& most, const Vec8& least)
{
    float m = most[0], l = least[0];
    for (size_t lane = 1; lane < 8; ++lane) {
        m = most[lane] > m ? most[lane] : m;
        l = least[lane] < l ? least[lane] : l;
    }
    return m - l;
}

/// Tries all third angles on points that are turned by the first two.
CLONES void SearchRow(Found& found, float& best, const Angles& angles, const Eight* x,
                      const Eight* y, const Eight* z, size_t n, float first, float second)
{
    Vec8 mostZ = z[0].v, leastZ = z[0].v;
    for (size_t p = 0; p < n; ++p) {
        mostZ = z[p].v > mostZ ? z[p].v : mostZ;
        leastZ = z[p].v < leastZ ? z[p].v : leastZ;
    }
    const float dz = Extent(mostZ, leastZ);
    for (size_t k = 0; k < numSteps; ++k) {
        const float s = angles.sine[k], c = angles.cosine[k];
        Vec8 mostX = c * x[0].v - s * y[0].v, leastX = mostX;
        Vec8 mostY = y[0].v * c + x[0].v * s, leastY = mostY;
        for (size_t p = 0; p < n; ++p) {
            const Vec8 u = c * x[p].v - s * y[p].v;
            const Vec8 v = y[p].v * c + x[p].v * s;
            mostX = u > mostX ? u : mostX;
            leastX = u < leastX ? u : leastX;
            mostY = v > mostY ? v : mostY;
            leastY = v < leastY ? v : leastY;
        }
        const float volume = (Extent(mostX, leastX) * Extent(mostY, leastY)) * dz;
        if (volume < best) {
            best = volume;
            found.rotation = {first, second, angles.angle[k]};
        }
    }
}

CLONES void Turn(Eight* x2, Eight* y2, const Eight* x, const Eight* y, size_t n, float s, float c)
{
    for (size_t p = 0; p < n; ++p) {
        const Vec8 turned = c * x[p].v - s * y[p].v;
        y2[p].v = y[p].v * c + x[p].v * s;
        x2[p].v = turned;
    }
}

/// The definition as fast as vectors make it: every turn done once, eight points side by side, and
/// the last one not written anywhere.
Found SearchByVectors(const Clouds& clouds)
{
    Found found;
    const std::vector<float>& coords = clouds.Next(found).coords;
    const Angles angles;
    const size_t count = coords.size() / 3, n = (count + 7) / 8;
    std::vector<Eight> points(3 * n), first(2 * n), second(2 * n);
    for (size_t p = 0; p < 8 * n; ++p)
        for (size_t axis = 0; axis < 3; ++axis)
            points[axis * n + p / 8].v[p % 8] = coords[3 * (p < count ? p : 0) + axis];
    const Eight *const x = points.data(), *const y = x + n, *const z = y + n;
    Eight *const x1 = first.data(), *const y1 = x1 + n;
    Eight *const y2 = second.data(), *const z2 = y2 + n;
    float best = largest;
    for (size_t i = 0; i < numSteps; ++i) {
        Turn(x1, y1, x, y, n, angles.sine[i], angles.cosine[i]);
        for (size_t j = 0; j < numSteps; ++j) {
            Turn(y2, z2, y1, z, n, angles.sine[j], angles.cosine[j]);
            SearchRow(found, best, angles, x1, y2, z2, n, angles.angle[i], angles.angle[j]);
        }
    }
    found.volume = best;
    return found;
}

enum class Kind { solid, cloud, sphere };

/// A solid box with blurred faces, a normal distribution, or the surface of a sphere.
Clouds MakeClouds(Kind kind, size_t count, size_t numClouds)
{
    std::mt19937 random(static_cast<unsigned int>(count));
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::normal_distribution<float> normal;
    Clouds made = {std::vector<Cloud>(numClouds), {}};
    for (Cloud& cloud : made.clouds) {
        const float a = uniform(random), b = uniform(random);
        for (size_t p = 0; p < count; ++p) {
            const float n[] = {normal(random), normal(random), normal(random)};
            const float length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
            Point v;
            for (size_t axis = 0; axis < 3; ++axis) {
                const float size = 1.0f + static_cast<float>(axis);
                v[axis] = kind == Kind::sphere  ? n[axis] / length
                          : kind == Kind::cloud ? n[axis] * size
                                                : uniform(random) * size + 0.02f * n[axis];
            }
            const float x = std::cos(a) * v[0] - std::sin(a) * v[1];
            const float y = std::sin(a) * v[0] + std::cos(a) * v[1];
            cloud.coords.insert(cloud.coords.end(), {x, std::cos(b) * y - std::sin(b) * v[2],
                                                     std::sin(b) * y + std::cos(b) * v[2]});
        }
#ifdef ZVMATH_HAVE_CGAL
        cloud.cgal = MakeCgalPoints(cloud.coords);
#endif
    }
    for (size_t i = 0; i < numClouds; ++i)
        made.expected.push_back(SearchByVectors(made));
    return made;
}

void AddWorkload(const std::string& name, Kind kind, size_t count, size_t numClouds)
{
    const std::string workload = "enclosing box of a " + name + " n=" + std::to_string(count);
    const auto clouds = [=]() -> const Clouds& {
        static std::map<std::string, Clouds> made;
        const auto found = made.find(workload);
        return found != made.end()
                   ? found->second
                   : made.emplace(workload, MakeClouds(kind, count, numClouds)).first->second;
    };
    AddBenchmark(workload, "zvmath", clouds, Search, [](const Clouds& c, Found found) {
        bool agrees = true;
        for (size_t i = 0; i < c.clouds.size(); ++i, found = Search(c))
            agrees &= found.rotation == c.expected[found.cloud].rotation;
        return agrees;
    });
#ifdef ZVMATH_HAVE_CGAL
    const auto searchByCgal = [](const Clouds& c) {
        Found found;
        found.volume = SmallestVolumeByCgal(*c.Next(found).cgal);
        return found;
    };
    // It is not bound to a grid, nor to three quarters of the orientations.
    AddBenchmark(workload, "CGAL", clouds, searchByCgal, [](const Clouds& c, const Found& found) {
        const double best = c.expected[found.cloud].volume;
        return found.volume > 0.5 * best && found.volume < 1.02 * best;
    });
#endif
    const auto agrees = [](const Clouds& c, const Found& found) {
        const std::vector<float>& coords = c.clouds[found.cloud].coords;
        std::array<float, 3> rotation;
        ZVMath::ZVGetSmallestEnclosingBoxRotation(
            rotation.data(), coords.data(), static_cast<unsigned int>(coords.size() / 3), numSteps);
        return found.rotation == rotation;
    };
    if (count <= 10'000)
        AddBenchmark(workload, "plain", clouds, SearchPlainly, agrees);
    AddBenchmark(workload, "plain vectors", clouds, SearchByVectors, agrees);
}

}  // namespace

void AddEnclosingBoxBenchmarks()
{
#ifdef ZVMATH_HAVE_CGAL
    peerVersions.push_back(CgalVersion());
#endif
    AddWorkload("solid", Kind::solid, 1000, 8);
    AddWorkload("solid", Kind::solid, 10'000, 8);
    AddWorkload("solid", Kind::solid, 100'000, 2);
    AddWorkload("cloud", Kind::cloud, 1000, 8);
    AddWorkload("cloud", Kind::cloud, 10'000, 8);
    AddWorkload("sphere", Kind::sphere, 1000, 8);
}
