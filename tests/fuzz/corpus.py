#!/usr/bin/env python3
"""Makes the seeds in corpus/: records that fit and records that don't, each with the options that
read_fuzz.cpp takes from the first bytes.

Usage: corpus.py, in this folder
"""
from pathlib import Path
from struct import pack

swap8, swap4, failed = 1, 2, 4


def seed(name, *counts, elements=(), flags=0, version=1, budget=0xFFFF, piece=255, cut=None):
    order4, order8 = ("<>"[flags & bit != 0] for bit in (swap4, swap8))
    record = pack(f"{order4}{len(counts)}I", *counts) + pack(f"{order8}{len(elements)}d", *elements)
    Path("corpus", name).write_bytes(pack("<BBHB", flags, version, budget, piece) + record[:cut])


six = (1, -0.0, 5e-324, 1e308, float("inf"), float("nan"))
seed("matrix", 2, 3, 6, elements=six)
seed("matrix-swapped", 2, 3, 6, elements=six, flags=swap8 | swap4)
seed("matrix-counts-swapped", 3, 2, 6, elements=six, flags=swap4)
seed("matrix-in-pieces", 2, 3, 6, elements=six, piece=11)
seed("matrix-cut-in-counts", 2, 3, 6, cut=10)
seed("matrix-cut-in-elements", 2, 3, 6, elements=six, cut=33)
seed("matrix-small-budget", 2, 3, 6, elements=six, budget=37)
seed("square", 2, 2, 4, elements=six[:4])
seed("row-for-a-square", 1, 4, 4, elements=six[:4])
seed("no-elements", 3, 0, 0)
seed("too-few-elements", 4, 5, 6, elements=six)
seed("too-many-elements", 2, 2, 6, elements=six)
seed("count-without-elements", 2, 3, 0xFFFFFFFF, elements=six)
seed("claims-2-to-32", 65536, 65536, 0)
seed("claims-much", 65535, 65536, 1, elements=six[:1])
seed("vector", 6, elements=six)
seed("vector-swapped", 6, elements=six, flags=swap8 | swap4)
seed("vector-in-bytes", 6, elements=six, piece=0)
seed("version-2", 2, 3, 6, elements=six, version=2)
seed("failed-before", 2, 3, 6, elements=six, flags=failed)
