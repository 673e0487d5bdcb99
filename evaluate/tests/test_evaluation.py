"""Whole evaluations with a program that does as its films say."""
import csv
import json
import os
import pathlib
import sqlite3

import pytest

from videoid_evaluate import manifest, workers
from videoid_evaluate.command import main
from videoid_evaluate.complaint import Complaint

STAND_IN = str(pathlib.Path(__file__).parent / "stand_in.py")
HEAD = ["film", "reference", "text", "label", "person", "owner", "differs", "light"]


class Folder:
    """A folder with films, and what was shown of them."""

    def __init__(self, path: pathlib.Path) -> None:
        self.path = path
        self.rows: list[list[str]] = []
        (path / "reference").mkdir()
        (path / "reference" / "reference.json").write_text("{}")
        (path / "text.txt").write_text("Good day")

    def film(self, label: str, person: str, owner: str, faces: list[float], light: str = "day", dies: str = "") -> None:
        name = f"film{len(self.rows)}.json"
        (self.path / name).write_text(json.dumps({"faces": faces, "dies": dies, "nr": len(self.rows)}))
        differs = "person" if person != owner else ""
        self.rows.append([name, "reference", "text.txt", label, person, owner, differs, light])

    def evaluate(self, *more: str) -> int:
        with (self.path / "sessions.csv").open("w", newline="", encoding="utf-8") as file:
            csv.writer(file).writerows([HEAD, *self.rows])
        return main([str(self.path / "sessions.csv"), "--output", str(self.out), "--program", STAND_IN, "--workers", "1", *more])

    @property
    def out(self) -> pathlib.Path:
        return self.path / "out"

    @property
    def summary(self) -> dict:
        return json.loads((self.out / "summary.json").read_text())

    @property
    def shown(self) -> list[str]:
        return (self.path / "shown").read_text().split()


