#!/usr/bin/env python3
"""Makes result.json: fourteen kernels whose traffic at four memory levels comes from a model, not from a measurement.

usage: make_result.py > result.json

README.md tells the model of each kernel in formulas; a kernel here is one function of the same name.
"""

import json
import sys

KI, MI = 2**10, 2**20
LINE = 64                       # bytes of a cache line
WORD = 8                        # bytes of a double
THREADS = 18
L1, L2, L3 = 32 * KI, 256 * KI, 45 * MI     # bytes; L1 and L2 of each core, L3 shared

# Roofs of ../two_compilers/machine.json for 18 threads: GB/s, and giga operations per second.
BANDWIDTH = {"L1": 2330.2, "L2": 775.19, "L3": 478.78, "Dram": 69.98}
PEAK = {"fma": 662.4, "add": 165.6, "scalar": 41.4, "int": 165.6}
LEVELS = list(BANDWIDTH)


def streams(loads, stores, count, levels=LEVELS):
    """Bytes by level for `count` elements of so many loaded and stored words; a store loads its line first."""
    return {level: (WORD * count * (loads + (0 if level == "L1" else stores)), WORD * count * stores)
            for level in levels}


def misses(cache, table):
    """The share of random accesses to `table` bytes that a cache of so many bytes doesn't hold."""
    return max(0.0, 1.0 - cache / table)


def triad():
    n, passes = 2**26, 100
    return 2 * n * passes, streams(2, 1, n * passes)


def triad_in_l3():
    n, passes = 9 * 2**15, 60000            # 6.75 MiB for three arrays: too much for the L2, little for the L3
    traffic = streams(2, 1, n * passes, LEVELS[:3])
    traffic["Dram"] = streams(2, 1, n)["Dram"]      # the first pass
    return 2 * n * passes, traffic


def dot_in_l2():
    n, passes = 9 * 2**14, 200000           # 128 KiB a core for two arrays
    traffic = streams(2, 0, n * passes, LEVELS[:2])
    traffic["L3"] = traffic["Dram"] = streams(2, 0, n)["Dram"]
    return 2 * n * passes, traffic


def sum_of_squares():
    n, passes = 2**27, 100
    return 2 * n * passes, streams(1, 0, n * passes)


def blocked_multiply():
    n = 12288
    rows, columns = 4, 12                   # of the block in registers
    blocks = {"L1": 32, "L2": 96, "L3": 1024, "Dram": n}    # three square blocks fill each cache
    traffic, inner = {}, 2 / (1 / rows + 1 / columns)
    for level, outer in blocks.items():
        result = WORD * n**3 / outer        # of the inner block, loaded and stored once for each outer block
        traffic[level] = (2 * WORD * n**3 / inner + result, result)
        inner = outer
    return 2 * n**3, traffic


def plain_multiply():
    n = 2048                                # a row of one matrix and a column of the other for each element
    word, result = WORD * n**3, WORD * n * n
    return 2 * n**3, {"L1": (2 * word, result),
                      "L2": (LINE * n**3 + word + result, result),  # a column's lines are 128 KiB
                      "L3": (word + result, result),                # the L2 holds them for eight columns
                      "Dram": (3 * result, result)}                 # the L3 holds the matrix that is read by columns


def stencil_2d():
    n, passes = 16384, 60                   # three rows are 384 KiB: only the L3 holds them for every core
    points = n * n * passes
    return 5 * points, {"L1": (5 * WORD * points, WORD * points), "L2": (4 * WORD * points, WORD * points),
                        "L3": (4 * WORD * points, WORD * points), "Dram": (2 * WORD * points, WORD * points)}


def stencil_3d():
    n, passes = 1024, 10                    # five rows are 40 KiB, three planes 24 MiB
    points = n**3 * passes
    return 8 * points, {"L1": (7 * WORD * points, WORD * points), "L2": (6 * WORD * points, WORD * points),
                        "L3": (4 * WORD * points, WORD * points), "Dram": (2 * WORD * points, WORD * points)}


def gather():
    n, table = 2**31, 2**30                 # accesses, bytes of the table
    index, result = 4 * n, WORD * n
    traffic = {"L1": (index + WORD * n, result)}
    for level, cache in (("L2", L1), ("L3", L2), ("Dram", L3)):
        traffic[level] = (index + result + LINE * n * misses(cache, table), result)
    return n, traffic


