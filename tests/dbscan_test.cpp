#include "zvmath/dbscan.h"

#include "allocations.h"
#include "check.h"

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

namespace
{

using namespace ZVTest;
using namespace ZVMath;

/// Step by step: a queue that takes objects several times, flags for the visited ones.
std::vector<int> NaiveLabels(const ZVSquareMatrix& distances, double eps, unsigned int minPts)
{
    const unsigned int n = distances.GetNumRows();
    const auto neighbours = [&](unsigned int p) {
        std::vector<unsigned int> result;
        for (unsigned int q = 0; q < n; ++q)
            if (eps >= distances.GetData()[size_t{p} * n + q])
                result.push_back(q);
        return result;
    };
    std::vector<int> labels(n, -1);
    std::vector<bool> visited(n);
    int cluster = 0;
    for (unsigned int i = 0; i < n; ++i) {
        if (visited[i])
            continue;
        visited[i] = true;
        const auto around = neighbours(i);
        if (around.size() < minPts)
            continue;
        labels[i] = cluster;
        std::deque<unsigned int> queue;
        for (const unsigned int q : around)
            if (q != i)
                queue.push_back(q);
        while (!queue.empty()) {
            const unsigned int q = queue.front();
            queue.pop_front();
            if (!visited[q]) {
                visited[q] = true;
                const auto further = neighbours(q);
                if (further.size() >= minPts)
                    for (const unsigned int r : further)
                        if (!visited[r])
                            queue.push_back(r);
            }
            if (labels[q] == -1)
                labels[q] = cluster;
        }
        ++cluster;
    }
    return labels;
}

std::vector<unsigned int> NaiveCenters(const ZVSquareMatrix& distances,
                                       const std::vector<int>& labels)
{
    std::map<int, std::vector<unsigned int>> clusters;
    for (unsigned int i = 0; i < labels.size(); ++i)
        if (labels[i] != -1)
            clusters[labels[i]].push_back(i);
    std::vector<unsigned int> centers;
    for (const auto& [label, members] : clusters) {
        unsigned int center = 4294967295u;
        double smallest = 1.7976931348623157e308;
        for (const unsigned int m : members) {
            double sum = 0.0;
            for (const unsigned int k : members)
                sum += distances.GetData()[size_t{m} * labels.size() + k];
            if (sum < smallest) {
                smallest = sum;
                center = m;
            }
        }
        centers.push_back(center);
    }
    return centers;
}

/// The distances between points on a line.
ZVSquareMatrix OnALine(const std::vector<double>& points)
{
    return MakeSquare(
        static_cast<unsigned int>(points.size()),
        [&](unsigned int r, unsigned int c) { return std::abs(points[r] - points[c]); });
}

TEST(DBSCAN, EqualsTheLiteralSteps)
{
    const struct
    {
        const char* name;
        double (*change)(double distance, std::mt19937& random);
    } kinds[] = {
        {"symmetric", [](double d, std::mt19937&) { return d; }},
        {"coarse, with ties", [](double d, std::mt19937&) { return std::floor(d * 8) / 8; }},
        {"asymmetric", [](double d, std::mt19937& r) { return d * (1.2 + Uniform(r)); }},
        {"some NaN", [](double d, std::mt19937& r) { return r() % 5 ? d : NaN; }},
        {"some infinite", [](double d, std::mt19937& r) { return r() % 5 ? d : inf; }},
        {"negative", [](double d, std::mt19937&) { return d - 0.5; }},
    };
    for (const auto& kind : kinds) {
        std::mt19937 random(1);
        for (const unsigned int n : {1u, 2u, 5u, 31u, 32u, 33u, 64u, 150u})
            for (const double eps : {-0.1, 0.0, 0.03, 0.1, 0.4, 5.0, inf, NaN})
                for (const unsigned int minPts : {0u, 1u, 2u, 3u, 5u, 12u, 4294967295u}) {
                    std::vector<double> x(n), y(n);
                    for (unsigned int i = 0; i < n; ++i) {
                        x[i] = Uniform(random);
                        y[i] = Uniform(random);
                    }
                    const auto distances = MakeSquare(n, [&](unsigned int r, unsigned int c) {
                        return kind.change(std::hypot(x[r] - x[c], y[r] - y[c]), random);
                    });
                    ZVDBSCAN fitted(distances, eps, minPts);
                    ASSERT_EQ(fitted.GetLabels(), NaiveLabels(distances, eps, minPts))
                        << kind.name << ", n = " << n << ", eps " << eps << ", minPts " << minPts;
                    ASSERT_EQ(fitted.GetClusterCenters(),
                              NaiveCenters(distances, fitted.GetLabels()))
                        << kind.name << ", n = " << n << ", eps " << eps << ", minPts " << minPts;
                }
    }
}

TEST(DBSCAN, NeighbourhoodsTooLargeToKeep)
{
    // Nearly everything is within eps, and the last rows are read only when they are asked for.
    const unsigned int n = 2300;
    std::mt19937 random(2);
    const auto distances =
        MakeSquare(n, [&](unsigned int, unsigned int) { return 1.0 + Uniform(random); });
    for (const unsigned int minPts : {2240u, 2247u, 2300u}) {
        const ZVDBSCAN fitted(distances, 1.95, minPts);
        EXPECT_EQ(fitted.GetLabels(), NaiveLabels(distances, 1.95, minPts));
    }
}

TEST(DBSCAN, BorderObjects)
{
    const struct
    {
        const char* name;
        std::vector<double> points;
        unsigned int minPts;
        std::vector<int> labels;
    } cases[] = {
        {"noise next to the founder is claimed", {0, 1, 2, 1.5}, 3, {0, 0, 0, 0}},
        {"noise far from the founder stays noise", {0, 3, 2, 1, 4}, 3, {-1, 0, 0, 0, 0}},
        {"border of two clusters goes to the first",
         {0, 0.3, 0.6, 1, 2, 3, 3.3, 3.6, 4},
         4,
         {0, 0, 0, 0, 0, 1, 1, 1, 1}},
        {"all apart", {0, 2, 4, 6}, 2, {-1, -1, -1, -1}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ZVDBSCAN(OnALine(c.points), 1.0, c.minPts).GetLabels(), c.labels) << c.name;
}

TEST(DBSCAN, FittingAgainStartsAnew)
{
    ZVDBSCAN fitted(OnALine({0, 1, 5, 6}), 1.0, 2);
    EXPECT_EQ(fitted.GetLabels(), (std::vector<int>{0, 0, 1, 1}));
    EXPECT_EQ(fitted.GetClusterCenters(), (std::vector<unsigned int>{0, 2}));
    fitted.Fit(0.5, 2);
    EXPECT_EQ(fitted.GetLabels(), (std::vector<int>{-1, -1, -1, -1}));
    EXPECT_TRUE(fitted.GetClusterCenters().empty());
    fitted.Fit(4.0, 2);
    EXPECT_EQ(fitted.GetLabels(), (std::vector<int>{0, 0, 0, 0}));
}

TEST(DBSCAN, RunningOutOfMemoryKeepsTheLabels)
{
    ZVDBSCAN fitted(OnALine({0, 1, 5, 6}), 1.0, 2);
    const std::vector<int> former = fitted.GetLabels();
    int failures = 0;
    for (bool failed = true; failed; ++failures) {
        EXPECT_EQ(fitted.GetLabels(), former);
        try {
            const FailingAllocation failing(failures);
            fitted.Fit(4.0, 2);
            failed = false;
        } catch (const std::bad_alloc&) {
        }
    }
    EXPECT_GT(failures, 3);
    EXPECT_EQ(fitted.GetLabels(), std::vector<int>(4, 0));
}

TEST(DBSCAN, MedoidsWithoutAFiniteSum)
{
    const auto medoid = [](const std::vector<double>& distances) {
        return ZVDBSCAN(MakeSquare(distances), inf, 0).GetClusterCenters();
    };
    using Centers = std::vector<unsigned int>;
    EXPECT_EQ(medoid({0, inf, inf, 0}), Centers{4294967295u});
    EXPECT_EQ(medoid({0, 1.7976931348623157e308, 1.7976931348623157e308, 0}), Centers{4294967295u});
    EXPECT_EQ(medoid({0, inf, 1, 0}), Centers{1});
}

TEST(DBSCAN, MatricesWithoutObjectsOrNotSquare)
{
    const ZVDBSCAN empty(ZVSquareMatrix(), 1.0, 1);
    EXPECT_TRUE(empty.GetLabels().empty());
    EXPECT_TRUE(empty.GetClusterCenters().empty());

    for (const auto& [rows, columns] : {std::pair{3u, 2u}, std::pair{2u, 3u}}) {
        ZVSquareMatrix distances;
        static_cast<ZVMatrix&>(distances) = ZVMatrix(rows, columns);
        const ZVDBSCAN fitted(distances, 1.0, 1);
        EXPECT_EQ(fitted.GetLabels(), std::vector<int>(rows, -1));
        EXPECT_TRUE(fitted.GetClusterCenters().empty());
    }
}

}  // namespace
