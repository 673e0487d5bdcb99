"""How calls end, and what ends them."""
import gc
import json
import math
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import threading

import pytest
from stand import STAND_IN, begin, wait_for_text, wait_until_gone

import corvana_videoid as videoid


@pytest.mark.parametrize(
    ("role", "error", "sentence"),
    [
        ("flow-error", videoid.FlowError, "The disk is full."),
        ("refusal", videoid.WrongUseError, "There is no such card."),
        ("lacking", videoid.MachineLacksError, "A model is missing."),
        ("loader", videoid.MachineLacksError, "libgstapp-1.0.so.0: install the package corvana-videoid"),
        ("abort", videoid.CrashedError, "was ended by a signal"),
    ],
)
def test_an_error_comes_after_the_events_and_with_the_result(role: str, error: type[Exception], sentence: str) -> None:
    run = begin(role, {"t": 0, "event": "end", "outcome": "error"})
    seen = []
    with pytest.raises(error, match=sentence):
        for event in run:
            seen.append(event.kind)
    assert seen == ["end"]
    with pytest.raises(error, match=sentence):
        run.result


def test_an_error_of_a_flow_says_what_is_left_and_whether_to_try_again() -> None:
    with pytest.raises(videoid.FlowError) as caught:
        begin("flow-error").result
    error = caught.value
    assert (error.cause, error.can_try_again, error.folder) == ("diskFull", False, pathlib.Path("/run"))
    assert not isinstance(error, videoid.CancelledError)


def test_options_become_those_of_the_program() -> None:
    run = begin("result", full_screen=True, spoken_hints=False, theme=None, max_retries=2, camera=pathlib.Path("a b.mp4"), done="--x")
    words = run.result.record["words"]
    for word in ("--full-screen", "--max-retries=2", "--camera=a b.mp4", "--done=--x", "--reference=card", "--text=words"):
        assert word in words
    assert not [word for word in words if "spoken" in word or "theme" in word]


@pytest.mark.parametrize(
    ("options", "sentence"),
    [
        ({"theme": ["a"]}, "theme is of the type list"),
        ({"done": math.nan}, "done is nan"),
        ({"theme": b"bytes"}, "theme is of the type bytes"),
        ({"theme": "\udcff"}, "no valid Unicode"),
        ({"theme": "a\0b"}, "zero byte"),
        ({"Th=eme": "x"}, "no option's name"),
    ],
)
def test_what_no_option_can_be_is_refused(options: dict[str, videoid.Option], sentence: str) -> None:
    with pytest.raises(videoid.WrongUseError, match=sentence):
        begin("result", **options).result


def test_a_program_that_is_not_there_is_named() -> None:
    with pytest.raises(videoid.MachineLacksError, match="/nowhere/videoid.*install corvana-videoid"):
        videoid.compare("a.png", "b.png", program="/nowhere/videoid")


def test_python_ends_though_a_call_got_no_thread() -> None:
    code = """
def refuse(thread): raise RuntimeError("can't start new thread")
threading.Thread.start = refuse
videoid.compare("a.png", "b.png", program=STAND_IN)
"""
    caller = python("import threading\n" + code)
    assert "MachineLacksError: No thread can be started" in caller.communicate()[1]
    assert caller.returncode == 1


@pytest.mark.parametrize(
    ("content", "sentence"),
    [
        (None, "can't be read .*name a folder that enroll made"),
        ("{", "is no reference: enroll the card again"),
        ("[]", "is no reference"),
        ('{"front": {"fields": [{"name": "surname"}]}}', "is no reference"),
        ('{"front": 7}', "is no reference"),
    ],
)
def test_what_is_no_reference_is_named(tmp_path: pathlib.Path, content: str | None, sentence: str) -> None:
    if content is not None:
        (tmp_path / "reference.json").write_text(content, encoding="utf-8")
    with pytest.raises(videoid.WrongUseError, match=f"reference.json.*{sentence}"):
        videoid.Reference.of(tmp_path)


def test_a_difference_is_an_exception_of_verify() -> None:
    with pytest.raises(videoid.DifferenceError) as caught:
        videoid.verify("run", program=STAND_IN, **{"as": "changed"})
    assert caught.value.report == ("film.mp4: changed",)


