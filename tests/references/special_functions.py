#!/usr/bin/env python3
"""Makes special_functions_reference.h: gamma and beta functions with 40 digits.

Usage: special_functions.py > special_functions_reference.h
"""
import textwrap
from math import inf, nextafter

from mpmath import digamma, exp, gammainc, harmonic, hyp2f1, log, loggamma, mp, mpf, nstr, psi

mp.dps = 400  # enough where a difference from 1 or a zero loses digits


def rounded(value):
    return float(nstr(value, 40))  # float() of an mpf may cut instead of rounding


def below(value):
    return nextafter(value, 0.0)


def around(value):
    return [below(value), value, nextafter(value, inf)]


# The ends of the range, both zeros, and what is between.
LOG_GAMMA = [2e-307, 1e-20, 1e-3, 0.25, 0.5, 0.9, *around(1.0), 1.5, *around(2.0), 2.73, 3.3, 11.5,
             100.25, 4100.5, 1e7, 1e15, 1e100, 2.55e305]
# Both sides of the branches at 1e-16, 10 (the end of the shifts) and 100, the zero of digamma.
POLY_GAMMA = [7.5e-155, 1e-20, *around(1e-16), 1e-7, 1e-3, 0.5, 0.8, 1.0,
              *around(1.4616321449683622), 2.1, 9.0, *around(10.0), 50.0, *around(100.0), 1e6, 1e16, 1e300]
# Both sides of the change of forms at x = a + 1, both tails; 586 is the last a of the series there.
GAMMA = [(0.01, 1e-20), (0.01, 0.5), (0.5, 1e-25), (0.5, below(1.5)), (0.5, 1.5), (0.5, 30.0),
         (1.0, below(2.0)), (1.0, 2.0), (1.0, 34.0), (10.0, 1.0), (10.0, 10.0), (10.0, 11.0),
         (10.0, 60.0), (100.0, 50.0), (100.0, below(101.0)), (100.0, 101.0), (100.0, 200.0),
         (586.0, 450.0), (586.0, below(587.0)), (586.0, 587.0), (586.0, 800.0), (2000.0, 1700.0),
         (8000.0, 8001.0), (8000.0, 8500.0)]
# Both sides of (a + 1) / (a + b + 2), both tails.
BETA = [(1.0, 1.0, 0.3), (1.0, 1.0, 0.5), (0.01, 0.02, 1e-10), (0.01, 2e4, 1e-5),
        (2e4, 0.01, 0.9999), (0.5, 0.5, 0.99), (2.0, 3.0, below(3 / 7)), (2.0, 3.0, 3 / 7),
        (5.0, 1e3, 0.02), (40.0, 60.0, 0.2), (40.0, 60.0, 0.4), (40.0, 60.0, 0.7),
        (1e3, 1e3, 0.45), (1e3, 1e3, 0.5), (1e3, 1e3, 0.55), (9e3, 6e3, 0.59), (9e3, 6e3, 0.61),
        (2.5e4, 2.5e4, 0.498)]
HARMONIC = [1, 2, 3, 4, 16, 4095, 4096, 4097, 12289, 100000]


def table(struct, rows):
    print(f"inline const double {struct}[][{len(rows[0])}] = {{")
    text = " ".join("{" + ",~".join(repr(v) for v in row) + "}," for row in rows)
    for line in textwrap.wrap(text, 96):
        print("    " + line.replace("~", " "))
    print("};")


def incomplete_gamma(a, x):
    q = gammainc(a, x, mp.inf, regularized=True)
    return [a, x, rounded(1 - q), rounded(q)]


def regularised_beta(a, b, x):
    """By the hypergeometric function that has no alternating terms."""
    if x > 0.5:
        return 1 - regularised_beta(b, a, 1 - x)
    factor = exp(a * log(x) + b * log(1 - x) + loggamma(a + b) - loggamma(a + 1) - loggamma(b))
    return factor * hyp2f1(a + b, 1, a + 1, x)


def incomplete_beta(a, b, x):
    return [a, b, x, rounded(regularised_beta(mpf(a), mpf(b), mpf(x)))]


print("""#pragma once

// Made by special_functions.py: arguments, then values as the nearest doubles.

namespace ZVTest
{

// clang-format off
// x, ln Gamma(x)""")
table("logGammaReferences", [[x, rounded(loggamma(mpf(x)))] for x in LOG_GAMMA])
print("// x, digamma, trigamma")
table("polyGammaReferences", [[x, rounded(digamma(mpf(x))), rounded(psi(1, mpf(x)))]
                              for x in POLY_GAMMA])
print("// a, x, P, Q")
table("gammaReferences", [incomplete_gamma(*c) for c in GAMMA])
print("// a, b, x, I")
table("betaReferences", [incomplete_beta(*c) for c in BETA])
print("// n, H(n)")
table("harmonicReferences", [[float(n), rounded(harmonic(mpf(n)))] for n in HARMONIC])
print("""
// clang-format on

}  // namespace ZVTest""")
