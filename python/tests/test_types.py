"""What type checkers see."""
import pathlib
import subprocess
import sys

import pytest

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


@pytest.fixture(name="cache", scope="module")
def made_cache(tmp_path_factory: pytest.TempPathFactory) -> pathlib.Path:
    """What mypy learns of the libraries in one test it knows in the next."""
    return tmp_path_factory.mktemp("mypy")


def mypy(cache: pathlib.Path, *words: str) -> str:
    command = [sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(cache), *words]
    return subprocess.run(command, cwd=PACKAGE.parent, text=True, capture_output=True, check=False).stdout


def test_the_package_has_types_throughout(cache: pathlib.Path) -> None:
    assert mypy(cache, str(PACKAGE)).startswith("Success")


def test_callers_see_types(tmp_path: pathlib.Path, cache: pathlib.Path) -> None:
    caller = tmp_path / "caller.py"
    caller.write_text("import pathlib\nvideoid_folder = pathlib.Path('card')\n" + CALLER, encoding="utf-8")
    said = mypy(cache, str(caller))
    assert 'Revealed type is "Union[builtins.float, None]"' in said
    assert 'Revealed type is "pathlib.Path"' in said
    assert 'Argument "txt" to "capture" has incompatible type' in said
    assert said.count("error:") == 1