def test_cancelling_waits_for_no_event(tmp_path: pathlib.Path) -> None:
    trace = tmp_path / "trace"
    run = begin("wait", trace=trace)
    wait_for_text(trace)
    threading.Timer(0.05, run.cancel).start()
    with pytest.raises(videoid.CancelledError) as caught:
        list(run)
    assert caught.value.cause == "canceled"
    assert trace.read_text() == "cancelled"
    run.cancel()


def test_a_run_is_cancelled_before_it_has_begun_in_earnest() -> None:
    for _ in range(20):
        run = begin("wait")
        run.cancel()
        with pytest.raises(videoid.CancelledError):
            run.result


def test_leaving_the_block_cancels_and_waits(tmp_path: pathlib.Path) -> None:
    trace = tmp_path / "trace"
    with begin("wait", trace=trace) as run:
        wait_for_text(trace)
        run.cancel()
    assert trace.read_text() == "cancelled"
    with pytest.raises(videoid.CancelledError):
        run.result
    with begin("result") as run:
        list(run)
    assert run.result.id_to_selfie_match


def test_a_run_that_nobody_holds_is_cancelled(tmp_path: pathlib.Path) -> None:
    trace = tmp_path / "trace"
    run = begin("wait", trace=trace)
    process = int(wait_for_text(trace))
    del run
    gc.collect()
    wait_until_gone(process)
    assert trace.read_text() == "cancelled"


def test_a_closed_run_says_so() -> None:
    run = begin("wait")
    run.close()
    run.close()
    for use in (lambda: next(run), lambda: run.result, lambda: run.__enter__()):
        with pytest.raises(videoid.ClosedError, match="was closed"):
            use()


def test_one_thread_takes_the_events() -> None:
    run = begin("wait")
    caught: list[BaseException] = []

    def take() -> None:
        try:
            next(run)
        except videoid.VideoIDError as error:
            caught.append(error)

    threads = [threading.Thread(target=take) for _ in range(3)]
    for thread in threads:
        thread.start()
    while sum(isinstance(error, videoid.BusyError) for error in caught) < 2:
        threads[0].join(0.01)
    run.cancel()
    for thread in threads:
        thread.join()
    assert sorted(type(error).__name__ for error in caught) == ["BusyError", "BusyError", "CancelledError"]


def test_a_forked_process_leaves_the_run_alone() -> None:
    run = begin("wait")
    child = os.fork()
    if child == 0:
        try:
            run.cancel()
            run.close()
            next(run)
        except videoid.ClosedError:
            os._exit(7)
        os._exit(0)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 7
    assert not run._call.wait(0)
    run.close()


PROLOGUE = "import sys; sys.path[:0] = " + repr(sys.path) + "\nimport corvana_videoid as videoid\nfrom stand import *\n"


def python(code: str) -> subprocess.Popen[str]:
    return subprocess.Popen(
        [sys.executable, "-c", PROLOGUE + code], text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True
    )


def test_python_can_end_while_a_run_goes_on(tmp_path: pathlib.Path) -> None:
    trace = tmp_path / "trace"
    caller = python(f"run = begin('wait', trace={str(trace)!r}); wait_for_text(pathlib.Path({str(trace)!r}))")
    assert caller.communicate() == ("", "")
    assert caller.returncode == 0
    assert trace.read_text() == "cancelled"


def test_control_c_cancels_a_call_that_python_waits_for(tmp_path: pathlib.Path) -> None:
    trace = tmp_path / "trace"
    options = repr({"as": "wait", "trace": str(trace)})
    caller = python(f"videoid.recheck('run', reference='card', text='words', program=STAND_IN, **{options})")
    wait_for_text(trace)
    os.killpg(caller.pid, signal.SIGINT)
    _, errors = caller.communicate()
    assert errors.strip().endswith("KeyboardInterrupt")
    assert trace.read_text() == "cancelled"


def test_without_the_library_the_import_says_what_to_install(tmp_path: pathlib.Path) -> None:
    package = tmp_path / "corvana_videoid"
    shutil.copytree(pathlib.Path(videoid.__file__).parent, package, ignore=shutil.ignore_patterns("*.so", "__pycache__"))
    code = "try:\n    import corvana_videoid\nexcept ImportError as error:\n    print(type(error).__name__, error)"
    said = subprocess.run([sys.executable, "-c", code], cwd=tmp_path, text=True, capture_output=True, check=True).stdout
    assert said.startswith("LibraryMissingError")
    assert "install libcorvana-videoid0" in said
