#include "zvmath/dbscan.h"

#include "multiversion.h"

#include <algorithm>
#include <array>
#include <limits>

namespace ZVMath
{

namespace
{

// A label is the cluster's number, or one of these. An object that a cluster's growth reaches is
// labelled when it is queued, so an unseen one is neither visited nor queued.
constexpr int noise = -1;
constexpr int unseen = -2;

/// Writes the columns of `row` that are within eps to `neighbours`, which has room for n, in
/// ascending order, and returns their number. Counting a block keeps pace with memory, so only
/// blocks with members are looked at element by element.
ZVMATH_CLONES size_t FindNeighbours(const double* row, size_t n, double eps,
                                    unsigned int* neighbours)
{
    constexpr size_t block = 32;
    size_t found = 0;
    size_t q = 0;
    for (; q + block <= n; q += block) {
        long long members = 0;
        for (size_t k = 0; k < block; ++k)
            members += row[q + k] <= eps;
        if (members == 0)
            continue;
        for (size_t k = 0; k < block; ++k) {
            neighbours[found] = static_cast<unsigned int>(q + k);
            found += row[q + k] <= eps;
        }
    }
    for (; q < n; ++q) {
        neighbours[found] = static_cast<unsigned int>(q);
        found += row[q] <= eps;
    }
    return found;
}

/// sums[r] = the elements of rows[r] at `columns`, added from 0.0 in their order. The sums are
/// independent: each adds one term after the other, but the rows go side by side.
template <size_t count>
std::array<double, count> SumColumns(const std::array<const double*, count>& rows,
                                     const std::vector<unsigned int>& columns)
{
    std::array<double, count> sums{};
    for (const unsigned int k : columns)
        for (size_t r = 0; r < count; ++r)
            sums[r] += rows[r][k];
    return sums;
}

/// The member with the smallest sum of distances to all `members`.
unsigned int Medoid(const double* distances, size_t n, const std::vector<unsigned int>& members)
{
    constexpr size_t together = 8;
    unsigned int medoid = std::numeric_limits<unsigned int>::max();
    double smallest = std::numeric_limits<double>::max();
    std::array<const double*, together> rows;
    for (size_t first = 0; first < members.size(); first += together) {
        // The last group is filled up with its own last member: a repeat is never the smaller one.
        for (size_t r = 0; r < together; ++r)
            rows[r] = distances + members[std::min(first + r, members.size() - 1)] * n;
        const std::array<double, together> sums = SumColumns(rows, members);
        for (size_t r = 0; r < together; ++r)
            if (sums[r] < smallest) {
                smallest = sums[r];
                medoid = members[first + r];
            }
    }
    return medoid;
}

}  // namespace

ZVDBSCAN::ZVDBSCAN(const ZVSquareMatrix& matrix, double eps, unsigned int minPts)
    : distances(matrix)
{
    Fit(eps, minPts);
}

void ZVDBSCAN::Fit(double eps, unsigned int minPts)
{
    const size_t n = distances.GetNumRows();
    if (distances.GetNumColumns() != n) {
        labels.assign(n, noise);
        return;
    }
    const double* const matrix = distances.GetData().data();
    std::vector<int> newLabels(n, unseen);
    std::vector<unsigned int> neighbours(n);
    std::vector<unsigned int> queue;
    queue.reserve(n);
    int cluster = 0;
    for (size_t founder = 0; founder < n; ++founder) {
        if (newLabels[founder] != unseen)
            continue;
        size_t count = FindNeighbours(matrix + founder * n, n, eps, neighbours.data());
        if (count < minPts) {
            newLabels[founder] = noise;
            continue;
        }
        // The founder also claims neighbours that are noise so far. They are not core objects, so
        // the cluster does not grow from them.
        newLabels[founder] = cluster;
        queue.clear();
        for (size_t k = 0; k < count; ++k) {
            int& label = newLabels[neighbours[k]];
            if (label == unseen)
                queue.push_back(neighbours[k]);
            if (label < 0)
                label = cluster;
        }
        for (size_t front = 0; front < queue.size(); ++front) {
            count = FindNeighbours(matrix + queue[front] * n, n, eps, neighbours.data());
            if (count < minPts)
                continue;
            for (size_t k = 0; k < count; ++k) {
                int& label = newLabels[neighbours[k]];
                if (label == unseen) {
                    queue.push_back(neighbours[k]);
                    label = cluster;
                }
            }
        }
        ++cluster;
    }
    labels = std::move(newLabels);
}

std::vector<unsigned int> ZVDBSCAN::GetClusterCenters() const
{
    std::vector<std::vector<unsigned int>> members;
    for (size_t i = 0; i < labels.size(); ++i) {
        if (labels[i] == noise)
            continue;
        const size_t cluster = static_cast<size_t>(labels[i]);
        if (cluster >= members.size())
            members.resize(cluster + 1);
        members[cluster].push_back(static_cast<unsigned int>(i));
    }
    std::vector<unsigned int> centers;
    centers.reserve(members.size());
    for (const auto& cluster : members)
        centers.push_back(Medoid(distances.GetData().data(), labels.size(), cluster));
    return centers;
}

}  // namespace ZVMath
