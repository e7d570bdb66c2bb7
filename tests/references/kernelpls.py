#!/usr/bin/env python3
"""Makes kernelpls_reference.h: kernel PLS of small kernels with 50 digits.

The steps are the textbook ones on full n x n matrices, none of the library's rearrangements:
u = P^T y / sqrt(..), t = P K u, q = P^T t / t.t, c = y.t / t.t, P -= t q^T; then M = Q^T K U,
B = U M^-1 c, B0 = c0 - (q0^T K).B.

Every case comes with its amplification: the same steps are done in binary arithmetic of 60 to 79
bits, and the largest error of any result, relative to the largest element of its vector or matrix
(of P: to 1 at least; of B0: to c0), is told in units of that arithmetic's epsilon, 2^(1 - bits).

Usage: kernelpls.py > kernelpls_reference.h
"""
from mpmath import mp, mpf, matrix, eye, sqrt, nstr, lu_solve
import textwrap

mp.dps = 50


def kernel_pls(kernel, response, features):
    n = len(response)
    K, y, P = matrix(kernel), matrix(response), eye(n)
    C, Q, U, T = matrix(features, 1), matrix(n, features), matrix(n, features), []
    for i in range(features):
        u = P.T * y
        s = (u.T * K * u)[0]
        assert s > mpf(10) ** -8  # or the feature would be made of rounding
        u = u / sqrt(s)
        t = P * K * u
        tt = (t.T * t)[0]
        q = P.T * t / tt
        C[i] = (y.T * t)[0] / tt
        Q[:, i], U[:, i] = q, u
        T += list(t)
        P = P - t * q.T
    M = Q.T * K * U
    B = U * lu_solve(M, C)
    B0 = C[0] - (Q[:, 0].T * K * B)[0]
    return {"weights": list(U.T), "scores": T, "loadings": list(Q.T), "yLoadings": list(C),
            "system": list(M), "bValues": list(B), "deflation": list(P), "b0": [B0]}


def worst_error(exact, rough):
    worst = mpf(0)
    for name in exact:
        yardstick = exact["yLoadings"][:1] if name == "b0" else exact[name]
        size = max(abs(v) for v in yardstick)
        if name == "deflation":
            size = max(size, mpf(1))
        worst = max([worst] + [abs(a - b) / size for a, b in zip(exact[name], rough[name])])
    return worst


def amplification(kernel, response, features, exact):
    largest = mpf(0)
    for bits in range(60, 80):
        with mp.workprec(bits):
            rough = kernel_pls(kernel, response, features)
        largest = max(largest, worst_error(exact, rough) * mpf(2) ** (bits - 1))
    return largest


def rounded(value):
    return float(nstr(value, 40))  # float() of an mpf may cut instead of rounding


def braces(values):
    return "{" + ", ".join(repr(v).replace(".0", "") if v == int(v) else repr(v)
                           for v in values) + "},"


def gaussian(points, width):
    """exp(-d^2 / width), each rounded to double: the case's kernel is what the table says."""
    return [[rounded(mp.exp(-(a - b) ** 2 / mpf(width))) for b in points] for a in points]


def linear(rows, offset):
    return [[float(sum(x * z for x, z in zip(a, b)) + offset) for b in rows] for a in rows]


CASES = [
    ("one object", [[4.0]], [3.0], 1),
    ("two objects, as many features", [[2.0, 0.0], [0.0, 1.0]], [1.0, 1.0], 2),
    ("not symmetric", [[4.0, 1.0, 0.0, -1.0], [2.0, 5.0, 1.0, 0.0],
                       [-1.0, 0.5, 3.0, 1.0], [0.0, 2.0, -0.25, 6.0]], [1.0, 2.0, -1.0, 3.0], 3),
    ("rank 2, response out of its reach",
     linear([(1, 0), (0, 1), (2, -1), (3, 1), (1, 2)], 0),
     [1.0, 0.0, 2.0, -2.0, 5.0], 2),
    ("gaussian", gaussian([0.0, 0.5, 1.25, 2.0, 3.5, 3.75], 2),
     [0.5, 1.0, 0.75, -0.5, -2.0, -1.5], 4),
    ("not centred, large offset", linear([(1, 2), (3, -1), (0, 4), (-2, 1), (5, 5)], 1e6),
     [1003.0, 1001.0, 1007.0, 998.0, 1010.0], 3),
]

print("""#pragma once

// Made by kernelpls.py. Numbers are the nearest doubles, in the fewest digits that give them back.

#include <vector>

namespace ZVTest
{

/// Features one after the other, matrices row by row. P is I - sum of t q^T, and B0 is 0.
struct KernelPLSReference
{
    const char* name;
    double amplification;  // of rounding, in units of epsilon
    std::vector<double> kernel, response, weights, scores, loadings, yLoadings, system, bValues;
};

// clang-format off
inline const KernelPLSReference kernelPLSReferences[] = {""")
for name, kernel, response, features in CASES:
    results = kernel_pls(kernel, response, features)
    assert abs(results["b0"][0]) < mpf(10) ** -40 * abs(results["yLoadings"][0])
    noise = amplification(kernel, response, features, results)
    numbers = [braces([v for row in kernel for v in row]), braces(response)]
    # What is 0 but for the 50 digits is 0.
    numbers += [braces([rounded(v) if abs(v) > mpf(10) ** -35 else 0.0 for v in results[key]])
                for key in ("weights", "scores", "loadings", "yLoadings", "system", "bValues")]
    print(f'    {{"{name}", {int(mp.ceil(max(noise, 1)))},')
    for number in numbers:
        for line in textwrap.wrap(number, 100, initial_indent="     ", subsequent_indent="      "):
            print(line)
    print("    },")
print("""};
// clang-format on

}  // namespace ZVTest""")
