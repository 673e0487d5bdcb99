"""The examples of docs/python.md, in a folder that holds the sample session. VIDEOID is the program, SESSION the session."""
import doctest
import os
import pathlib

import pytest

PAGE = pathlib.Path(__file__).parents[2] / "docs/python.md"


@pytest.mark.skipif("SESSION" not in os.environ, reason="ctest gives program and session")
def test_the_examples_of_the_page_do_what_it_says(tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    (tmp_path / "session").symlink_to(os.environ["SESSION"])
    (tmp_path / "bin").mkdir()
    (tmp_path / "bin/videoid").symlink_to(os.environ["VIDEOID"])
    monkeypatch.setenv("PATH", str(tmp_path / "bin"), prepend=os.pathsep)
    monkeypatch.setenv("QT_QPA_PLATFORM", "offscreen")
    monkeypatch.chdir(tmp_path)
    failed, tried = doctest.testfile(str(PAGE), module_relative=False, optionflags=doctest.ELLIPSIS)
    assert tried > 15
    assert failed == 0
    assert not (tmp_path / "left/film.mp4").exists()
