"""What type checkers see."""
import os
import pathlib
import subprocess
import sys

PACKAGE = pathlib.Path(__file__).parents[1] / "src/corvana_videoid"
CALLER = """
import corvana_videoid as videoid

with videoid.capture(videoid.Reference.of(videoid_folder), text="words", camera="session.mp4", max_retries=2) as run:
    for event in run:
        if isinstance(event, videoid.DecisionEvent):
            reveal_type(event.value)
reveal_type(run.result.film)
videoid.capture("card", txt=[1])
"""


def mypy(*words: str) -> str:
    command = [sys.executable, "-m", "mypy", "--strict", "--cache-dir", os.devnull, *words]
    return subprocess.run(command, cwd=PACKAGE.parent, text=True, capture_output=True, check=False).stdout


def test_the_package_has_types_throughout() -> None:
    assert mypy(str(PACKAGE)).startswith("Success")


def test_callers_see_types(tmp_path: pathlib.Path) -> None:
    caller = tmp_path / "caller.py"
    caller.write_text("import pathlib\nvideoid_folder = pathlib.Path('card')\n" + CALLER, encoding="utf-8")
    said = mypy(str(caller))
    assert 'Revealed type is "Union[builtins.float, None]"' in said
    assert 'Revealed type is "pathlib.Path"' in said
    assert 'Argument "txt" to "capture" has incompatible type' in said
    assert said.count("error:") == 1
