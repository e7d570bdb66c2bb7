#include "zvmath/dbscan.h"

#include "multiversion.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>

namespace ZVMath
{

namespace
{

constexpr int noise = -1;

// Sets of objects: object q is bit q % 64 of word q / 64.
constexpr size_t wordBits = 64;

struct BitOfLane
{
    constexpr BitOfLane() : bits()
    {
        for (size_t k = 0; k < wordBits; ++k)
            bits[k] = uint64_t{1} << k;
    }
    alignas(32) uint64_t bits[wordBits];
};

constexpr BitOfLane bitOfLane;

typedef int64_t Words4 __attribute__((vector_size(32), may_alias));

/// The set of the objects whose distance in `row` is within eps; returns their number. Without
/// branches, so that nothing holds up the stream from memory.
ZVMATH_CLONES size_t FindNeighbours(const double* row, size_t n, double eps, uint64_t* neighbours)
{
    size_t count = 0;
    size_t q = 0;
    for (; q + wordBits <= n; q += wordBits) {
        Words4 word = {};
        for (size_t k = 0; k < wordBits; k += 4) {
            const auto& bits = *reinterpret_cast<const Words4*>(bitOfLane.bits + k);
            word |= (Four(row + q + k).v <= eps) & bits;
        }
        const int64_t all = (word[0] | word[1]) | (word[2] | word[3]);
        *neighbours++ = static_cast<uint64_t>(all);
        count += static_cast<size_t>(__builtin_popcountll(static_cast<uint64_t>(all)));
    }
    if (q < n) {
        uint64_t word = 0;
        for (size_t k = 0; q + k < n; ++k)
            word |= uint64_t{row[q + k] <= eps} << k;
        *neighbours = word;
        count += static_cast<size_t>(__builtin_popcountll(word));
    }
    return count;
}

/// Calls `visit` with the object of each bit that is set in word number `index`, ascending.
template <class Visit> void ForEachObject(uint64_t word, size_t index, Visit visit)
{
    for (; word != 0; word &= word - 1)
        visit(static_cast<unsigned int>(index * wordBits) +
              static_cast<unsigned int>(__builtin_ctzll(word)));
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
    std::vector<int> newLabels(n, noise);
    const size_t words = (n + wordBits - 1) / wordBits;
    std::vector<uint64_t> neighbours(words);
    std::vector<uint64_t> unseen(words, ~uint64_t{0});  // neither visited nor waiting
    std::vector<uint64_t> waiting(words);               // reached by the cluster, not yet visited

    int cluster = 0;
    for (unsigned int founder = 0; founder < n; ++founder) {
        const uint64_t bit = uint64_t{1} << founder % wordBits;
        if ((unseen[founder / wordBits] & bit) == 0)
            continue;
        unseen[founder / wordBits] &= ~bit;
        const size_t count = FindNeighbours(matrix + founder * n, n, eps, neighbours.data());
        if (count < minPts)
            continue;

        newLabels[founder] = cluster;
        const auto claim = [&](unsigned int q) { newLabels[q] = cluster; };
        // The founder also claims neighbours that are noise so far. They are not core objects, so
        // the cluster does not grow from them.
        for (size_t w = 0; w < words; ++w)
            ForEachObject(neighbours[w] & ~unseen[w], w, [&](unsigned int q) {
                if (newLabels[q] == noise)
                    claim(q);
            });
        const auto reach = [&] {
            for (size_t w = 0; w < words; ++w) {
                const uint64_t reached = neighbours[w] & unseen[w];
                ForEachObject(reached, w, claim);
                waiting[w] |= reached;
                unseen[w] &= ~reached;
            }
        };
        reach();
        // Which waiting object goes first does not matter to what the cluster reaches in the end.
        // In ascending order rows are read nearly as they lie in memory.
        for (bool growing = true; growing;) {
            growing = false;
            for (size_t w = 0; w < words; ++w)
                while (waiting[w] != 0) {
                    const size_t q =
                        w * wordBits + static_cast<size_t>(__builtin_ctzll(waiting[w]));
                    waiting[w] &= waiting[w] - 1;
                    growing = true;
                    if (FindNeighbours(matrix + q * n, n, eps, neighbours.data()) >= minPts)
                        reach();
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
