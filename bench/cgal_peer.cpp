#include "cgal_peer.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/bounding_box.h>
#include <CGAL/optimal_bounding_box.h>
#include <CGAL/version_macros.h>
#include <cmath>

using SinglePoint = CGAL::Simple_cartesian<float>::Point_3;
using Point = CGAL::Exact_predicates_inexact_constructions_kernel::Point_3;

struct CgalPoints
{
    std::vector<SinglePoint> singles;
    std::vector<Point> points;
};

std::string CgalVersion()
{
    return "CGAL " CGAL_VERSION_STR;
}

std::shared_ptr<const CgalPoints> MakeCgalPoints(const std::vector<float>& coords)
{
    const auto points = std::make_shared<CgalPoints>();
    for (size_t i = 0; i < coords.size(); i += 3) {
        points->singles.emplace_back(coords[i], coords[i + 1], coords[i + 2]);
        points->points.emplace_back(coords[i], coords[i + 1], coords[i + 2]);
    }
    return points;
}

std::array<float, 6> BoundByCgal(const CgalPoints& points)
{
    const auto box = CGAL::bounding_box(points.singles.begin(), points.singles.end());
    return {box.xmax(), box.ymax(), box.zmax(), box.xmin(), box.ymin(), box.zmin()};
}

double SmallestVolumeByCgal(const CgalPoints& points)
{
    std::array<Point, 8> corners;
    CGAL::oriented_bounding_box(points.points, corners);
    return std::sqrt(CGAL::squared_distance(corners[0], corners[1]) *
                     CGAL::squared_distance(corners[0], corners[3]) *
                     CGAL::squared_distance(corners[0], corners[5]));
}
