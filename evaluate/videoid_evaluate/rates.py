"""Shares of errors with their 95 % limits.

Trials of one person resemble each other, so a rate is only as certain as its number of persons allows. Where every
trial has a person of its own the limits are Clopper and Pearson's. Where persons come back they are drawn anew with
replacement, all their trials with them (of a comparison of two persons: both are drawn), and the variance of the rate
over these draws says how many independent trials the data are worth; the limits are Clopper and Pearson's for so many
(Korn and Graubard's way, with its correction by Student's t for few persons). Without any error nothing can be drawn
that has one, and only the persons count.
"""
from __future__ import annotations

import dataclasses
from collections.abc import Sequence

import numpy as np
from numpy.typing import NDArray
from scipy import stats

TAIL = 0.025
"""What each of two limits leaves out; a limit that stands alone may leave out twice as much."""
REPLICATES = 2000
FEW = 5
"""Below so many persons with an error the draws hardly differ, whatever the truth is."""
SEED = 1  # the same data give the same limits
_CHUNK = 100

Floats = NDArray[np.float64]
Integers = NDArray[np.int64]


@dataclasses.dataclass(frozen=True)
class Rate:
    """So many errors in so many trials; `persons` counts what is independent among them."""

    errors: int
    trials: int
    persons: int
    lower: float
    upper: float
    method: str

    @property
    def share(self) -> float | None:
        return self.errors / self.trials if self.trials else None

    def as_json(self) -> dict[str, object]:
        return {**dataclasses.asdict(self), "share": self.share}


def clopper_pearson(errors: float, trials: float, tail: float = TAIL) -> tuple[float, float]:
    """The limits beyond either of which a binomial share is found in at most `tail` of all draws. Both counts may be
    broken numbers, where trials are worth less than their count."""
    lower = 0.0 if errors <= 0 else float(stats.beta.ppf(tail, errors, trials - errors + 1))
    upper = 1.0 if errors >= trials else float(stats.beta.ppf(1 - tail, errors + 1, trials - errors))
    return lower, upper


def of_persons(failed: Sequence[bool], persons: Sequence[str], tail: float = TAIL) -> Rate:
    """The share of trials that failed, each of which is of one person."""
    wrong = np.asarray(failed, dtype=bool)
    if len(wrong) == 0:
        return Rate(0, 0, 0, 0.0, 1.0, "no trial")
    numbers = _numbered(persons)
    trials = np.bincount(numbers)
    errors = np.bincount(numbers, weights=wrong).astype(np.int64)
    if trials.max() == 1:
        return _independent(int(wrong.sum()), len(wrong), tail)
    counts = _Independent(persons=len(trials), trials=len(trials), erring=int((errors > 0).sum()))
    return _dependent(wrong, counts, tail, _redrawn_persons(errors, trials))


def of_pairs(failed: Sequence[bool], first: Sequence[str], second: Sequence[str], tail: float = TAIL) -> Rate:
    """The share of trials that failed, each of which sets one person against another."""
    wrong = np.asarray(failed, dtype=bool)
    if len(wrong) == 0:
        return Rate(0, 0, 0, 0.0, 1.0, "no trial")
    numbers = _numbered([*first, *second])
    one, other = numbers[: len(wrong)], numbers[len(wrong) :]
    persons = int(numbers.max()) + 1
    if persons == 2 * len(wrong):
        return _independent(int(wrong.sum()), len(wrong), tail)
    counts = _Independent(
        persons=persons,
        trials=_disjoint_pairs(one, other, persons),
        erring=_disjoint_pairs(one[wrong], other[wrong], persons),
    )
    return _dependent(wrong, counts, tail, _redrawn_pairs(wrong, one, other, persons))


def _numbered(names: Sequence[str]) -> Integers:
    numbers: Integers = np.unique(np.asarray(names), return_inverse=True)[1].astype(np.int64)
    return numbers


def _independent(errors: int, trials: int, tail: float) -> Rate:
    return Rate(errors, trials, trials, *clopper_pearson(errors, trials, tail), "Clopper-Pearson")


@dataclasses.dataclass(frozen=True)
class _Independent:
    """What is independent among trials: persons, trials without a common person, and such ones that failed."""

    persons: int
    trials: int
    erring: int


def _dependent(wrong: NDArray[np.bool_], counts: _Independent, tail: float, redrawn: Floats) -> Rate:
    errors, trials = int(wrong.sum()), len(wrong)
    if errors in (0, trials):
        limits = clopper_pearson(0 if errors == 0 else counts.trials, counts.trials, tail)
        return Rate(errors, trials, counts.trials, *limits, "Clopper-Pearson over independent persons")
    worth = _worth(errors / trials, trials, counts.persons, redrawn)
    lower, upper = clopper_pearson(errors / trials * worth, worth, tail)
    if counts.erring < FEW:  # a first error makes nobody surer than none at all would
        upper = max(upper, clopper_pearson(counts.erring, counts.trials, tail)[1])
    return Rate(errors, trials, counts.trials, lower, upper, "bootstrap over persons")


def _worth(share: float, trials: int, persons: int, shares: Floats) -> float:
    """How many independent trials have the variance that was seen."""
    variance = float(np.var(shares))
    worth = trials if variance == 0 else min(float(trials), share * (1 - share) / variance)
    few = float(stats.t.ppf(1 - TAIL, trials - 1) / stats.t.ppf(1 - TAIL, max(1, persons - 1)))
    return max(1.0, worth * few**2)


def _redrawn_persons(errors: Integers, trials: Integers) -> Floats:
    """The rate of each redraw. Persons with the same counts are drawn together, which changes nothing but the time."""
    kinds, counts = np.unique(np.stack([errors, trials], axis=1), axis=0, return_counts=True)
    persons = len(errors)
    drawn = np.random.default_rng(SEED).multinomial(persons, counts / persons, size=REPLICATES)
    rates: Floats = (drawn @ kinds[:, 0]) / (drawn @ kinds[:, 1])
    return rates


def _redrawn_pairs(wrong: NDArray[np.bool_], one: Integers, other: Integers, persons: int) -> Floats:
    random = np.random.default_rng(SEED)
    even = np.full(persons, 1 / persons)
    parts = []
    for _ in range(0, REPLICATES, _CHUNK):
        drawn = random.multinomial(persons, even, size=_CHUNK)
        weights = drawn[:, one] * drawn[:, other]
        sums = weights.sum(axis=1)
        parts.append((weights[:, wrong].sum(axis=1) / np.maximum(sums, 1))[sums > 0])
    return np.concatenate(parts)


def _disjoint_pairs(one: Integers, other: Integers, persons: int) -> int:
    """How many pairs can be picked, one after the other, so that nobody is in two."""
    taken = np.zeros(persons, dtype=bool)
    count = 0
    for left, right in zip(one.tolist(), other.tolist()):
        if not taken[left] and not taken[right]:
            taken[left] = taken[right] = True
            count += 1
    return count
