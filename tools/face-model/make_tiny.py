#!/usr/bin/env python3
"""Makes the tests' stand-in for the face model: same name and input, a few kB, answers that can be worked out by hand.

The picture is averaged to 4 x 4 cells; each output is the weighted mean of the cells under one fixed pattern. The
patterns are orthogonal, so pictures that differ in pattern get embeddings at right angles.
"""

import argparse
import pathlib

import numpy as np
import tensorflow as tf

CELLS = 4
SIDE = 160
# Away from 1, so that a caller who forgets to bring embeddings to unit length is caught.
GAIN = 1.4
# A flat grey picture is all zero after prewhitening; this keeps its embedding from having no length.
BIAS = 0.01


def patterns() -> dict[str, np.ndarray]:
    """The outputs in order; each pattern is rows x columns x channels of +1, 0 and -1."""
    row, column = np.mgrid[0:CELLS, 0:CELLS]
    halves = np.where(column < 2, 1, -1)
    storeys = np.where(row < 2, 1, -1)
    ring = np.where((row % 3 == 0) | (column % 3 == 0), -1, 3)  # the 4 inner cells outweigh the 12 outer ones
    grey = {
        "left - right": halves,
        "top - bottom": storeys,
        "one diagonal's quarters - the other's": halves * storeys,
        "centre - border": ring / 3,
        "rows 1, 3 - rows 2, 4": np.where(row % 2 == 0, 1, -1),
        "columns 1, 3 - columns 2, 4": np.where(column % 2 == 0, 1, -1),
    }
    spatial = {name: np.repeat(grid[..., np.newaxis], 3, axis=2) for name, grid in grey.items()}
    flat = np.ones((CELLS, CELLS, 1))
    return spatial | {"red - green": flat * [1, -1, 0], "red and green - blue": flat * [0.5, 0.5, -1]}


class Tiny(tf.Module):
    def __init__(self):
        super().__init__()
        table = list(patterns().values())
        self.projection = np.stack([GAIN * p.reshape(-1) / p.size for p in table], axis=1).astype(np.float32)
        self.bias = np.full(len(table), BIAS / np.sqrt(len(table)), dtype=np.float32)

    @tf.function(input_signature=[tf.TensorSpec([1, SIDE, SIDE, 3], tf.float32)])
    def embed(self, picture):
        cells = tf.nn.avg_pool2d(picture, SIDE // CELLS, SIDE // CELLS, "VALID")
        return tf.matmul(tf.reshape(cells, [1, CELLS * CELLS * 3]), self.projection) + self.bias


def build() -> bytes:
    tiny = Tiny()
    return tf.lite.TFLiteConverter.from_concrete_functions([tiny.embed.get_concrete_function()], tiny).convert()


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("output", type=pathlib.Path, help="where to write the model (tests/resources/facenet.tflite)")
    arguments = parser.parse_args()
    arguments.output.write_bytes(build())
    print(f"{arguments.output}: {arguments.output.stat().st_size} bytes")


if __name__ == "__main__":
    main()
