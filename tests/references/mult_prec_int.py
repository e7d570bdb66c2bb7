#!/usr/bin/env python3
"""Makes mult_prec_int_reference.h: long random sequences of every operation on multiprecision
integers, with Python's own integers in place of digits.

A number is here a magnitude (an int), the counts of its digits in use and allocated, and its sign.
Of each sequence the table has a digest of everything that can be seen of the number that a step
changes, after each 100 steps. The test runs the same sequences; the generator of both is SplitMix64
(Steele, Lea and Flood, 2014).

Usage: mult_prec_int.py > mult_prec_int_reference.h
"""

MASK = 2**64 - 1
BASE = 2**28
SEEDS = range(1, 9)
STEPS = 2000
EVERY = 100
NUMBERS = 5
TOO_LONG = 700


class Random:
    def __init__(self, seed):
        self.state = seed

    def word(self):
        self.state = (self.state + 0x9E3779B97F4A7C15) & MASK
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & MASK
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & MASK
        return z ^ (z >> 31)

    def below(self, n):
        return self.word() % n


class Number:
    def __init__(self, value=0):
        self.assign(value)

    def assign(self, value):
        self.magnitude = abs(value) % BASE
        self.used = 1 if self.magnitude else 0
        self.negative = value < 0
        self.allocated = 32

    def copy(self, other, negative):
        self.__dict__.update(other.__dict__)
        self.negative = negative
        return self

    def set_sign(self, negative):
        self.negative = negative

    def grow(self, n):
        if n > self.allocated:
            self.allocated = n // 32 * 32 + 64

    def clamp(self):
        """The fewest digits that hold the magnitude. Nobody calls it with more than are in use."""
        self.used = -(-self.magnitude.bit_length() // 28)
        if self.used == 0:
            self.negative = False

    def compare_magnitude(self, other):
        mine, others = (self.used, self.magnitude), (other.used, other.magnitude)
        return (mine > others) - (mine < others)

    def compare(self, other):
        if self.negative != other.negative:
            return -1 if self.negative else 1
        return -self.compare_magnitude(other) if self.negative else self.compare_magnitude(other)

    def increment_digits(self, other):
        if self.used >= other.used:
            self.grow(self.used + 1)
            self.magnitude += other.magnitude
            self.clamp()

    def decrement_digits(self, other):
        if self.used >= other.used:
            self.magnitude = (self.magnitude - other.magnitude) % BASE**self.used
            self.clamp()

    def add(self, other, others_negative):
        same = self.negative == others_negative
        if self.compare_magnitude(other) != -1:
            self.increment_digits(other) if same else self.decrement_digits(other)
            return
        result = Number().copy(other, others_negative)
        result.increment_digits(self) if same else result.decrement_digits(self)
        self.magnitude, self.used = result.magnitude, result.used
        self.allocated = result.allocated
        self.negative = others_negative and self.used > 0

    def double(self):
        self.grow(self.used + 1)
        self.magnitude *= 2
        if self.magnitude >= BASE**self.used:
            self.used += 1

    def halve(self):
        self.magnitude //= 2
        self.clamp()

    def digits_up(self, k):
        if k > 0:
            self.grow(self.used + k)
            self.used += k
            self.magnitude *= BASE**k

    def digits_down(self, k):
        if k > 0:
            self.magnitude //= BASE**k
            self.clamp()

    def bits_up(self, b):
        self.grow(self.used + b // 28 + 1)
        self.magnitude *= 2**b
        self.clamp()

    def clear(self):
        self.assign(0)
        self.allocated = 0

    def zero(self):
        self.magnitude = self.used = 0
        self.negative = False

    def digits(self):
        return [self.magnitude >> 28 * i & BASE - 1
                for i in range(-(-self.magnitude.bit_length() // 28))]


def random_digits(random, n):
    """Runs of zeros, of digits with all bits set, and of any digits."""
    digits = []
    while len(digits) < n:
        kind = random.below(4)
        for _ in range(min(1 + random.below(40), n - len(digits))):
            digit = random.below(BASE)
            digits.append(0 if kind == 0 else BASE - 1 if kind == 1 else digit)
    return digits


def refill(random, x):
    n = random.below(600)
    x.grow(n)
    x.magnitude = sum(d * BASE**i for i, d in enumerate(random_digits(random, n)))
    x.clamp()


def as_int(word):
    return word - 2**32 if word >= 2**31 else word


CHANGES = [
    lambda random, x, y: x.add(y, y.negative),
    lambda random, x, y: x.add(y, not y.negative),
    lambda random, x, y: x.increment_digits(y),
    lambda random, x, y: x.decrement_digits(y),
    lambda random, x, y: x.double(),
    lambda random, x, y: x.halve(),
    lambda random, x, y: x.digits_up(random.below(40)),
    lambda random, x, y: x.digits_down(random.below(40)),
    lambda random, x, y: x.bits_up(random.below(1200)),
    lambda random, x, y: x.copy(y, y.negative),
    lambda random, x, y: x.copy(y, not y.negative),
    lambda random, x, y: x.assign(as_int(random.below(2**32))),
    lambda random, x, y: x.assign(random.below(5) - 2),
    lambda random, x, y: refill(random, x),
    lambda random, x, y: x.grow(random.below(300)),
    lambda random, x, y: x.clear(),
    lambda random, x, y: x.zero(),
    lambda random, x, y: x.clamp(),
    lambda random, x, y: x.set_sign(False),
    lambda random, x, y: x.set_sign(True),
]


def digests(seed):
    random = Random(seed)
    numbers = [Number() for _ in range(NUMBERS)]
    hash = 0
    result = []
    for i in range(1, STEPS + 1):
        x, y = numbers[random.below(NUMBERS)], numbers[random.below(NUMBERS)]
        kind = random.below(26)
        if x.used > TOO_LONG:
            x.digits_down(1 + random.below(x.used))
        else:
            CHANGES[kind // 4 if kind < 8 else kind - 6](random, x, y)
        seen = [x.used, x.allocated, int(x.negative), x.compare(y) + 1]
        for value in seen + x.digits():
            hash = (hash ^ value) * 0x100000001B3 & MASK
        if i % EVERY == 0:
            result.append(hash)
    return result


def main():
    print('#pragma once\n\n// Made by mult_prec_int.py.\n\n#include <cstdint>\n#include <vector>\n')
    print('namespace ZVTest\n{\n')
    print('/// The digest of all steps so far, after each 100 of them.')
    print('struct MultPrecIntReference\n{\n    uint64_t seed;')
    print('    std::vector<uint64_t> digests;\n};\n\n// clang-format off')
    print('inline const MultPrecIntReference multPrecIntReferences[] = {')
    for seed in SEEDS:
        lines = [f'0x{digest:016x}' for digest in digests(seed)]
        rows = [', '.join(lines[i:i + 5]) for i in range(0, len(lines), 5)]
        print(f'    {{{seed},\n     {{' + ',\n      '.join(rows) + '}},')
    print('};\n// clang-format on\n\n}  // namespace ZVTest')


main()
