"""One call of the library on a thread of its own, so that signals and other threads get their turn meanwhile."""
from __future__ import annotations

import atexit
import json
import math
import os
import shutil
import threading
import weakref
from collections.abc import Callable, Mapping
from typing import Any

from corvana_videoid import _library
from corvana_videoid.errors import CancelledError, CrashedError, FlowError, MachineLacksError, VideoIDError, WrongUseError

Option = str | os.PathLike[str] | float | bool | None
"""The value of a long option: True gives one that takes no value, False and None leave it out."""

SECONDS_TO_CLEAN_UP = 10
"""How long a cancelled run may take when Python ends, before its process is ended at once."""

SECONDS_TO_BEGIN = 0.001
"""How long to wait for a thread that was started and has not called yet, before it is cancelled again."""


def request_of(options: Mapping[str, Option]) -> bytes:
    """The JSON of a request; `full_screen=True` becomes the option `--full-screen`."""
    request = {name.replace("_", "-"): _plain(name, value) for name, value in options.items() if value is not None}
    try:
        return json.dumps(request, ensure_ascii=False).encode()
    except UnicodeEncodeError as fault:
        raise WrongUseError(f"A text or path is no valid Unicode: {fault.object[max(0, fault.start - 20) : fault.end]!r}.") from fault


def _plain(name: str, value: object) -> str | float | bool:
    if isinstance(value, os.PathLike):
        value = os.fspath(value)
    if isinstance(value, float) and not math.isfinite(value):
        raise WrongUseError(f"{name} is {value}: give a finite number.")
    if isinstance(value, (str, int, float)):
        return value
    raise WrongUseError(f"{name} is of the type {type(value).__name__}: give a text, a path, a number, True or None.")


class Call:
    """Starts at once. Any thread may wait for it and cancel it."""

    def __init__(
        self,
        function: str,
        options: Mapping[str, Option],
        program: str | os.PathLike[str] | None,
        follower: _library.Follower | None = None,
        on_end: Callable[[], None] = lambda: None,
    ) -> None:
        request = request_of(options)
        self._handle = _library.Handle(None if program is None else _executable(program))
        self._process = os.getpid()
        self._was_cancelled = False
        self._answer: _library.Answer | None = None
        self._on_end = on_end
        self._ended = threading.Event()
        thread = threading.Thread(
            target=self._run, args=(function, request, follower), name=f"videoid {function}", daemon=True
        )
        try:
            thread.start()
        except RuntimeError as fault:
            self._handle.destroy()
            raise MachineLacksError(f"No thread can be started ({fault}): let this process and others end some.") from fault
        _calls.add(self)

    def _run(self, function: str, request: bytes, follower: _library.Follower | None) -> None:
        try:
            self._answer = self._handle.call(function, request, follower)
        finally:
            self._handle.destroy()
            self._ended.set()
            self._on_end()

    @property
    def is_of_this_process(self) -> bool:
        """False in a process that was forked meanwhile, where the thread is missing."""
        return self._process == os.getpid()

    def cancel(self) -> None:
        """Ends it as the close button does; a second time at once. Nothing happens when it has ended."""
        if not self.is_of_this_process:
            return
        self._was_cancelled = True
        while not self._handle.cancel() and not self._ended.wait(SECONDS_TO_BEGIN):
            pass

    def cancel_once(self) -> None:
        """The same for those who may not be the first, and are in no hurry."""
        if not self._was_cancelled:
            self.cancel()

    def wait(self, seconds: float | None = None) -> bool:
        """Waits, and says whether it has ended; what interrupts the waiting cancels the call."""
        try:
            return self._ended.wait(seconds)
        except BaseException:
            self.cancel_once()
            self._ended.wait()
            raise

    def answer(self) -> Mapping[str, Any]:
        """Waits for the end. Raises what its status stands for."""
        self.wait()
        status, answer = self._parsed()
        if status == _library.RESULT:
            return answer
        raise self._error_of(status, answer)

    def finding(self) -> tuple[bool, Mapping[str, Any]]:
        """The same for a call that looks for differences: True and the answer, or False and what it found."""
        self.wait()
        status, answer = self._parsed()
        if status == _library.FLOW_ERROR and "result" in answer:
            return False, answer
        return True, self.answer()

    def _parsed(self) -> tuple[int, Mapping[str, Any]]:
        if self._answer is None:
            raise CrashedError("The call ended within Python, and left no answer.")
        return self._answer.status, json.loads(self._answer.json or "{}")

    def _error_of(self, status: int, answer: Mapping[str, Any]) -> VideoIDError:
        sentence = str(answer.get("error", _library.status_text(status)))
        if status == _library.WRONG_USE:
            return WrongUseError(sentence)
        if status == _library.MACHINE_LACKS:
            return MachineLacksError(sentence)
        if status != _library.FLOW_ERROR:
            return CrashedError(sentence)
        record = answer.get("result", {})
        was_cancelled = record.get("error", {}).get("cause") == "canceled" if record else self._was_cancelled
        return (CancelledError if was_cancelled else FlowError)(sentence, record)


def _executable(program: str | os.PathLike[str]) -> bytes:
    path = shutil.which(program)
    if path is None:
        raise MachineLacksError(f"There is no program {os.fspath(program)!r}: install corvana-videoid, or name its file.")
    return os.fsencode(path)


_calls: weakref.WeakSet[Call] = weakref.WeakSet()


@atexit.register
def _cancel_all() -> None:
    """Threads may not outlive the interpreter: what they call back is gone by then."""
    for call in list(_calls):
        call.cancel_once()
    for call in list(_calls):
        if call.is_of_this_process and not call.wait(SECONDS_TO_CLEAN_UP):
            call.cancel()
            call.wait()
