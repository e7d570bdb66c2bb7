#!/usr/bin/env python3
"""Makes stats_reference.h: statistics of data made for large rounding errors, exactly.

The data are integers scaled by powers of two, from a generator that the test has too, so the table
holds only results. Rational arithmetic; the square root with 50 digits.

Usage: stats.py > stats_reference.h
       stats.py --accuracy    prints the table in docs/stats.md: errors of sums in three orders
"""
import sys
from fractions import Fraction
from math import fsum, inf, isinf, nan

from mpmath import mp, mpf, sqrt

mp.dps = 50

# Name, n, offset, bits, scale, spread, alternating, squares vanish.
cases = [
    ("one value", 1, 5, 4, -3, 0, 0, 0),
    ("fewer than the partial sums", 15, 1 << 40, 8, -20, 0, 0, 0),
    ("as many as the partial sums", 16, 1 << 52, 24, -1, 0, 1, 0),
    ("one more", 17, 0, 24, 10, 60, 0, 0),
    ("large mean, small spread", 1000, 1 << 44, 10, -40, 0, 0, 0),
    ("one block", 4096, 1 << 40, 6, -45, 0, 0, 0),
    ("one block and one value", 4097, 0, 24, 0, 90, 0, 0),
    ("nearly all cancels", 4096, 1 << 51, 4, 3, 0, 1, 0),
    ("almost equal, odd in the last bits", 20480, 6004799503160661, 4, -54, 0, 0, 0),
    ("huge", 8193, 1 << 30, 28, 440, 30, 1, 0),
    ("subnormal squares", 300, 0, 24, -540, 6, 0, 0),
    ("subnormal values", 5000, 0, 24, -1074, 0, 0, 1),
    ("three blocks and a bit", 12290, 1 << 35, 30, -10, 20, 0, 0),
]


def draws():
    state = 1
    while True:
        state = (state * 6364136223846793005 + 1442695040888963407) % 2**64
        yield state >> 32


def vectors(n, offset, bits, scale, spread, alternating):
    """The reference and the prediction, as Fractions that are doubles."""
    random, both = draws(), ([], [])
    for i in range(n):
        common = (next(random) >> (32 - bits)) - (1 << bits >> 1)
        for vector in both:
            own = (next(random) >> (32 - bits)) >> 2
            exponent = scale + next(random) % (spread + 1)
            value = (offset + common + own) * Fraction(2) ** exponent
            vector.append(-value if alternating and i % 2 else value)
            assert Fraction(float(vector[-1])) == vector[-1]
    return both


def text(value):
    """The nearest double, for C++."""
    if value != value or isinf(value):
        return {"nan": "NaN", "-inf": "-inf"}[str(value)]
    assert not isinf(float(value))
    return repr(float(value)).replace("e+", "e")


def statistics(reference, prediction, squares_vanish):
    n = len(reference)
    residuals = [r - p for r, p in zip(reference, prediction)]
    mean = sum(reference) / n
    mean_square = sum(d * d for d in residuals) / n
    total = sum((r - mean) ** 2 for r in reference)
    exact_root = sqrt(mpf(mean_square.numerator) / mpf(mean_square.denominator))
    return [mean, sum(map(abs, reference)) / n, sum(map(abs, residuals)) / n, mean_square,
            exact_root, nan if squares_vanish else -inf if total == 0 else 1 - n * mean_square / total]


def print_table():
    print("""#pragma once

// Made by stats.py. Numbers are the nearest doubles, in the fewest digits that give them back.

#include "../check.h"

namespace ZVTest
{

/// How the data are made, and their exact statistics.
struct StatsReference
{
    const char* name;
    size_t n;
    int64_t offset;
    int bits, scale;
    uint32_t spread;
    bool alternating;
    double mean, meanAbs;  // of the reference and of its absolute values
    double meanAbsDeviation, meanSquareDeviation, rmse;
    double rSquared;  // -infinity for one value, NaN where the squares vanish
};

// clang-format off
inline constexpr StatsReference statsReferences[] = {""")
    for name, *recipe, squares_vanish in cases:
        values = statistics(*vectors(*recipe), squares_vanish)
        print(f'    {{"{name}", {", ".join(map(str, recipe[:-1]))}, {str(bool(recipe[-1])).lower()},')
        print(f"     {', '.join(map(text, values))}}},")
    print("};\n// clang-format on\n\n}  // namespace ZVTest")


def left_to_right(values):
    total = 0.0
    for value in values.tolist():
        total += value
    return total


def in_blocks(values):
    """The order of additions of the library."""
    import numpy as np
    if len(values) > 4096:
        half = 4096
        while half < len(values) - half:
            half *= 2
        return in_blocks(values[:half]) + in_blocks(values[half:])
    sums = np.zeros(16)
    for i in range(0, len(values), 16):
        sums[:len(values[i:i + 16])] += values[i:i + 16]
    while len(sums) > 1:
        sums = sums[:len(sums) // 2] + sums[len(sums) // 2:]
    return float(sums[0])


def print_accuracy():
    """Errors in 2^-53 times the sum of the absolute values; their root mean square over 20 seeds."""
    import numpy as np
    n = 1000000
    rows = {}
    for seed in range(20):
        random = np.random.default_rng(seed)
        uniform = random.random(n)
        signs = random.choice([-1.0, 1.0], n)
        scaled = signs * uniform * 2.0 ** random.integers(0, 60, n)
        half = scaled[:n // 2]
        data = {"all 0.1": np.full(n, 0.1),
                "1 / i for i = 1, 2, ...": 1.0 / np.arange(1, n + 1),
                "uniform in [0, 1)": uniform,
                "1e9 + uniform": 1e9 + uniform,
                "1e9 + uniform, random signs": (1e9 + uniform) * signs,
                "over 60 powers of two, random signs": scaled,
                "the same; the second half cancels the first":
                    np.concatenate([half, uniform[n // 2:] - half])}
        for name, values in data.items():
            terms = values.tolist()
            size = fsum(map(abs, terms))
            errors = [fsum(terms + [-float(s)]) / size * 2**53
                      for s in (left_to_right(values), np.sum(values), in_blocks(values))]
            rows.setdefault(name, []).append([size / abs(fsum(terms))] + errors)
    print("| terms | condition | left to right | NumPy | this library |")
    print("|---|--:|--:|--:|--:|")
    for name, measured in rows.items():
        condition = np.median([row[0] for row in measured])
        errors = np.sqrt(np.mean(np.square([row[1:] for row in measured]), axis=0))
        print(f"| {name} | {condition:.1e} | " + " | ".join(f"{e:.2g}" for e in errors) + " |")


if __name__ == "__main__":
    print_accuracy() if sys.argv[1:] == ["--accuracy"] else print_table()
