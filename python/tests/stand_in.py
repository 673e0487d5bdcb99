#!/usr/bin/python3
"""Stands in for videoid: does what the option --as says, and tells its caller what the option --tell holds.

--tell is a JSON list: an object is an event, a pair of numbers a picture of that width and height, whose bytes count up.
"""
import array
import json
import os
import pathlib
import signal
import socket
import sys
import time

options = dict(word[2:].split("=", 1) for word in sys.argv[1:] if word.startswith("--") and "=" in word)
role = options.get("as", "result")


def tell(message: bytes, file: int | None = None) -> None:
    ancillary = [] if file is None else [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", [file]))]
    caller.sendmsg([message], ancillary)


def show(width: int, height: int) -> None:
    file = os.memfd_create("picture")
    os.write(file, bytes(value % 256 for value in range(width * height * 4)))
    tell(json.dumps({"event": "picture", "t": 0.5, "width": width, "height": height}).encode(), file)
    os.close(file)


def end(code: int, sentence: str = "", answer: object = None) -> None:
    if answer is not None:
        print(json.dumps(answer))
    if sentence:
        print("videoid: " + sentence, file=sys.stderr)
    sys.exit(code)


def cancelled(*_: object) -> None:
    if "trace" in options:
        pathlib.Path(options["trace"]).write_text("cancelled", encoding="utf-8")
    end(1, "It was cancelled.", {"error": {"message": "It was cancelled.", "cause": "canceled", "canTryAgain": True}})


if role == "wait":
    signal.signal(signal.SIGTERM, cancelled)
if "caller" in options:
    caller = socket.socket(fileno=int(options["caller"]))
    for item in json.loads(options.get("tell", "[]")):
        show(*item) if isinstance(item, list) else tell(json.dumps(item).encode() + b"\n")
match role:
    case "result":
        flags = dict.fromkeys(("idToSelfieMatch", "idToIdPhotoMatch", "idFrontDataMatch", "idBackDataMatch"), True)
        end(0, answer={"folder": "/run", "result": {"film": "film.mp4", "selfie": "selfie.png", **flags}, "words": sys.argv[1:]})
    case "flow-error":
        error = {"message": "The disk is full.", "cause": "diskFull", "canTryAgain": False}
        end(1, "The disk is full.", {"error": error, "folder": "/run"})
    case "changed":
        print("film.mp4: changed")
        end(1)
    case "refusal":
        end(2, "There is no such card.")
    case "lacking":
        end(3, "A model is missing.")
    case "loader":
        print("videoid: error while loading shared libraries: libgstapp-1.0.so.0", file=sys.stderr)
        sys.exit(127)
    case "abort":
        os.abort()
    case "wait":
        if "trace" in options:
            pathlib.Path(options["trace"]).write_text(str(os.getpid()), encoding="utf-8")
        while True:
            time.sleep(60)
