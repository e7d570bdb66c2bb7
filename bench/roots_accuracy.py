#!/usr/bin/env python3
"""Measures the roots of polynomials, ours and other libraries', against true ones of 50 digits.

Writes the accuracy tables of docs/roots.md to standard output, and to <folder> what
docs/plots/roots_accuracy.gp draws.

A polynomial is what its coefficients are as doubles. In fractions it is split into factors without
multiple roots (Yun 1976), whose roots are mpmath's, and Sturm's theorem tells how many are real: so
a double root that the rounding of a coefficient has split, or made complex, is known to be.

Usage: roots_accuracy.py <program roots_accuracy> <folder>
"""
import math
import os
import random
import subprocess
import sys
from fractions import Fraction

from mpmath import mp, mpf, polyroots

POLYNOMIALS = 1000
TITLES = {"zvmath": "zvmath", "gsl": "GSL", "boost": "Boost", "eigen": "Eigen"}
DEGREES = {2: "quadratic", 3: "cubic", 4: "quartic"}
mp.dps = 50


# Polynomials in fractions, coefficients from the highest power down.

def trimmed(p):
    while p and p[0] == 0:
        p = p[1:]
    return p


def divide(p, d):
    """Quotient and remainder."""
    p, quotient = list(p), []
    while len(p) >= len(d):
        factor = p[0] / d[0]
        quotient.append(factor)
        p = [a - factor * b for a, b in zip(p, d + [0] * (len(p) - len(d)))][1:]
    return quotient, trimmed(p)


def derivative(p):
    n = len(p) - 1
    return [a * (n - i) for i, a in enumerate(p[:-1])]


def common(p, q):
    while q:
        p, q = q, divide(p, q)[1]
    return [a / p[0] for a in p]


def factors(p):
    """Pairs of a factor without multiple roots and the multiplicity of its roots."""
    found, multiplicity = [], 1
    shared = common(p, derivative(p))
    rest = divide(p, shared)[0]
    while len(rest) > 1:
        both = common(rest, shared)
        factor = divide(rest, both)[0]
        if len(factor) > 1:
            found.append((factor, multiplicity))
        rest, shared = both, divide(shared, both)[0]
        multiplicity += 1
    return found


def count_real(p):
    """The number of different real roots, by the changes of sign in Sturm's chain at infinity."""
    chain = [p, derivative(p)]
    while len(chain[-1]) > 1:
        chain.append([-a for a in divide(chain[-2], chain[-1])[1]])
    above = [q[0] > 0 for q in chain]
    below = [(q[0] > 0) == (len(q) % 2 == 1) for q in chain]
    return sum(a != b for a, b in zip(below, below[1:])) - sum(
        a != b for a, b in zip(above, above[1:]))


class Truth:
    """Real roots, their number with multiplicity, and the largest magnitude of any root."""

    def __init__(self, coefficients):
        self.real, self.with_multiplicity, self.largest = [], 0, mpf(0)
        for factor, multiplicity in factors(trimmed([Fraction(c) for c in coefficients])):
            monic = [mpf(a.numerator) / a.denominator for a in factor]
            roots = self.solve([a / monic[0] for a in monic])
            count = count_real(factor)
            roots.sort(key=lambda r: abs(mp.im(r)))
            self.real += [mp.re(r) for r in roots[:count]]
            self.with_multiplicity += multiplicity * count
            self.largest = max([self.largest] + [abs(r) for r in roots])

    @staticmethod
    def solve(monic):
        return [-monic[1]] if len(monic) == 2 else polyroots(monic, maxsteps=1000, extraprec=200)

    def is_number(self, count):
        """Whether so many roots may be reported: multiple ones once, or as often as they are."""
        return count in (len(self.real), self.with_multiplicity)

    def error(self, reported):
        """The largest distance of a true root from the nearest reported one, or the other way
        round, relative to the largest root."""
        if not all(math.isfinite(r) for r in reported):
            return math.inf
        if not self.real:
            return None
        def distance(a, others):
            return min(abs(a - b) for b in others)
        reported = [mpf(r) for r in reported]
        worst = max([distance(t, reported) for t in self.real] +
                    [distance(r, self.real) for r in reported])
        return float(worst / self.largest)


