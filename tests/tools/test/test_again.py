"""Which tests tools/test runs again, in a small project whose tests say that they ran."""
import importlib.machinery
import importlib.util
import json
import os
import pathlib
import shutil
import signal
import subprocess
import time

import pytest

TOOL = pathlib.Path(__file__).resolve().parents[3] / "tools/test"
PRESETS = {
    "version": 5,
    "configurePresets": [{"name": "small", "generator": "Ninja", "binaryDir": "${sourceDir}/build/${presetName}"}],
    "testPresets": [{"name": "small", "configurePreset": "small"}],
}
# `reader` and `other` are suites; `program` is what they start, `library` what was linked, and not built here.
BUILT = """rule made
  command = true
build program: made
build reader: made | {library}
build other: made
build source.o: made
build all: phony program reader other source.o
"""
TESTS = """
add_test(Reader.reads "{build}/reader" --gtest_filter=Reader.reads)
add_test(Other.needs "{build}/other" --gtest_filter=Other.needs)
set_tests_properties(Other.needs PROPERTIES FIXTURES_REQUIRED made)
add_test(script sh -c "{says} script")
add_test(makes sh -c "{says} makes")
set_tests_properties(makes PROPERTIES FIXTURES_SETUP made)
add_test(fails sh -c "{says} fails; exit 1")
add_test(skips sh -c "{says} skips; exit 77")
set_tests_properties(skips PROPERTIES SKIP_RETURN_CODE 77)
add_test(each_time sh -c "{says} each_time")
set_tests_properties(each_time PROPERTIES LABELS always)
add_test(told sh -c "{says} told; {told}")
"""
EVER = {"fails", "skips", "each_time"}
SCRIPTS = EVER | {"script", "makes", "told"}
ALL = SCRIPTS | {"Reader.reads", "Other.needs"}


class Project:
    def __init__(self, outside):
        """In a folder of its own, beside which lies what tests don't see: what ran, and what `told` is to do."""
        self.root, self.ran, self.order = outside / "project", outside / "ran", outside / "order"
        self.build, self.library = self.root / "build/small", outside / "library.so"
        self.environment = {**os.environ, "DPKG_ADMINDIR": str(outside / "dpkg"), "HOME": str(outside / "home"),
                            "PATH": f"{outside / 'bin'}:{os.environ['PATH']}"}
        self.environment.pop("PYTHONPATH", None)
        says = f"echo >>'{self.ran}'"
        for name, text in {
            "dpkg/status": "Package: one\n", "bin/by-hand": "", "library.so": "library", "order": "",
            "project/CMakePresets.json": json.dumps(PRESETS), "project/model.bin": "model", "project/named.md": "", "project/other.md": "",
            "project/src/source.cpp": "", "project/.gitignore": "/build/\n",
            "project/build/small/build.ninja": BUILT.format(library=self.library),
            "project/build/small/CMakeCache.txt": "",
            "project/build/small/CTestTestfile.cmake": TESTS.format(build=self.build, says=says, told=f". '{self.order}'"),
            "project/build/small/program": "program", "project/build/small/source.o": "",
            "project/build/small/reader": f"#!/bin/sh\n{says} Reader.reads\n# looks at docs/named.md\n",
            "project/build/small/other": f"#!/bin/sh\n{says} Other.needs\n",
        }.items():
            (outside / name).parent.mkdir(parents=True, exist_ok=True)
            (outside / name).write_text(text)
        for suite in ("reader", "other"):
            (self.build / suite).chmod(0o755)
        (self.root / "tools").mkdir()
        shutil.copy(TOOL, self.root / "tools/test")
        self.git("init", "--quiet")
        self.git("add", "--all")

    def git(self, *words):
        subprocess.run(["git", *words], cwd=self.root, check=True)

    def begin(self, *options):
        self.ran.write_text("")
        return subprocess.Popen([self.root / "tools/test", "small", *options], env=self.environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)

    def run(self, *options):
        """The tests that ran, the exit code and what was said."""
        process = self.begin(*options)
        said = process.communicate()[0]
        return set(self.ran.read_text().split()), process.returncode, said


@pytest.fixture(name="project")
def made_project(tmp_path):
    return Project(tmp_path)


def appends(*names, text="x"):
    def change(project):
        for name in names:
            with (project.root / name).open("a") as file:
                file.write(text)
    return change


def sets(name, value):
    return lambda project: project.environment.update({name: value})


