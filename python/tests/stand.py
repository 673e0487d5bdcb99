"""Runs on the program's stand-in, and what is looked at around them."""
from __future__ import annotations

import json
import os
import pathlib
import time

import corvana_videoid as videoid

STAND_IN = pathlib.Path(__file__).with_name("stand_in.py")


def begin(role: str, *told: object, pictures_per_second: float = 0, **options: videoid.Option) -> videoid.Capture:
    return videoid.capture(
        "card",
        text="words",
        program=STAND_IN,
        pictures_per_second=pictures_per_second,
        **{"as": role, "tell": json.dumps(told), **options},
    )


def wait_for_text(file: pathlib.Path) -> str:
    """What the stand-in wrote; tests have no time limit of their own."""
    while not (file.exists() and file.read_text(encoding="utf-8")):
        time.sleep(0.01)
    return file.read_text(encoding="utf-8")


def wait_until_gone(process: int) -> None:
    while os.path.exists(f"/proc/{process}"):
        time.sleep(0.01)