class Program:
    """The contestants, by way of the compiled program."""

    def __init__(self, path):
        self.path = path

    def ask(self, polynomials):
        """For each polynomial a dictionary from contestant to the roots reported."""
        lines = "".join(" ".join(float(c).hex() for c in p) + "\n" for p in polynomials)
        answers = subprocess.run([self.path], input=lines, capture_output=True, text=True,
                                 check=True).stdout.splitlines()
        self.names = answers[0].split()
        return [self.parse(line.split()) for line in answers[1:]]

    def parse(self, words):
        found, at = {}, 0
        for name in self.names:
            count = int(words[at])
            found[name] = [float.fromhex(w) for w in words[at + 1:at + 1 + count]]
            at += 1 + count
        return found


# Families.

def expanded(roots, leading=1.0, pairs=()):
    """The coefficients, rounded, of leading * product (x - root) * product (x^2 - 2 u x + u^2 + v^2)."""
    p = [Fraction(leading)]
    for factor in [[1, -Fraction(r)] for r in roots] + [
            [1, -2 * Fraction(u), Fraction(u) ** 2 + Fraction(v) ** 2] for u, v in pairs]:
        product = [Fraction(0)] * (len(p) + len(factor) - 1)
        for i, a in enumerate(p):
            for j, b in enumerate(factor):
                product[i + j] += a * b
        p = product
    return [float(a) for a in p]


def uniform(low=-10.0, high=10.0):
    return random.uniform(low, high)


def leading():
    return random.choice([-1, 1]) * uniform(0.5, 2)


def apart(n, gap=1.0):
    """n numbers between -10 and 10 that are `gap` apart."""
    while True:
        roots = sorted(uniform() for _ in range(n))
        if all(b - a >= gap for a, b in zip(roots, roots[1:])):
            return roots


def whole(n):
    return random.sample([r for r in range(-10, 11) if r != 0], n)


def log_uniform(low, high):
    return math.exp(uniform(math.log(low), math.log(high)))


def close(n, together, gap):
    """n roots, of which some are so close to one another."""
    roots = apart(n - together + 1)
    return roots + [roots[0] + uniform(-gap, gap) for _ in range(together - 1)]


