"""Faces alone: every photograph of a folder against every other one."""
from __future__ import annotations

import dataclasses
import json
import pathlib
import subprocess

import numpy as np

from videoid_evaluate import figures, rates
from videoid_evaluate.complaint import Complaint
from videoid_evaluate.figures import Comparisons
from videoid_evaluate.program import Program
from videoid_evaluate.rates import Rate

KIND = figures.KINDS[0]
JUDGED = (0, 1)
"""Exit codes of `videoid embed` with every picture, or some, looked at."""


@dataclasses.dataclass(frozen=True)
class Photographs:
    """A line for each photograph that a face was found on, the persons' names beside; and what became of the others."""

    embeddings: rates.Floats
    persons: tuple[str, ...]
    refused: tuple[str, ...]


def read(folder: pathlib.Path, program: Program) -> Photographs:
    """Looks at a folder that holds a folder of photographs for each person."""
    people = sorted(one for one in folder.iterdir() if one.is_dir())
    if len(people) < 2:
        raise Complaint(f"{folder} holds folders of fewer than two persons: give each person's photographs a folder.")
    embeddings: list[list[float]] = []
    persons: list[str] = []
    refused: list[str] = []
    for person in people:
        for line in _embed(person, program):
            if "error" in line:
                refused.append(f"{person.name}/{line['file']}: {line['error']}")
            else:
                embeddings.append([float(one) for one in line["embedding"]])  # type: ignore[attr-defined]
                persons.append(person.name)
    if len(set(persons)) < 2:
        raise Complaint(f"{folder} holds faces of fewer than two persons: {refused[0] if refused else 'add some'}.")
    return Photographs(np.asarray(embeddings), tuple(persons), tuple(refused))


def _embed(folder: pathlib.Path, program: Program) -> list[dict[str, object]]:
    command = [program.path, "embed", str(folder)]
    ended = subprocess.run(command, capture_output=True, text=True, errors="replace", check=False)
    if ended.returncode not in JUDGED:
        said = (ended.stderr.strip() or "nothing").splitlines()[-1]
        raise Complaint(f"{folder}: the program ended with {ended.returncode} and said: {said}")
    try:
        return [json.loads(line) for line in ended.stdout.split("\n") if line]
    except ValueError as fault:
        raise Complaint(f"{program.path} does not answer as videoid does ({fault}): name the program with --program.") from fault


def threshold_of(program: Program) -> float:
    """The limit in use: that of the options, else the program's own."""
    chosen = json.loads(program.options or "{}").get(KIND.option)
    if isinstance(chosen, (int, float)):
        return float(chosen)
    if chosen is not None:
        raise Complaint(f"the options have {chosen!r} as {KIND.option}: give a number.")
    listed = subprocess.run([program.path, "options", "--print"], capture_output=True, text=True, check=False)
    if listed.returncode == 0:
        for option in json.loads(listed.stdout):
            if option["key"] == KIND.option:
                return float(option["default"])
    raise Complaint(f"{program.path} names no {KIND.option}: it is no videoid, or too old a one.")


def compare(photographs: Photographs, threshold: float) -> Comparisons:
    """All pairs of photographs. Those of one person depend on that person, the others on both."""
    first, second = np.triu_indices(len(photographs.persons), k=1)
    distances = _distances(photographs.embeddings)[first, second]
    names = np.asarray(photographs.persons)
    mated = names[first] == names[second]
    passed = distances <= threshold
    return Comparisons(
        kind=KIND,
        threshold=threshold,
        mated=tuple(distances[mated].tolist()),
        other=tuple(distances[~mated].tolist()),
        false_non_match=rates.of_persons(~passed[mated], names[first][mated]),
        false_match=rates.of_pairs(passed[~mated], names[first][~mated], names[second][~mated]),
    )


def failures(photographs: Photographs) -> Rate:
    """Photographs that no face could be taken from (failure to acquire)."""
    persons = [one.split("/")[0] for one in photographs.refused]
    failed = [True] * len(persons) + [False] * len(photographs.persons)
    return rates.of_persons(failed, [*persons, *photographs.persons])


def _distances(embeddings: rates.Floats) -> rates.Floats:
    squares = (embeddings**2).sum(axis=1)
    between: rates.Floats = np.sqrt(np.maximum(0, squares[:, None] + squares[None, :] - 2 * embeddings @ embeddings.T))
    return between
