"""What happens during a run, each kind as a type of its own.

A kind that this package does not know, or one that lacks what its type needs, comes as a plain `Event`: a newer program
never breaks an older caller.
"""
from __future__ import annotations

import dataclasses
import json
from collections.abc import Mapping
from typing import Any

import numpy
import numpy.typing

from corvana_videoid.errors import CrashedError


@dataclasses.dataclass(frozen=True)
class Event:
    """Something that happened."""

    time: float
    """Seconds since the run began."""
    kind: str
    """As `events.jsonl` names it."""
    data: Mapping[str, Any] = dataclasses.field(repr=False)
    """All that was told of it, by the names that `events.jsonl` has."""


@dataclasses.dataclass(frozen=True)
class Device:
    """A camera or a microphone."""

    name: str
    virtual: bool
    """A recording, or software that plays a camera: it proves nothing."""


@dataclasses.dataclass(frozen=True)
class DevicesEvent(Event):
    """What the film is taken with."""

    camera: Device
    microphone: Device | None


@dataclasses.dataclass(frozen=True)
class ModeEvent(Event):
    """The run came to its next part: `selfieCapture`, `idCapture`, `readingText`, …"""

    name: str


@dataclasses.dataclass(frozen=True)
class CallEvent(Event):
    """The module asked something of its host, as `stopVideoWriter` or `retry`."""

    name: str


@dataclasses.dataclass(frozen=True)
class StateEvent(Event):
    """What was seen of face or card; `data` holds what was measured."""

    name: str


@dataclasses.dataclass(frozen=True)
class LiveFaceEvent(Event):
    """The live face was `found`, or lost after the selfie."""

    name: str
    seconds: float | None = None
    """How long a lost one was out of sight."""
    cause: str | None = None
    """Why it was lost: `outOfSight`, `anotherPerson`, `unjudged` or `lipsAtRest`."""


@dataclasses.dataclass(frozen=True)
class DecisionEvent(Event):
    """Something was compared with its limit: a face, the print of a card, the words that were spoken."""

    name: str
    passed: bool
    value: float | None = None
    threshold: float | None = None


@dataclasses.dataclass(frozen=True)
class FieldEvent(Event):
    """How a field in print stands to zone or barcode; never what either says."""

    name: str
    agreement: str
    """`agrees`, `conflicts` or `unread`."""
    source: str | None = None
    """`zone` or `code`: what the print was set against."""
    confidence: float | None = None
    """The lesser of both readings' ones, from 0 to 1."""


@dataclasses.dataclass(frozen=True)
class LivenessEvent(Event):
    """Whether the looks so far show a living person: `undecided`, `living` or `spoof`."""

    name: str
    seconds: float | None = None
    """How long the face was watched without a break."""
    evidence: str | None = None
    """The sign that decided."""


@dataclasses.dataclass(frozen=True)
class SignEvent(Event):
    """A sign of life or of fraud was measured."""

    name: str
    seen: bool
    value: float | None = None
    threshold: float | None = None


@dataclasses.dataclass(frozen=True)
class CameraSignEvent(Event):
    """Something speaks against a live camera."""

    name: str
    value: float | None = None
    threshold: float | None = None


@dataclasses.dataclass(frozen=True)
class TaskEvent(Event):
    """What became of a task of the active liveness mode: `drawn`, `asked`, `done` or `missed`."""

    name: str
    step: str
    seen: bool | None = None
    value: float | None = None
    threshold: float | None = None


@dataclasses.dataclass(frozen=True)
class HintEvent(Event):
    """Why the card is not read (`tooDark`, `blurred`, `covered`, `copy`) or the face not judged (`faceTooFar`,
    `faceTooDark`, `faceHidden`, `faceTurnedAway`, `faceBlurred`, `faceOutOfSight`), or `none` when that is over."""

    name: str
    value: float | None = None
    threshold: float | None = None


@dataclasses.dataclass(frozen=True)
class FilmEvent(Event):
    """The encoder does not keep up, and the film was `slowed`; or it is `atFullRate` again."""

    name: str
    value: float | None = None
    """Pictures a second at most."""


@dataclasses.dataclass(frozen=True)
class ScreenEvent(Event):
    """The screen changed."""

    text: str


@dataclasses.dataclass(frozen=True)
class CaptionEvent(Event):
    """The heading that the person reads."""

    text: str


@dataclasses.dataclass(frozen=True)
class PromptEvent(Event):
    """What the person is told to do; empty when nothing is."""

    text: str
    tone: str | None = None
    """`success`, `error`, `info`, `neutral` or `other`."""


@dataclasses.dataclass(frozen=True)
class AlertEvent(Event):
    """An alert that the person has to answer."""

    text: str


@dataclasses.dataclass(frozen=True)
class RetryEvent(Event):
    """The retry screen, and why it came."""

    text: str


@dataclasses.dataclass(frozen=True)
class SoundEvent(Event):
    """A sound was played."""

    value: float


@dataclasses.dataclass(frozen=True)
class WarningEvent(Event):
    """Something is amiss that the person before the camera is not told."""

    text: str


@dataclasses.dataclass(frozen=True)
class EndEvent(Event):
    """The last event of a run."""

    outcome: str
    """`result` or `error`."""


@dataclasses.dataclass(frozen=True, eq=False)
class PictureEvent(Event):
    """What the window shows."""

    pixels: numpy.typing.NDArray[numpy.uint8] = dataclasses.field(repr=False)
    """Height × width × 4: red, green, blue and opacity. It is the caller's own."""


KINDS: Mapping[str, type[Event]] = {
    "alert": AlertEvent,
    "call": CallEvent,
    "cameraSign": CameraSignEvent,
    "caption": CaptionEvent,
    "decision": DecisionEvent,
    "devices": DevicesEvent,
    "end": EndEvent,
    "field": FieldEvent,
    "film": FilmEvent,
    "hint": HintEvent,
    "liveFace": LiveFaceEvent,
    "liveness": LivenessEvent,
    "mode": ModeEvent,
    "prompt": PromptEvent,
    "retry": RetryEvent,
    "screen": ScreenEvent,
    "sign": SignEvent,
    "sound": SoundEvent,
    "state": StateEvent,
    "task": TaskEvent,
    "warning": WarningEvent,
}
"""The type of each kind that `events.jsonl` has."""


def event_of(line: bytes) -> Event:
    """The event that a line of `events.jsonl` tells."""
    try:
        data = json.loads(line)
        time, kind = float(data["t"]), str(data["event"])
    except (ValueError, KeyError, TypeError) as fault:
        raise CrashedError(f"The program told what is no event: {line[:80]!r}.") from fault
    known = KINDS.get(kind, Event)
    told = {one.name: _value(data[one.name]) for one in dataclasses.fields(known) if one.name in data}
    try:
        return known(**{**told, "time": time, "kind": kind, "data": data})
    except TypeError:
        return Event(time, kind, data)


def _value(value: Any) -> Any:
    is_device = isinstance(value, Mapping) and "virtual" in value
    return Device(str(value.get("name")), bool(value["virtual"])) if is_device else value
