#pragma once

#include "multiversion.h"

#include <cstddef>

/// Sums in a fixed order of additions that fills vector registers and keeps rounding small.
namespace ZVMath
{

/// Within a block, element i goes into partial sum i % 16.
constexpr size_t numPartialSums = 16;
constexpr size_t elementsPerBlock = 4096;

/// Four terms of one sum, and of two that run side by side.
struct FourTerms
{
    static constexpr size_t numSums = 1;
    Vec4 first;

    ZVMATH_INLINE void Set(const double (*terms)[4]) { first = Four(terms[0]).v; }
    ZVMATH_INLINE void Add(const FourTerms& other) { first += other.first; }
    ZVMATH_INLINE void Total(double* totals) const
    {
        totals[0] = (first[0] + first[2]) + (first[1] + first[3]);
    }
};

struct TwiceFourTerms
{
    static constexpr size_t numSums = 2;
    Vec4 first;
    Vec4 second;

    ZVMATH_INLINE void Set(const double (*terms)[4])
    {
        first = Four(terms[0]).v;
        second = Four(terms[1]).v;
    }
    ZVMATH_INLINE void Add(const TwiceFourTerms& other)
    {
        first += other.first;
        second += other.second;
    }
    ZVMATH_INLINE void Total(double* totals) const
    {
        totals[0] = (first[0] + first[2]) + (first[1] + first[3]);
        totals[1] = (second[0] + second[2]) + (second[1] + second[3]);
    }
};

/// Adds the terms of at most i .. i + 3, and of none from `end` on.
template <class Group, class Terms>
ZVMATH_INLINE void AddRest(Group& sums, const Terms& terms, size_t i, size_t end)
{
    Group group;
    if (i + 4 <= end)
        terms.Four(group, i);
    else {
        double some[Group::numSums][4] = {};
        for (size_t lane = 0; i + lane < end; ++lane) {
            double one[Group::numSums];
            terms.One(one, i + lane);
            for (size_t k = 0; k < Group::numSums; ++k)
                some[k][lane] = one[k];
        }
        group.Set(some);
    }
    sums.Add(group);
}

/// Adds the terms of i .. i + 15.
template <class Group, class Terms>
ZVMATH_INLINE void AddSixteen(Group& sums0, Group& sums1, Group& sums2, Group& sums3,
                              const Terms& terms, size_t i)
{
    Group group;
    terms.Four(group, i);
    sums0.Add(group);
    terms.Four(group, i + 4);
    sums1.Add(group);
    terms.Four(group, i + 8);
    sums2.Add(group);
    terms.Four(group, i + 12);
    sums3.Add(group);
}

/// Partial sum j takes j + 8, then j + 4, j + 2 and j + 1.
template <class Group>
ZVMATH_INLINE void AddUp(double* totals, Group& sums0, Group& sums1, Group& sums2, Group& sums3)
{
    sums0.Add(sums2);
    sums1.Add(sums3);
    sums0.Add(sums1);
    sums0.Total(totals);
}

template <class Terms>
ZVMATH_INLINE void SumBlock(double* totals, size_t begin, size_t end, const Terms& terms)
{
    // Each by its name, or they would be kept in memory.
    typename Terms::Group sums0 = {}, sums1 = {}, sums2 = {}, sums3 = {};
    size_t i = begin;
    for (; i + numPartialSums <= end; i += numPartialSums)
        AddSixteen(sums0, sums1, sums2, sums3, terms, i);
    if (i < end) {
        AddRest(sums0, terms, i, end);
        AddRest(sums1, terms, i + 4, end);
        AddRest(sums2, terms, i + 8, end);
        AddRest(sums3, terms, i + 12, end);
    }
    AddUp(totals, sums0, sums1, sums2, sums3);
}

/// Two full blocks.
template <class Terms>
ZVMATH_INLINE void SumTwoBlocks(double* totals, size_t begin, const Terms& terms)
{
    using Group = typename Terms::Group;
    constexpr size_t size = elementsPerBlock;
    double right[Group::numSums];
    if constexpr (Group::numSums == 1) {
        // Side by side, since memory delivers two streams faster than one.
        Group left0 = {}, left1 = {}, left2 = {}, left3 = {};
        Group right0 = {}, right1 = {}, right2 = {}, right3 = {};
        for (size_t i = begin; i < begin + size; i += numPartialSums) {
            AddSixteen(left0, left1, left2, left3, terms, i);
            AddSixteen(right0, right1, right2, right3, terms, i + size);
        }
        AddUp(totals, left0, left1, left2, left3);
        AddUp(right, right0, right1, right2, right3);
    } else {  // there are not so many registers
        SumBlock(totals, begin, begin + size, terms);
        SumBlock(right, begin + size, begin + 2 * size, terms);
    }
    for (size_t k = 0; k < Group::numSums; ++k)
        totals[k] += right[k];
}

/// The sum of the terms of each i in [begin, end), or two sums: of one block or of two full ones.
/// `terms.One(out, i)` gives those of i, `terms.Four(group, i)` those of i .. i + 3, a
/// `Terms::Group`. (No vectors as results: they are passed in other ways with AVX than without.)
template <class Terms>
ZVMATH_INLINE void SumBlocks(double* totals, size_t begin, size_t end, const Terms& terms)
{
    if (end - begin <= elementsPerBlock)
        SumBlock(totals, begin, end, terms);
    else
        SumTwoBlocks(totals, begin, terms);
}

/// The sum over all blocks of [begin, end), of which `blocks(begin, end)` gives that of one or of
/// two full ones: in pairs, the left half being the largest power of two of blocks that leaves
/// something to the right.
template <class Blocks> auto SumOfBlocks(size_t begin, size_t end, const Blocks& blocks)
{
    if (end - begin <= elementsPerBlock || end - begin == 2 * elementsPerBlock)
        return blocks(begin, end);
    size_t half = elementsPerBlock;
    while (half < end - begin - half)
        half *= 2;
    auto sum = SumOfBlocks(begin, begin + half, blocks);
    sum += SumOfBlocks(begin + half, end, blocks);
    return sum;
}

}  // namespace ZVMath
