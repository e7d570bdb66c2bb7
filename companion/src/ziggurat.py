#!/usr/bin/env python3
"""Makes ziggurat.h: the layers under the normal and the exponential density.

256 layers of equal area v: layer 0 is the strip from the axis to the height f(r) with the tail
beyond r; layer i lies between the heights f(x[i]) and f(x[i + 1]). r is what makes the last layer
end at the top of the density, f(0) = 1. Computed with 60 digits.

Usage: ziggurat.py > ziggurat.h
"""
from mpmath import mp, mpf, exp, log, sqrt, erfc, pi, findroot, nstr

mp.dps = 60
layers = 256


def normal():
    return (lambda x: exp(-x * x / 2), lambda y: sqrt(-2 * log(y)),
            lambda r: sqrt(pi / 2) * erfc(r / sqrt(mpf(2))), mpf("3.6541528853610088"))


def exponential():
    return (lambda x: exp(-x), lambda y: -log(y), lambda r: exp(-r), mpf("7.69711747013104972"))


def edges(f, inverse, tail, start):
    """x[0] = v / f(r), x[1] = r > x[2] > .. > x[256] = 0."""
    def build(r):
        v = r * f(r) + tail(r)
        x = [v / f(r), r]
        while len(x) < layers:
            y = f(x[-1]) + v / x[-1]
            x.append(inverse(y) if y < 1 else mpf(0))
        return x, v

    def excess(r):  # how far the last layer misses the top
        x, v = build(r)
        return f(x[-1]) + v / x[-1] - 1

    r = findroot(excess, (start, start * (1 + mpf(10) ** -12)), tol=mpf(10) ** -90)
    x, _ = build(r)
    assert abs(r / start - 1) < mpf(10) ** -12
    return x + [mpf(0)]


def literal(value):
    return repr(float(nstr(value, 40)))


def table(name, values, comment):
    lines = [f"/// {comment}", f"constexpr double {name}[] = {{"]
    row = "   "
    for value in values:
        text = " " + literal(value) + ","
        if len(row) + len(text) > 100:
            lines.append(row)
            row = "   "
        row += text
    return lines + [row, "};", ""]


out = ["// Made by ziggurat.py.", "// clang-format off", "#pragma once", "", "namespace ZVMath", "{", "",
       f"constexpr int zigguratLayers = {layers};", ""]
for name, make in (("normal", normal), ("exponential", exponential)):
    f, inverse, tail, start = make()
    x = edges(f, inverse, tail, start)
    out += table(name + "Edges", x,
                 "Where layer i ends on the right; edge 1 is where the tail begins.")
    out += table(name + "Heights", [mpf(0)] + [f(v) for v in x[1:]],
                 "The density, scaled to 1 at its top, where layer i ends; of the first: the axis.")
out += ["}  // namespace ZVMath"]
print("\n".join(out))