@pytest.fixture
def folder(tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> Folder:
    monkeypatch.setenv("SHOWN", str(tmp_path / "shown"))
    return Folder(tmp_path)


def few(folder: Folder) -> None:
    folder.film("genuine", "ann", "ann", [0.5, 0.3])
    folder.film("genuine", "bob", "bob", [0.6, 0.7], light="night")
    folder.film("genuine", "cem", "cem", [0.2])
    folder.film("stranger", "ann", "bob", [0.8, 0.9])
    folder.film("stranger", "dov", "cem", [0.8, 0.4], light="<script>alert(1)</script>")
    folder.film("print", "cem", "cem", [0.3])


def test_sessions_and_comparisons_are_counted_apart(folder: Folder) -> None:
    few(folder)
    assert folder.evaluate() == 0
    session, faces = folder.summary["session"], folder.summary["comparison"]["selfieFace"]
    assert (session["falseRejection"]["errors"], session["falseRejection"]["trials"]) == (1, 3)
    assert {label: (rate["errors"], rate["trials"]) for label, rate in session["falseAcceptance"].items()} == {
        "stranger": (1, 2),
        "print": (1, 1),
    }
    assert (faces["falseNonMatch"]["errors"], faces["falseNonMatch"]["trials"]) == (3, 5)
    assert (faces["falseMatch"]["errors"], faces["falseMatch"]["trials"]) == (1, 4)
    assert folder.summary["cohorts"]["light"]["night"]["falseRejection"]["errors"] == 1
    assert folder.summary["refusals"] == [
        {"count": 1, "reason": "The face was not recognised in time.", "stage": "selfieCapture, selfieFace failed"}
    ]


def test_what_is_done_is_not_shown_again_and_the_same_comes_out(folder: Folder) -> None:
    few(folder)
    folder.evaluate()
    before = {name: (folder.out / name).read_bytes() for name in ("summary.json", "report.html", "scores.csv")}
    assert folder.evaluate() == 0
    assert len(folder.shown) == 6
    assert {name: (folder.out / name).read_bytes() for name in before} == before
    folder.film("genuine", "eve", "eve", [0.1])
    folder.evaluate()
    assert len(folder.shown) == 7


def test_what_the_manifest_says_is_no_code_in_the_page(folder: Folder) -> None:
    few(folder)
    folder.evaluate()
    page = (folder.out / "report.html").read_text()
    assert "<script>" not in page and "&lt;script&gt;" in page


def test_a_session_that_can_not_be_run_is_told_and_tried_again(folder: Folder, capsys: pytest.CaptureFixture[str]) -> None:
    folder.film("genuine", "ann", "ann", [0.1])
    folder.film("genuine", "bob", "bob", [0.1], dies="always")
    assert folder.evaluate() == 1
    assert "the film is broken" in capsys.readouterr().err
    assert folder.summary["session"]["falseRejection"]["trials"] == 1
    folder.evaluate()
    assert len(folder.shown) == 3


def test_an_end_that_was_not_expected_is_told(folder: Folder, capsys: pytest.CaptureFixture[str]) -> None:
    few(folder)
    table = [[*HEAD, "expected"], *([*row, "accepted"] for row in folder.rows[:2])]
    with (folder.path / "m.csv").open("w", newline="", encoding="utf-8") as file:
        csv.writer(file).writerows(table)
    assert main([str(folder.path / "m.csv"), "--output", str(folder.out), "--program", STAND_IN, "--workers", "1"]) == 1
    assert "film1.json: expected to be accepted" in capsys.readouterr().err
    assert len(folder.summary["notAsExpected"]) == 1


def test_too_few_impostors_suggest_nothing(folder: Folder, capsys: pytest.CaptureFixture[str]) -> None:
    few(folder)
    assert folder.evaluate("--suggest", "far=1e-3") == 0
    assert "no threshold is suggested" in capsys.readouterr().out
    assert "takes about 2995 without an error" in folder.summary["suggestion"]["declined"]


def test_a_suggestion_is_chosen_on_one_half_and_tried_on_the_other(folder: Folder) -> None:
    for n in range(60):
        folder.film("genuine", f"g{n}", f"g{n}", [0.2 if n % 10 else 0.42])
        folder.film("stranger", f"a{n}", f"a{n}'s twin", [0.41 if n % 7 == 0 else 0.7])
    assert folder.evaluate("--suggest", "far=0.3") == 0
    told = folder.summary["suggestion"]
    assert told["option"] == "videoCapture.idToSelfieMatchThreshold"
    assert told["falseAcceptance"]["upper"] <= 0.3
    assert len(folder.shown) > 120  # the second half once more, with the new threshold


def test_what_could_not_be_run_with_a_suggestion_is_told(folder: Folder, capsys: pytest.CaptureFixture[str]) -> None:
    for n in range(60):
        folder.film("genuine", f"g{n}", f"g{n}", [0.2], dies="with options" if n < 10 else "")
        folder.film("stranger", f"a{n}", f"a{n}'s twin", [0.7])
    assert folder.evaluate("--suggest", "far=0.3") == 1
    assert "the film is broken (with videoCapture.idToSelfieMatchThreshold = " in capsys.readouterr().err
    assert 0 < len(folder.summary["notRun"]) < 10


@pytest.mark.parametrize(
    "text, sentence",
    [
        ("", "can not be read as a table"),
        ("film,reference,text,label\n", "has no column person"),
        ("film,reference,text,label,person\n", "lists no session"),
        ("film,reference,text,label,person\nf,r,t,genuine,\n", "has no person"),
        ("film,reference,text,label,person,differs\nf,r,t,x,ann,hat\n", "differs in 'hat'"),
        ("film,reference,text,label,person,owner\nf,r,t,x,ann,bob\n", "exactly where"),
        ("film,reference,text,label,person,expected\nf,r,t,genuine,ann,yes\n", "is expected 'yes'"),
        ("film,reference,text,label,person\nf,r,t,genuine,ann\n", "f is not there"),
    ],
)
def test_a_broken_manifest_is_one_sentence(folder: Folder, capsys: pytest.CaptureFixture[str], text: str, sentence: str) -> None:
    (folder.path / "m.csv").write_text(text)
    assert main([str(folder.path / "m.csv"), "--output", str(folder.out), "--program", STAND_IN, "--workers", "1"]) == 2
    said = capsys.readouterr().err
    assert sentence in said and len(said.splitlines()) == 1


def test_a_table_of_sqlite_is_read_as_one_of_csv(folder: Folder) -> None:
    few(folder)
    folder.evaluate()
    before = folder.summary
    with sqlite3.connect(folder.path / "sessions.db") as base:
        base.execute(f"CREATE TABLE sessions ({', '.join(HEAD)})")
        base.executemany(f"INSERT INTO sessions VALUES ({', '.join('?' * len(HEAD))})", folder.rows)
    assert main([str(folder.path / "sessions.db"), "--output", str(folder.out), "--program", STAND_IN, "--workers", "1"]) == 0
    assert folder.summary == before


def test_a_cell_without_a_value_is_empty_and_numbers_stay_what_they_are(folder: Folder) -> None:
    folder.film("genuine", "1", "1", [0.2])
    with sqlite3.connect(folder.path / "sessions #1.db") as base:
        base.execute("CREATE TABLE sessions (film, reference, text, label, person INTEGER, owner INTEGER, differs, expected)")
        rows = [("genuine ", 1, None, None), ("genuine", 2, 2, None), ("stranger", 1, 2, "person")]
        base.executemany(
            "INSERT INTO sessions VALUES ('film0.json', 'reference', 'text.txt', ?, ?, ?, ?, NULL)", rows
        )
    sessions = manifest.read(folder.path / "sessions #1.db")
    assert [(one.label, one.person, one.owner) for one in sessions] == [
        ("genuine", "1", "1"), ("genuine", "2", "2"), ("stranger", "1", "2")
    ]  # fmt: skip
    (folder.path / "m.csv").write_text("film,reference,text,label,person,owner,differs\nfilm0.json,reference,text.txt,genuine,ann\n")
    assert manifest.read(folder.path / "m.csv")[0].owner == "ann"
    with sqlite3.connect(folder.path / "sessions #1.db") as base:
        base.execute("UPDATE sessions SET person = NULL, owner = NULL")
    with pytest.raises(Complaint, match="has no person"):
        manifest.read(folder.path / "sessions #1.db")


def test_names_that_are_no_unicode_lose_no_figures(folder: Folder, tmp_path: pathlib.Path) -> None:
    folder.path = tmp_path / os.fsdecode(b"caf\xe9")
    folder.path.mkdir()
    (folder.path / "reference").mkdir()
    (folder.path / "reference" / os.fsdecode(b"\xe9.png")).write_text("a card")
    (folder.path / "text.txt").write_text("Good day")
    folder.film("genuine", "ann", "ann", [0.2])
    folder.film("genuine", "bob", "bob", [0.2], dies="always")
    assert folder.evaluate() == 1
    assert "caf\udce9" in folder.summary["notRun"][0]
    assert (folder.out / "scores.csv").read_text().count("film0.json") == 1
    assert (folder.out / "report.html").exists()


@pytest.mark.parametrize(
    "more, sentence",
    [
        (["--output", "FOLDER/text.txt"], "text.txt/done can not be read or written"),
        (["--options", "FOLDER/list.json"], "it is no object"),
        (["--options", "FOLDER/words.json"], "give a number"),
        (["--program", "/bin/echo"], "does not answer as videoid does"),
        (["--scheduler", "tcp://127.0.0.1:first"], "no address of a scheduler"),
        (["--scheduler", "tcp://[::1"], "no address of a scheduler"),
    ],
)
def test_what_can_not_be_done_is_one_sentence(
    folder: Folder, capsys: pytest.CaptureFixture[str], more: list[str], sentence: str
) -> None:
    folder.film("genuine", "ann", "ann", [0.1])
    (folder.path / "list.json").write_text("[]")
    (folder.path / "words.json").write_text('{"videoCapture.idToSelfieMatchThreshold": "low"}')
    for person in ("ann", "bob"):
        (folder.path / "photos" / person).mkdir(parents=True)
        (folder.path / "photos" / person / "1.jpg").write_text("[1]")
    more = [one.replace("FOLDER", str(folder.path)) for one in more]
    if "words.json" in more[1] or more[0] == "--program":
        ended = main([str(folder.path / "photos"), "--output", str(folder.out), "--program", STAND_IN, *more])
    else:
        ended = folder.evaluate(*more)
    said = capsys.readouterr().err
    assert ended == 2 and sentence in said and len(said.splitlines()) == 1


def test_a_store_that_can_not_be_looked_at_is_one_sentence(folder: Folder, capsys: pytest.CaptureFixture[str]) -> None:
    folder.film("genuine", "ann", "ann", [0.1])
    folder.rows[0][0] = "nothing://films/1.mp4"
    assert folder.evaluate() == 2
    assert "nothing://films/1.mp4 can not be looked at" in capsys.readouterr().err


@pytest.mark.parametrize("count", ["0", "-3", "many"])
def test_nobody_is_no_number_of_workers(folder: Folder, capsys: pytest.CaptureFixture[str], count: str) -> None:
    with pytest.raises(SystemExit):
        main([str(folder.path), "--output", str(folder.out), "--workers", count])
    assert "give a whole number from 1" in capsys.readouterr().err


def test_photographs_are_compared_each_with_every_other_one(tmp_path: pathlib.Path, capsys: pytest.CaptureFixture[str]) -> None:
    people = {"ann": [[0, 0], [0.3, 0], [0, 0.6]], "bob": [[0.4, 0], []], "cem": [[5, 5]]}
    for person, photographs in people.items():
        (tmp_path / "photos" / person).mkdir(parents=True)
        for number, numbers in enumerate(photographs):
            (tmp_path / "photos" / person / f"{number}.jpg").write_text(json.dumps(numbers))
    assert main([str(tmp_path / "photos"), "--output", str(tmp_path / "out"), "--program", STAND_IN]) == 0
    summary = json.loads((tmp_path / "out" / "summary.json").read_text())
    assert (summary["falseNonMatch"]["errors"], summary["falseNonMatch"]["trials"]) == (2, 3)
    assert (summary["falseMatch"]["errors"], summary["falseMatch"]["trials"]) == (2, 7)
    assert (summary["failureToAcquire"]["errors"], summary["failureToAcquire"]["trials"]) == (1, 6)
    assert "bob/1.jpg" in (tmp_path / "out" / "report.html").read_text()
    assert main([str(tmp_path / "photos" / "ann"), "--output", str(tmp_path / "out"), "--program", STAND_IN]) == 2
    assert "fewer than two persons" in capsys.readouterr().err


@pytest.mark.parametrize("address", ["tcp://10.0.0.7:8786", "tls://host:1", "http://localhost", "nonsense"])
def test_films_do_not_leave_the_machine_in_the_clear(address: str) -> None:
    with pytest.raises(Complaint):
        workers.check_address(address, None)


def test_this_machine_may_be_reached_in_the_clear() -> None:
    workers.check_address("tcp://127.0.0.1:8786", None)
