#include "zvmath/datapoints.h"

#include "zvplatform/streams.h"

#include <algorithm>
#include <utility>

namespace ZVMath
{

ZVDataSeries::ZVDataSeries() = default;
ZVDataSeries::~ZVDataSeries() = default;

ZVDataSeries::ZVDataSeries(const ZVDataSeries& other) : points(other.points)
{
}

ZVDataSeries& ZVDataSeries::operator=(const ZVDataSeries& other)
{
    SetPoints(other.points);
    return *this;
}

void ZVDataSeries::Clear()
{
    points.clear();
    title.clear();
}

void ZVDataSeries::ClearPoints()
{
    points.clear();
}

void ZVDataSeries::SetTitle(std::string newTitle)
{
    title = std::move(newTitle);
}

std::string ZVDataSeries::GetTitle() const
{
    return title;
}

unsigned int ZVDataSeries::NumPoints() const
{
    return static_cast<unsigned int>(points.size());
}

void ZVDataSeries::SetPoints(const std::vector<ZVDataPoint>& newPoints)
{
    points = newPoints;  // copies first where memory is needed, and of itself is nothing
}

void ZVDataSeries::AddPoint(const ZVDataPoint& point)
{
    points.push_back(point);
}

void ZVDataSeries::AddPoints(const std::vector<ZVDataPoint>& morePoints)
{
    const size_t count = morePoints.size();
    if (points.capacity() - points.size() < count)
        points.reserve(std::max(2 * points.size(), points.size() + count));
    // By index, and as many as there were at the call: they may be this series' own.
    for (size_t i = 0; i < count; ++i)
        points.push_back(morePoints[i]);
}

ZVSystem::ZVIter<const ZVDataPoint> ZVDataSeries::GetPoints() const
{
    return ZVSystem::MakeCachingIter(points);
}

void ZVPrintDataSeries(const ZVDataSeries& series, ZVPlatform::zvostream& stream)
{
    std::string title = series.GetTitle();
    std::replace_if(
        title.begin(), title.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    if (!title.empty())
        stream << "# " << title << ZVPlatform::zvendl;

    auto points = series.GetPoints();
    const bool withErrors = std::any_of(points.begin(), points.end(), [](const ZVDataPoint& p) {
        return p.xError != 0.0 || p.yError != 0.0;
    });
    for (const ZVDataPoint& point : points) {
        stream << point.x << '\t' << point.y;
        if (withErrors)
            stream << '\t' << point.xError << '\t' << point.yError;
        stream << ZVPlatform::zvendl;
    }
}

}  // namespace ZVMath
