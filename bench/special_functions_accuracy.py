#!/usr/bin/env python3
"""Measures the special functions, ours and other libraries', against true values of 40 digits.

Writes the accuracy tables of docs/special_functions.md to standard output, and to <folder> what
docs/plots/special_functions_accuracy.gp and docs/plots/special_functions_validity.gp draw.

Gamma, digamma, trigamma are mpmath's. P and I come from their series of positive terms,

    P(a, x) = x^a e^-x / Gamma(a + 1) * sum x^n / ((a+1) .. (a+n))
    I_x(a, b) = x^a (1-x)^b / (a B(a, b)) * sum x^n (a+b) .. (a+b+n-1) / ((a+1) .. (a+n))

summed in integers. `check_series` holds them against mpmath's own functions, which are too slow to
be asked each time.

Usage: special_functions_accuracy.py <program special_functions_accuracy> <folder>
"""
import math
import os
import random
import subprocess
import sys

from mpmath import mp, mpf, mpmathify, betainc, digamma, exp, gammainc, harmonic, log, loggamma, psi

POINTS = 4000
MAP_SIZE = 120
TITLES = {"zvmath": "zvmath", "libm": "C library", "gsl": "GSL", "boost": "Boost",
          "boost-double": "Boost, in double"}
mp.dps = 50


def fraction_sum(numerator, denominator, bits):
    """The sum over n of the products of numerator(k) / denominator(k), k < n, in integers."""
    one = 1 << bits
    term, total, n = one, one, 0
    while term:
        term = term * numerator(n) // denominator(n)
        total += term
        n += 1
    return mpf(total) / one


