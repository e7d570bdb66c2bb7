#!/usr/bin/env python3
"""Makes lasso_reference.h: paths of least-angle regression.

Small problems with 50 digits, by the textbook steps on the whole of X, none of the library's
rearrangements: c = X^T (y - mu), G the Gram matrix of the active columns made and solved anew in
each step, u = X_active w, h = X^T u.

Every case comes with its amplification: the same steps are done in binary arithmetic of 60 to 79
bits, and the largest error of any coefficient, relative to the largest one of its step, is told in
units of that arithmetic's epsilon, 2^(1 - bits).

And scikit-learn's path for data/diabetes.tsv, with the columns standardised (mean 0, population
standard deviation 1) and the response centred. It is itself held against 50 digits; the script ends
with an error when they differ by more than the table says.

Usage: lasso.py > lasso_reference.h
       lasso.py --peer | lasso_accuracy
The second form writes scikit-learn's paths for random problems: a line "SEED ROWS COLUMNS", then
one for each step, with the variable that enters and the coefficients of all so far, then an empty
one.
"""
import os
import random
import sys
import textwrap

import numpy as np
from mpmath import mp, mpf, sqrt, nstr

mp.dps = 50
PEER_ERROR = 1e-11  # of the coefficients, the largest of which is 37


# mpmath's own sums and solvers work with more digits inside, and would hide how rounding grows.


def dot(a, b):
    return sum((x * z for x, z in zip(a, b)), mpf(0))


def solve(G, s):
    """G z = s by elimination; G is positive definite."""
    rows = [row + [mpf(v)] for row, v in zip(G, s)]
    for k, pivot in enumerate(rows):
        for row in rows[k + 1:]:
            factor = row[k] / pivot[k]
            row[k:] = [a - factor * b for a, b in zip(row[k:], pivot[k:])]
    z = []
    for row in reversed(rows):
        z.insert(0, (row[-1] - dot(row[-1 - len(z):-1], z)) / row[-2 - len(z)])
    return z


def combine(factors, X, columns, rows):
    return [dot(factors, [X[j][i] for j in columns]) for i in range(rows)]


def lars(X, y, max_steps):
    """X: a list of columns. Returns the order of entry and the path."""
    X, y = [[mpf(v) for v in x] for x in X], [mpf(v) for v in y]
    n, p = len(y), len(X)
    last = min(n - 1, p) - 1
    inactive, active, path = list(range(p)), [], []
    beta = []
    for step in range(min(max_steps, last + 1)):
        rest = [v - fit for v, fit in zip(y, combine(beta, X, active, n))]
        c = [dot(x, rest) for x in X]
        if step == 0:
            enters = max(range(p), key=lambda i: abs(c[i]))
        active.append(enters)
        inactive.remove(enters)
        signs = [1 if c[i] >= 0 else -1 for i in active]
        z = solve([[dot(X[i], X[j]) for j in active] for i in active], signs)
        A = 1 / sqrt(dot(signs, z))
        w = [A * v for v in z]
        C = max(abs(v) for v in c)
        if step == last:
            gamma = C / A
        else:
            u = combine(w, X, active, n)
            h = [dot(x, u) for x in X]
            candidates = [(g, m) for m in inactive for g in ((C + c[m]) / (A + h[m]),
                                                            (C - c[m]) / (A - h[m])) if g > 0]
            gamma, enters = min(candidates, key=lambda candidate: candidate[0])
        beta = [b + gamma * v for b, v in zip(beta + [mpf(0)], w)]
        path.append(beta)
    return active, path


def amplification(X, y, steps):
    order, exact = lars(X, y, steps)
    largest = mpf(1)
    for bits in range(60, 80):
        with mp.workprec(bits):
            rough_order, rough = lars(X, y, steps)
        assert rough_order == order  # or rounding decides who enters
        worst = max(max(abs(a - b) for a, b in zip(e, r)) / max(map(abs, e))
                    for e, r in zip(exact, rough))
        largest = max(largest, worst * mpf(2) ** (bits - 1))
    return int(mp.ceil(largest))


def rounded(value):
    return float(nstr(value, 40))  # float() of an mpf may cut instead of rounding


def braces(values):
    return "{" + ", ".join(repr(v).replace(".0", "") if v == int(v) else repr(v)
                           for v in values) + "}"


def show(text):
    for line in textwrap.wrap(text, 100, initial_indent="     ", subsequent_indent="      "):
        print(line)


def integers(seed, rows, columns):
    """Small ones: exact in every arithmetic."""
    generator = random.Random(seed)
    return [[generator.randint(-4, 4) for _ in range(rows)] for _ in range(columns)], \
        [generator.randint(-9, 9) for _ in range(rows)]