CHANGES = {
    "nothing": (lambda project: None, EVER),
    "a terminal": (sets("SHLVL", "7"), EVER),
    "an object": (appends("build/small/source.o"), EVER),
    "a suite": (appends("build/small/reader", text="#"), EVER | {"Reader.reads"}),
    "a suite that needs another test": (appends("build/small/other", text="#"), EVER | {"Other.needs", "makes"}),
    "a source": (appends("src/source.cpp", "CMakeLists.txt"), SCRIPTS),
    "the configuration": (appends("build/small/CMakeCache.txt", text="CORVANA_SANITIZE:STRING=thread\n"), SCRIPTS),
    "what CMake notes of it": (appends("build/small/CMakeCache.txt", text="_reason:INTERNAL=\n"), EVER),
    "the order of rules": (appends("build/small/build.ninja", text="\n# none\n"), EVER),
    "a page": (appends("other.md"), SCRIPTS),
    "a page that a suite names": (appends("named.md"), SCRIPTS | {"Reader.reads"}),
    "the program": (appends("build/small/program"), ALL),
    "a library": (appends("../library.so"), ALL),
    "a model": (appends("model.bin"), ALL),
    "a new file": (appends("sample.json"), ALL),
    "a new file that git is told of": (lambda project: project.git("add", "--all"), SCRIPTS),
    "a file that can be run": (lambda project: (project.root / "model.bin").chmod(0o755), ALL),
    "a model that is gone": (lambda project: (project.root / "model.bin").unlink(), ALL),
    "a package": (appends("../dpkg/status"), ALL),
    "a program by hand": (appends("../bin/by-hand"), ALL),
    "the environment": (sets("LC_ALL", "C"), ALL),
    "this tool": (appends("tools/test", text="\n"), ALL),
    "broken notes": (appends("build/small/Testing/passed.json"), ALL),
    "notes of another kind": (lambda project: (project.build / "Testing/passed.json").write_text("[1]"), ALL),
    "git": (lambda project: shutil.rmtree(project.root / ".git"), ALL),
}


@pytest.fixture(name="tested", scope="module")
def tested_project(tmp_path_factory):
    project = Project(tmp_path_factory.mktemp("tested"))
    assert project.run()[0] == ALL
    return project


@pytest.mark.parametrize("name", CHANGES)
def test_what_can_see_a_change_is_run_again(tested, name):
    change, expected = CHANGES[name]
    change(tested)
    ran, code, said = tested.run()
    assert ran == expected, said
    assert code != 0, "one of them fails each time"
    assert ("are not run again" in said) == (expected != ALL)


def test_each_day_begins_anew(project, monkeypatch):
    loader = importlib.machinery.SourceFileLoader("tool", str(project.root / "tools/test"))
    tool = importlib.util.module_from_spec(importlib.util.spec_from_loader("tool", loader))
    loader.exec_module(tool)
    today = tool.machine()
    assert tool.machine() == today

    class Tomorrow(tool.datetime.date):
        @classmethod
        def today(cls):
            return super().today() + tool.datetime.timedelta(days=1)

    monkeypatch.setattr(tool.datetime, "date", Tomorrow)
    assert tool.machine() != today


def test_options_are_those_of_ctest(project):
    assert project.run("-R", "script|told")[:2] == ({"script", "told"}, 0)
    ran, code, said = project.run("-R", "script|told")
    assert (ran, code) == (set(), 0) and "2 of 2 tests" in said
    assert project.run("--all", "-R", "script")[0] == {"script"}
    assert project.run()[0] == ALL - {"script", "told"}
    assert project.run("-R", "Other")[0] == set()
    (project.build / "other").open("a").write("#")
    assert project.run("-R", "Other")[0] == {"Other.needs", "makes"}, "what it needs has another name"
    for options in (["-R", "misspelt"], ["-I", "1,1"]):
        ran, code, _ = project.run(*options)
        assert (ran, code) == (set(), 1)


def test_one_that_failed_at_last_is_run_again(project):
    project.run()
    project.order.write_text("exit 1")
    assert project.run("--all")[0] == ALL
    project.order.write_text("")
    assert project.run()[0] == EVER | {"told"}
    assert project.run()[0] == EVER


def test_one_that_did_not_end_is_run_again(project):
    project.run()
    project.order.write_text(f"echo waits >>'{project.ran}'; exec sleep 1000")
    process = project.begin("--all")
    while "waits" not in project.ran.read_text():
        time.sleep(0.01)
    os.killpg(process.pid, signal.SIGKILL)
    process.communicate()
    project.order.write_text("")
    assert "told" in project.run()[0]
    assert project.run()[0] == EVER


def test_what_changed_meanwhile_counts_for_neither_state(project):
    project.order.write_text(f"echo >>'{project.root / 'model.bin'}'")
    assert project.run()[0] == ALL
    project.order.write_text("")
    assert project.run()[0] == ALL
    assert project.run()[0] == EVER


def test_two_of_one_name_are_always_run(project):
    with (project.build / "CTestTestfile.cmake").open("a") as file:
        file.write("subdirs(below)\n")
    (project.build / "below").mkdir()
    (project.build / "below/CTestTestfile.cmake").write_text("add_test(script false)\n")
    project.run()
    assert project.run()[0] == EVER | {"script"}


def test_without_a_build_it_says_what_to_do(project):
    shutil.rmtree(project.build)
    _, code, said = project.run()
    assert code != 0 and "build it first" in said
