#include "zvmath/dbscan.h"

#include "multiversion.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

namespace ZVMath
{

namespace
{

constexpr int noise = -1;

// Sets of objects: object q is bit q % 64 of word q / 64.
constexpr size_t wordBits = 64;

/// The bit of each object of a word, for picking it out of a comparison's all ones or all zeros.
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

/// A word of a set that is not empty.
struct Word
{
    size_t index;
    uint64_t bits;
};

/// Calls `visit` with each object in the word, ascending.
template <class Visit> void ForEachObject(Word word, Visit visit)
{
    for (; word.bits != 0; word.bits &= word.bits - 1)
        visit(static_cast<unsigned int>(word.index * wordBits) +
              static_cast<unsigned int>(__builtin_ctzll(word.bits)));
}

/// The words of a set, and the number of its objects.
struct Neighbours
{
    const Word* begin;
    const Word* end;
    size_t count;
};

/// The objects whose distance in `row` is within eps, written to `words`, which has room for those
/// of all objects. Without branches, which would hold up the stream from memory: each word is
/// stored, and stays when it is not empty.
ZVMATH_CLONES Neighbours FindNeighbours(const double* row, size_t n, double eps, Word* words)
{
    Word* end = words;
    size_t count = 0;
    const auto add = [&](size_t index, uint64_t bits) {
        *end = {index, bits};
        end += bits != 0;
        count += static_cast<size_t>(__builtin_popcountll(bits));
    };
    size_t q = 0;
    for (; q + wordBits <= n; q += wordBits) {
        Words4 word = {};
        for (size_t k = 0; k < wordBits; k += 4) {
            const auto& bits = *reinterpret_cast<const Words4*>(bitOfLane.bits + k);
            word |= (Four(row + q + k).v <= eps) & bits;
        }
        add(q / wordBits, static_cast<uint64_t>((word[0] | word[1]) | (word[2] | word[3])));
    }
    if (q < n) {
        uint64_t bits = 0;
        for (size_t k = 0; q + k < n; ++k)
            bits |= uint64_t{row[q + k] <= eps} << k;
        add(q / wordBits, bits);
    }
    return {words, end, count};
}

/// Finds neighbourhoods. Rows are read faster in the order in which they lie in memory than in the
/// order in which clusters grow. So they are read in turn and their neighbourhoods kept, all of
/// them unless those are so large that they would take more than half a kilobyte an object; the
/// remaining rows are read when they are asked for.
class Neighbourhoods
{
public:
    Neighbourhoods(const double* matrix, size_t objects, double radius)
        : distances(matrix), n(objects), eps(radius)
    {
        constexpr size_t keptWordsPerObject = 32;
        const size_t wordsOfAll = (n + wordBits - 1) / wordBits;
        // The last kept neighbourhood may pass the limit, and one more goes behind the kept ones.
        // Not cleared: what is never written is never memory.
        words.reset(new Word[keptWordsPerObject * n + 2 * wordsOfAll]);
        room = words.get();
        kept.reserve(n);
        while (kept.size() < n && room < words.get() + keptWordsPerObject * n) {
            kept.push_back(Read(kept.size()));
            room += kept.back().end - kept.back().begin;
        }
    }

    /// The neighbourhood of object p; it stands until the next call.
    Neighbours Of(size_t p) { return p < kept.size() ? kept[p] : Read(p); }

private:
    Neighbours Read(size_t p) { return FindNeighbours(distances + p * n, n, eps, room); }

    const double* distances;
    size_t n;
    double eps;
    std::unique_ptr<Word[]> words;
    Word* room;  // behind the kept words
    std::vector<Neighbours> kept;
};

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
    Neighbourhoods neighbourhoods(distances.GetData().data(), n, eps);
    std::vector<int> newLabels(n, noise);
    std::vector<uint64_t> unseen((n + wordBits - 1) / wordBits, ~uint64_t{0});  // not even queued
    std::vector<unsigned int> queue;
    queue.reserve(n);

    int cluster = 0;
    // An object is labelled when it is queued: nothing asks for its label before its turn comes.
    const auto enqueue = [&](unsigned int q) {
        newLabels[q] = cluster;
        queue.push_back(q);
    };
    const auto enqueueUnseen = [&](const Neighbours& neighbours) {
        for (const Word* word = neighbours.begin; word < neighbours.end; ++word) {
            ForEachObject({word->index, word->bits & unseen[word->index]}, enqueue);
            unseen[word->index] &= ~word->bits;
        }
    };
    for (unsigned int founder = 0; founder < n; ++founder) {
        const uint64_t bit = uint64_t{1} << founder % wordBits;
        if ((unseen[founder / wordBits] & bit) == 0)
            continue;
        unseen[founder / wordBits] &= ~bit;
        const Neighbours around = neighbourhoods.Of(founder);
        if (around.count < minPts)
            continue;

        // The founder also claims neighbours that are noise so far. They are not core objects, so
        // the cluster does not grow from them.
        newLabels[founder] = cluster;
        for (const Word* word = around.begin; word < around.end; ++word)
            ForEachObject({word->index, word->bits & ~unseen[word->index]}, [&](unsigned int q) {
                if (newLabels[q] == noise)
                    newLabels[q] = cluster;
            });
        queue.clear();
        enqueueUnseen(around);
        for (size_t front = 0; front < queue.size(); ++front) {
            const Neighbours further = neighbourhoods.Of(queue[front]);
            if (further.count >= minPts)
                enqueueUnseen(further);
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
