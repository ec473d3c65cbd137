#!/usr/bin/env python3
"""Holds projected times against measured ones: python3 compare.py measured.json projected.json."""

import json
import math
import statistics
import sys


def read(path):
    with open(path, encoding="utf-8") as file:
        return {row["cells"]["FunctionName"]: row for row in json.load(file)["rows"]}


measured, projected = (read(path) for path in sys.argv[1:3])
ratios = []  # projected / measured time of one call; below 1: projected too fast
for name, row in projected.items():
    if name not in measured:
        continue
    cells = row["cells"]
    seconds = cells["OffloadElapsedTime"] / cells.get("CallCount", 1)
    ratios.append((seconds / measured[name]["cells"]["OffloadElapsedTime"], name, row["boundedBy"]))
ratios.sort()
for ratio, name, bound in ratios:
    print(f"{ratio:8.4f}  {name:28} {bound}")
errors = sorted((abs(ratio - 1), name) for ratio, name, _ in ratios)
factors = [math.exp(abs(math.log(ratio))) for ratio, _, _ in ratios]
print(f"{len(ratios)} kernels in both; within 25 %: {sum(error <= 0.25 for error, _ in errors)}, "
      f"within a factor of 2: {sum(factor <= 2 for factor in factors)}")
print(f"median error {statistics.median(error for error, _ in errors):.1%}, a factor of {statistics.median(factors):.3f}")
print(f"worst error {errors[-1][0]:.2%} ({errors[-1][1]}), a factor of {max(factors):.0f}")
