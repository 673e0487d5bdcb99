#!/usr/bin/env python3
"""Checks the tests' stand-in model: alike pictures give the same embedding, differing ones clearly different ones."""

import argparse
import itertools
import pathlib
import sys

import numpy as np

from embedding import Model, distance

SIDE = 160


def pictures() -> dict[str, np.ndarray]:
    y, x = np.mgrid[0:SIDE, 0:SIDE]
    half = SIDE // 2
    masks = {
        "left bright": x < half,
        "right bright": x >= half,
        "top bright": y < half,
        "quarters": (x < half) == (y < half),
        "centre bright": (abs(x - half + 0.5) < 40) & (abs(y - half + 0.5) < 40),
    }
    grey = {name: np.where(mask[..., np.newaxis], 220, 40) for name, mask in masks.items()}
    plain = {"red": (200, 30, 30), "green": (30, 200, 30), "blue": (30, 30, 200), "grey": (90, 90, 90)}
    flat = {name: np.broadcast_to(colour, (SIDE, SIDE, 3)) for name, colour in plain.items()}
    return {name: np.broadcast_to(p, (SIDE, SIDE, 3)).astype(np.uint8) for name, p in (grey | flat).items()}


def dialled(angle: float) -> np.ndarray:
    """Left-right and top-bottom mixed so that its embedding stands at `angle` to "left bright"."""
    y, x = np.mgrid[0:SIDE, 0:SIDE]
    values = 128 + 80 * (np.cos(angle) * np.where(x < SIDE // 2, 1, -1) + np.sin(angle) * np.where(y < SIDE // 2, 1, -1))
    return np.repeat(np.rint(values)[..., np.newaxis], 3, axis=2).astype(np.uint8)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("model", type=pathlib.Path)
    model = Model(parser.parse_args().model)

    embeddings = {name: model.embed(picture) for name, picture in pictures().items()}
    for name, values in embeddings.items():
        print(f"{name:14}", " ".join(f"{v:6.3f}" for v in values), f" length {np.linalg.norm(values):.3f}")
    faults = [n for n, p in pictures().items() if distance(model.embed(p), embeddings[n]) > 1e-6]
    for a, b in itertools.combinations(embeddings, 2):
        apart = distance(embeddings[a], embeddings[b])
        print(f"{a:14} {b:14} {apart:.3f}")
        if apart < 0.8:
            faults.append(f"{a} / {b}")
    for wanted in (0.2, 0.4, 0.48, 0.8):
        angle = 2 * np.arcsin(wanted / 2)
        apart = distance(model.embed(dialled(angle)), embeddings["left bright"])
        print(f"dialled to {wanted}: {apart:.3f}")
        if abs(apart - wanted) > 0.02:
            faults.append(f"dialled to {wanted}")
    if faults:
        print("NOT as told:", ", ".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
