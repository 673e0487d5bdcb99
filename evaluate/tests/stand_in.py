#!/usr/bin/python3 -IS
"""Stands in for videoid: the film's text says what comes of it, with a value for each comparison of faces.

A film is JSON: {"faces": [0.3, 0.5], "dies": ""}; it may die "always" or "with options". Each showing leaves a line in the file that SHOWN names.
A photograph is a JSON list of the numbers that the network would make of it, or empty for one without a face.
"""
import json
import os
import pathlib
import sys

if sys.argv[1] == "options":
    print(json.dumps([{"key": "videoCapture.idToSelfieMatchThreshold", "default": 0.44}]))
    sys.exit(0)
if sys.argv[1] == "embed":
    for photo in sorted(pathlib.Path(sys.argv[2]).iterdir()):
        numbers = json.loads(photo.read_text())
        print(json.dumps({"file": photo.name, **({"embedding": numbers} if numbers else {"error": "No face was found."})}))
    sys.exit(0)

arguments = dict(zip(sys.argv[2::1], sys.argv[3::1]))
film = json.loads(pathlib.Path(arguments["--camera"]).read_text())
with open(os.environ["SHOWN"], "a", encoding="utf-8", errors="backslashreplace") as shown:
    shown.write(arguments["--camera"] + "\n")
if film.get("dies") == "always" or (film.get("dies") == "with options" and "--options" in arguments):
    print("videoid: the film is broken", file=sys.stderr)
    sys.exit(2)
options = json.loads(pathlib.Path(arguments["--options"]).read_text()) if "--options" in arguments else {}
threshold = options.get("videoCapture.idToSelfieMatchThreshold", 0.44)
run = pathlib.Path(arguments["--output"])
run.mkdir()
events = [{"t": 0.4, "event": "mode", "name": "selfieCapture"}]
for number, value in enumerate(film["faces"]):
    event = {"event": "decision", "name": "selfieFace", "value": value, "threshold": threshold}
    events.append({"t": 1.0 + number / 2, "passed": value <= threshold, **event})
accepted = any(value <= threshold for value in film["faces"])
error = {"message": "The face was not recognised in time.", "cause": "other", "canTryAgain": True}
(run / "result.json").write_text(json.dumps({"result": {}} if accepted else {"error": error}))
(run / "events.jsonl").write_text("".join(json.dumps(event) + "\n" for event in events))
sys.exit(0 if accepted else 1)
