#!/usr/bin/env python3
"""Converts the original face-embedding weights (.dat) to facenet.tflite. README.md tells where the weights come from."""

import argparse
import hashlib
import pathlib
import sys

import numpy as np

WEIGHTS_SHA256 = "55533b28a95800a551ba546ba62fe69625c7e95a7061c338adffead08719da30"
CONVOLUTIONS = 29
EMBEDDING = 128
# The channel means that the network was trained with, and the divisor behind them.
MEAN = np.array([122.782, 117.001, 104.298])
DIVISOR = 256.0
# A prewhitened value p stands for the byte p * SCALE + OFFSET: a typical photo's deviation and mean.
SCALE = 60.0
OFFSET = 115.0
INPUT_SIDE = 160
TRAINED_SIDE = 150


class Reader:
    """Reads the serialised values of the weights' file: packed integers, strings and tensors."""

    def __init__(self, data: bytes):
        self.data = data
        self.position = 0

    def take(self, count: int) -> bytes:
        if self.position + count > len(self.data):
            raise ValueError("the weights end too early")
        taken = self.data[self.position : self.position + count]
        self.position += count
        return taken

    def integer(self) -> int:
        head = self.take(1)[0]
        magnitude = int.from_bytes(self.take(head & 0x0F), "little")
        return -magnitude if head & 0x80 else magnitude

    def tensor(self) -> np.ndarray:
        if self.integer() != 2:
            raise ValueError("a tensor of an unknown version")
        shape = [self.integer() for _ in range(4)]
        return np.frombuffer(self.take(4 * int(np.prod(shape))), dtype="<f4").reshape(shape)

    def next_tag(self) -> str | None:
        """Moves behind the nearest layer name; the nested layers around it need not be understood."""
        marks = {tag: b"\x01" + bytes([len(tag)]) + tag.encode() for tag in ("con_4", "affine_", "fc_2")}
        found = {tag: at for tag, mark in marks.items() if (at := self.data.find(mark, self.position)) >= 0}
        if not found:
            return None
        tag = min(found, key=found.get)
        self.position = found[tag] + len(marks[tag])
        return tag


def read_convolution(reader: Reader) -> tuple[np.ndarray, np.ndarray]:
    """One layer's kernel as [filters][in][rows][columns] and its biases, in 64 bit.

    Both lie in one tensor, biases last; the layer's shape is told behind it.
    """
    values = reader.tensor().reshape(-1).astype(np.float64)
    filters, rows, columns = (reader.integer() for _ in range(3))
    weights, biases = values[:-filters], values[-filters:]
    return weights.reshape(filters, -1, rows, columns), biases


def read_affine(reader: Reader, channels: int) -> tuple[np.ndarray, np.ndarray]:
    values = reader.tensor().reshape(-1).astype(np.float64)
    if values.size != 2 * channels:
        raise ValueError("an affine layer of another width than its convolution")
    return values[:channels], values[channels:]


def read_weights(data: bytes) -> tuple[list[tuple[np.ndarray, np.ndarray]], np.ndarray]:
    """The folded convolutions, input first, kernels as (rows, columns, in, out), and the last matrix."""
    reader = Reader(data)
    layers, matrix = [], None
    while (tag := reader.next_tag()) is not None:
        if tag == "con_4":
            kernel, bias = read_convolution(reader)
            if reader.next_tag() != "affine_":
                raise ValueError("a convolution without its affine layer")
            gamma, beta = read_affine(reader, bias.size)
            kernel = kernel * gamma[:, np.newaxis, np.newaxis, np.newaxis]
            layers.append((kernel.transpose(2, 3, 1, 0), bias * gamma + beta))
        elif tag == "fc_2":
            reader.integer(), reader.integer()
            matrix = reader.tensor().reshape(-1, EMBEDDING).astype(np.float64)
    if len(layers) != CONVOLUTIONS or matrix is None or matrix.shape != (256, EMBEDDING):
        raise ValueError(f"{len(layers)} convolutions instead of {CONVOLUTIONS}, or no last matrix")
    return layers, matrix


def fold_input(kernel: np.ndarray, bias: np.ndarray) -> tuple[np.ndarray, np.ndarray]:
    """Moves the mapping of prewhitened values into the first convolution; exact, since it does not pad."""
    offset = (kernel * ((OFFSET - MEAN) / DIVISOR)[:, np.newaxis]).sum(axis=(0, 1, 2))
    return kernel * (SCALE / DIVISOR), bias + offset


def network(layers, matrix):
    """The graph, from prewhitened [1, 160, 160, 3] to [1, 128]."""
    import tensorflow as tf

    remaining = iter([(k.astype(np.float32), b.astype(np.float32)) for k, b in [fold_input(*layers[0]), *layers[1:]]])

    def convolve(x, stride, padding):
        kernel, bias = (tf.constant(values) for values in next(remaining))
        return tf.nn.bias_add(tf.nn.conv2d(x, kernel, stride, padding), bias)

    def residual(x):
        return tf.nn.relu(convolve(tf.nn.relu(convolve(x, 1, "SAME")), 1, "SAME") + x)

    def add_padded(a, b):
        """Adds tensors of different shapes: the smaller is filled with zeros below, to the right and behind."""
        larger = [max(m, n) for m, n in zip(a.shape, b.shape)]

        def fill(t):
            missing = [[0, n - m] for m, n in zip(t.shape, larger)]
            return tf.pad(t, missing) if np.any(missing) else t

        return fill(a) + fill(b)

    def down(x):
        main = convolve(tf.nn.relu(convolve(x, 2, "VALID")), 1, "SAME")
        return tf.nn.relu(add_padded(main, tf.nn.avg_pool2d(x, 2, 2, "VALID")))

    @tf.function(input_signature=[tf.TensorSpec([1, INPUT_SIDE, INPUT_SIDE, 3], tf.float32)])
    def embed(input):  # the argument's name becomes the name of the model's input
        x = tf.image.resize(input, [TRAINED_SIDE, TRAINED_SIDE], "bilinear")
        x = tf.nn.relu(convolve(x, 2, "VALID"))
        x = tf.nn.max_pool2d(x, 3, 2, "VALID")
        for block in (*[residual] * 3, down, *[residual] * 3, down, *[residual] * 2, down, *[residual] * 2, down):
            x = block(x)
        return tf.matmul(tf.reduce_mean(x, axis=[1, 2]), matrix.astype(np.float32), name="embedding")

    return embed


def convert(data: bytes, half: bool) -> bytes:
    import tensorflow as tf

    holder = tf.Module()
    holder.embed = network(*read_weights(data))
    converter = tf.lite.TFLiteConverter.from_concrete_functions([holder.embed.get_concrete_function()], holder)
    if half:
        converter.optimizations = [tf.lite.Optimize.DEFAULT]
        converter.target_spec.supported_types = [tf.float16]
    return converter.convert()


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("weights", type=pathlib.Path, help="the original .dat file")
    parser.add_argument("output", type=pathlib.Path, help="the .tflite file to write")
    parser.add_argument("--float16", action="store_true", help="halve the file, for phones (differs by 3e-4)")
    arguments = parser.parse_args()

    data = arguments.weights.read_bytes()
    found = hashlib.sha256(data).hexdigest()
    if found != WEIGHTS_SHA256:
        print(f"{arguments.weights} is not the weights' file known here: SHA-256 {found}.", file=sys.stderr)
        return 1
    model = convert(data, arguments.float16)
    arguments.output.write_bytes(model)
    print(f"{arguments.output}: {len(model)} bytes, SHA-256 {hashlib.sha256(model).hexdigest()}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
