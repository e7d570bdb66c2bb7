#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

// CGAL in a file of its own: it takes long to compile, and has to be compiled with -frounding-math.

std::string CgalVersion();

/// Points as CGAL keeps them: in single precision, and in the double precision that its search for
/// a box needs.
struct CgalPoints;
std::shared_ptr<const CgalPoints> MakeCgalPoints(const std::vector<float>& coords);

/// The bounding box in single precision: the most x, y, z, then the least.
std::array<float, 6> BoundByCgal(const CgalPoints& points);

/// The volume of the smallest box in any orientation, as far as CGAL finds it.
double SmallestVolumeByCgal(const CgalPoints& points);
