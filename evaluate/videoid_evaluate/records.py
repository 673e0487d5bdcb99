"""What a run of the program left behind, as far as rates need it."""
from __future__ import annotations

import dataclasses
import json
import pathlib

from videoid_evaluate.complaint import Complaint


@dataclasses.dataclass(frozen=True)
class Decision:
    """One comparison of a run. Decisions without a value only pass or do not."""

    name: str
    t: float
    passed: bool
    value: float | None
    threshold: float | None


@dataclasses.dataclass(frozen=True)
class Outcome:
    """How one session ended."""

    accepted: bool
    reason: str
    """The sentence of the error; empty for a result."""
    seconds: float
    decisions: tuple[Decision, ...]
    reached: tuple[tuple[str, float], ...]
    """When each mode of the flow began, in seconds."""

    def as_json(self) -> dict[str, object]:
        return dataclasses.asdict(self)

    @staticmethod
    def from_json(value: dict[str, object]) -> Outcome:
        decisions = tuple(Decision(**one) for one in value["decisions"])  # type: ignore[attr-defined]
        reached = tuple((name, t) for name, t in value["reached"])  # type: ignore[attr-defined]
        return Outcome(
            accepted=bool(value["accepted"]),
            reason=str(value["reason"]),
            seconds=float(value["seconds"]),  # type: ignore[arg-type]
            decisions=decisions,
            reached=reached,
        )


def read(run: pathlib.Path) -> Outcome:
    """Reads result.json and events.jsonl of the folder of a run."""
    try:
        result = json.loads((run / "result.json").read_text(encoding="utf-8"))
        lines = (run / "events.jsonl").read_text(encoding="utf-8").split("\n")
        events = [json.loads(line) for line in lines if line]
        return _outcome(result, events)
    except (OSError, ValueError, KeyError, TypeError) as fault:
        raise Complaint(f"{run} holds no whole record of a run ({fault}): run the session again.") from fault


def _outcome(result: dict[str, object], events: list[dict[str, object]]) -> Outcome:
    error = result.get("error")
    reached: dict[str, float] = {}
    for event in events:
        if event["event"] == "mode":
            reached.setdefault(str(event["name"]), float(event["t"]))  # type: ignore[arg-type]
    return Outcome(
        accepted="result" in result,
        reason=str(error["message"]) if isinstance(error, dict) else "",
        seconds=float(events[-1]["t"]) if events else 0.0,  # type: ignore[arg-type]
        decisions=tuple(_decision(event) for event in events if event["event"] == "decision"),
        reached=tuple(reached.items()),
    )


def _decision(event: dict[str, object]) -> Decision:
    def number(key: str) -> float | None:
        value = event.get(key)
        return None if value is None else float(value)  # type: ignore[arg-type]

    return Decision(
        name=str(event["name"]),
        t=float(event["t"]),  # type: ignore[arg-type]
        passed=bool(event["passed"]),
        value=number("value"),
        threshold=number("threshold"),
    )
