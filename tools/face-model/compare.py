#!/usr/bin/env python3
"""Compares a model with the original network's embedding of the synthetic picture (tests/data/GOLDEN_EMBEDDING.md)."""

import argparse
import pathlib
import sys

import numpy as np

from embedding import Model, distance

GOLDEN = pathlib.Path(__file__).resolve().parents[2] / "tests/data/golden_embedding_128.f32"
# Conversion differs by 3e-7; the smallest real fault (a channel order, a mean, a resize) by far more than this.
TOLERANCE = 1e-3


def golden_picture() -> np.ndarray:
    y, x = np.mgrid[0:160, 0:160]
    return np.stack([x * 255 // 159, y * 255 // 159, (x * y // 100) % 256], axis=2).astype(np.uint8)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("model", type=pathlib.Path)
    parser.add_argument("--golden", type=pathlib.Path, default=GOLDEN, help="128 little-endian float32")
    arguments = parser.parse_args()

    golden = np.fromfile(arguments.golden, dtype="<f4")
    ours = Model(arguments.model).embed(golden_picture())
    if ours.shape != golden.shape:
        print(f"{arguments.model} answers {ours.size} numbers, the golden embedding has {golden.size}.", file=sys.stderr)
        return 1
    largest = float(np.abs(ours - golden).max())
    print(f"largest difference {largest:.2e}, unit-length distance {distance(ours, golden):.2e}, "
          f"norm {np.linalg.norm(ours):.6f}, tolerance {TOLERANCE:.0e}")
    return 0 if largest <= TOLERANCE else 1


if __name__ == "__main__":
    sys.exit(main())
