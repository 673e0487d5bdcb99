#!/usr/bin/env python3
"""Stages the pages of the site: those of docs/ with links that hold there, and those that are made from program and schemas.

Usage: generate.py PROJECT FOLDER VIDEOID
"""
import json
import os
import pathlib
import re
import subprocess
import sys

from schemas import cell, schema_page

PROJECT_PAGES = {
    "README.md": "readme.md",
    "CONTRIBUTING.md": "CONTRIBUTING.md",
    "SECURITY.md": "SECURITY.md",
    "CHANGELOG.md": "CHANGELOG.md",
    "samples/README.md": "samples.md",
}
"""Pages that lie elsewhere in the project than in docs/, and where they are in the site."""
SCHEMAS = {
    "events": "What happens during a run: each line of `events.jsonl`, and what a follower in C or Python is told.",
    "result": "What `videoid capture` prints, and what a run's folder holds as `result.json`.",
    "reference": "A card as `videoid enroll` read it: `reference.json`.",
    "recheck": "What `videoid recheck --json` says of each run.",
    "seal": "A line of `seal.jsonl`, which grows with the film.",
    "evidence": "What was compared, in words: `evidence.json`.",
    "consent": "What `--consent` takes.",
    "document": "A kind of document, as `--documents` takes it.",
    "labels": "Words beside which the fields of a card are printed.",
}
LINK = re.compile(r"(!?\[[^\]]*\])\(([^)\s]+)\)")
IMAGES = (".jpg", ".png", ".svg")
LANGUAGES = {".h": "cpp", ".cpp": "cpp", ".json": "json", ".py": "python", ".qml": "qml", ".c": "c", ".txt": "cmake"}


class Site:
    """Knows which files of the project are pages, and makes pages of the others that are linked to."""

    def __init__(self, project, folder):
        self.project, self.folder = project, folder
        self.places = {project / "docs" / page.name: page.name for page in (project / "docs").glob("*.md")}
        self.places |= {project / "docs" / image.name: image.name for image in (project / "docs").glob("*.jpg")}
        self.places |= {project / origin: place for origin, place in PROJECT_PAGES.items()}
        for schema in SCHEMAS:
            self.places[project / f"docs/{schema}.schema.json"] = f"reference/{schema}.md"

    def write(self, place, text):
        file = self.folder / place
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def stage(self):
        for origin, place in list(self.places.items()):
            if origin.suffix == ".md":
                self.write(place, self.rendered(origin.read_text(encoding="utf-8"), origin.parent, place))
            elif origin.suffix in IMAGES:
                (self.folder / place).write_bytes(origin.read_bytes())

    def rendered(self, text, folder, place):
        text = re.sub(r"<!-- not run: (.*?) -->", r'<p class="not-run">No test runs this: \1.</p>', text)
        return LINK.sub(lambda link: f"{link[1]}({self.target(link[2], folder, place)})", text)

    def target(self, link, folder, place):
        path, _, anchor = link.partition("#")
        if not path or "://" in link or link.startswith("mailto:"):
            return link
        origin = pathlib.Path(os.path.normpath(folder / path))
        if not origin.exists() and not path.startswith("reference/"):
            sys.exit(f"{folder}: links to {link}, which is not there.")
        if not origin.exists():
            return link
        if origin not in self.places:
            self.add_source(origin)
        to = os.path.relpath(self.places[origin], pathlib.PurePosixPath(place).parent)
        return to + ("#" + anchor if anchor else "")

    def add_source(self, origin):
        """A page that shows a file of the project, or lists a folder."""
        name = origin.relative_to(self.project)
        self.places[origin] = f"source/{name}.md"
        head = f"---\ntitle: {name}\n---\n\n# `{name}`\n\n"
        if origin.is_dir():
            listed = subprocess.run(["git", "ls-files", "."], cwd=origin, capture_output=True, text=True, check=True).stdout.split()
            self.write(self.places[origin], head + "".join(f"- `{one}`\n" for one in listed))
            return
        language = LANGUAGES.get(origin.suffix, "text")
        self.write(self.places[origin], f"{head}````{language}\n{origin.read_text(encoding='utf-8')}\n````\n")



def table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "".join("| " + " | ".join(cell(one) for one in row) + " |\n" for row in lines) + "\n"


def options_page(options):
    text = ("# Options\n\nWhat `--options FILE` changes, a JSON object of keys and values. `videoid options --print` lists the same.\n"
            "How to choose them: [tuning](../tuning.md).\n\n")
    for group in dict.fromkeys(option["key"].split(".")[0] for option in options):
        rows = [(f"`{option['key']}`", f"{json.dumps(option['default'])} {option.get('unit', '')}", option["meaning"])
                for option in options if option["key"].startswith(group + ".")]
        text += f"## {group}\n\n" + table(["Key", "Default", "Meaning"], rows)
    return text


def commands_in(command, path=()):
    """Every command that can be run, with the words that name it."""
    for child in command["commands"]:
        words = path + (child["name"],)
        if child["commands"]:
            yield from commands_in(child, words)
        else:
            yield words, child


def commands_page(top):
    text = "# Commands\n\n`videoid COMMAND --help` and `man videoid-COMMAND` tell the same.\n\n"
    for words, command in commands_in(top):
        arguments = " ".join(one["name"].upper() for one in command["arguments"])
        text += f"## videoid {' '.join(words)}\n\n{command['meaning']}.\n\n    videoid {' '.join(words)} [OPTION...] {arguments}\n\n"
        rows = [(f"`{one['name'].upper()}`", one["meaning"]) for one in command["arguments"]]
        rows += [(" ".join(f"`{name}`" for name in one["names"]) + (" VALUE" if one["takesValue"] else ""),
                  one["meaning"] + (" (required)" if one["required"] else ""))
                 for one in command["options"] if "--help" not in one["names"]]
        if rows:
            text += table(["Option", "Meaning"], rows)
    return text


def said_by(videoid, *words):
    return json.loads(subprocess.run([videoid, *words], capture_output=True, text=True, check=True).stdout)


def main():
    project, folder, videoid = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    site = Site(project, folder)
    site.stage()
    site.write("reference/options.md", options_page(said_by(videoid, "options", "--print")))
    site.write("reference/commands.md", commands_page(said_by(videoid, "commands")))
    for name, meaning in SCHEMAS.items():
        schema = json.loads((project / f"docs/{name}.schema.json").read_text(encoding="utf-8"))
        site.write(f"reference/{name}.md", schema_page(name, schema, meaning))
    for page in (project / "docs/site/reference").glob("*.md"):
        site.write(f"reference/{page.name}", page.read_text(encoding="utf-8"))
    for file in ("worker.js", "site.css", "favicon.svg"):
        (folder / file).write_bytes((project / "docs/site/assets" / file).read_bytes())


main()
