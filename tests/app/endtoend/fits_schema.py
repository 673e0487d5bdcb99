"""Holds a run's result.json, events.jsonl and, where it is kept, evidence.json against their schemas.

fits_schema.py DOCS_FOLDER RUN_FOLDER
"""
import json
import pathlib
import sys

from jsonschema import Draft202012Validator, RefResolver

docs, run = map(pathlib.Path, sys.argv[1:])
schemas = {name: json.loads((docs / name).read_text()) for name in ("result.schema.json", "events.schema.json", "evidence.schema.json")}


def complaints(name, content):
    schema = schemas[name]
    resolver = RefResolver(name, schema, store=schemas)
    for error in Draft202012Validator(schema, resolver=resolver).iter_errors(content):
        yield f"{name}: {error.json_path}: {error.message}"


found = list(complaints("result.schema.json", json.loads((run / "result.json").read_text())))
for line in (run / "events.jsonl").read_text().splitlines():
    found += complaints("events.schema.json", json.loads(line))
if (run / "evidence.json").exists():
    found += complaints("evidence.schema.json", json.loads((run / "evidence.json").read_text()))
print("\n".join(found))
sys.exit(1 if found else 0)
