#!/usr/bin/env python3
"""Makes beta_quantiles.h: quantiles of Beta distributions, and probabilities where quantiles would be too small.

Started from SciPy, improved by Newton steps with 50 digits until the probability is met to 30.

Usage: beta_quantiles.py > beta_quantiles.h
"""
from mpmath import exp, log, loggamma, mp, mpf, nstr
from scipy.special import betaincinv

mp.dps = 50

PROBABILITIES = ["0.001", "0.01", "0.05", "0.2", "0.35", "0.5", "0.65", "0.8", "0.95", "0.99", "0.999"]
# Below 1, between 1 and 2, large; equal and not; both sides of 1, where methods change.
SHAPES = [("0.05", "0.3"), ("0.3", "0.3"), ("0.3", "1e6"), ("0.9", "1"), ("1", "1"), ("1", "2.5"), ("1.1", "0.05"),
          ("2.5", "2.5"), ("40", "2.5"), ("40", "40"), ("1e6", "1"), ("1e6", "1e6")]
POINTS = ["1e-300", "1e-250", "1e-200", "1e-150", "1e-100", "1e-50", "1e-20", "1e-10", "1e-5", "0.01", "0.5"]
TINY_SHAPES = [("1e-3", "1e-3"), ("1e-3", "40"), ("1e-3", "1e6")]


def density_factor(a, b, x):  # x (1 - x) times the density
    return exp(a * log(x) + b * log(1 - x) + loggamma(a + b) - loggamma(a) - loggamma(b))


def fraction(a, b, x):  # of the continued fraction of Gauss, by Lentz
    tiny = mpf(10) ** -100
    value, c, d = mpf(1), mpf(1), mpf(0)
    n = 0
    while True:
        m = n // 2
        if n == 0:
            term = mpf(1)
        elif n % 2 == 0:
            term = m * (b - m) * x / ((a + n - 1) * (a + n))
        else:
            term = -(a + m) * (a + b + m) * x / ((a + n - 1) * (a + n))
        d = 1 + term * d
        d = 1 / (d if d else tiny)
        c = 1 + term / c
        c = c if c else tiny
        step = c * d
        value *= step
        n += 1
        if n > 5 and abs(step - 1) < mpf(10) ** -45:
            return value - 1


def probability(a, b, x):
    """P(draw <= x)."""
    if x < (a + 1) / (a + b + 2):
        return density_factor(a, b, x) * fraction(a, b, x) / a
    return 1 - density_factor(a, b, x) * fraction(b, a, 1 - x) / b


def quantile(a, b, p):
    """1 where doubles are too coarse."""
    x = mpf(float(betaincinv(float(a), float(b), float(p))))
    if x > 1 - mpf("1e-9"):
        return mpf(1)
    for _ in range(50):
        error = probability(a, b, x) - p
        if abs(error) < mpf(10) ** -30:
            return x
        x -= error * x * (1 - x) / density_factor(a, b, x)
    raise ArithmeticError((a, b, p))


def table(name, comment, shapes, value, arguments):
    lines = [f"// {comment}", f"inline const BetaTable {name}[] = {{"]
    for a, b in shapes:
        line = f"    {{{float(a)!r}, {float(b)!r}, {{"
        texts = [repr(float(nstr(value(mpf(a), mpf(b), mpf(v)), 13))) for v in arguments]
        for text in texts:
            if len(line) + len(text) > 110:
                lines.append(line.rstrip())
                line = "     "
            line += text + ", "
        lines.append(line.rstrip(", ") + "}},")
    return lines + ["};"]


out = ["#pragma once", "", "// Made by beta_quantiles.py.", "", "namespace ZVTest", "{", "", "// clang-format off",
       f"inline const double betaProbabilities[] = {{{', '.join(PROBABILITIES)}}};",
       f"inline const double betaPoints[] = {{{', '.join(POINTS)}}};",
       f"struct BetaTable {{ double alpha, beta, values[{len(POINTS)}]; }};", ""]
assert len(POINTS) == len(PROBABILITIES)
out += table("betaQuantiles",
             "Of these shapes the quantiles at these probabilities, with 13 digits; 1 where above 1 - 1e-9.",
             SHAPES, quantile, PROBABILITIES)
out += table("betaTails", "Of these shapes the probabilities of draws below these points.",
             TINY_SHAPES, probability, POINTS)
out += ["// clang-format on", "", "}  // namespace ZVTest"]
print("\n".join(out))
