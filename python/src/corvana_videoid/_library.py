"""The C interface: one call, with text in and out. Nothing outside this file touches what is C's."""
from __future__ import annotations

import dataclasses
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from typing import Any

import numpy
import numpy.typing

from corvana_videoid.errors import LibraryMissingError

try:
    from corvana_videoid._native import ffi, lib
except ImportError as fault:
    raise LibraryMissingError(
        f"What corvana_videoid calls can't be loaded ({fault}): install libcorvana-videoid0 and cffi, "
        "or say in LD_LIBRARY_PATH where libcorvana-videoid.so.0 lies."
    ) from fault

RESULT: int = lib.CORVANA_VIDEOID_RESULT
FLOW_ERROR: int = lib.CORVANA_VIDEOID_FLOW_ERROR
WRONG_USE: int = lib.CORVANA_VIDEOID_WRONG_USE
MACHINE_LACKS: int = lib.CORVANA_VIDEOID_MACHINE_LACKS


@dataclasses.dataclass(frozen=True)
class Follower:
    """Who is told of a run, on the thread of the call."""

    on_event: Callable[[bytes], None]
    on_picture: Callable[[float, numpy.typing.NDArray[numpy.uint8]], None]
    pictures_per_second: float


@dataclasses.dataclass(frozen=True)
class Answer:
    status: int
    json: str
    """Empty where there is none."""


def version() -> str:
    """Of the library."""
    return _text(lib.corvana_videoid_version())


def status_text(status: int) -> str:
    return _text(lib.corvana_videoid_status_text(status))


class Handle:
    """A place to make one call with; any thread may cancel it."""

    def __init__(self, program: bytes | None) -> None:
        name = ffi.NULL if program is None else ffi.new("char[]", program)
        setup = ffi.new("corvana_videoid_setup*", {"size": ffi.sizeof("corvana_videoid_setup"), "program": name})
        made = ffi.new("corvana_videoid**")
        status = lib.corvana_videoid_create(setup, made)
        if status != RESULT:
            raise MemoryError(status_text(status))
        self._handle = made[0]

    def call(self, function: str, request: bytes, follower: Follower | None) -> Answer:
        """Waits for the call's end; Python's other threads go on."""
        with _answer_place() as answer:
            if follower is None:
                status = getattr(lib, "corvana_videoid_" + function)(self._handle, request, answer)
            else:
                context = ffi.new_handle(follower)
                status = lib.corvana_videoid_capture(self._handle, request, _c_follower(follower, context), answer)
            return Answer(status, _text(answer[0]) if answer[0] else "")

    def cancel(self) -> bool:
        """False when no call runs: it has ended, or has not begun yet."""
        return bool(lib.corvana_videoid_cancel(self._handle) == RESULT)

    def destroy(self) -> None:
        lib.corvana_videoid_destroy(self._handle)


def _text(text: Any) -> str:
    return str(ffi.string(text), "utf-8")


@contextmanager
def _answer_place() -> Iterator[Any]:
    answer = ffi.new("char**")
    try:
        yield answer
    finally:
        lib.corvana_videoid_free(answer[0])


def _c_follower(follower: Follower, context: Any) -> Any:
    return ffi.new(
        "corvana_videoid_follower*",
        {
            "size": ffi.sizeof("corvana_videoid_follower"),
            "context": context,
            "on_event": lib.corvana_python_event,
            "on_picture": lib.corvana_python_picture,
            "pictures_per_second": follower.pictures_per_second,
        },
    )


@ffi.def_extern()  # type: ignore[misc]  # cffi's own decorator has no type
def corvana_python_event(context: Any, json: Any) -> None:
    ffi.from_handle(context).on_event(ffi.string(json))


@ffi.def_extern()  # type: ignore[misc]
def corvana_python_picture(context: Any, picture: Any) -> None:
    """The pixels are lent for as long as this runs: they are copied, once."""
    shape = (picture.height, picture.width, 4)
    lent = numpy.frombuffer(ffi.buffer(picture.pixels, shape[0] * shape[1] * shape[2]), numpy.uint8)
    ffi.from_handle(context).on_picture(picture.time, lent.reshape(shape).copy())
