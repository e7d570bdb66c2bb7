#include "zvmath/datapoints.h"

#include "allocations.h"
#include "check.h"
#include "zvplatform/streams.h"

#include <new>

namespace
{

using namespace ZVTest;
using namespace ZVMath;

using Points = std::vector<ZVDataPoint>;

/// The series' own points. Nobody may name the private member but an explicit instantiation, which
/// defines this function.
Points& PointsOf(ZVDataSeries& series);
template <Points ZVDataSeries::*member> struct Reach
{
    friend Points& PointsOf(ZVDataSeries& series) { return series.*member; }
};
template struct Reach<&ZVDataSeries::points>;

/// The title and x of each point.
std::string Held(const ZVDataSeries& series)
{
    std::string held = series.GetTitle() + ":";
    unsigned int count = 0;
    for (auto point = series.GetPoints(); !point.AtEnd(); ++point, ++count)
        held += " " + std::to_string(static_cast<int>(point->x));
    EXPECT_EQ(series.NumPoints(), count);
    return held;
}

TEST(DataPoint, AllFieldsAreCopied)
{
    const ZVDataPoint plain(1.5, 2.5);
    EXPECT_EQ(plain.xError + plain.yError + plain.tag, 0);
    ZVDataPoint point(1, 2, 0.1, 0.2), other(0, 0);
    point.tag = 7;
    for (const ZVDataPoint& copy : {ZVDataPoint(point), other = point}) {
        EXPECT_TRUE(SameBits({copy.x, copy.y, copy.xError, copy.yError}, {1, 2, 0.1, 0.2}));
        EXPECT_EQ(copy.tag, 7u);
    }
}

TEST(DataSeries, TitlesAreNotCopied)
{
    ZVDataSeries series, assigned, moveAssigned;
    series.SetTitle("a");
    series.AddPoints({{1, 0}, {2, 0}, {3, 0}});
    assigned.SetTitle("b");
    assigned = series;
    EXPECT_EQ(Held(assigned), "b: 1 2 3");
    moveAssigned.SetTitle("c");
    moveAssigned = static_cast<ZVDataSeries&&>(assigned);
    EXPECT_EQ(Held(moveAssigned), "c: 1 2 3");
    ZVDataSeries copy(series);
    EXPECT_EQ(Held(copy), ": 1 2 3");
    EXPECT_EQ(Held(ZVDataSeries(static_cast<ZVDataSeries&&>(series))), ": 1 2 3");
    moveAssigned.ClearPoints();
    EXPECT_EQ(Held(moveAssigned), "c:");
    moveAssigned.AddPoint({5, 0});
    moveAssigned.Clear();
    EXPECT_EQ(Held(moveAssigned), ":");
}

TEST(DataSeries, MayBeGivenItsOwnPoints)
{
    // As many points as fit into the memory there is, and one less.
    for (const size_t spare : {0u, 1u}) {
        ZVDataSeries series;
        series.SetPoints({{1, 0}, {2, 0}, {3, 0}});
        PointsOf(series).reserve(3 + spare);
        series.AddPoint(PointsOf(series)[1]);
        EXPECT_EQ(Held(series), ": 1 2 3 2");
        series.AddPoints(PointsOf(series));
        EXPECT_EQ(Held(series), ": 1 2 3 2 1 2 3 2");
        series.SetPoints(PointsOf(series));
        series = *&series;
        EXPECT_EQ(Held(series), ": 1 2 3 2 1 2 3 2");
    }
}

TEST(DataSeries, IteratorsKeepThePointsOfTheirTime)
{
    ZVDataSeries series;
    EXPECT_TRUE(series.GetPoints().AtEnd());
    series.AddPoint({1, 0});
    const auto points = series.GetPoints();
    series.SetPoints({{2, 0}, {3, 0}});
    series.AddPoints({});
    EXPECT_EQ(Held(series), ": 2 3");
    EXPECT_EQ(points->x, 1);
    EXPECT_EQ(std::distance(points.begin(), points.end()), 1);
}

TEST(DataSeries, WithoutMemoryItStays)
{
    ZVDataSeries series;
    series.SetPoints({{1, 0}});
    PointsOf(series).reserve(8);  // not too few for all, but for these and the one
    const Points many(8, {2, 0});
    const FailingAllocation failing(0);
    EXPECT_THROW(series.AddPoints(many), std::bad_alloc);
    EXPECT_EQ(Held(series), ": 1");
}

TEST(DataSeries, PrintsColumns)
{
    const struct
    {
        const char* title;
        Points points;
        const char* text;
    } cases[] = {{"", {}, ""},
                 {"", {{0.1, -2}, {1e9, 3}}, "0.1\t-2\n1e+09\t3\n"},
                 {"a\nb\r", {{1, 2}}, "# a b \n1\t2\n"},
                 {"t", {{1, 2}, {3, 4, 0, 0.5}}, "# t\n1\t2\t0\t0\n3\t4\t0\t0.5\n"},
                 {"", {{1, 2, NaN, 0}}, "1\t2\tnan\t0\n"}};
    for (const auto& c : cases) {
        ZVDataSeries series;
        series.SetTitle(c.title);
        series.SetPoints(c.points);
        ZVPlatform::zvomemorystream stream;
        ZVPrintDataSeries(series, stream);
        EXPECT_EQ(stream.text(), c.text);
    }
}

}  // namespace
