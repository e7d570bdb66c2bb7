#include "bench.h"
#include "zvmath/simple_shapes.h"

#include <Eigen/Geometry>
#include <random>

#ifdef ZVMATH_HAVE_CGAL
#include "cgal_peer.h"
#endif

namespace
{

using ZVMath::ZVBox;
using ZVMath::ZVSphere;

/// Points, and as many shapes around the middle of them.
struct Points
{
    explicit Points(unsigned int n) : count(n), coords(3 * size_t{n})
    {
        std::mt19937 random(n);
        std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
        for (float& coordinate : coords)
            coordinate = uniform(random);
    }

    const float* At(unsigned int i) const { return coords.data() + 3 * size_t{i}; }

    unsigned int count;
    std::vector<float> coords;
};

ZVBox Bound(const Points& points)
{
    ZVBox box;
    box.Setup(points.coords.data(), points.count, 0.0f);
    return box;
}

ZVBox BoundPlainly(const Points& points)
{
    float most[] = {points.coords[0], points.coords[1], points.coords[2]};
    float least[] = {most[0], most[1], most[2]};
    for (unsigned int i = 1; i < points.count; ++i)
        for (size_t axis = 0; axis < 3; ++axis) {
            const float value = points.At(i)[axis];
            most[axis] = most[axis] < value ? value : most[axis];
            least[axis] = value < least[axis] ? value : least[axis];
        }
    ZVBox box;
    box.Setup(most[0], most[1], most[2], least[0], least[1], least[2]);
    return box;
}

ZVBox BoundByEigen(const Points& points)
{
    const Eigen::Map<const Eigen::Matrix3Xf> map(points.coords.data(), 3, points.count);
    const Eigen::Vector3f most = map.rowwise().maxCoeff();
    const Eigen::Vector3f least = map.rowwise().minCoeff();
    ZVBox box;
    box.Setup(most.x(), most.y(), most.z(), least.x(), least.y(), least.z());
    return box;
}

bool IsBound(const Points& points, const ZVBox& box)
{
    const ZVBox expected = BoundPlainly(points);
    return box.GetXMax() == expected.GetXMax() && box.GetYMax() == expected.GetYMax() &&
           box.GetZMax() == expected.GetZMax() && box.GetXMin() == expected.GetXMin() &&
           box.GetYMin() == expected.GetYMin() && box.GetZMin() == expected.GetZMin();
}

/// How many points are in the middle eighth.
template <class IsInside> unsigned int CountInside(const Points& points, IsInside isInside)
{
    unsigned int inside = 0;
    for (unsigned int i = 0; i < points.count; ++i)
        inside += isInside(points.At(i)) ? 1 : 0;
    return inside;
}

unsigned int CountInBox(const Points& points)
{
    ZVBox box;
    box.Setup(0.5f, 0.5f, 0.5f, -0.5f, -0.5f, -0.5f);
    return CountInside(points, [&](const float* p) { return box.IsInside(p[0], p[1], p[2]); });
}

unsigned int CountInBoxOfEigen(const Points& points)
{
    const Eigen::AlignedBox3f box(Eigen::Vector3f::Constant(-0.5f),
                                  Eigen::Vector3f::Constant(0.5f));
    return CountInside(points, [&](const float* p) { return box.contains(Eigen::Vector3f(p)); });
}

unsigned int CountInSphere(const Points& points)
{
    const ZVSphere sphere(0.0f, 0.0f, 0.0f, 0.5f);
    return CountInside(points, [&](const float* p) { return sphere.IsInside(p[0], p[1], p[2]); });
}

unsigned int CountInSphereByEigen(const Points& points)
{
    const Eigen::Vector3f center = Eigen::Vector3f::Zero();
    return CountInside(points, [&](const float* p) {
        return (Eigen::Vector3f(p) - center).squaredNorm() <= 0.25f;
    });
}

}  // namespace

void AddSimpleShapesBenchmarks()
{
    for (const unsigned int n : {1000u, 1'000'000u}) {
        const std::string workload = "bounding box n=" + std::to_string(n);
        const auto points = [n]() -> const Points& {
            static const Points few(1000), many(1'000'000);
            return n == 1000 ? few : many;
        };
        AddBenchmark(workload, "zvmath", points, Bound, IsBound);
        AddBenchmark(workload, "Eigen", points, BoundByEigen, IsBound);
#ifdef ZVMATH_HAVE_CGAL
        const auto ofCgal = [=]() -> const CgalPoints& {
            static std::shared_ptr<const CgalPoints> few, many;
            std::shared_ptr<const CgalPoints>& made = n == 1000 ? few : many;
            if (!made)
                made = MakeCgalPoints(points().coords);
            return *made;
        };
        AddBenchmark(workload, "CGAL", ofCgal, BoundByCgal,
                     [=](const CgalPoints&, const std::array<float, 6>& b) {
                         ZVBox box;
                         box.Setup(b[0], b[1], b[2], b[3], b[4], b[5]);
                         return IsBound(points(), box);
                     });
#endif
        AddBenchmark(workload, "plain", points, BoundPlainly, IsBound);
    }
    const auto points = []() -> const Points& {
        static const Points some(1000);
        return some;
    };
    const auto agrees = [](unsigned int (*expected)(const Points&)) {
        return [=](const Points& p, unsigned int inside) { return inside == expected(p); };
    };
    AddBenchmark("in a box, 1000 points", "zvmath", points, CountInBox, agrees(CountInBoxOfEigen));
    AddBenchmark("in a box, 1000 points", "Eigen", points, CountInBoxOfEigen, agrees(CountInBox));
    AddBenchmark("in a sphere, 1000 points", "zvmath", points, CountInSphere,
                 agrees(CountInSphereByEigen));
    AddBenchmark("in a sphere, 1000 points", "Eigen", points, CountInSphereByEigen,
                 agrees(CountInSphere));
}
