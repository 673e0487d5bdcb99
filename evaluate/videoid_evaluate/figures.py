"""From sessions and how they ended to rates, as ISO/IEC 19795-1 names them.

A comparison (one look at one face) has a false match rate and a false non-match rate; a session has a false acceptance
rate and a false rejection rate. They are not each other's: a success is repeated twice a second, so that a session
takes the best of many tries, and a session needs every one of its decisions.
"""
from __future__ import annotations

import collections
import dataclasses
from collections.abc import Callable, Iterable, Sequence

import numpy as np

from videoid_evaluate import rates
from videoid_evaluate.manifest import Session
from videoid_evaluate.rates import Rate
from videoid_evaluate.records import Decision, Outcome


@dataclasses.dataclass(frozen=True)
class Kind:
    """A decision of the flow that compares a value with a threshold."""

    name: str
    meaning: str
    aspect: str
    """What differs where it must not pass."""
    option: str
    less_passes: bool

    def passes(self, value: float, threshold: float) -> bool:
        return value <= threshold if self.less_passes else value >= threshold


KINDS = (
    Kind("selfieFace", "live face against the card's photo", "person", "videoCapture.idToSelfieMatchThreshold", True),
    Kind("frontFace", "photo of the card shown against the earlier one", "front", "videoCapture.idToIdPhotoMatchThreshold", True),
    Kind("frontText", "text of the front against the earlier one", "front", "videoCapture.frontLevenshteinThreshold", True),
    Kind("backText", "text of the back against the earlier one", "back", "videoCapture.backLevenshteinThreshold", True),
    Kind("spokenWords", "words heard of the text", "text", "videoCapture.readTextWordMatchThreshold", False),
)

Ended = Sequence[tuple[Session, Outcome]]


@dataclasses.dataclass(frozen=True)
class Comparisons:
    """The values of one kind of decision, of those who belong together and of those who do not."""

    kind: Kind
    threshold: float | None
    mated: tuple[float, ...]
    other: tuple[float, ...]
    false_non_match: Rate
    false_match: Rate


def of_sessions(
    ended: Ended, failed: Callable[[Session, Outcome], bool], tail: float = rates.TAIL
) -> Rate:
    """The share of sessions that failed, each of a person alone or of a person with another's card."""
    wrong = [failed(session, outcome) for session, outcome in ended]
    return _rate(wrong, [session for session, _ in ended], tail)


def _rate(wrong: Sequence[bool], sessions: Sequence[Session], tail: float = rates.TAIL) -> Rate:
    persons = [session.person for session in sessions]
    if any(session.person != session.owner for session in sessions):
        return rates.of_pairs(wrong, persons, [session.owner for session in sessions], tail)
    return rates.of_persons(wrong, persons, tail)


def genuine(ended: Ended) -> Ended:
    return [pair for pair in ended if pair[0].genuine]


def by_attack(ended: Ended) -> dict[str, Ended]:
    kinds: dict[str, list[tuple[Session, Outcome]]] = collections.defaultdict(list)
    for session, outcome in ended:
        if not session.genuine:
            kinds[session.label].append((session, outcome))
    return dict(sorted(kinds.items()))


def false_rejections(ended: Ended) -> Rate:
    return of_sessions(genuine(ended), lambda _, outcome: not outcome.accepted)


def false_acceptances(ended: Ended) -> dict[str, Rate]:
    return {label: of_sessions(part, lambda _, outcome: outcome.accepted) for label, part in by_attack(ended).items()}


def comparisons(ended: Ended, kind: Kind) -> Comparisons | None:
    """None where no session came to such a decision."""
    mated = [(session, one) for session, one in _decisions(genuine(ended), kind)]
    other = [(session, one) for session, one in _decisions(ended, kind) if kind.aspect in session.differs]
    if not mated and not other:
        return None
    return Comparisons(
        kind=kind,
        threshold=next((one.threshold for _, one in [*mated, *other]), None),
        mated=tuple(_value(one) for _, one in mated),
        other=tuple(_value(one) for _, one in other),
        false_non_match=_rate([not one.passed for _, one in mated], [session for session, _ in mated]),
        false_match=_rate([one.passed for _, one in other], [session for session, _ in other]),
    )


def _decisions(ended: Ended, kind: Kind) -> Iterable[tuple[Session, Decision]]:
    for session, outcome in ended:
        for one in outcome.decisions:
            if one.name == kind.name and one.value is not None:
                yield session, one


def _value(decision: Decision) -> float:
    assert decision.value is not None
    return decision.value


def trade_off(mated: Sequence[float], other: Sequence[float], less_passes: bool) -> list[tuple[float, float, float]]:
    """At each threshold that changes anything: threshold, false match rate, false non-match rate."""
    sign = 1.0 if less_passes else -1.0
    belong, differ = np.sort(sign * np.asarray(mated)), np.sort(sign * np.asarray(other))
    thresholds = np.unique(np.concatenate([belong, differ]))
    false_match = np.searchsorted(differ, thresholds, side="right") / max(1, len(differ))
    false_non_match = 1 - np.searchsorted(belong, thresholds, side="right") / max(1, len(belong))
    return [(float(sign * t), float(m), float(n)) for t, m, n in zip(thresholds, false_match, false_non_match)]


def best(outcome: Outcome, kind: Kind) -> float | None:
    """The value nearest to passing, or beyond it; None where the session never came so far."""
    values = [_value(one) for one in outcome.decisions if one.name == kind.name and one.value is not None]
    if not values:
        return None
    return min(values) if kind.less_passes else max(values)


def refusals(ended: Ended) -> list[tuple[str, str, int]]:
    """Why genuine sessions had no result, how far they came, and how many of them."""
    counts: collections.Counter[tuple[str, str]] = collections.Counter()
    for _, outcome in genuine(ended):
        if not outcome.accepted:
            stage = outcome.reached[-1][0] if outcome.reached else "start"
            failed = [one.name for one in outcome.decisions if not one.passed]
            counts[(outcome.reason, f"{stage}, {failed[-1]} failed" if failed else stage)] += 1
    return [(reason, stage, count) for (reason, stage), count in sorted(counts.items(), key=lambda item: (-item[1], item[0]))]


def surprises(ended: Ended) -> list[str]:
    """The films of sessions that ended otherwise than the manifest expects."""
    return [
        f"{session.film}: expected to be {session.expected}"
        for session, outcome in ended
        if session.expected and outcome.accepted != (session.expected == "accepted")
    ]


def times(ended: Ended) -> dict[str, tuple[float, float, float]]:
    """For each mode of genuine sessions: seconds until it began, as 5 %, median and 95 %; and the whole under "end"."""
    seconds: dict[str, list[float]] = collections.defaultdict(list)
    for _, outcome in genuine(ended):
        for name, t in outcome.reached:
            seconds[name].append(t)
        seconds["end"].append(outcome.seconds)
    return {name: tuple(float(one) for one in np.percentile(all_of, (5, 50, 95))) for name, all_of in seconds.items()}  # type: ignore[misc]


def by_cohort(ended: Ended) -> dict[str, dict[str, Ended]]:
    """Sessions by the value of each further column of the manifest."""
    parts: dict[str, dict[str, list[tuple[Session, Outcome]]]] = collections.defaultdict(lambda: collections.defaultdict(list))
    for session, outcome in ended:
        for column, value in session.cohorts:
            parts[column][value].append((session, outcome))
    return {column: dict(sorted(values.items())) for column, values in sorted(parts.items())}
