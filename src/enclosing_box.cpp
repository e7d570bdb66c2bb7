// The search for the smallest box. Nothing is left untried, but of the numSteps^3 orientations all
// except some ten are ruled out by lower bounds, a fraction of a nanosecond each; those ten are
// computed from all points.
//
// The box of a few chosen points is within the box of all, and rounding keeps that order: from the
// extents to (dx * dy) * dz every operation is monotonic, and no operand is negative. So the volume
// of the chosen points, by the same operations in float, is never above the volume of all, to the
// bit. Where it is above the best volume known, or equal to it and too late to win a tie, the
// orientation is settled. Otherwise it is computed in full, and if that shows that the bound fell
// short, the points at the box's faces join the chosen ones.
//
// A chord, the difference of two points, bounds whole ranges of angles at once: along each axis the
// extent is at least the turned chord's coordinate, less a slack for rounding. While one angle
// grows that coordinate follows a sine curve. From the values at both ends of a range, h radians
// apart, it sags by at most h^2 / 8 chord lengths, and not at all if it is an arch above zero, as
// it is for the third angle, which turns about the axis of the box itself.
//
// The steps: the points are copied, and those farthest in 14 directions chosen. A coarse sample
// and a descent, both by the bound, find a good orientation. Then tiles of 8 cells, a cell being an
// eighth of each angle's range, are ruled out by chords: as a whole, by rows (orientations that
// share the first two angles) and one by one; what is left, by the bound. Where the points lie on
// something like a sphere, so that every few degrees other ones are at the faces, a tile gets
// chosen points of its own.
//
// Names: s1, c1, s2, c2, s3, c3 are sine and cosine of the first, second and third angle; their
// indices are i, j, k.

#include "zvmath/simple_shapes.h"

#include "elementary.h"
#include "multiversion.h"
#include "zvplatform/alloca.h"

