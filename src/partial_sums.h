#pragma once

#include "multiversion.h"

#include <cstddef>

/// Sums in a fixed order of additions that fills vector registers and keeps rounding small.
namespace ZVMath
{

/// Within a block, element i goes into partial sum i % 16.
constexpr size_t numPartialSums = 16;
constexpr size_t elementsPerBlock = 4096;

/// Four registers of partial sums.
struct PartialSums
{
    Vec4 quarter[numPartialSums / 4] = {};
};

/// Sum j takes j + 8, then j + 4, j + 2 and j + 1.
ZVMATH_INLINE double Total(const PartialSums& sums)
{
    const Vec4 four = (sums.quarter[0] + sums.quarter[2]) + (sums.quarter[1] + sums.quarter[3]);
    return (four[0] + four[2]) + (four[1] + four[3]);
}

/// The sum of the terms i in [begin, end): `terms.One(i)` gives one, `terms.Four(out, i)` those of
/// i .. i + 3. (A vector as a result would be passed in different ways with and without AVX.)
template <class Terms> ZVMATH_INLINE double SumOfBlock(size_t begin, size_t end, const Terms& terms)
{
    PartialSums sums;
    Vec4 four;
    size_t i = begin;
    for (; i + numPartialSums <= end; i += numPartialSums)
        for (size_t q = 0; q < numPartialSums / 4; ++q) {
            terms.Four(four, i + 4 * q);
            sums.quarter[q] += four;
        }
    size_t q = 0;
    for (; i + 4 <= end; i += 4, ++q) {
        terms.Four(four, i);
        sums.quarter[q] += four;
    }
    for (size_t lane = 0; i < end; ++i, ++lane)
        sums.quarter[q][lane] += terms.One(i);
    return Total(sums);
}

/// The sum over the blocks of [begin, end), whose sums `block(begin, end)` gives: in pairs, the
/// left half being the largest power of two of blocks that leaves something to the right.
template <class Block> auto SumOfBlocks(size_t begin, size_t end, const Block& block)
{
    if (end - begin <= elementsPerBlock)
        return block(begin, end);
    size_t half = elementsPerBlock;
    while (half < end - begin - half)
        half *= 2;
    auto sum = SumOfBlocks(begin, begin + half, block);
    sum += SumOfBlocks(begin + half, end, block);
    return sum;
}

}  // namespace ZVMath
