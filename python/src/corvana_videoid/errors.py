"""What can go wrong, as exceptions; each one's text is the sentence that says what is wrong and what to do."""
from __future__ import annotations

import pathlib
from collections.abc import Mapping
from typing import Any


class VideoIDError(Exception):
    """Whatever this package raises."""


class WrongUseError(VideoIDError, ValueError):
    """An option, a file or a value that the caller can mend."""


class MachineLacksError(VideoIDError):
    """A model, a plugin, a package or the program itself is missing."""


class LibraryMissingError(MachineLacksError, ImportError):
    """The package was imported where the library that it calls can't be loaded."""


class CrashedError(VideoIDError):
    """The program ended without a word: a library within it gave up, or somebody killed it."""


class BusyError(VideoIDError, RuntimeError):
    """Another thread waits for the events of the same run."""


class ClosedError(VideoIDError, RuntimeError):
    """The run was closed, or belongs to the process that this one was forked from."""


class FlowError(VideoIDError):
    """The identification came to its end without a result."""

    record: Mapping[str, Any]
    """What `result.json` holds, or nothing where the run did not come so far."""

    def __init__(self, sentence: str, record: Mapping[str, Any] | None = None) -> None:
        super().__init__(sentence)
        self.record = record or {}

    @property
    def cause(self) -> str:
        """The cause as `result.json` names it: `canceled`, `cameraLost`, `diskFull`, `timeLimit`, `other` and so on."""
        return str(self._error.get("cause", "other"))

    @property
    def can_try_again(self) -> bool:
        """False where somebody has to see to the machine first."""
        return bool(self._error.get("canTryAgain", True))

    @property
    def folder(self) -> pathlib.Path | None:
        """What is left of the run, if anything is."""
        folder = self.record.get("folder")
        return pathlib.Path(folder) if isinstance(folder, str) else None

    @property
    def _error(self) -> Mapping[str, Any]:
        error = self.record.get("error")
        return error if isinstance(error, Mapping) else {}


class CancelledError(FlowError):
    """The person, the caller or a signal cancelled the call."""


class DifferenceError(VideoIDError):
    """A record is not what was recorded, or nobody who is known vouches for it."""

    report: tuple[str, ...]
    """A sentence for each file of the record."""

    def __init__(self, sentence: str, report: tuple[str, ...]) -> None:
        super().__init__(sentence)
        self.report = report
