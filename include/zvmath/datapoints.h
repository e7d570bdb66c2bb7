#pragma once

#include "zvmath/export.h"
#include "zvsystem/iterators.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ZVPlatform
{
class zvostream;
}

namespace ZVMath
{

/// A point with the errors of its coordinates, 0 where none are given.
struct ZVDataPoint
{
    /// Without errors, or with them.
    ZVDataPoint(double px, double py) : x(px), y(py) {}
    ZVDataPoint(double px, double py, double errorOfX, double errorOfY)
        : x(px), y(py), xError(errorOfX), yError(errorOfY)
    {
    }

    /// The coordinates and their errors.
    double x;
    double y;
    double xError = 0.0;
    double yError = 0.0;
    /// For the program's own use, an index or a class: the library only copies it.
    uint32_t tag = 0;
};

/// A titled list of points.
///
/// The title is the object's own: copying and assigning take the points only. When memory runs out
/// (`std::bad_alloc`) the series is as it was.
class ZVMATH_EXPORT ZVDataSeries
{
public:
    /// No points, no title.
    ZVDataSeries();
    /// The points of `other`, without a title.
    ZVDataSeries(const ZVDataSeries& other);
    /// Takes the points of `other` and keeps the own title.
    ZVDataSeries& operator=(const ZVDataSeries& other);
    ~ZVDataSeries();

    /// Removes the points and the title.
    void Clear();
    /// Removes the points.
    void ClearPoints();

    /// The title, empty at first.
    void SetTitle(std::string newTitle);
    std::string GetTitle() const;

    /// Modulo 2^32.
    unsigned int NumPoints() const;

    /// Replaces the points, or adds some after them.
    void SetPoints(const std::vector<ZVDataPoint>& newPoints);
    void AddPoint(const ZVDataPoint& point);
    void AddPoints(const std::vector<ZVDataPoint>& morePoints);

    /// The points in order, from the first. The iterator has a copy of its own of them: later
    /// changes of the series don't show. Cost: one copy of the points.
    ZVSystem::ZVIter<const ZVDataPoint> GetPoints() const;

private:
    std::vector<ZVDataPoint> points;
    std::string title;
};

/// Writes the series as columns that gnuplot reads: a line "# title", if there is one (line ends
/// in it become blanks), then a line for each point, x and y separated by a tab, and where any
/// point has an error other than 0, for all points x, y, xError and yError. ("zvplatform/streams.h"
/// says how numbers look.) Two empty lines between series make gnuplot's `index` count them.
ZVMATH_EXPORT void ZVPrintDataSeries(const ZVDataSeries& series, ZVPlatform::zvostream& stream);

}  // namespace ZVMath