def unit(rows, columns):
    return [[int(i == j) for i in range(rows)] for j in range(columns)]


CASES = [
    ("orthogonal", unit(3, 2), [3, 1, 0], 2),
    ("one column", [[3, 4]], [5, 6], 1),
    ("equal correlations: the first", unit(5, 4), [3, -3, 1, 2, 0], 2),
    ("equal gammas: the first", unit(5, 3), [4, 2, -2, 0, 0], 3),
    ("8 x 5", *integers(2, 8, 5), 5),
    ("all but one variable negative", *integers(4, 8, 4), 4),
    ("a coefficient changes its sign", *integers(6, 7, 5), 5),
    ("more columns than rows", *integers(8, 6, 9), 9),
    ("few steps", *integers(5, 12, 6), 3),
    ("nearly collinear", [[4, 1, 0, 2, 3, -1], [4, 1, 0, 2, 3, -1.0009765625], [1, 2, -3, 1, 0, 4]],
     [7, 3, -2, 5, 1, 2], 3),
]


def diabetes():
    here = os.path.dirname(os.path.abspath(__file__))
    table = np.loadtxt(os.path.join(here, "../../data/diabetes.tsv"), skiprows=1)
    table = [[mpf(v) for v in column] for column in table.T]
    table = [[v - mp.fsum(x) / len(x) for v in x] for x in table]
    scales = [sqrt(dot(x, x) / len(x)) for x in table[:-1]]
    return [[v / s for v in x] for x, s in zip(table, scales)], table[-1]


def peer(X, y):
    """scikit-learn's path, as `lars` gives it."""
    from sklearn.linear_model import lars_path
    _, active, coefficients = lars_path(X, y, method="lar")
    order = [int(j) for j in active]
    return order, [coefficients[order[:k + 1], k + 1] for k in range(len(order))]


if sys.argv[1:] == ["--peer"]:
    for seed, (rows, columns) in enumerate([(1000, 20), (200, 100), (100, 300), (1000, 500)], 1):
        # The same numbers as from std::mt19937: y, then X column by column.
        words = np.random.RandomState(seed).randint(0, 2 ** 32, rows * (columns + 1), np.uint32)
        numbers = words * 2.0 ** -31 - 1
        print(seed, rows, columns)
        for enters, beta in zip(*peer(numbers[rows:].reshape(columns, rows).T, numbers[:rows])):
            print(enters, " ".join(repr(float(b)) for b in beta))
        print()
    sys.exit()

print("""#pragma once

// Made by lasso.py. Numbers are the nearest doubles, in the fewest digits that give them back.

#include <vector>

namespace ZVTest
{

struct LassoReference
{
    const char* name;
    double amplification;   // of rounding, in units of epsilon
    std::vector<double> x;  // column by column
    std::vector<double> y;
    std::vector<unsigned int> actives;
    std::vector<std::vector<double>> path;
};

// clang-format off
inline const LassoReference lassoReferences[] = {""")
for name, X, y, steps in CASES:
    order, path = lars(X, y, steps)
    signs = [[mp.sign(v) for v in beta] for beta in path]
    assert len(set(order)) == len(order)
    changes = any(a[i] * b[i] < 0 for a, b in zip(signs, signs[1:]) for i in range(len(a)))
    assert changes or "changes" not in name
    assert "negative" not in name or sum(s > 0 for s in signs[-1]) == 1
    print(f'    {{"{name}", {amplification(X, y, steps)},')
    show(braces([float(v) for x in X for v in x]) + ",")
    show(braces([float(v) for v in y]) + ",")
    show(braces(order) + ",")
    show("{" + ", ".join(braces([rounded(v) for v in beta]) for beta in path) + "}},")
print("};")

X, y = diabetes()
exact_order, exact = lars(X, y, 10)
order, path = peer(np.array(X, dtype=float).T, np.array(y, dtype=float))
error = max(abs(mpf(float(a)) - b) for e, r in zip(exact, path) for b, a in zip(e, r))
noise = amplification(X, y, 10)
print("diabetes: peer against 50 digits", nstr(error, 3), file=sys.stderr)
if order != exact_order or not error <= PEER_ERROR:
    sys.exit(f"diabetes: peer and 50 digits differ by {nstr(error, 3)}")
print(f"""
/// Of data/diabetes.tsv, which has x and y: ten decimals. scikit-learn's coefficients are within
/// {PEER_ERROR:g} of those with 50 digits.
inline const LassoReference lassoPeer =
    {{"diabetes", {noise}, {{}}, {{}},""")
show(braces(order) + ",")
show("{" + ", ".join("{" + ", ".join(f"{v:.10f}" for v in beta) + "}" for beta in path) + "}};")
print("""// clang-format on

}  // namespace ZVTest""")
