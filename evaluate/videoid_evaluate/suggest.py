"""Which threshold keeps false acceptances under a wanted share, and what that costs."""
from __future__ import annotations

import dataclasses
import hashlib
import math

from videoid_evaluate import figures
from videoid_evaluate.complaint import Complaint
from videoid_evaluate.figures import Ended, Kind
from videoid_evaluate.manifest import Session
from videoid_evaluate.rates import Rate
from videoid_evaluate.records import Outcome

ONE_SIDED = 0.05
"""Only the upper limit matters here, so that it alone leaves out 5 %."""


@dataclasses.dataclass(frozen=True)
class Wish:
    target: float
    kind: Kind


@dataclasses.dataclass(frozen=True)
class Suggestion:
    """A threshold that was chosen on one half of the persons."""

    wish: Wish
    threshold: float | None
    chosen_on: Rate
    why_not: str
    """Why there is no threshold; empty where there is one."""


def wish_of(text: str, decision: str) -> Wish:
    """Reads far=1e-3."""
    name, _, value = text.partition("=")
    try:
        target = float(value)
    except ValueError:
        target = math.nan
    if name != "far" or not 0 < target < 1:
        raise Complaint(f"--suggest '{text}' is no wish: write far= and a share between 0 and 1, as far=1e-3.")
    kinds = {kind.name: kind for kind in figures.KINDS}
    if decision not in kinds:
        raise Complaint(f"--move '{decision}' is no decision with a threshold: choose from {', '.join(kinds)}.")
    return Wish(target, kinds[decision])


def needed(target: float) -> int:
    """How many independent impostors without an error it takes before the target can be claimed."""
    return math.ceil(math.log(ONE_SIDED) / math.log1p(-target))


def in_first_half(session: Session) -> bool | None:
    """Persons stay on their half whatever else is in the data; None where a session has persons of both."""
    halves = {hashlib.sha256(name.encode()).digest()[0] % 2 == 0 for name in (session.person, session.owner)}
    return halves.pop() if len(halves) == 1 else None


def halves(ended: Ended) -> tuple[Ended, Ended]:
    first = [pair for pair in ended if in_first_half(pair[0]) is True]
    second = [pair for pair in ended if in_first_half(pair[0]) is False]
    return first, second


def impostors(ended: Ended, kind: Kind) -> Ended:
    return [pair for pair in ended if kind.aspect in pair[0].differs]


def choose(ended: Ended, wish: Wish) -> Suggestion:
    """The threshold that refuses the fewest and still keeps the upper limit of false acceptances under the target.
    An impostor is taken as accepted where the session's best value passes, as if nothing else could refuse them."""
    false = impostors(ended, wish.kind)
    values = [figures.best(outcome, wish.kind) for _, outcome in false]
    chosen: float | None = None
    rate = _accepted(false, wish.kind, None)
    for threshold in _steps([one for one in values if one is not None], wish.kind):
        tried = _accepted(false, wish.kind, threshold)
        if tried.upper > wish.target:
            break
        chosen, rate = threshold, tried
    if chosen is None:
        few = f"the upper limit stays at {rate.upper:.2g} with {rate.persons} independent impostors"
        return Suggestion(wish, None, rate, f"{few}: {wish.target:g} takes about {needed(wish.target)} without an error.")
    return Suggestion(wish, chosen, rate, "")


def _accepted(false: Ended, kind: Kind, threshold: float | None) -> Rate:
    def passed(_: Session, outcome: Outcome) -> bool:
        value = figures.best(outcome, kind)
        return threshold is not None and value is not None and kind.passes(value, threshold)

    return figures.of_sessions(false, passed, ONE_SIDED)


def _steps(values: list[float], kind: Kind) -> list[float]:
    """Thresholds from strict to lenient, each between two neighbouring values of impostors."""
    ordered = sorted(set(values), reverse=not kind.less_passes)
    edges = [0.0 if kind.less_passes else 1.0, *ordered]
    return [round((left + right) / 2, 4) for left, right in zip(edges, edges[1:])]
