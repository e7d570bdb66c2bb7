#!/usr/bin/env python3
"""Makes roots.h: real roots of polynomials, and eigenvalues and eigenvectors of symmetric matrices, with 50 digits.

The coefficients are doubles and taken as exactly that. Roots come from Durand and Kerner's iteration with 400
digits, so that those of a triple root have more than 100 yet; eigenvectors from mpmath's Jacobi rotations.

Usage: roots.py > roots.h
"""
import random
from mpmath import diag, eigsy, fabs, matrix, mp, mpf, nstr, polyroots

random.seed(1)
mp.dps = 400
EPSILON = mpf(2) ** -52


def expanded(roots, leading=1):
    """The coefficients of leading (x - r) (x - r') ..., rounded once each."""
    c = [mpf(leading)]
    for r in roots:
        c = [u - v * mpf(r) for u, v in zip(c + [mpf(0)], [mpf(0)] + c)]
    return [float(v) for v in c]


def times(c, d):
    return [float(sum(mpf(c[j]) * mpf(d[i - j]) for j in range(len(c)) if 0 <= i - j < len(d)))
            for i in range(len(c) + len(d) - 1)]


def draw(n, size=1.0):
    return [random.uniform(-size, size) for _ in range(n)]


def real_roots(c):
    found = polyroots([mpf(v) for v in c], maxsteps=5000, extraprec=4000, error=False)
    largest = max(fabs(r) for r in found)
    return sorted(r.real for r in found if fabs(r.imag) <= largest * mpf(10) ** -60)


def move(error, distances):
    """How far a root may go when the polynomial, with a leading 1, is off by `error`: the move, times the distances
    from the other roots, or the move again for closer ones, is the error."""
    moves = [error ** (mpf(1) / (len(distances) + 1))]
    for left, distance in zip(range(len(distances), 0, -1), sorted(distances, reverse=True)):
        if distance == 0:
            break
        error /= distance
        moves.append(error ** (mpf(1) / left))
    return min(moves)


def cubic_bounds(x):
    """Rounding puts p and q off by some epsilon of powers of the largest root; the second angle is off by 1.4e-11, and
    tau at most 2/3 of the span."""
    error = 40 * EPSILON * max([fabs(v) for v in x], default=0) ** 3
    return [move(error, [fabs(v - u) for j, v in enumerate(x) if j != i]) + mpf("1e-11") * (max(x) - min(x))
            for i, u in enumerate(x)]


def bounds(c, x):
    if len(c) == 3:  # each coefficient may be off by some epsilon
        return [move(8 * EPSILON * (u * u + fabs(c[1] / c[0] * u) + fabs(c[2] / c[0])), [max(x) - min(x)]) for u in x]
    if len(c) == 4 or not x:
        return cubic_bounds(x)
    if len(x) == 2:  # the resolvent has but one real root, of the size of the others
        halves = [x[0] + x[1] + mpf(c[1]) / c[0] / 2] * 3
    else:  # two roots less the other two, halved: the square of that is a root of the resolvent
        halves = [x[0] + x[i] - sum(x) / 2 for i in range(1, len(x))]
    return [sum(b / fabs(h) for b, h in zip(cubic_bounds([h * h for h in halves]), halves))] * len(x)


def row(name, c):
    roots = real_roots(c)
    texts = [", ".join(repr(float(v)) for v in c), ", ".join(repr(float(v)) for v in roots),
             ", ".join(nstr(v, 2) for v in bounds(c, roots))]
    start = f'    {{"{name}", {len(c) - 1}, {len(roots)}, {{{texts[0]}}},'
    end = f"{{{texts[1]}}}, {{{texts[2]}}}}},"
    return start + ("\n     " if len(start + end) > 110 else " ") + end


