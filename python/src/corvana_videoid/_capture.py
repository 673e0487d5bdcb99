"""A run as it goes on."""
from __future__ import annotations

import collections
import os
import threading
import types
import weakref
from collections.abc import Iterator, Mapping

import numpy
import numpy.typing

from corvana_videoid import _library
from corvana_videoid._call import Call, Option
from corvana_videoid.errors import BusyError, ClosedError
from corvana_videoid.events import Event, PictureEvent, event_of
from corvana_videoid.results import Result


class _Inbox:
    """What has been told and nobody has taken: all the events, of the pictures the newest."""

    def __init__(self) -> None:
        self._changed = threading.Condition()
        self._events: collections.deque[bytes] = collections.deque()
        self._picture: PictureEvent | None = None
        self._is_over = False

    def tell(self, event: bytes) -> None:
        with self._changed:
            self._events.append(event)
            self._changed.notify_all()

    def show(self, time: float, pixels: numpy.typing.NDArray[numpy.uint8]) -> None:
        height, width = pixels.shape[:2]
        data = {"t": time, "event": "picture", "width": width, "height": height}
        with self._changed:
            self._picture = PictureEvent(time, "picture", data, pixels)
            self._changed.notify_all()

    def finish(self) -> None:
        with self._changed:
            self._is_over = True
            self._changed.notify_all()

    def take(self) -> bytes | PictureEvent | None:
        """Waits for the next; None when there will be none."""
        with self._changed:
            self._changed.wait_for(lambda: self._events or self._picture or self._is_over)
            if self._events:
                return self._events.popleft()
            picture, self._picture = self._picture, None
            return picture


class Capture(Iterator[Event]):
    """One identification. Iterating gives its events as they happen, and raises its error after the last one.

    As a context manager it cancels a run that goes on when the block is left. A run that nobody holds any more is
    cancelled as well, and so is each one when Python ends. Any thread may call any of this; only one at a time may wait
    for events.
    """

    def __init__(self, options: Mapping[str, Option], program: str | os.PathLike[str] | None, pictures_per_second: float) -> None:
        inbox = _Inbox()
        follower = _library.Follower(inbox.tell, inbox.show, pictures_per_second)
        self._inbox = inbox
        self._call = Call("capture", options, program, follower, inbox.finish)
        self._taking = threading.Lock()
        self._is_closed = False
        weakref.finalize(self, self._call.cancel_once).atexit = False  # Python's end cancels by itself.

    def __iter__(self) -> Capture:
        return self

    def __next__(self) -> Event:
        self._require_open()
        if not self._taking.acquire(blocking=False):
            raise BusyError("Another thread waits for the events of this run: let one thread take them all.")
        try:
            told = self._inbox.take()
        finally:
            self._taking.release()
        if told is None:
            self._require_open()
            self._call.answer()
            raise StopIteration
        return told if isinstance(told, PictureEvent) else event_of(told)

    @property
    def result(self) -> Result:
        """Waits for the end, whether the events were taken or not. Raises what ended a run without a result."""
        self._require_open()
        return Result.of(self._call.answer())

    def cancel(self) -> None:
        """Ends the run as the close button does: its error is `CancelledError`. A second time ends it at once, and may
        leave files. Nothing happens when it has ended."""
        self._call.cancel()

    def close(self) -> None:
        """Cancels a run that goes on, and waits for its end. What it is asked for afterwards raises `ClosedError`;
        closing it again does nothing."""
        if self._is_closed or not self._call.is_of_this_process:
            return
        self._is_closed = True
        self._end()

    def __enter__(self) -> Capture:
        self._require_open()
        return self

    def __exit__(
        self,
        kind: type[BaseException] | None,
        error: BaseException | None,
        trace: types.TracebackType | None,
    ) -> None:
        """Afterwards the result can still be asked for."""
        self._end()

    def _end(self) -> None:
        if not self._call.wait(0):
            self._call.cancel_once()
            self._call.wait()

    def _require_open(self) -> None:
        if self._is_closed:
            raise ClosedError("This run was closed: begin another one.")
        if not self._call.is_of_this_process:
            raise ClosedError("This run belongs to the process that began it: begin one of your own.")