def sparse_multiply():
    rows, per_row, passes = 2**22, 27, 120   # the vector has 32 MiB, of which every core's share is near its rows
    entries = rows * per_row * passes
    matrix, vectors = 12 * entries, WORD * rows * passes
    return 2 * entries, {"L1": (matrix + WORD * entries, vectors),
                         "L2": (matrix + 9 * vectors + vectors, vectors),     # nine runs of three neighbours
                         "L3": (matrix + 3 * vectors + vectors, vectors),     # three planes of them
                         "Dram": (matrix + vectors + vectors, vectors)}


def add_transposed():
    n, passes = 8192, 30
    words = n * n * passes                  # a column's lines are 512 KiB: only the L3 holds them for the next one
    far = (LINE * words + WORD * words, WORD * words)
    return words, {"L1": (2 * WORD * words, WORD * words), "L2": far, "L3": far,
                   "Dram": (2 * WORD * words, WORD * words)}


def transpose():
    return 0, add_transposed()[1]


def polynomial_in_l2():
    n, passes = 9 * 2**14, 250000           # twenty steps of Horner's rule, each a multiplication and an addition
    traffic = streams(1, 1, n * passes, LEVELS[:2])
    traffic["L3"] = traffic["Dram"] = streams(1, 1, n)["Dram"]
    return 40 * n * passes, traffic


def histogram():
    n, bins = 2**34, 64 * KI                # bytes of the bins of one core
    keys = 4 * n
    missed = LINE * n * misses(L1, bins)
    return 3 * n, {"L1": (keys + 4 * n, 4 * n), "L2": (keys + missed, missed), "L3": (keys, 0), "Dram": (keys, 0)}


# kernel, kind of its code, share of its peak that the arithmetic alone would reach
KERNELS = [
    (triad, "fma", 0.9), (triad_in_l3, "fma", 0.9), (dot_in_l2, "fma", 0.8), (sum_of_squares, "fma", 0.8),
    (blocked_multiply, "fma", 0.88), (plain_multiply, "scalar", 0.5), (stencil_2d, "add", 0.7),
    (stencil_3d, "add", 0.7), (gather, "scalar", 0.6), (sparse_multiply, "scalar", 0.7),
    (add_transposed, "scalar", 0.6), (transpose, "scalar", 1.0), (polynomial_in_l2, "fma", 0.85),
    (histogram, "int", 0.4),
]
CODE = {
    "fma": {"Vectorized": 1, "VectorTraits": "FMA", "DataTypes": "<b>Float64</b>"},
    "add": {"Vectorized": 1, "DataTypes": "<b>Float64</b>"},
    "scalar": {"Vectorized": 0, "DataTypes": "<b>Float64</b>"},
    "int": {"Vectorized": 0, "MainDataType": 4, "DataTypes": "<b>Int32</b>"},
}


def seconds(operations, traffic, code, efficiency):
    """Transfers of all levels follow one another; arithmetic runs beside them."""
    transfers = sum(sum(traffic[level]) / 1e9 / BANDWIDTH[level] for level in LEVELS)
    return max(operations / 1e9 / (efficiency * PEAK[code]), transfers)


def row(number, kernel, code, efficiency):
    operations, traffic = kernel()
    cells = {"FunctionName": kernel.__name__, "SelfElapsedTime": seconds(operations, traffic, code, efficiency),
             "SelfFloatOps": 0 if code == "int" else operations / 1e9,
             "SelfIntOps": operations / 1e9 if code == "int" else 0}
    for level in LEVELS:
        for part, amount in zip(("Load", "Store"), traffic[level]):
            cells[f"Self{level}{part}"] = amount / 1e9
    cells = {name: value if isinstance(value, str) else float(f"{value:.7g}") for name, value in cells.items()}
    return {"id": number, "kind": "loop", "cells": {**cells, **CODE[code]}}


def main():
    rows = [row(number, *kernel) for number, kernel in enumerate(KERNELS, 1)]
    elapsed = sum(each["cells"]["SelfElapsedTime"] for each in rows)
    head = {"format": "roofline-result", "version": 1, "kind": "cpu",
            "program": {"name": "four_levels (a model)", "elapsedTime": float(f"{elapsed:.7g}"),
                        "usedThreads": THREADS},
            "machine": "../two_compilers/machine.json", "levels": ["L1", "L2", "L3", "DRAM"]}
    lines = ",\n".join(json.dumps(each) for each in rows)
    sys.stdout.write(json.dumps(head, indent=0)[:-2] + ',\n"rows": [\n' + lines + "\n]\n}\n")


if __name__ == "__main__":
    main()