#include <algorithm>
#include <alloca.h>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace ZVMath
{

namespace
{

constexpr size_t lanes = 8;
constexpr size_t blockSize = 256;  // points that are worked on while they are in the fastest cache
constexpr size_t batchSize = 16;   // third angles for which the points are turned together
constexpr float largest = std::numeric_limits<float>::max();
constexpr float infinite = std::numeric_limits<float>::infinity();

ZVMATH_INLINE void Raise(Vec8& most, const Vec8& v)
{
    most = v > most ? v : most;
}

ZVMATH_INLINE void Lower(Vec8& least, const Vec8& v)
{
    least = v < least ? v : least;
}

ZVMATH_INLINE float Greatest(const Vec8& v)
{
    float most[lanes / 2];
    for (size_t l = 0; l < lanes / 2; ++l)
        most[l] = v[l + 4] > v[l] ? v[l + 4] : v[l];
    const float even = most[2] > most[0] ? most[2] : most[0];
    const float odd = most[3] > most[1] ? most[3] : most[1];
    return odd > even ? odd : even;
}

ZVMATH_INLINE float Least(const Vec8& v)
{
    const Vec8 negative = -v;
    return -Greatest(negative);
}

/// The first lane with a value that one of them has.
ZVMATH_INLINE size_t LaneOf(float value, const Vec8& v)
{
    size_t lane = 0;
    while (lane + 1 < lanes && v[lane] != value)
        ++lane;
    return lane;
}

ZVMATH_INLINE bool Any(const Bits8& condition)
{
    typedef int64_t Bits4 __attribute__((vector_size(32)));
    const Bits4 bits = (Bits4)condition;
    return ((bits[0] | bits[1]) | (bits[2] | bits[3])) != 0;
}

/// (x, y) turned by an angle, in the operations and their order that the contract names.
template <class Result, class X, class Y, class Angle>
ZVMATH_INLINE void Turn(Result& x2, Result& y2, const X& x, const Y& y, const Angle& s,
                        const Angle& c)
{
    const Result turned = c * x - s * y;
    y2 = y * c + x * s;
    x2 = turned;
}

struct Angles
{
    const float* sine;
    const float* cosine;
    size_t count;
};

/// Coordinate by coordinate; `size` is a multiple of the lanes, filled up with the first point.
struct Points
{
    float* x;
    float* y;
    float* z;
    size_t size;
};

/// Eight of Points or of Chosen. (For references to vectors in memory see multiversion.h.)
template <class Coordinates>
ZVMATH_INLINE void Get(Vec8& x, Vec8& y, Vec8& z, const Coordinates& from, size_t p)
{
    x = Eight(from.x + p).v;
    y = Eight(from.y + p).v;
    z = Eight(from.z + p).v;
}

/// The extremes of a coordinate among every eighth point, and the blocks in which they were found.
struct Extremes
{
    Vec8 most;
    Vec8 least;
    Bits8 mostBlock;
    Bits8 leastBlock;

    ZVMATH_INLINE void Start(const Vec8& v)
    {
        most = least = v;
        mostBlock = leastBlock = Bits8{};
    }
    ZVMATH_INLINE void Take(const Vec8& newMost, const Vec8& newLeast, size_t block)
    {
        const Bits8 here = Bits8{} + static_cast<int>(block);
        mostBlock = newMost > most ? here : mostBlock;
        leastBlock = newLeast < least ? here : leastBlock;
        most = newMost;
        least = newLeast;
    }
    ZVMATH_INLINE float Extent() const { return Greatest(most) - Least(least); }
    ZVMATH_INLINE size_t BlockOfMost() const
    {
        return static_cast<size_t>(mostBlock[LaneOf(Greatest(most), most)]);
    }
    ZVMATH_INLINE size_t BlockOfLeast() const
    {
        return static_cast<size_t>(leastBlock[LaneOf(Least(least), least)]);
    }
};

/// The points whose box is the bound, filled up likewise. Their index has to fit into the lowest
/// bits of a float, see ChooseChords.
struct Chosen
{
    static constexpr size_t most = 64;
    static constexpr int indexBits = 63;

    float x[most];
    float y[most];
    float z[most];
    size_t count = 0;
};

struct Orientation
{
    size_t i;
    size_t j;
    size_t k;
};

struct Search
{
    Points points;
    Angles angles;
    float slack = 0.0f;
    Chosen chosen;
    Orientation best = {0, 0, 0};
    float volume = largest;    // of the best
    Orientation queue[lanes];  // ruled out by no chord, and not yet bounded by the chosen points
    size_t queued = 0;
    size_t computed = 0;    // orientations, from all points
    size_t worthwhile = 0;  // how many may be computed before a tile needs points of its own
};

/// Takes the orientation if its volume is smaller, or equal and it comes first.
void Offer(Search& s, float volume, const Orientation& o)
{
    const Orientation& b = s.best;
    const bool first = o.i != b.i ? o.i < b.i : o.j != b.j ? o.j < b.j : o.k < b.k;
    if (volume < s.volume || (volume == s.volume && first)) {
        s.volume = volume;
        s.best = o;
    }
}

/// What the volume must be below for an orientation of row (i, j) to matter: the best volume, or a
/// little more where a tie might win.
ZVMATH_INLINE float Limit(const Search& s, size_t i, size_t j)
{
    const bool later = i != s.best.i ? i > s.best.i : j > s.best.j;
    return later ? s.volume : s.volume * 1.0000005f + std::numeric_limits<float>::min();
}

void Choose(Search& s, size_t p)
{
    Chosen& c = s.chosen;
    const Points& all = s.points;
    if (c.count == Chosen::most)
        return;
    for (size_t q = 0; q < c.count; ++q)
        if (c.x[q] == all.x[p] && c.y[q] == all.y[p] && c.z[q] == all.z[p])
            return;
    if (c.count % lanes == 0)
        for (size_t q = c.count; q < c.count + lanes; ++q) {
            c.x[q] = all.x[0];
            c.y[q] = all.y[0];
            c.z[q] = all.z[0];
        }
    c.x[c.count] = all.x[p];
    c.y[c.count] = all.y[p];
    c.z[c.count] = all.z[p];
    ++c.count;
}

/// Chooses the point of a block that is farthest in direction (x, y, z).
ZVMATH_INLINE void ChooseFarthest(Search& s, size_t block, float x, float y, float z)
{
    const size_t begin = block * blockSize;
    const size_t end = std::min(s.points.size, begin + blockSize);
    Vec8 farthest = Vec8{} - infinite;
    Bits8 where = {};
    for (size_t p = begin; p < end; p += lanes) {
        const Vec8 distance =
            x * Eight(s.points.x + p).v + y * Eight(s.points.y + p).v + z * Eight(s.points.z + p).v;
        where = distance > farthest ? Bits8{} + static_cast<int>(p - begin) : where;
        Raise(farthest, distance);
    }
    const size_t lane = LaneOf(Greatest(farthest), farthest);
    Choose(s, begin + static_cast<size_t>(where[lane]) + lane);
}

#ifdef __clang__
#define ZVMATH_ROTATED(v, n)                                                                       \
    __builtin_shufflevector(v, v, n, (n) + 1, (n) + 2, (n) + 3, (n) + 4, (n) + 5, (n) + 6, (n) + 7)
#else
#define ZVMATH_ROTATED(v, n)                                                                       \
    __builtin_shuffle(v, Bits8{n, (n) + 1, (n) + 2, (n) + 3, (n) + 4, (n) + 5, (n) + 6, (n) + 7})
#endif

/// Copies points `begin` to `end` of `count` and raises `magnitudes` to their coordinates' bits
/// without the sign; as an integer an infinity is above all numbers, and a NaN above that.
ZVMATH_INLINE void LoadBlock(Bits8& magnitudes, const Points& to, const float* coords, size_t count,
                             size_t begin, size_t end)
{
    constexpr int allButSign = std::numeric_limits<int>::max();
    size_t p = begin;
    for (; p < end && p + lanes <= count; p += lanes) {
        const Vec8 a = Eight(coords + 3 * p).v;
        const Vec8 b = Eight(coords + 3 * p + lanes).v;
        const Vec8 c = Eight(coords + 3 * p + 2 * lanes).v;
        Bits8 bits = (Bits8)a & allButSign;
        magnitudes = bits > magnitudes ? bits : magnitudes;
        bits = (Bits8)b & allButSign;
        magnitudes = bits > magnitudes ? bits : magnitudes;
        bits = (Bits8)c & allButSign;
        magnitudes = bits > magnitudes ? bits : magnitudes;
        // In each lane one of the three has an x, one a y and one a z. That mixes up the order of
        // the eight points, which doesn't matter, but of y and z by a lane and two more than of x.
        const Bits8 first = {-1, 0, 0, -1, 0, 0, -1, 0};
        const Bits8 second = {0, -1, 0, 0, -1, 0, 0, -1};
        const Vec8 y = second ? a : first ? c : b;
        const Vec8 z = second ? c : first ? b : a;
        Eight(to.x + p).v = second ? b : first ? a : c;
        Eight(to.y + p).v = ZVMATH_ROTATED(y, 1);
        Eight(to.z + p).v = ZVMATH_ROTATED(z, 2);
    }
    for (; p < end; ++p) {
        const float* const point = coords + (p < count ? 3 * p : 0);
        to.x[p] = point[0];
        to.y[p] = point[1];
        to.z[p] = point[2];
        for (size_t axis = 0; axis < 3; ++axis) {
            int bits;
            std::memcpy(&bits, point + axis, sizeof bits);
            magnitudes[0] = std::max(magnitudes[0], bits & allButSign);
        }
    }
}

constexpr size_t numDirections = 7;  // and their opposites
constexpr float directions[numDirections][3] = {{1, 0, 0},  {0, 1, 0},  {0, 0, 1},  {1, 1, 1},
                                                {1, 1, -1}, {1, -1, 1}, {1, -1, -1}};

ZVMATH_INLINE void AlongDirections(Vec8* along, const Points& points, size_t p)
{
    Vec8 x, y, z;
    Get(x, y, z, points, p);
    along[0] = x;
    along[1] = y;
    along[2] = z;
    along[3] = (x + y) + z;
    along[4] = (x + y) - z;
    along[5] = (x - y) + z;
    along[6] = (x - y) - z;
}

/// Copies the points and chooses the first and the farthest ones. None is chosen where bounds
/// might not hold, because of what is not a finite number, or will not be one.
ZVMATH_CLONES void Load(Search& s, const float* coords, size_t count)
{
    const Points& all = s.points;
    Extremes extremes[numDirections];
    Bits8 magnitudes = {};
    for (size_t begin = 0; begin < all.size; begin += blockSize) {
        const size_t end = std::min(all.size, begin + blockSize);
        LoadBlock(magnitudes, all, coords, count, begin, end);
        Vec8 along[numDirections];
        AlongDirections(along, all, begin);
        if (begin == 0)
            for (size_t d = 0; d < numDirections; ++d)
                extremes[d].Start(along[d]);
        Vec8 most[numDirections];
        Vec8 least[numDirections];
        for (size_t d = 0; d < numDirections; ++d) {
            most[d] = extremes[d].most;
            least[d] = extremes[d].least;
        }
        for (size_t p = begin; p < end; p += lanes) {
            AlongDirections(along, all, p);
            for (size_t d = 0; d < numDirections; ++d) {
                Raise(most[d], along[d]);
                Lower(least[d], along[d]);
            }
        }
        for (size_t d = 0; d < numDirections; ++d)
            extremes[d].Take(most[d], least[d], begin / blockSize);
    }
    int bits = 0;
    for (size_t l = 0; l < lanes; ++l)
        bits = std::max(bits, magnitudes[l]);
    float size;
    std::memcpy(&size, &bits, sizeof size);
    if (!(size < 1e37f))
        return;
    // Rounding moves a chord's coordinate against the extent of turned points by less than 160
    // units of 2^-24 * size, the sines' and cosines' own errors included. (Where size is so small
    // that rounding is not relative, all volumes are zero.)
    s.slack = size * 0x1p-16f;
    Choose(s, 0);
    for (size_t d = 0; d < numDirections; ++d) {
        const float* const v = directions[d];
        ChooseFarthest(s, extremes[d].BlockOfMost(), v[0], v[1], v[2]);
        ChooseFarthest(s, extremes[d].BlockOfLeast(), -v[0], -v[1], -v[2]);
    }
}

/// The volumes of the chosen points' boxes in eight orientations.
ZVMATH_CLONES void Bound(float* volumes, const Search& s, const Orientation* o)
{
    Vec8 s1, c1, s2, c2, s3, c3;
    for (size_t l = 0; l < lanes; ++l) {
        s1[l] = s.angles.sine[o[l].i];
        c1[l] = s.angles.cosine[o[l].i];
        s2[l] = s.angles.sine[o[l].j];
        c2[l] = s.angles.cosine[o[l].j];
        s3[l] = s.angles.sine[o[l].k];
        c3[l] = s.angles.cosine[o[l].k];
    }
    Vec8 most[3] = {};
    Vec8 least[3] = {};
    for (size_t p = 0; p < s.chosen.count; ++p) {
        Vec8 x, y, z;
        Turn(x, y, s.chosen.x[p], s.chosen.y[p], s1, c1);
        Turn(y, z, y, s.chosen.z[p], s2, c2);
        Turn(x, y, x, y, s3, c3);
        if (p == 0) {
            most[0] = least[0] = x;
            most[1] = least[1] = y;
            most[2] = least[2] = z;
        }
        Raise(most[0], x);
        Lower(least[0], x);
        Raise(most[1], y);
        Lower(least[1], y);
        Raise(most[2], z);
        Lower(least[2], z);
    }
    Eight(volumes).v = ((most[0] - least[0]) * (most[1] - least[1])) * (most[2] - least[2]);
}

/// Chooses the points at the faces of a box whose extremes are known.
ZVMATH_INLINE void ChooseAtFaces(Search& s, const Orientation& o, const Extremes& alongX,
                                 const Extremes& alongY, const Extremes& alongZ)
{
    const Angles& angles = s.angles;
    float axes[3][3];  // of the box
    for (size_t a = 0; a < 3; ++a) {
        float x, y, z;
        Turn(x, y, a == 0 ? 1.0f : 0.0f, a == 1 ? 1.0f : 0.0f, angles.sine[o.i],
             angles.cosine[o.i]);
        Turn(y, z, y, a == 2 ? 1.0f : 0.0f, angles.sine[o.j], angles.cosine[o.j]);
        Turn(x, y, x, y, angles.sine[o.k], angles.cosine[o.k]);
        axes[0][a] = x;
        axes[1][a] = y;
        axes[2][a] = z;
    }
    const Extremes* const extremes[] = {&alongX, &alongY, &alongZ};
    for (size_t a = 0; a < 3; ++a) {
        const float* const v = axes[a];
        ChooseFarthest(s, extremes[a]->BlockOfMost(), v[0], v[1], v[2]);
        ChooseFarthest(s, extremes[a]->BlockOfLeast(), -v[0], -v[1], -v[2]);
    }
}

/// Computes the volumes of row (i, j) at up to a batch of third angles from all points and offers
/// them. Every extreme starts at the first point, so a partial volume is a bound too: where it is
/// too large the third angle is given up. If the first volume, or what ended it, is above `bound`,
/// the points at the faces of its box are chosen.
ZVMATH_CLONES void Compute(Search& s, size_t i, size_t j, const size_t* k, size_t count,
                           float bound)
{
    const Points& all = s.points;
    const Angles& angles = s.angles;
    const float s1 = angles.sine[i], c1 = angles.cosine[i];
    const float s2 = angles.sine[j], c2 = angles.cosine[j];
    const float limit = Limit(s, i, j);
    s.computed += count;
    Extremes alongX[batchSize], alongY[batchSize], alongZ;
    float volumes[batchSize];
    size_t open[batchSize];
    Vec8 x, y, z;
    Turn(x, y, Vec8{} + all.x[0], Vec8{} + all.y[0], s1, c1);
    Turn(y, z, y, Vec8{} + all.z[0], s2, c2);
    alongZ.Start(z);
    for (size_t q = 0; q < count; ++q) {
        Vec8 u, v;
        Turn(u, v, x, y, angles.sine[k[q]], angles.cosine[k[q]]);
        alongX[q].Start(u);
        alongY[q].Start(v);
        open[q] = q;
    }
    size_t numOpen = count;
    size_t nextCheck = blockSize;
    for (size_t begin = 0; begin < all.size && numOpen > 0; begin += blockSize) {
        const size_t size = std::min(all.size - begin, blockSize);
        const size_t block = begin / blockSize;
        float rowX[blockSize], rowY[blockSize];
        Vec8 most = alongZ.most, least = alongZ.least;
        for (size_t p = 0; p < size; p += lanes) {
            Get(x, y, z, all, begin + p);
            Turn(x, y, x, y, s1, c1);
            Turn(y, z, y, z, s2, c2);
            Eight(rowX + p).v = x;
            Eight(rowY + p).v = y;
            Raise(most, z);
            Lower(least, z);
        }
        alongZ.Take(most, least, block);
        for (size_t q = 0; q < numOpen; ++q) {
            Extremes& u = alongX[open[q]];
            Extremes& v = alongY[open[q]];
            const float s3 = angles.sine[k[open[q]]], c3 = angles.cosine[k[open[q]]];
            Vec8 mostX = u.most, leastX = u.least, mostY = v.most, leastY = v.least;
            for (size_t p = 0; p < size; p += lanes) {
                const Vec8 atX = Eight(rowX + p).v, atY = Eight(rowY + p).v;
                Turn(x, y, atX, atY, s3, c3);
                Raise(mostX, x);
                Lower(leastX, x);
                Raise(mostY, y);
                Lower(leastY, y);
            }
            u.Take(mostX, leastX, block);
            v.Take(mostY, leastY, block);
        }
        if (begin + size < nextCheck && begin + size < all.size)
            continue;
        nextCheck *= 2;  // the extremes change ever more rarely
        size_t stillOpen = 0;
        for (size_t q = 0; q < numOpen; ++q) {
            const size_t c = open[q];
            volumes[c] = (alongX[c].Extent() * alongY[c].Extent()) * alongZ.Extent();
            if (volumes[c] < limit)
                open[stillOpen++] = c;
        }
        numOpen = stillOpen;
    }
    for (size_t q = 0; q < numOpen; ++q)
        Offer(s, volumes[open[q]], {i, j, k[open[q]]});
    if (volumes[0] > bound)
        ChooseAtFaces(s, {i, j, k[0]}, alongX[0], alongY[0], alongZ);
}

/// Computes what the bound doesn't rule out of the orientations in the queue, the most promising
/// one first: it may rule out others, by its volume or by the points that it adds to the bound.
void ComputeQueue(Search& s)
{
    const size_t count = s.queued;
    s.queued = 0;
    if (count == 0)
        return;
    std::fill(s.queue + count, s.queue + lanes, s.queue[0]);
    float bounds[lanes];
    Bound(bounds, s, s.queue);
    bool done[lanes] = {};
    for (;;) {
        size_t next = lanes;
        for (size_t l = 0; l < count; ++l)
            if (!done[l] && bounds[l] < Limit(s, s.queue[l].i, s.queue[l].j) &&
                (next == lanes || bounds[l] < bounds[next]))
                next = l;
        if (next == lanes)
            return;
        done[next] = true;
        const Orientation& o = s.queue[next];
        const size_t numChosen = s.chosen.count;
        Compute(s, o.i, o.j, &o.k, 1, bounds[next]);
        if (s.chosen.count > numChosen)
            Bound(bounds, s, s.queue);
    }
}

ZVMATH_INLINE void Enqueue(Search& s, const Orientation& o)
{
    s.queue[s.queued++] = o;
    if (s.queued == lanes)
        ComputeQueue(s);
}

/// The best by the bound of an even sample, 4 x 4 x 8.
Orientation Sample(const Search& s)
{
    constexpr size_t perAngle = 4;
    Orientation o[lanes];
    Orientation best = {0, 0, 0};
    float least = infinite;
    for (size_t l = 0; l < lanes; ++l)
        o[l].k = (2 * l + 1) * s.angles.count / (2 * lanes);
    for (size_t a = 0; a < perAngle; ++a)
        for (size_t b = 0; b < perAngle; ++b) {
            for (Orientation& to : o) {
                to.i = (2 * a + 1) * s.angles.count / (2 * perAngle);
                to.j = (2 * b + 1) * s.angles.count / (2 * perAngle);
            }
            float volumes[lanes];
            Bound(volumes, s, o);
            for (size_t l = 0; l < lanes; ++l)
                if (volumes[l] < least) {
                    least = volumes[l];
                    best = o[l];
                }
        }
    return best;
}

/// Goes to the best by the bound of the neighbours that are `step` away in any angles. False if
/// none is better than where it is.
bool GoToBestNeighbour(Orientation& o, float& bound, const Search& s, size_t step)
{
    Orientation to[32];  // 28, in whole vectors: itself stays where it is unless others are better
    to[0] = o;
    size_t count = 1;
    const size_t n = s.angles.count;
    // What is below zero wraps round, and is too large.
    for (size_t i = o.i - step, a = 0; a < 3; i += step, ++a)
        for (size_t j = o.j - step, b = 0; b < 3; j += step, ++b)
            for (size_t k = o.k - step, c = 0; c < 3; k += step, ++c)
                if (i < n && j < n && k < n)
                    to[count++] = {i, j, k};
    while (count % lanes != 0)
        to[count++] = o;
    size_t best = 0;
    bound = infinite;
    for (size_t first = 0; first < count; first += lanes) {
        float volumes[lanes];
        Bound(volumes, s, to + first);
        for (size_t l = 0; l < lanes; ++l)
            if (volumes[l] < bound) {
                bound = volumes[l];
                best = first + l;
            }
    }
    o = to[best];
    return best != 0;
}

/// Descends to where the bound is locally least and computes that orientation, again and again
/// until the bound is its volume.
void FindStart(Search& s)
{
    constexpr size_t maxRounds = 8;
    Orientation o = Sample(s);
    size_t step = std::max<size_t>(1, (s.angles.count + 8) / 16);
    for (size_t round = 0; round < maxRounds; ++round) {
        float bound = infinite;
        for (; step > 0; step /= 2)
            while (GoToBestNeighbour(o, bound, s, step)) {
            }
        step = 1;
        const size_t numChosen = s.chosen.count;
        Compute(s, o.i, o.j, &o.k, 1, bound);
        if (s.chosen.count == numChosen)
            return;
    }
}

/// The indices of the first two angles in a tile, from first to last.
struct Tile
{
    size_t firstI;
    size_t lastI;
    size_t firstJ;
    size_t lastJ;
};

/// The third angles in a tile's eight cells; where there are fewer, the others are unused.
struct Cells
{
    size_t first[lanes];
    size_t last[lanes];
    EightInMemory firstSine;
    EightInMemory firstCosine;
    EightInMemory lastSine;
    EightInMemory lastCosine;
    EightInMemory middleSine;
    EightInMemory middleCosine;
    EightInMemory extent;  // at least that, for the unused ones are ruled out by an infinite one
    size_t width;
    size_t count;
};

void SetUp(Cells& cells, const Angles& angles)
{
    cells.width = (angles.count + lanes - 1) / lanes;
    cells.count = (angles.count + cells.width - 1) / cells.width;
    for (size_t l = 0; l < lanes; ++l) {
        const bool isUsed = l < cells.count;
        const size_t first = isUsed ? l * cells.width : 0;
        const size_t last = isUsed ? std::min(angles.count, first + cells.width) - 1 : 0;
        const size_t middle = (first + last) / 2;
        cells.first[l] = first;
        cells.last[l] = last;
        cells.firstSine.v[l] = angles.sine[first];
        cells.firstCosine.v[l] = angles.cosine[first];
        cells.lastSine.v[l] = angles.sine[last];
        cells.lastCosine.v[l] = angles.cosine[last];
        cells.middleSine.v[l] = angles.sine[middle];
        cells.middleCosine.v[l] = angles.cosine[middle];
        cells.extent.v[l] = isUsed ? 0.0f : infinite;
    }
}

/// A chord for each axis of the box and each cell of a tile; along the third axis one for all.
struct Chords
{
    EightInMemory alongX[3];
    EightInMemory alongY[3];
    float alongZ[3];
};

/// Writes the index into the lowest bits, which changes a value by less than 2^-17 of it. So the
/// greatest and the least tell whose they are, and that they are not quite right doesn't matter:
/// any two points make a chord.
template <class Index> ZVMATH_INLINE void Mark(Vec8& values, const Index& index)
{
    values = (Vec8)(((Bits8)values & ~Chosen::indexBits) | index);
}

ZVMATH_INLINE size_t MarkOf(float value)
{
    int bits;
    std::memcpy(&bits, &value, sizeof bits);
    return static_cast<size_t>(bits & Chosen::indexBits);
}

/// The longest chords in the middle of each cell.
ZVMATH_INLINE void ChooseChords(Chords& chords, const Search& s, const Cells& cells, size_t i,
                                size_t j)
{
    const Chosen& c = s.chosen;
    const float s1 = s.angles.sine[i], c1 = s.angles.cosine[i];
    const float s2 = s.angles.sine[j], c2 = s.angles.cosine[j];
    float rowX[Chosen::most], rowY[Chosen::most];
    Vec8 mostZ = Vec8{} - infinite, leastZ = Vec8{} + infinite;
    Bits8 index = {0, 1, 2, 3, 4, 5, 6, 7};
    for (size_t p = 0; p < c.count; p += lanes) {
        Vec8 x, y, z;
        Get(x, y, z, c, p);
        Turn(x, y, x, y, s1, c1);
        Turn(y, z, y, z, s2, c2);
        Eight(rowX + p).v = x;
        Eight(rowY + p).v = y;
        Mark(z, index);
        index += static_cast<int>(lanes);
        Raise(mostZ, z);
        Lower(leastZ, z);
    }
    const Vec8 s3 = cells.middleSine.v, c3 = cells.middleCosine.v;
    Vec8 mostX = Vec8{} - infinite, leastX = Vec8{} + infinite;
    Vec8 mostY = mostX, leastY = leastX;
    for (size_t p = 0; p < c.count; ++p) {
        Vec8 x, y;
        Turn(x, y, rowX[p], rowY[p], s3, c3);
        Mark(x, static_cast<int>(p));
        Mark(y, static_cast<int>(p));
        Raise(mostX, x);
        Lower(leastX, x);
        Raise(mostY, y);
        Lower(leastY, y);
    }
    const float* const coords[] = {c.x, c.y, c.z};
    for (size_t l = 0; l < lanes; ++l) {
        const size_t p = MarkOf(mostX[l]), q = MarkOf(leastX[l]);
        const size_t r = MarkOf(mostY[l]), t = MarkOf(leastY[l]);
        for (size_t a = 0; a < 3; ++a) {
            chords.alongX[a].v[l] = coords[a][p] - coords[a][q];
            chords.alongY[a].v[l] = coords[a][r] - coords[a][t];
        }
    }
    const size_t p = MarkOf(Greatest(mostZ));
    const size_t q = MarkOf(Least(leastZ));
    for (size_t a = 0; a < 3; ++a)
        chords.alongZ[a] = coords[a][p] - coords[a][q];
}

/// `reach` bounded by what a chord may sag below it, and from below by `least`.
ZVMATH_INLINE void Shorten(Vec8& reach, const EightInMemory* chord, float sag, float slack,
                           const EightInMemory& least)
{
    constexpr int allButSign = std::numeric_limits<int>::max();
    Vec8 length = {};  // no less than it is
    for (size_t a = 0; a < 3; ++a)
        length += (Vec8)((Bits8)chord[a].v & allButSign);
    reach = reach - length * sag - slack;
    const Vec8 floor = least.v;
    Raise(reach, floor);
}

/// Chooses a tile's chords and tells which of its cells they leave open. False if none.
ZVMATH_CLONES bool FindOpenCells(bool* open, Chords& chords, const Search& s, const Cells& cells,
                                 const Tile& tile)
{
    ChooseChords(chords, s, cells, (tile.firstI + tile.lastI) / 2, (tile.firstJ + tile.lastJ) / 2);
    Vec8 u[3], v[3];
    for (size_t a = 0; a < 3; ++a) {
        u[a] = chords.alongX[a].v;
        v[a] = chords.alongY[a].v;
    }
    const float* const w = chords.alongZ;
    Vec8 x = Vec8{} + infinite, y = x;
    float z = infinite;
    for (const size_t i : {tile.firstI, tile.lastI}) {
        const float s1 = s.angles.sine[i], c1 = s.angles.cosine[i];
        Vec8 ux, uy, vx, vy;
        Turn(ux, uy, u[0], u[1], s1, c1);
        Turn(vx, vy, v[0], v[1], s1, c1);
        const float wy = w[1] * c1 + w[0] * s1;
        for (const size_t j : {tile.firstJ, tile.lastJ}) {
            const float s2 = s.angles.sine[j], c2 = s.angles.cosine[j];
            const Vec8 uy2 = c2 * uy - s2 * u[2];
            const Vec8 vy2 = c2 * vy - s2 * v[2];
            Lower(x, cells.firstCosine.v * ux - cells.firstSine.v * uy2);
            Lower(x, cells.lastCosine.v * ux - cells.lastSine.v * uy2);
            Lower(y, vy2 * cells.firstCosine.v + vx * cells.firstSine.v);
            Lower(y, vy2 * cells.lastCosine.v + vx * cells.lastSine.v);
            z = std::min(z, w[2] * c2 + wy * s2);
        }
    }
    // Angle by angle, and a hundredth more for its own rounding.
    const float step = 1.5708f / static_cast<float>(s.angles.count - 1);
    const auto sag = [step](size_t first, size_t last) {
        const float h = step * static_cast<float>(last - first);
        return 0.12625f * (h * h);
    };
    const float sagOfI = sag(tile.firstI, tile.lastI);
    const float sagOfJ = sag(tile.firstJ, tile.lastJ);
    Shorten(x, chords.alongX, sagOfI + sagOfJ, s.slack, cells.extent);
    Shorten(y, chords.alongY, sagOfI + sagOfJ, s.slack, cells.extent);
    float length = 0.0f;
    for (size_t a = 0; a < 3; ++a)
        length += std::abs(w[a]);
    z = std::max(0.0f, z - length * sagOfI - s.slack);
    const Bits8 isOpen = (x * y) * z < Limit(s, tile.firstI, tile.firstJ);
    for (size_t l = 0; l < lanes; ++l)
        open[l] = isOpen[l] != 0;
    return Any(isOpen);
}

/// Up to eight rows of a tile, from the `first` one on.
struct Rows
{
    size_t i[lanes];
    size_t j[lanes];
    Vec8 s1;
    Vec8 c1;
    Vec8 s2;
    Vec8 c2;
    Vec8 limit;  // of the volumes
    size_t count;

    ZVMATH_INLINE Rows(const Search& s, const Tile& tile, size_t first)
    {
        const size_t wide = tile.lastJ - tile.firstJ + 1;
        count = std::min(lanes, (tile.lastI - tile.firstI + 1) * wide - first);
        for (size_t l = 0; l < lanes; ++l) {
            const size_t row = first + (l < count ? l : 0);
            i[l] = tile.firstI + row / wide;
            j[l] = tile.firstJ + row % wide;
            s1[l] = s.angles.sine[i[l]];
            c1[l] = s.angles.cosine[i[l]];
            s2[l] = s.angles.sine[j[l]];
            c2[l] = s.angles.cosine[j[l]];
            limit[l] = l < count ? Limit(s, i[l], j[l]) : 0.0f;  // no volume is below zero
        }
    }
    /// (x, y, z) turned by the first two angles.
    ZVMATH_INLINE void TurnXY(Vec8& x2, Vec8& y2, float x, float y, float z) const
    {
        Turn(x2, y2, x, y, s1, c1);
        y2 = c2 * y2 - s2 * z;
    }
    ZVMATH_INLINE void TurnZ(Vec8& z2, float x, float y, float z) const
    {
        z2 = z * c2 + (y * c1 + x * s1) * s2;
    }
};

size_t NumRows(const Tile& tile)
{
    return (tile.lastI - tile.firstI + 1) * (tile.lastJ - tile.firstJ + 1);
}

/// The chords of a cell along the first two axes, turned by the first two angles of eight rows.
struct TurnedChords
{
    Vec8 ux;
    Vec8 uy;
    Vec8 vx;
    Vec8 vy;

    ZVMATH_INLINE TurnedChords(const Rows& rows, const Chords& chords, size_t cell)
    {
        const EightInMemory *u = chords.alongX, *v = chords.alongY;
        rows.TurnXY(ux, uy, u[0].v[cell], u[1].v[cell], u[2].v[cell]);
        rows.TurnXY(vx, vy, v[0].v[cell], v[1].v[cell], v[2].v[cell]);
    }
    /// Their coordinates at a third angle.
    ZVMATH_INLINE void At(Vec8& x, Vec8& y, float s3, float c3) const
    {
        x = c3 * ux - s3 * uy;
        y = vy * c3 + vx * s3;
    }
};

/// Searches the open cells of a tile. False if it has given up because too much had to be computed
/// from all points.
ZVMATH_CLONES bool SearchTile(Search& s, const Cells& cells, const Chords& chords, const bool* open,
                              const Tile& tile)
{
    const Vec8 zero = {};
    const float slack = s.slack;
    for (size_t first = 0; first < NumRows(tile); first += lanes) {
        const Rows rows(s, tile, first);
        Vec8 z;
        rows.TurnZ(z, chords.alongZ[0], chords.alongZ[1], chords.alongZ[2]);
        z = z - slack;
        Raise(z, zero);
        for (size_t l = 0; l < cells.count; ++l) {
            if (!open[l])
                continue;
            if (s.computed > s.worthwhile)
                return false;
            const TurnedChords own(rows, chords, l);
            Vec8 x, y, x2, y2;
            own.At(x, y, cells.firstSine.v[l], cells.firstCosine.v[l]);
            own.At(x2, y2, cells.lastSine.v[l], cells.lastCosine.v[l]);
            Lower(x, x2);
            Lower(y, y2);
            x = x - slack;
            y = y - slack;
            Raise(x, zero);
            Raise(y, zero);
            if (!Any((x * y) * z < rows.limit))
                continue;
            // One by one, and here the neighbouring cells' chords may be longer.
            const TurnedChords before(rows, chords, l > 0 ? l - 1 : l);
            const TurnedChords after(rows, chords, l + 1 < cells.count ? l + 1 : l);
            for (size_t k = cells.first[l]; k <= cells.last[l]; ++k) {
                const float s3 = s.angles.sine[k], c3 = s.angles.cosine[k];
                own.At(x, y, s3, c3);
                before.At(x2, y2, s3, c3);
                Raise(x, x2);
                Raise(y, y2);
                after.At(x2, y2, s3, c3);
                Raise(x, x2);
                Raise(y, y2);
                x = x - slack;
                y = y - slack;
                Raise(x, zero);
                Raise(y, zero);
                const Bits8 isOpen = (x * y) * z < rows.limit;
                if (Any(isOpen))
                    for (size_t r = 0; r < lanes; ++r)
                        if (isOpen[r] != 0)
                            Enqueue(s, {rows.i[r], rows.j[r], k});
            }
        }
    }
    return true;
}

/// A tile's own points: for each cell and each side of the box the farthest ones of eight parts of
/// all points, in the middle of the cell; along the third axis one for all cells.
struct OwnPoints
{
    static constexpr size_t numParts = 8;
    static constexpr size_t numSides = 4;  // greatest and least x, greatest and least y

    float x[lanes][numSides][numParts];
    float y[lanes][numSides][numParts];
    float z[lanes][numSides][numParts];
    float highest[3][lanes];
    float lowest[3][lanes];
};

/// The farthest point in each lane.
struct Farthest
{
    Vec8 most = Vec8{} - infinite;
    Bits8 where = {};

    ZVMATH_INLINE void Take(const Vec8& v, size_t p)
    {
        where = v > most ? Bits8{} + static_cast<int>(p) : where;
        Raise(most, v);
    }
    ZVMATH_INLINE size_t In(size_t lane) const { return static_cast<unsigned int>(where[lane]); }
};

ZVMATH_CLONES void ChooseOwnPoints(OwnPoints& own, const Search& s, const Cells& cells,
                                   const Tile& tile)
{
    const Points& all = s.points;
    const size_t i = (tile.firstI + tile.lastI) / 2, j = (tile.firstJ + tile.lastJ) / 2;
    const float s1 = s.angles.sine[i], c1 = s.angles.cosine[i];
    const float s2 = s.angles.sine[j], c2 = s.angles.cosine[j];
    const Vec8 s3 = cells.middleSine.v, c3 = cells.middleCosine.v;
    Farthest farthest[OwnPoints::numParts][OwnPoints::numSides];
    Farthest highest, lowest;
    for (size_t begin = 0; begin < all.size; begin += blockSize) {
        const size_t size = std::min(all.size - begin, blockSize);
        float rowX[blockSize], rowY[blockSize];
        for (size_t p = 0; p < size; p += lanes) {
            Vec8 x, y, z;
            Get(x, y, z, all, begin + p);
            Turn(x, y, x, y, s1, c1);
            Turn(y, z, y, z, s2, c2);
            Eight(rowX + p).v = x;
            Eight(rowY + p).v = y;
            highest.Take(z, begin + p);
            lowest.Take(-z, begin + p);
        }
        for (size_t part = 0; part < OwnPoints::numParts; ++part) {
            Farthest right = farthest[part][0], left = farthest[part][1];
            Farthest back = farthest[part][2], front = farthest[part][3];
            for (size_t p = part; p < size; p += OwnPoints::numParts) {
                Vec8 x, y;
                Turn(x, y, rowX[p], rowY[p], s3, c3);
                right.Take(x, begin + p);
                left.Take(-x, begin + p);
                back.Take(y, begin + p);
                front.Take(-y, begin + p);
            }
            farthest[part][0] = right;
            farthest[part][1] = left;
            farthest[part][2] = back;
            farthest[part][3] = front;
        }
    }
    for (size_t l = 0; l < lanes; ++l) {
        for (size_t side = 0; side < OwnPoints::numSides; ++side)
            for (size_t part = 0; part < OwnPoints::numParts; ++part) {
                const size_t p = farthest[part][side].In(l);
                own.x[l][side][part] = all.x[p];
                own.y[l][side][part] = all.y[p];
                own.z[l][side][part] = all.z[p];
            }
        const float* const coords[] = {all.x + l, all.y + l, all.z + l};
        for (size_t a = 0; a < 3; ++a) {
            own.highest[a][l] = coords[a][highest.In(l)];
            own.lowest[a][l] = coords[a][lowest.In(l)];
        }
    }
}

/// Searches the open cells of a tile by points of its own.
ZVMATH_CLONES void SearchTileByOwnPoints(Search& s, const Cells& cells, const OwnPoints& own,
                                         const bool* open, const Tile& tile)
{
    constexpr size_t numParts = OwnPoints::numParts;
    constexpr size_t numSides = OwnPoints::numSides;
    for (size_t first = 0; first < NumRows(tile); first += lanes) {
        const Rows rows(s, tile, first);
        Vec8 most = Vec8{} - infinite, least = Vec8{} + infinite;
        for (size_t p = 0; p < lanes; ++p) {
            Vec8 z;
            rows.TurnZ(z, own.highest[0][p], own.highest[1][p], own.highest[2][p]);
            Raise(most, z);
            rows.TurnZ(z, own.lowest[0][p], own.lowest[1][p], own.lowest[2][p]);
            Lower(least, z);
        }
        const Vec8 dz = most - least;
        for (size_t l = 0; l < cells.count; ++l) {
            if (!open[l])
                continue;
            Vec8 x[numSides][numParts], y[numSides][numParts];
            for (size_t side = 0; side < numSides; ++side)
                for (size_t p = 0; p < numParts; ++p)
                    rows.TurnXY(x[side][p], y[side][p], own.x[l][side][p], own.y[l][side][p],
                                own.z[l][side][p]);
            size_t k[lanes][batchSize];
            size_t count[lanes] = {};
            for (size_t k3 = cells.first[l]; k3 <= cells.last[l]; ++k3) {
                const float s3 = s.angles.sine[k3], c3 = s.angles.cosine[k3];
                Vec8 mostX = Vec8{} - infinite, leastX = Vec8{} + infinite;
                Vec8 mostY = mostX, leastY = leastX;
                for (size_t p = 0; p < numParts; ++p) {
                    Raise(mostX, c3 * x[0][p] - s3 * y[0][p]);
                    Lower(leastX, c3 * x[1][p] - s3 * y[1][p]);
                    Raise(mostY, y[2][p] * c3 + x[2][p] * s3);
                    Lower(leastY, y[3][p] * c3 + x[3][p] * s3);
                }
                const Bits8 isOpen = ((mostX - leastX) * (mostY - leastY)) * dz < rows.limit;
                for (size_t r = 0; r < lanes; ++r) {
                    if (isOpen[r] != 0)
                        k[r][count[r]++] = k3;
                    if (count[r] == batchSize || (count[r] > 0 && k3 == cells.last[l])) {
                        Compute(s, rows.i[r], rows.j[r], k[r], count[r], infinite);
                        count[r] = 0;
                    }
                }
            }
        }
    }
}

void SearchByTiles(Search& s)
{
    // Choosing a tile's own points takes the time of computing some six orientations.
    constexpr size_t worthwhileAtFirst = 16;
    constexpr size_t worthwhilePerTile = 4;
    s.worthwhile = s.computed + worthwhileAtFirst;
    const size_t n = s.angles.count;
    Cells cells;
    SetUp(cells, s.angles);
    for (size_t i = 0; i < n; i += cells.width)
        for (size_t j = 0; j < n; j += cells.width) {
            const Tile tile = {i, std::min(n, i + cells.width) - 1, j,
                               std::min(n, j + cells.width) - 1};
            Chords chords;
            bool open[lanes];
            if (!FindOpenCells(open, chords, s, cells, tile))
                continue;
            s.worthwhile += worthwhilePerTile;
            if (SearchTile(s, cells, chords, open, tile))
                continue;
            OwnPoints own;
            ChooseOwnPoints(own, s, cells, tile);
            SearchTileByOwnPoints(s, cells, own, open, tile);
        }
    ComputeQueue(s);
}

/// Without bounds.
void SearchPlainly(Search& s)
{
    const size_t n = s.angles.count;
    for (size_t i = 0; i < n; ++i)
        for (size_t j = 0; j < n; ++j)
            for (size_t first = 0; first < n; first += batchSize) {
                if (s.volume == 0.0f)
                    return;
                size_t k[batchSize];
                const size_t count = std::min(batchSize, n - first);
                for (size_t q = 0; q < count; ++q)
                    k[q] = first + q;
                Compute(s, i, j, k, count, infinite);
            }
}

float AngleAt(size_t k, size_t count)
{
    constexpr double halfPi = 1.5707963267948966;
    return static_cast<float>((static_cast<double>(k) * halfPi) *
                              (1.0 / static_cast<double>(count - 1)));
}

/// `memory` from the heap, for `count` floats.
float* FromHeap(std::unique_ptr<float[]>& memory, size_t count)
{
    memory.reset(new float[count]);
    return memory.get();
}

}  // namespace

bool ZVGetSmallestEnclosingBoxRotation(float* rotation, const float* coords, unsigned int count,
                                       unsigned int numSteps)
{
    std::fill(rotation, rotation + 3, 0.0f);
    if (count == 0 || numSteps < 2)
        return false;
    const size_t threshold = ZVPlatform::ZVGetAllocaThreshold();
    const size_t size = (size_t{count} + lanes - 1) / lanes * lanes;
    const size_t n = numSteps;
    std::unique_ptr<float[]> pointsOnHeap;
    std::unique_ptr<float[]> anglesOnHeap;
    float* const points = size_t{count} * 12 + 16 <= threshold
                              ? static_cast<float*>(alloca(3 * size * sizeof(float)))
                              : FromHeap(pointsOnHeap, 3 * size);
    float* const angles = n * 8 + 16 <= threshold
                              ? static_cast<float*>(alloca(2 * n * sizeof(float)))
                              : FromHeap(anglesOnHeap, 2 * n);
    for (size_t k = 0; k < n; ++k) {
        angles[k] = Sin(AngleAt(k, n));
        angles[n + k] = Cos(AngleAt(k, n));
    }
    Search s;
    s.points = {points, points + size, points + 2 * size, size};
    s.angles = {angles, angles + n, n};
    Load(s, coords, count);
    if (s.chosen.count > 0) {
        FindStart(s);
        SearchByTiles(s);
    } else
        SearchPlainly(s);
    rotation[0] = AngleAt(s.best.i, n);
    rotation[1] = AngleAt(s.best.j, n);
    rotation[2] = AngleAt(s.best.k, n);
    return s.volume != largest;
}

}  // namespace ZVMath
