#include "bench.h"
#include "zvmath/dbscan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <random>

namespace
{

using ZVMath::ZVDBSCAN;
using ZVMath::ZVSquareMatrix;

constexpr unsigned int n = 10'000;
constexpr unsigned int numClusters = 5;
constexpr unsigned int minPts = 20;
constexpr double eps = 0.3;         // a neighbourhood in a cluster then has about 45 members
constexpr double wideEps = 1000.0;  // and with this one all objects

/// Five round clusters in the plane, and 1 point in 20 anywhere between them, with their distances.
struct Points
{
    explicit Points(bool shuffled) : distances(n)
    {
        std::mt19937 random(1);
        std::normal_distribution<double> normal;
        std::uniform_real_distribution<double> anywhere(-20.0, 20.0);
        struct Point
        {
            double x, y;
        };
        std::vector<Point> points(n);
        for (unsigned int i = 0; i < n; ++i) {
            const double angle = (i * numClusters / n) * 1.25663706143591729539;  // 2 pi / 5
            if (i % 20 == 0)
                points[i] = {anywhere(random), anywhere(random)};
            else
                points[i] = {12.0 * std::cos(angle) + normal(random),
                             12.0 * std::sin(angle) + normal(random)};
        }
        if (shuffled)
            std::shuffle(points.begin(), points.end(), random);
        std::vector<double> row(n);
        for (unsigned int i = 0; i < n; ++i) {
            for (unsigned int j = 0; j < n; ++j) {
                const double dx = points[i].x - points[j].x, dy = points[i].y - points[j].y;
                row[j] = std::sqrt(dx * dx + dy * dy);
            }
            distances.SetRowData(i, row);
        }
        dbscan = std::make_unique<ZVDBSCAN>(distances, eps, minPts);
    }

    double Distance(size_t i, size_t j) const { return distances.GetData()[i * n + j]; }

    ZVSquareMatrix distances;
    std::unique_ptr<ZVDBSCAN> dbscan;
};

const Points& Mixed()
{
    static const Points points(true);
    return points;
}

const Points& ClusterByCluster()
{
    static const Points points(false);
    return points;
}

size_t Clusters(const std::vector<int>& labels)
{
    return static_cast<size_t>(*std::max_element(labels.begin(), labels.end()) + 1);
}

std::vector<unsigned int> PlainNeighbours(const Points& points, unsigned int p, double radius)
{
    std::vector<unsigned int> neighbours;
    for (unsigned int q = 0; q < n; ++q)
        if (points.Distance(p, q) <= radius)
            neighbours.push_back(q);
    return neighbours;
}

/// The labels as the method is written down.
std::vector<int> PlainFit(const Points& points, double radius)
{
    std::vector<int> labels(n, -1);
    std::vector<bool> seen(n, false);  // visited, or queued to be
    int cluster = 0;
    for (unsigned int founder = 0; founder < n; ++founder) {
        if (seen[founder])
            continue;
        seen[founder] = true;
        std::vector<unsigned int> neighbours = PlainNeighbours(points, founder, radius);
        if (neighbours.size() < minPts)
            continue;
        std::vector<unsigned int> queue;
        const auto reach = [&](unsigned int q) {
            if (labels[q] == -1)
                labels[q] = cluster;
            if (!seen[q])
                queue.push_back(q);
            seen[q] = true;
        };
        labels[founder] = cluster;
        for (const unsigned int q : neighbours)
            reach(q);
        for (size_t front = 0; front < queue.size(); ++front) {
            neighbours = PlainNeighbours(points, queue[front], radius);
            if (neighbours.size() >= minPts)
                for (const unsigned int q : neighbours)
                    if (!seen[q])
                        reach(q);
        }
        ++cluster;
    }
    return labels;
}

void AddFitBenchmarks(const std::string& workload, double radius, size_t clusters)
{
    const auto agrees = [radius, clusters](const Points& points, const std::vector<int>& labels) {
        static std::map<double, std::vector<int>> made;
        auto expected = made.find(radius);
        if (expected == made.end())
            expected = made.emplace(radius, PlainFit(points, radius)).first;
        return labels == expected->second && Clusters(labels) == clusters;
    };
    AddBenchmark(
        workload, "zvmath", Mixed,
        [radius](const Points& points) -> const std::vector<int>& {
            points.dbscan->Fit(radius, minPts);
            return points.dbscan->GetLabels();
        },
        agrees);
    AddBenchmark(
        workload, "floor", Mixed,
        [](const Points& points) {
            return ReadAll(points.distances.GetData().data(), points.distances.GetData().size());
        },
        [](const Points& points, double sum) {
            const std::vector<double>& values = points.distances.GetData();
            const double expected = std::accumulate(values.begin(), values.end(), 0.0);
            return std::fabs(sum - expected) <= 1e-9 * expected;
        });
    AddBenchmark(
        workload, "plain", Mixed,
        [radius](const Points& points) { return PlainFit(points, radius); }, agrees);
}

/// Of each cluster the member with the smallest sum of distances to all members.
std::vector<unsigned int> PlainMedoids(const Points& points)
{
    const std::vector<int>& labels = points.dbscan->GetLabels();
    std::vector<std::vector<unsigned int>> clusters(Clusters(labels));
    for (unsigned int i = 0; i < n; ++i)
        if (labels[i] >= 0)
            clusters[static_cast<size_t>(labels[i])].push_back(i);
    std::vector<unsigned int> medoids;
    for (const std::vector<unsigned int>& members : clusters) {
        double smallest = std::numeric_limits<double>::max();
        unsigned int medoid = 0;
        for (const unsigned int m : members) {
            double sum = 0.0;
            for (const unsigned int k : members)
                sum += points.Distance(m, k);
            if (sum < smallest) {
                smallest = sum;
                medoid = m;
            }
        }
        medoids.push_back(medoid);
    }
    return medoids;
}

void AddMedoidBenchmarks(const std::string& workload, const Points& (*points)())
{
    const auto labelled = [points]() -> const Points& {
        points().dbscan->Fit(eps, minPts);  // other rows may have left other labels
        return points();
    };
    AddBenchmark(
        workload, "zvmath", labelled, [](const Points& p) { return p.dbscan->GetClusterCenters(); },
        [](const Points& p, const auto& medoids) { return medoids == PlainMedoids(p); });
    AddBenchmark(workload, "plain", labelled, PlainMedoids,
                 [](const Points& p, const auto& medoids) {
                     return medoids == p.dbscan->GetClusterCenters();
                 });
}

}  // namespace

void AddDbscanBenchmarks()
{
    const std::string size = " n=" + std::to_string(n);
    AddFitBenchmarks("DBSCAN" + size + ", 5 clusters", eps, numClusters);
    AddFitBenchmarks("DBSCAN" + size + ", all neighbours", wideEps, 1);
    AddMedoidBenchmarks("medoids" + size + ", clusters contiguous", ClusterByCluster);
    AddMedoidBenchmarks("medoids" + size + ", clusters mixed", Mixed);
}
