#!/usr/bin/env python3
"""Makes powers_of_ten.h, 128 bits of each power of ten, and proves that they are enough.

shortest.cpp multiplies numbers c of up to 56 bits by 2^q 10^e and needs the integer part and
whether there is a fraction; q is the exponent of a double, e = -k and k = floor(log10(width)), the
width being 2^q or, above a power of two, 3/4 of that. The table's rounding, upwards, makes a
product too large by less than 2^-68. So the integer part is right if no fraction comes closer to 1,
and a fraction can be told from the error if none is smaller.

Usage: powers_of_ten.py > powers_of_ten.h
"""
from fractions import Fraction

least_q, largest_q = -1074, 971
largest_c = 2**55 + 2


def floor_log2(x):
    n = x.numerator.bit_length() - x.denominator.bit_length()
    return n if Fraction(2) ** n <= x else n - 1


def floor_log10(x):
    n = floor_log2(x) * 30103 // 100000
    while Fraction(10) ** (n + 1) <= x:
        n += 1
    while Fraction(10) ** n > x:
        n -= 1
    return n


def extreme_fractions(factor, count):
    """Of the fractions of c * factor that are not 0, for 0 < c <= count: the least, and the least
    distance from 1. By the three-distance theorem: each is a sum of those before."""
    if factor.denominator <= count:
        least = Fraction(1, factor.denominator)
        return least, least
    above, below = (factor % 1, 1), (1 - factor % 1, 1)  # (distance from an integer, its c)
    while True:
        small, large = sorted((above, below))
        times = min(large[0] // small[0], (count - large[1]) // small[1])
        if times == 0:
            return above[0], below[0]
        nearer = (large[0] - times * small[0], large[1] + times * small[1])
        above, below = (small, nearer) if small is above else (nearer, small)


needed = set()
for q in range(least_q, largest_q + 1):
    for width in (Fraction(1), Fraction(3, 4)):
        k = floor_log10(width * Fraction(2) ** q)
        assert k == (q * 315653 - (0 if width == 1 else 131237)) >> 20, q
        least, most = extreme_fractions(Fraction(2) ** q * Fraction(10) ** -k, largest_c)
        assert min(least, most) > Fraction(1, 2**68), q
        shift = q + floor_log2(Fraction(10) ** -k) + 1
        assert 0 <= shift and largest_c << shift < 2**60, q
        needed.add(-k)

least_e, largest_e = min(needed), max(needed)
print(f"""// Made by powers_of_ten.py.
// clang-format off
#pragma once

#include <cstdint>

namespace ZVPlatform
{{

constexpr int leastPower = {least_e};

/// 10^e from e = leastPower on, times the power of two that leaves 128 bits, rounded up: high and
/// low half.
constexpr uint64_t powersOfTen[][2] = {{""")
for e in range(least_e, largest_e + 1):
    power = Fraction(10) ** e
    assert floor_log2(power) == (e * 1741647) >> 19
    g = power * Fraction(2) ** (127 - floor_log2(power))
    g = -(-g.numerator // g.denominator)
    assert 2**127 <= g < 2**128
    print(f"    {{0x{g >> 64:016x}, 0x{g % 2**64:016x}}},  // {e}")
print("""};

}  // namespace ZVPlatform""")
