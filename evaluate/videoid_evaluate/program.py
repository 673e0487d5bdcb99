"""The program under evaluation: which one it is, and one session shown to it."""
from __future__ import annotations

import dataclasses
import hashlib
import json
import pathlib
import shutil
import subprocess
import tempfile

import fsspec

from videoid_evaluate import records
from videoid_evaluate.complaint import Complaint
from videoid_evaluate.manifest import Session

ENDED = (0, 1)
"""Exit codes of a flow that came to its end: with a result, or with an error."""


@dataclasses.dataclass(frozen=True)
class Program:
    path: str
    sha256: str
    """Of the executable: workers refuse to run another."""
    options: str
    """JSON of the options that differ from the defaults, or empty."""
    date: str
    """The day by which documents are judged."""


def find(path: str, options: pathlib.Path | None, date: str) -> Program:
    executable = shutil.which(path)
    if executable is None:
        raise Complaint(f"there is no program '{path}': install corvana-videoid, or name the program with --program.")
    return Program(executable, _sha256_of(pathlib.Path(executable)), _options(options), date)


def _options(path: pathlib.Path | None) -> str:
    if path is None:
        return ""
    try:
        options = json.loads(path.read_text(encoding="utf-8"))
        if not isinstance(options, dict):
            raise ValueError("it is no object")
        return json.dumps(options, sort_keys=True)
    except (OSError, ValueError) as fault:
        raise Complaint(f"{path} holds no options ({fault}): write a JSON object of keys and values.") from fault


def _sha256_of(path: pathlib.Path) -> str:
    with path.open("rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest()


def _sha256_of_list(folder: pathlib.Path, files: list[pathlib.Path]) -> str:
    lines = "".join(f"{one.relative_to(folder)} {_sha256_of(one)}\n" for one in files)
    return hashlib.sha256(lines.encode(errors="surrogateescape")).hexdigest()


def key_of(session: Session, program: Program) -> str:
    """The same for the same inputs, program and options, wherever the files lie."""
    parts = [
        identity_of(session.film),
        identity_of(session.reference),
        identity_of(session.text),
        program.sha256,
        program.options,
        program.date,
    ]
    return hashlib.sha256(json.dumps(parts).encode()).hexdigest()


def identity_of(place: str) -> str:
    """The digest of a local file or of a folder's files; of an object store's file what the store itself says."""
    if "://" in place:
        try:
            system, name = fsspec.core.url_to_fs(place)
            return str(system.ukey(name))
        except Exception as fault:  # each kind of store has its own
            raise Complaint(f"{place} can not be looked at ({fault}): correct the manifest, or give access to the store.") from fault
    path = pathlib.Path(place)
    if path.is_file():
        return _sha256_of(path)
    if path.is_dir():
        files = sorted(one for one in path.rglob("*") if one.is_file())
        return _sha256_of_list(path, files)
    raise Complaint(f"{place} is not there: correct the manifest.")


def show(session: Session, program: Program) -> dict[str, object]:
    """Runs the program on the session in media time and keeps of it what rates need. Runs on a worker."""
    if _sha256_of(pathlib.Path(program.path)) != program.sha256:
        raise Complaint(f"the worker's {program.path} is another program: install the same one on every worker.")
    with tempfile.TemporaryDirectory(prefix="videoid-evaluate-") as folder:
        work = pathlib.Path(folder)
        command = _command(session, program, work)
        ended = subprocess.run(command, capture_output=True, text=True, errors="replace", check=False)
        if ended.returncode not in ENDED:
            said = (ended.stderr.strip() or "nothing").splitlines()[-1]
            raise Complaint(f"{session.film}: the program ended with {ended.returncode} and said: {said}")
        return records.read(work / "run").as_json()


def _command(session: Session, program: Program, work: pathlib.Path) -> list[str]:
    film, reference, text = (
        _local(place, work / name)
        for place, name in ((session.film, "film"), (session.reference, "reference"), (session.text, "text"))
    )
    command = [program.path, "capture", "--time", "media", "--screen", "headless", "--keep"]
    command += ["--camera", film, "--reference", reference, "--text-file", text, "--output", str(work / "run")]
    if program.date:
        command += ["--date", program.date]
    if program.options:
        (work / "options.json").write_text(program.options, encoding="utf-8")
        command += ["--options", str(work / "options.json")]
    return command


def _local(place: str, copy: pathlib.Path) -> str:
    if "://" not in place:
        return place
    system, name = fsspec.core.url_to_fs(place)
    local = copy.with_suffix(pathlib.PurePosixPath(name).suffix)
    system.get(name, str(local), recursive=True)
    return str(local)