def scaled(*values):
    """The doubles as integers, all times the power of two that this takes."""
    ratios = [v.as_integer_ratio() for v in values]
    scale = max(d for _, d in ratios)
    return [n * (scale // d) for n, d in ratios] + [scale]


def lower_gamma(a, x):
    A, X, one = scaled(a, x)
    total = fraction_sum(lambda n: X, lambda n: A + (n + 1) * one, mp.prec + 20)
    return exp(mpf(a) * log(mpf(x)) - mpf(x) - loggamma(mpf(a) + 1)) * total


def incomplete_gamma(a, x):
    """P(a, x) and Q(a, x)."""
    with mp.workdps(60):
        p = lower_gamma(a, x)
        if p < 0.9:
            return p, 1 - p
        # Where Q is small the difference takes more digits.
        lost = mpf(a) * log(mpf(x)) - mpf(x) - loggamma(mpf(a))
    with mp.workdps(60 + max(0, int(-lost / 2.3) + 5)):
        p = lower_gamma(a, x)
        return p, 1 - p


def lower_beta(A, B, X, one):
    """I_x(a, b), the arguments being these integers over `one`."""
    total = fraction_sum(lambda n: X * (A + B + n * one), lambda n: (A + (n + 1) * one) * one,
                         mp.prec + 20)
    a, b, x, y = (mpf(v) / one for v in (A, B, X, one - X))
    return exp(a * log(x) + b * log(y) + loggamma(a + b) - loggamma(a + 1) - loggamma(b)) * total


def incomplete_beta(a, b, x):
    A, B, X, one = scaled(a, b, x)
    digits = 60
    if x <= 0.5:
        with mp.workdps(digits):
            return lower_beta(A, B, X, one)
    # The series of I_(1-x)(b, a) is the shorter; as many digits more as the difference loses.
    while True:
        with mp.workdps(digits):
            lower = 1 - lower_beta(B, A, one - X, one)
            if lower > mpf(10) ** (45 - digits):
                return lower
        digits *= 2


TRUTH = {
    "lgamma": lambda x: loggamma(mpf(x)),
    "digamma": lambda x: digamma(mpf(x)),
    "trigamma": lambda x: psi(1, mpf(x)),
    "P": lambda a, x: incomplete_gamma(a, x)[0],
    "Q": lambda a, x: incomplete_gamma(a, x)[1],
    "I": incomplete_beta,
    "harmonic": lambda n: harmonic(mpf(n)),
}


def check_series():
    for a, x in [(0.3, 0.1), (2.5, 3.75), (30.0, 29.0), (30.0, 80.0), (500.0, 560.0)]:
        p, q = incomplete_gamma(a, x)
        assert abs(p / gammainc(a, 0, x, regularized=True) - 1) < mpf(10) ** -40
        assert abs(q / gammainc(a, x, mp.inf, regularized=True) - 1) < mpf(10) ** -40
    for a, b, x in [(0.3, 0.7, 0.1), (2.5, 3.75, 0.9), (40.0, 30.0, 0.55), (3.0, 60.0, 0.5)]:
        with mp.workdps(80):
            true = betainc(a, b, 0, x, regularized=True)
        assert abs(incomplete_beta(a, b, x) / true - 1) < mpf(10) ** -40


class Program:
    """The contestants, by way of the compiled program."""

    def __init__(self, path):
        self.path = path

    def ask(self, questions):
        """For each question (function, arguments..) a dictionary from contestant to value."""
        lines = "".join(" ".join([f] + [float(v).hex() for v in arguments]) + "\n"
                        for f, *arguments in questions)
        answers = subprocess.run([self.path], input=lines, capture_output=True, text=True,
                                 check=True).stdout.splitlines()
        self.names = answers[0].split()
        return [{name: float.fromhex(v) for name, v in zip(self.names, line.split()) if v != "-"}
                for line in answers[1:]]


def error(value, true, absolute):
    """In ulp of the true value or in units of 2^-52; None for a value that is none."""
    if not math.isfinite(value) or abs(value) == sys.float_info.max:
        return None
    unit = 2.0 ** -52 if absolute else math.ulp(float(true))
    return abs(float((mpf(value) - true) / unit))


def log_uniform(low, high):
    return lambda: math.exp(random.uniform(math.log(low), math.log(high)))


def uniform(low, high):
    return lambda: random.uniform(low, high)


def gamma_pair(a_low, a_high, below):
    """x from a + 1 as far as P (below: x < a + 1) or Q goes down to about 1e-15."""
    def draw():
        a = log_uniform(a_low, a_high)()
        far = max(a - 8 * math.sqrt(a), a * 1e-3) if below else a + 8 * math.sqrt(a) + 30
        x = random.uniform(a + 1, far)
        return (a, x) if (x < a + 1) == below else draw()
    return draw


def beta_triple(low, high, deviations):
    """a and b within the range, x within so many standard deviations of the mean."""
    def draw():
        while True:
            a, b = log_uniform(low, high)(), log_uniform(low, high)()
            mean = a / (a + b)
            x = mean + random.uniform(-deviations, deviations) * math.sqrt(
                mean * (1 - mean) / (a + b + 1))
            if 1e-6 < x < 1 - 1e-6:
                return a, b, x
    return draw


# Function, what the range is called, how arguments are drawn, whether the error is absolute.
RANGES = [
    ("lgamma", "1e-300 to 1e-3", log_uniform(1e-300, 1e-3), False),
    ("lgamma", "1e-3 to 0.5", log_uniform(1e-3, 0.5), False),
    ("lgamma", "0.5 to 3", uniform(0.5, 3), True),
    ("lgamma", "3 to 10", uniform(3, 10), False),
    ("lgamma", "10 to 1e3", log_uniform(10, 1e3), False),
    ("lgamma", "1e3 to 1e15", log_uniform(1e3, 1e15), False),
    ("lgamma", "1e15 to 1e305", log_uniform(1e15, 1e305), False),
    ("digamma", "1e-300 to 1e-16", log_uniform(1e-300, 1e-16), False),
    ("digamma", "1e-16 to 1", log_uniform(1e-16, 1), False),
    ("digamma", "1 to 2", uniform(1, 2), True),
    ("digamma", "2 to 10", uniform(2, 10), False),
    ("digamma", "10 to 100", log_uniform(10, 100), False),
    ("digamma", "100 to 1e300", log_uniform(100, 1e300), False),
    ("trigamma", "1e-153 to 1e-16", log_uniform(1e-153, 1e-16), False),
    ("trigamma", "1e-16 to 1", log_uniform(1e-16, 1), False),
    ("trigamma", "1 to 10", uniform(1, 10), False),
    ("trigamma", "10 to 100", log_uniform(10, 100), False),
    ("trigamma", "100 to 1e150", log_uniform(100, 1e150), False),
    ("P", "a 0.01 to 1, x < a + 1", gamma_pair(0.01, 1, True), False),
    ("P", "a 1 to 10, x < a + 1", gamma_pair(1, 10, True), False),
    ("P", "a 10 to 100, x < a + 1", gamma_pair(10, 100, True), False),
    ("P", "a 100 to 586, x < a + 1", gamma_pair(100, 586, True), False),
    ("P", "a 586 to 1e5, x < a + 1", gamma_pair(586, 1e5, True), False),
    ("P", "a 0.01 to 9e3, x >= a + 1", gamma_pair(0.01, 9e3, False), False),
    ("Q", "a 0.01 to 1, x >= a + 1", gamma_pair(0.01, 1, False), False),
    ("Q", "a 1 to 10, x >= a + 1", gamma_pair(1, 10, False), False),
    ("Q", "a 10 to 100, x >= a + 1", gamma_pair(10, 100, False), False),
    ("Q", "a 100 to 1e3, x >= a + 1", gamma_pair(100, 1e3, False), False),
    ("Q", "a 1e3 to 9e3, x >= a + 1", gamma_pair(1e3, 9e3, False), False),
    ("Q", "a 9e3 to 1e5, x >= a + 1", gamma_pair(9e3, 1e5, False), False),
    ("I", "a, b 0.1 to 1", beta_triple(0.1, 1, 4), False),
    ("I", "a, b 1 to 10", beta_triple(1, 10, 4), False),
    ("I", "a, b 10 to 100", beta_triple(10, 100, 4), False),
    ("I", "a, b 100 to 1e3", beta_triple(100, 1e3, 4), False),
    ("I", "a, b 1e3 to 1e4", beta_triple(1e3, 1e4, 4), False),
    ("I", "a, b 1e4 to 1e5", beta_triple(1e4, 1e5, 4), False),
    ("harmonic", "n 1 to 1e6", lambda: float(round(log_uniform(1, 1e6)())), False),
]


def figure(value):
    return f"{value:.2g}" if value < 9.95 else f"{value:.0f}" if value < 1e5 else f"{value:.0e}"


def table(program):
    draws = []
    for function, _, draw, _ in RANGES:
        for _ in range(POINTS):
            drawn = draw()
            draws.append((function,) + (drawn if isinstance(drawn, tuple) else (drawn,)))
    answers = program.ask(draws)
    print("| function | range | unit | " + " | ".join(TITLES[n] for n in program.names) + " |")
    print("|---|---|---|" + "--:|" * len(program.names))
    for i, (function, name, _, absolute) in enumerate(RANGES):
        errors = {n: [] for n in program.names}
        for j in range(i * POINTS, (i + 1) * POINTS):
            true = TRUTH[function](*draws[j][1:])
            for contestant, value in answers[j].items():
                errors[contestant].append(error(value, true, absolute))
        cells = []
        for n in program.names:
            good = [e for e in errors[n] if e is not None]
            lost = len(errors[n]) - len(good)
            cell = f"{figure(max(good))}, {figure(sum(good) / len(good))}" if good else ""
            if lost:
                cell += f"; {100 * lost / len(errors[n]):.2g} % fail"
            cells.append(cell)
        print(f"| {function} | {name} | {'2^-52' if absolute else 'ulp'} | " + " | ".join(cells) +
              " |", flush=True)


def curves(program, folder):
    """The error along a line of arguments: the largest of neighbouring points."""
    random.seed(2)
    steps, neighbours = 100, 20
    lines = [("lgamma", 1e-3, 1e6, lambda x: (x,)), ("digamma", 1e-3, 1e6, lambda x: (x,)),
             ("trigamma", 1e-3, 1e6, lambda x: (x,)), ("P", 0.01, 1e4, lambda a: (a, a))]
    with open(os.path.join(folder, "special_functions_accuracy.dat"), "w") as file:
        for function, low, high, arguments in lines:
            ratio = (high / low) ** (1 / steps)
            starts = [low * ratio ** i for i in range(steps)]
            questions = [(function,) + arguments(s * ratio ** random.random())
                         for s in starts for _ in range(neighbours)]
            answers = program.ask(questions)
            print(f"# {function}: argument, largest error in ulp of", *program.names, file=file)
            for i, start in enumerate(starts):
                worst = {n: 0.0 for n in program.names}
                for j in range(i * neighbours, (i + 1) * neighbours):
                    true = TRUTH[function](*questions[j][1:])
                    for n in program.names:
                        e = error(answers[j].get(n, math.nan), true, False)
                        worst[n] = math.nan if e is None else max(worst[n], e)
                print(f"{start * ratio ** 0.5:.5g}", *(f"{worst[n]:.3g}" for n in program.names),
                      file=file)
            print("\n", file=file)


def maps(program, folder):
    """Classes of error on grids: 0 at most 4 ulp, 1 32, 2 256, 3 2048, 4 16384, 5 more, 6 no value."""
    def grade(value, true):
        e = error(value, true, False)
        return 6 if e is None else sum(e > limit for limit in (4, 32, 256, 2048, 16384))

    def grid(low, high):
        return [low * (high / low) ** ((i + 0.5) / MAP_SIZE) for i in range(MAP_SIZE)]

    with open(os.path.join(folder, "special_functions_validity.dat"), "w") as file:
        print("# P: log10 of a, log10 of x / a, class", file=file)
        pairs = [(a, a * r) for r in grid(0.1, 10) for a in grid(0.1, 1e5)]
        for (a, x), answer in zip(pairs, program.ask([("P",) + p for p in pairs])):
            value = answer["zvmath"]
            # Far above the mean P is 1 to 40 digits, since Q < x^a e^-x / Gamma(a) / (x - a + 1).
            far = x > a + 1 and a * math.log(x) - x - math.lgamma(a) < -100
            true = mpf(1) if far else TRUTH["P"](a, x)
            print(f"{math.log10(a):.5f} {math.log10(x / a):.5f} {grade(value, true)}", file=file)
        print("\n\n# I at the mean: log10 of a, log10 of b, class", file=file)
        triples = [(a, b, a / (a + b)) for b in grid(0.1, 1e6) for a in grid(0.1, 1e6)]
        for (a, b, x), answer in zip(triples, program.ask([("I",) + t for t in triples])):
            value = answer["zvmath"]
            # No value needs no true one.
            kind = grade(value, TRUTH["I"](a, b, x)) if math.isfinite(value) else 6
            print(f"{math.log10(a):.5f} {math.log10(b):.5f} {kind}", file=file)


if len(sys.argv) != 3:
    sys.exit("usage: special_functions_accuracy.py <program> <folder>")
check_series()
contestants = Program(sys.argv[1])
random.seed(1)
table(contestants)
curves(contestants, sys.argv[2])
maps(contestants, sys.argv[2])
