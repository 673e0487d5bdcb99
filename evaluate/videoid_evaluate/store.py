"""What is done already, a file for each session, so that an evaluation that was broken off goes on."""
from __future__ import annotations

import json
import os
import pathlib

from videoid_evaluate.records import Outcome


class Store:
    def __init__(self, folder: pathlib.Path) -> None:
        self._folder = folder
        folder.mkdir(parents=True, exist_ok=True)

    def get(self, key: str) -> Outcome | None:
        """None for what is not done; a file that was cut short counts as not done."""
        try:
            return Outcome.from_json(json.loads(self._path(key).read_text(encoding="utf-8")))
        except (OSError, ValueError, KeyError, TypeError):
            return None

    def put(self, key: str, outcome: Outcome) -> None:
        part = self._path(key).with_suffix(".part")
        part.write_text(json.dumps(outcome.as_json(), sort_keys=True), encoding="utf-8")
        os.replace(part, self._path(key))

    def _path(self, key: str) -> pathlib.Path:
        return self._folder / f"{key}.json"
