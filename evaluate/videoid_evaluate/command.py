"""The command line."""
from __future__ import annotations

import argparse
import io
import json
import pathlib
import sys

from videoid_evaluate import __version__, evaluation, faces, figures, manifest, page, program, suggest, summary, workers
from videoid_evaluate.complaint import Complaint
from videoid_evaluate.page import ANY_NAME
from videoid_evaluate.store import Store


def _arguments(argv: list[str] | None) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="videoid-evaluate",
        description="Shows many sessions to videoid and says how often it errs, with the limits that the data allow.",
    )
    parser.add_argument("--version", action="version", version=__version__)
    parser.add_argument("manifest", type=pathlib.Path, help="table of sessions (CSV, SQLite or Parquet), or a folder with a folder of photographs for each person")
    parser.add_argument("--output", type=pathlib.Path, required=True, help="folder for the figures; what is done is kept there")
    parser.add_argument("--program", default="videoid", help="the program under evaluation (default: videoid)")
    parser.add_argument("--options", type=pathlib.Path, help="its options, a JSON file")
    parser.add_argument("--date", default="", help="the day by which documents are judged, as 2026-03-01")
    parser.add_argument("--workers", type=_count, help="programs at a time on this machine (default: its cores)")
    parser.add_argument("--scheduler", help="a Dask scheduler that exists, as tls://HOST:PORT")
    for name in ("ca", "cert", "key"):
        parser.add_argument(f"--tls-{name}", help=f"PEM file of the scheduler's connection: {name}")
    parser.add_argument("--suggest", metavar="far=SHARE", help="choose the threshold that keeps false acceptances under this")
    parser.add_argument("--move", default="selfieFace", help="the decision whose threshold --suggest moves")
    return parser.parse_args(argv)


def _count(text: str) -> int:
    """Of what there has to be one at least: nobody would work, and the evaluation would wait for ever."""
    if not text.isdecimal() or int(text) < 1:
        raise argparse.ArgumentTypeError(f"{text!r} is no count: give a whole number from 1.")
    return int(text)


def _certificates(arguments: argparse.Namespace) -> workers.Certificates | None:
    files = (arguments.tls_ca, arguments.tls_cert, arguments.tls_key)
    if not any(files):
        return None
    if not all(files):
        raise Complaint("--tls-ca, --tls-cert and --tls-key belong together: name all three.")
    return workers.Certificates(*files)


def _evaluate(arguments: argparse.Namespace) -> int:
    wish = suggest.wish_of(arguments.suggest, arguments.move) if arguments.suggest else None
    sessions = manifest.read(arguments.manifest)
    used = program.find(arguments.program, arguments.options, arguments.date)
    store = Store(arguments.output / "done")
    suggestion, told = None, None
    with workers.connected(arguments.scheduler, _certificates(arguments), arguments.workers) as client:
        shown = evaluation.show(client, sessions, used, store)
        if wish is not None:
            suggestion, told, faults = evaluation.suggested(client, shown, used, store, wish)
            shown.faults.extend(faults)
    evaluation.report(arguments.output, shown, used, suggestion, told)
    _say(shown, suggestion, arguments.output)
    return 1 if shown.faults or figures.surprises(shown.ended) else 0


def _evaluate_faces(arguments: argparse.Namespace) -> int:
    if arguments.suggest:
        raise Complaint("--suggest needs sessions: give a manifest in place of a folder of photographs.")
    used = program.find(arguments.program, arguments.options, arguments.date)
    photographs = faces.read(arguments.manifest, used)
    found = faces.compare(photographs, faces.threshold_of(used))
    arguments.output.mkdir(parents=True, exist_ok=True)
    text = json.dumps(summary.of_faces(photographs, found, used), indent=2, sort_keys=True, ensure_ascii=False)
    (arguments.output / "summary.json").write_text(text + "\n", encoding="utf-8", errors=ANY_NAME)
    page.write_faces(arguments.output / "report.html", photographs, found)
    print(f"{len(photographs.persons)} photographs, {len(photographs.refused)} more without one face")
    print(f"one person taken for two (FNMR): {page.with_limits(found.false_non_match)}")
    print(f"two persons taken for one (FMR): {page.with_limits(found.false_match)}")
    return 0


def _say(shown: evaluation.Shown, suggestion: suggest.Suggestion | None, folder: pathlib.Path) -> None:
    print(f"{len(shown.ended)} sessions, {shown.ran} of them shown now")
    print(f"genuine, refused: {page.with_limits(figures.false_rejections(shown.ended))}")
    for label, rate in figures.false_acceptances(shown.ended).items():
        print(f"{label}, accepted: {page.with_limits(rate)}")
    if suggestion is not None:
        if suggestion.threshold is None:
            print(f"no threshold is suggested: {suggestion.why_not}")
        else:
            print(f"suggested: {suggestion.wish.kind.option} = {suggestion.threshold}")
    for surprise in figures.surprises(shown.ended):
        print(f"not as expected: {surprise}", file=sys.stderr)
    for fault in shown.faults:
        print(f"not run: {fault}", file=sys.stderr)
    print(f"figures: {folder / 'report.html'}, summary.json, scores.csv")


def main(argv: list[str] | None = None) -> int:
    if isinstance(sys.stdout, io.TextIOWrapper):
        sys.stdout.reconfigure(errors=ANY_NAME)
    try:
        arguments = _arguments(argv)
        return _evaluate_faces(arguments) if arguments.manifest.is_dir() else _evaluate(arguments)
    except Complaint as complaint:
        return _complain(str(complaint))
    except OSError as fault:  # of a file or folder, wherever it is met
        return _complain(f"{fault.filename or 'a file'} can not be read or written ({fault.strerror or fault}): check it and the disk.")


def _complain(sentence: str) -> int:
    print(f"videoid-evaluate: {sentence}", file=sys.stderr)
    return 2
