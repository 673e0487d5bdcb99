"""What calls come back with."""
from __future__ import annotations

import dataclasses
import json
import os
import pathlib
from collections.abc import Iterator, Mapping
from typing import Any

from corvana_videoid.errors import WrongUseError


@dataclasses.dataclass(frozen=True)
class Result:
    """An identification in which every check passed."""

    folder: pathlib.Path
    film: pathlib.Path
    selfie: pathlib.Path
    id_to_selfie_match: bool
    """The live face is the one on the card."""
    id_to_id_photo_match: bool
    """The photo on the card is that of the card captured earlier."""
    id_front_data_match: bool
    """The card's front says what that of the card captured earlier said."""
    id_back_data_match: bool
    """The same of its back."""
    record: Mapping[str, Any] = dataclasses.field(repr=False)
    """All that `result.json` holds."""

    @classmethod
    def of(cls, record: Mapping[str, Any]) -> Result:
        folder, result = pathlib.Path(record["folder"]), record["result"]
        return cls(
            folder=folder,
            film=folder / result["film"],
            selfie=folder / result["selfie"],
            id_to_selfie_match=result["idToSelfieMatch"],
            id_to_id_photo_match=result["idToIdPhotoMatch"],
            id_front_data_match=result["idFrontDataMatch"],
            id_back_data_match=result["idBackDataMatch"],
            record=record,
        )


@dataclasses.dataclass(frozen=True)
class Field:
    """What one source says of holder or document."""

    side: str
    """`front` or `back`."""
    name: str
    """`surname`, `documentNumber`, `birthDate` and so on."""
    value: str
    """Dates as YYYY-MM-DD, with less of it where the document leaves day or month open."""
    source: str
    """`zone`, `code` or `print`."""
    confidence: float


@dataclasses.dataclass(frozen=True)
class Reference(os.PathLike[str]):
    """A card as it was enrolled; a run takes it as its `reference`."""

    folder: pathlib.Path
    fields: tuple[Field, ...]
    """What zone, barcode and print say, each by itself."""
    record: Mapping[str, Any] = dataclasses.field(repr=False)
    """All that `reference.json` holds."""

    def __fspath__(self) -> str:
        return str(self.folder)

    @classmethod
    def of(cls, folder: pathlib.Path) -> Reference:
        """Reads a card that was enrolled before.

        Raises:
            WrongUseError: the folder holds none, or one that was changed
        """
        file = folder / "reference.json"
        try:
            record = json.loads(file.read_text(encoding="utf-8"))
            return cls(folder, tuple(_fields_of(record)), record)
        except OSError as fault:
            raise WrongUseError(f"{str(file)!r} can't be read ({fault.strerror}): name a folder that enroll made.") from fault
        except (ValueError, KeyError, TypeError, AttributeError) as fault:
            raise WrongUseError(f"{str(file)!r} is no reference: enroll the card again.") from fault


def _fields_of(record: Mapping[str, Any]) -> Iterator[Field]:
    for side in ("front", "back"):
        for field in record.get(side, {}).get("fields", []):
            yield Field(side, field["name"], field["value"], field["source"], field["confidence"])


@dataclasses.dataclass(frozen=True)
class Face:
    """A face in a photograph."""

    box: tuple[int, int, int, int]
    """x, y, width and height in pixels."""
    score: float
    """How sure it is that this is a face, from 0 to 1."""

    @classmethod
    def of(cls, answer: Mapping[str, Any]) -> Face:
        x, y, width, height = answer["box"]
        return cls((x, y, width, height), answer["score"])


@dataclasses.dataclass(frozen=True)
class Comparison:
    """Two photographs of faces."""

    matches: bool
    distance: float
    """Of the faces' embeddings, which are of unit length."""
    limit: float
    """Up to which the faces count as the same."""
    first: Face
    second: Face

    @classmethod
    def of(cls, answer: Mapping[str, Any]) -> Comparison:
        first, second = (Face.of(answer[one]) for one in ("first", "second"))
        return cls(answer["matches"], answer["distance"], answer["limit"], first, second)


@dataclasses.dataclass(frozen=True)
class Recheck:
    """What came of judging a run's film again."""

    agrees: bool
    """Ending, judgements and inputs agree, and the record holds."""
    trusted: bool
    """A key that was given vouches for the whole record."""
    contradictions: tuple[str, ...]
    """Whatever else does not agree, in sentences."""
    notes: tuple[str, ...]
    """What a reader should know, and no contradiction."""
    report: Mapping[str, Any] = dataclasses.field(repr=False)
    """All that was found, with every judgement beside the recorded one."""

    @classmethod
    def of(cls, report: Mapping[str, Any]) -> Recheck:
        contradictions, notes = (tuple(report.get(one, ())) for one in ("contradictions", "notes"))
        return cls(report["agrees"], report["trusted"], contradictions, notes, report)
