"""Proves in one continuous video that a person and the identity card they showed earlier belong together.

Each function starts the program `videoid` as a process of its own by way of the library libcorvana-videoid, and waits
for it; `capture` goes on meanwhile. Further options are the program's long ones, with underscores for dashes:
`full_screen=True`, `max_retries=2`. What goes wrong is an exception whose text is one sentence.
"""
from __future__ import annotations

import os
import pathlib

from corvana_videoid._call import Call, Option
from corvana_videoid._library import version as _version
from corvana_videoid._capture import Capture
from corvana_videoid.errors import (
    BusyError,
    CancelledError,
    ClosedError,
    CrashedError,
    DifferenceError,
    FlowError,
    LibraryMissingError,
    MachineLacksError,
    VideoIDError,
    WrongUseError,
)
from corvana_videoid.events import (
    AlertEvent,
    CallEvent,
    CameraSignEvent,
    CaptionEvent,
    DecisionEvent,
    Device,
    DevicesEvent,
    EndEvent,
    Event,
    FieldEvent,
    FilmEvent,
    HintEvent,
    LiveFaceEvent,
    LivenessEvent,
    ModeEvent,
    PictureEvent,
    PromptEvent,
    RetryEvent,
    ScreenEvent,
    SignEvent,
    SoundEvent,
    StateEvent,
    TaskEvent,
    WarningEvent,
)
from corvana_videoid.results import Comparison, Face, Field, Recheck, Reference, Result

__all__ = [
    "AlertEvent",
    "BusyError",
    "CallEvent",
    "CameraSignEvent",
    "CancelledError",
    "CaptionEvent",
    "Capture",
    "ClosedError",
    "Comparison",
    "CrashedError",
    "DecisionEvent",
    "Device",
    "DevicesEvent",
    "DifferenceError",
    "EndEvent",
    "Event",
    "Face",
    "Field",
    "FieldEvent",
    "FilmEvent",
    "FlowError",
    "HintEvent",
    "LibraryMissingError",
    "LiveFaceEvent",
    "LivenessEvent",
    "MachineLacksError",
    "ModeEvent",
    "Option",
    "Path",
    "PictureEvent",
    "PromptEvent",
    "Recheck",
    "Reference",
    "Result",
    "RetryEvent",
    "ScreenEvent",
    "SignEvent",
    "SoundEvent",
    "StateEvent",
    "TaskEvent",
    "VideoIDError",
    "WarningEvent",
    "WrongUseError",
    "capture",
    "compare",
    "enroll",
    "recheck",
    "verify",
]

__version__: str = _version()
"""Of the library, which the package came with."""

Path = str | os.PathLike[str]
"""A file or a folder."""


def enroll(
    front: Path, output: Path, *, back: Path | None = None, program: Path | None = None, **options: Option
) -> Reference:
    """Reads photos of a card into a reference for later runs.

    Args:
        front: picture of the front, JPEG or PNG
        output: new or empty folder for the reference
        back: picture of the back, for two-sided cards
        program: file of the program, in place of the `videoid` that is found in PATH
        options: further ones of `videoid enroll`

    Raises:
        WrongUseError: a picture can't be read, shows no card or a copy, or what the card says conflicts
    """
    answer = Call("enroll", {"front": front, "back": back, "output": output, **options}, program).answer()
    return Reference.of(pathlib.Path(answer["reference"]))


def capture(
    reference: Path,
    *,
    text: str | None = None,
    text_file: Path | None = None,
    output: Path | None = None,
    pictures_per_second: float = 0,
    program: Path | None = None,
    **options: Option,
) -> Capture:
    """Begins one identification, and comes back at once.

    Args:
        reference: what `enroll` made of the card, or its folder
        text: what is to be read aloud; this or `text_file` is needed
        text_file: file that holds it
        output: new or empty folder for the run; without it one named videoid-run-1 and so on is made
        pictures_per_second: of the window (`screen="window"`), 0.01 to 30, as `PictureEvent` among the events; while
            they are not taken, all but the newest are left out
        program: as in `enroll`
        options: further ones of `videoid capture`, as `camera="session.mp4"`
    """
    wishes: dict[str, Option] = {"reference": reference, "text": text, "text_file": text_file, "output": output, **options}
    return Capture(wishes, program, pictures_per_second)


def compare(first: Path, second: Path, *, program: Path | None = None, **options: Option) -> Comparison:
    """Says whether two photographs show the same face.

    Raises:
        WrongUseError: one of them can't be read or shows no face
    """
    matches, answer = Call("compare", {"first": first, "second": second, **options}, program).finding()
    return Comparison.of(answer if matches else answer["result"])


def recheck(
    run: Path,
    *,
    reference: Path,
    text: str | None = None,
    text_file: Path | None = None,
    program: Path | None = None,
    **options: Option,
) -> Recheck:
    """Judges the film of a run again, with the reference and the text that it was recorded with."""
    wishes: dict[str, Option] = {"run": run, "reference": reference, "text": text, "text_file": text_file, **options}
    agrees, answer = Call("recheck", wishes, program).finding()
    return Recheck.of(answer if agrees else answer["result"])


def verify(folder: Path, *, program: Path | None = None, **options: Option) -> tuple[str, ...]:
    """Checks the record of a run, and gives a sentence for each of its files.

    Raises:
        DifferenceError: it is not what was recorded, or the key that was given (`key="machine.pem"`) does not vouch for
            it; an exception, since a check whose answer nobody looks at must not pass
    """
    holds, answer = Call("verify", {"folder": folder, **options}, program).finding()
    if holds:
        return tuple(answer["report"])
    raise DifferenceError(answer["error"], tuple(answer["result"]["report"]))