def symmetric(n):
    """Whole roots on both sides of a whole number."""
    middle = random.randrange(-5, 6)
    halves = random.sample(range(1, 11), n // 2)
    return [middle + s * h for h in halves for s in (1, -1)] + [middle] * (n % 2)


def complex_pairs(n, pairs):
    return expanded(apart(n - 2 * pairs), leading(),
                    [(uniform(), log_uniform(0.1, 10)) for _ in range(pairs)])


# What the roots are like, the degrees, and how coefficients are drawn.
FAMILIES = [
    ("real, between -10 and 10, 1 apart", (2, 3, 4), lambda n: expanded(apart(n), leading())),
    ("whole, all different", (2, 3, 4), lambda n: expanded(whole(n))),
    ("whole, symmetric about their mean", (3, 4), lambda n: expanded(symmetric(n))),
    ("whole, one double", (2, 3, 4), lambda n: expanded((lambda r: r + r[:1])(whole(n - 1)))),
    ("whole, two double", (4,), lambda n: expanded(2 * whole(2))),
    ("whole, one triple", (4,), lambda n: expanded((lambda r: r + 2 * r[:1])(whole(2)))),
    ("whole, all equal", (3, 4), lambda n: expanded(n * whole(1))),
    ("two within 1e-3", (2, 3, 4), lambda n: expanded(close(n, 2, 1e-3), leading())),
    ("two within 1e-6", (2, 3, 4), lambda n: expanded(close(n, 2, 1e-6), leading())),
    ("all within 1e-3", (3, 4), lambda n: expanded(close(n, n, 1e-3), leading())),
    ("magnitudes 1e-6 to 1e6", (2, 3, 4), lambda n: expanded(
        [random.choice([-1, 1]) * log_uniform(1e-6, 1e6) for _ in range(n)])),
    ("one complex pair", (2, 3, 4), lambda n: complex_pairs(n, 1)),
    ("two complex pairs", (4,), lambda n: complex_pairs(n, 2)),
    ("coefficients -1 to 1 at random", (2, 3, 4), lambda n: [uniform(-1, 1) for _ in range(n + 1)]),
    ("real, 1 apart, coefficients times 1e60", (2, 3, 4),
     lambda n: expanded(apart(n), 1e60 * leading())),
    ("real, 1 apart, coefficients times 1e-7", (2, 3, 4),
     lambda n: expanded(apart(n), 1e-7 * leading())),
    ("leading coefficient 1e-12 to 1e-3, others -1 to 1", (2, 3, 4),
     lambda n: [log_uniform(1e-12, 1e-3)] + [uniform(-1, 1) for _ in range(n)]),
]


def share(part, whole_count):
    percent = 100 * part / whole_count
    return f"{percent:.2g} %" if percent < 9.95 else f"{percent:.0f} %"


def figure(value):
    return f"{value:.1e}" if value else "0"


def table(program):
    for degree, name in DEGREES.items():
        families = [(title, draw) for title, degrees, draw in FAMILIES if degree in degrees]
        polynomials = [draw(degree) for _, draw in families for _ in range(POLYNOMIALS)]
        answers = program.ask(polynomials)
        names = program.names
        print(f"\n| roots of a {name} | " + " | ".join(TITLES[n] for n in names) + " |")
        print("|---|" + "--:|" * len(names))
        for i, (title, _) in enumerate(families):
            errors, missed = {n: [] for n in names}, {n: 0 for n in names}
            for j in range(i * POLYNOMIALS, (i + 1) * POLYNOMIALS):
                truth = Truth(polynomials[j])
                for n in names:
                    if truth.is_number(len(answers[j][n])):
                        error = truth.error(answers[j][n])
                        errors[n] += [] if error is None else [error]
                    else:
                        missed[n] += 1
            cells = []
            for n in names:
                good = sorted(errors[n])
                parts = [figure(good[-1]) + ", " + figure(good[len(good) // 2])] if good else []
                parts += [f"{share(missed[n], POLYNOMIALS)} wrong"] if missed[n] else []
                cells.append("; ".join(parts) or "right")
            print(f"| {title} | " + " | ".join(cells) + " |", flush=True)


def curves(program, folder):
    """The error against a distance: the largest of neighbouring points, of those polynomials whose
    roots are all real and whose number of roots is reported."""
    random.seed(2)
    steps, neighbours = 60, 20
    lines = [
        ("quadratic: two roots apart by", lambda d: expanded([1.0, 1.0 + d], leading())),
        ("cubic: two roots apart by", lambda d: expanded([1.0, 1.0 + d, uniform(-1, 0)], leading())),
        ("quartic: two roots apart by",
         lambda d: expanded([1.0, 1.0 + d, uniform(-1, -0.5), uniform(0, 0.5)], leading())),
        ("quartic: distance from symmetry",
         lambda d: expanded([-1.0, 1.0 + d] + (lambda r: [-r, r])(uniform(0.2, 0.8)), leading())),
    ]
    with open(os.path.join(folder, "roots_accuracy.dat"), "w") as file:
        for title, draw in lines:
            starts = [10 ** (-12 * (1 - i / steps)) for i in range(steps)]
            polynomials = [draw(s * 10 ** (random.random() * 12 / steps))
                           for s in starts for _ in range(neighbours)]
            answers = program.ask(polynomials)
            print(f"# {title}, largest relative error of", *program.names, file=file)
            for i, start in enumerate(starts):
                worst = {n: math.nan for n in program.names}
                for j in range(i * neighbours, (i + 1) * neighbours):
                    truth = Truth(polynomials[j])
                    if truth.with_multiplicity < len(polynomials[j]) - 1:
                        continue
                    for n in program.names:
                        if truth.is_number(len(answers[j][n])):
                            worst[n] = max(truth.error(answers[j][n]), 0 if math.isnan(worst[n])
                                           else worst[n])
                print(f"{start * 10 ** (6 / steps):.5g}",
                      *(f"{worst[n]:.3g}" for n in program.names), file=file)
            print("\n", file=file)


if len(sys.argv) != 3:
    sys.exit("usage: roots_accuracy.py <program> <folder>")
contestants = Program(sys.argv[1])
random.seed(1)
table(contestants)
curves(contestants, sys.argv[2])
