"""What is to be evaluated: a table of sessions, one a line."""
from __future__ import annotations

import dataclasses
import pathlib
import sqlite3

import pandas

from videoid_evaluate.complaint import Complaint

GENUINE = "genuine"
ASPECTS = ("person", "front", "back", "text")
NEEDED = ("film", "reference", "text", "label", "person")
ENDS = ("", "accepted", "refused")
KNOWN = (*NEEDED, "owner", "differs", "expected")


@dataclasses.dataclass(frozen=True)
class Session:
    """One film that is shown to the program, and what is true of it."""

    film: str
    reference: str
    text: str
    label: str
    """`genuine`, or the kind of attack."""
    person: str
    """Who is before the camera."""
    owner: str
    """Whose card the reference is."""
    differs: tuple[str, ...]
    """What is not that of the reference: the person, the front, the back, the text."""
    expected: str
    """`accepted` or `refused` where somebody knows how it has to end, else empty."""
    cohorts: tuple[tuple[str, str], ...]

    @property
    def genuine(self) -> bool:
        return self.label == GENUINE


def read(path: pathlib.Path) -> list[Session]:
    """Reads CSV, SQLite (the table `sessions`) or Parquet; paths in it are relative to its folder."""
    table = _table(path)
    missing = [column for column in NEEDED if column not in table.columns]
    if missing:
        raise Complaint(f"{path} has no column {', '.join(missing)}: it needs {', '.join(NEEDED)}.")
    if table.empty:
        raise Complaint(f"{path} lists no session: write one a line.")
    cohorts = [str(column) for column in table.columns if column not in KNOWN]
    return [_session(path, number, row, cohorts) for number, row in enumerate(table.to_dict("records"), start=1)]


def _table(path: pathlib.Path) -> pandas.DataFrame:
    if not path.is_file():
        raise Complaint(f"{path} is no file: name a manifest in CSV, SQLite or Parquet.")
    try:
        if path.suffix == ".parquet":
            return _texts(pandas.read_parquet(path))
        if path.suffix in (".sqlite", ".db"):
            with sqlite3.connect(f"{path.absolute().as_uri()}?mode=ro", uri=True) as base:
                return _texts(pandas.read_sql_query("SELECT * FROM sessions", base))
        return _texts(pandas.read_csv(path, dtype=str, keep_default_na=False))
    except ImportError as fault:
        raise Complaint(f"{path} is Parquet, for which pyarrow is needed: install it, or write CSV.") from fault
    except Exception as fault:
        reason = str(fault).splitlines()[0] if str(fault) else type(fault).__name__
        raise Complaint(f"{path} can not be read as a table ({reason}): write CSV with a line of column names.") from fault


def _texts(table: pandas.DataFrame) -> pandas.DataFrame:
    """Cells without a value are empty, not texts as `None` and `nan` that would count as a person's name; a number is
    written as it was, though a gap in its column made it a broken one; and a blank beside a name makes no other person."""
    cells = table.convert_dtypes().astype(object)
    return cells.where(cells.notna(), "").astype(str).apply(lambda column: column.str.strip())


def _session(manifest: pathlib.Path, number: int, row: dict[str, str], cohorts: list[str]) -> Session:
    for column in NEEDED:
        if not str(row[column]).strip():
            raise Complaint(f"session {number} of {manifest} has no {column}: fill it in.")
    differs = tuple(str(row.get("differs", "")).replace(";", " ").split())
    strange = [one for one in differs if one not in ASPECTS]
    if strange:
        raise Complaint(f"session {number} of {manifest} differs in '{strange[0]}': choose from {', '.join(ASPECTS)}.")
    if row["label"] == GENUINE and differs:
        raise Complaint(f"session {number} of {manifest} is genuine and differs in '{differs[0]}': name its attack.")
    expected = str(row.get("expected", ""))
    if expected not in ENDS:
        raise Complaint(f"session {number} of {manifest} is expected '{expected}': write accepted, refused or nothing.")
    person, owner = row["person"], row.get("owner") or row["person"]
    if ("person" in differs) != (person != owner):
        raise Complaint(
            f"session {number} of {manifest}: `differs` has person exactly where `person` and `owner` are two."
        )
    return Session(
        film=_place(manifest, row["film"]),
        reference=_place(manifest, row["reference"]),
        text=_place(manifest, row["text"]),
        label=row["label"],
        person=person,
        owner=owner,
        differs=differs,
        expected=expected,
        cohorts=tuple((name, str(row[name])) for name in cohorts),
    )


def _place(manifest: pathlib.Path, place: str) -> str:
    if "://" in place:
        return place
    return str((manifest.parent / place).resolve())