POLYNOMIALS = [
    ("random", draw(2) + [-0.5]), ("a small root beside a large one", [1.0, -1e8, 1.0]), ("close", expanded([1.5, 1.50001])),
    ("double", [4.0, -12.0, 9.0]), ("leading nearly 0", [1.1e-6, 2.0, -3.0]), ("huge", [1e150, -3e150, 2e150]),
    ("tiny constant", [1.0, 1.0, 1e-200]), ("of opposite sign", [1e-3, 0.0, -1e5]), ("none", [1.0, 1.0, 1.0]),

    ("random", expanded(draw(3))), ("random", expanded(draw(3), -3)), ("random", expanded(draw(3, 1e3), 0.1)),
    ("whole", [1.0, -6.0, 11.0, -6.0]), ("symmetric", [2.0, 0.0, -8.0, 0.0]), ("a zero", [1.0, -3.0, 2.0, 0.0]),
    ("far from 0", expanded([1001, 1002, 1003.5])), ("close pair", expanded([-2, 1, 1.001])),
    ("closer pair", expanded([3, 0.7, 0.7 + 1e-6])), ("nearly double", expanded([3, 0.7, 0.7 + 1e-9])),
    ("close triple", expanded([1, 1.001, 0.998])), ("double", [1.0, 0.0, -3.0, 2.0]),
    ("double in front", [1.0, 0.0, -3.0, -2.0]), ("triple", [1.0, -3.0, 3.0, -1.0]), ("triple 0", [5.0, 0.0, 0.0, 0.0]),
    ("far apart", expanded([1e-6, 1, 1e6])),
    ("huge roots", expanded([1e50, -2e50, 3e50])), ("tiny roots", expanded([1e-50, -2e-50, 3e-50])),
    ("huge coefficients", expanded([1, 2, -4], 1e100)), ("leading nearly 0", expanded([1, -2, 3e4], 1.5e-6)),

    ("random", expanded(draw(4))), ("random", expanded(draw(4), -7)), ("random", expanded(draw(4, 1e4), 1e-3)),
    ("whole", expanded([1, 2, 3, 5])), ("negative", expanded([-1, -2, -3.5, -5])),
    ("close pair", expanded([1, 1.0001, -2, 3])), ("far apart", expanded([1e-3, 1, 30, -1e3])),
    ("nearly symmetric", expanded([-2, -1, 1, 2.01])), ("leading nearly 0", expanded([1, 2, -4, 600], 2e-6)),
    ("huge", expanded([1e24, 2e24, -3e24, 5e24])), ("tiny", expanded([1e-24, 2e-24, -3e-24, 5e-24])),
    ("two of four", times(expanded([1, -3]), [1.0, 1.0, 2.0])),
    ("two of four", times(expanded([0.5, 4]), [3.0, -7.0, 6.0])),
    ("two of four", times(expanded(draw(2)), [1.0, 0.3, 0.9])),
    ("none of four", times([1.0, 1.0, 3.0], [2.0, -5.0, 9.0])), ("none of four", [1.0, 0.0, 0.0, 0.0, 1.0]),
]

MATRICES = [("random", draw(6)), ("large", draw(6, 1e9)), ("correlation", [1, 0.4, 1, -0.3, 0.2, 1]),
            ("whole", [2, -1, 2, 0, -1, 2]), ("singular", [1, 2, 5, 3, 8, 13]), ("negative", [-4, 1, -5, 0.5, 0.25, -7]),
            ("of a pair", [2, 1, 2, 1, 1, 2.001]), ("nearly diagonal", [1, 1e-4, 2, -2e-4, 3e-4, 3])]


def symmetric_row(name, entries):
    e = [mpf(v) for v in entries]
    m = matrix([[e[0], e[1], e[3]], [e[1], e[2], e[4]], [e[3], e[4], e[5]]])
    values, vectors = eigsy(m)
    order = sorted(range(3), key=lambda i: -fabs(values[i]))
    error = max(fabs(v) for v in m * vectors - vectors * diag(list(values)))
    assert error < max(fabs(v) for v in e) * mpf(10) ** -300
    texts = [", ".join(repr(float(v)) for v in group) for group in
             (entries, [values[i] for i in order], *([vectors[j, i] for j in range(3)] for i in order))]
    return (f'    {{"{name}", {{{texts[0]}}},\n     {{{texts[1]}}},\n     {{{texts[2]},\n'
            f'      {texts[3]},\n      {texts[4]}}}}},')


print("""#pragma once

// Made by roots.py. Numbers are the nearest doubles.

#include <cstddef>

namespace ZVTest
{

/// The real roots, ascending, multiple ones as often as they are.
struct RootReference
{
    const char* name;
    size_t degree;
    size_t count;
    double coefficients[5];
    double roots[4];
    double bounds[4];  // of what is computed in double, with angles of ten decimals
};

/// Symmetric, 00 10 11 20 21 22; values by magnitude, largest first; axes up to their signs.
struct AxesReference
{
    const char* name;
    double entries[6];
    double values[3];
    double axes[9];
};

// clang-format off""")
print("inline const RootReference rootReferences[] = {")
print("\n".join(row(*polynomial) for polynomial in POLYNOMIALS) + "\n};")
print("inline const AxesReference axesReferences[] = {")
print("\n".join(symmetric_row(*m) for m in MATRICES) + "\n};")
print("// clang-format on\n\n}  // namespace ZVTest")
