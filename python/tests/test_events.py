"""Events as types, held against the schema of events.jsonl."""
import dataclasses
import json
import pathlib

import numpy
import pytest
from stand import begin

import corvana_videoid as videoid
from corvana_videoid import events

SCHEMA = json.loads((pathlib.Path(__file__).parents[2] / "docs/events.schema.json").read_text(encoding="utf-8"))


def test_every_kind_of_the_schema_has_its_type_and_no_type_invents_anything() -> None:
    assert sorted(events.KINDS) == sorted(SCHEMA["properties"]["event"]["enum"])
    for kind in events.KINDS.values():
        names = {field.name for field in dataclasses.fields(kind)} - {"time", "kind", "data"}
        assert names <= set(SCHEMA["properties"]), kind
        assert getattr(videoid, kind.__name__) is kind


@pytest.mark.parametrize(
    ("told", "expected"),
    [
        (
            {"t": 1.5, "event": "decision", "name": "selfieFace", "value": 0.1, "threshold": 0.44, "passed": True},
            videoid.DecisionEvent(1.5, "decision", {}, "selfieFace", True, 0.1, 0.44),
        ),
        ({"t": 0, "event": "prompt", "text": "Schön “still”"}, videoid.PromptEvent(0, "prompt", {}, "Schön “still”")),
        (
            {"t": 0, "event": "devices", "camera": {"name": "C", "virtual": True}, "microphone": None},
            videoid.DevicesEvent(0, "devices", {}, videoid.Device("C", True), None),
        ),
        ({"t": 2, "event": "state", "name": "idSuccess", "livenessScore": 0.9}, videoid.StateEvent(2, "state", {}, "idSuccess")),
        ({"t": 3, "event": "fromTheFuture", "name": "x"}, videoid.Event(3, "fromTheFuture", {})),
        ({"t": 3, "event": "decision", "verdict": 1}, videoid.Event(3, "decision", {})),
    ],
)
def test_an_event_has_its_type_and_all_that_was_told(told: dict[str, object], expected: videoid.Event) -> None:
    (event,) = begin("result", told)
    assert event == dataclasses.replace(expected, data=told)
    assert type(event) is type(expected)


def test_events_keep_their_order_and_none_is_lost_while_nobody_takes_them() -> None:
    run = begin("result", *({"t": number, "event": "sound", "value": number} for number in range(2000)))
    assert run.result.film.name == "film.mp4"
    assert [event.time for event in run] == list(range(2000))
    assert list(run) == []


def test_what_is_no_event_is_told_as_such() -> None:
    with pytest.raises(videoid.CrashedError, match="no event"):
        next(begin("result", {"event": "state"}))


def test_a_picture_is_an_array_of_its_own() -> None:
    run = begin("result", [3, 2], pictures_per_second=5)
    assert "--caller-pictures=5.0" in run.result.record["words"]
    (picture,) = run
    assert isinstance(picture, videoid.PictureEvent)
    assert (picture.time, picture.pixels.shape, picture.pixels.dtype) == (0.5, (2, 3, 4), numpy.uint8)
    assert picture.pixels.ravel().tolist() == list(range(24))
    assert picture.pixels.flags.owndata or picture.pixels.base.flags.owndata
    picture.pixels[:] = 0


def test_of_pictures_that_nobody_took_the_newest_is_left() -> None:
    run = begin("result", [1, 1], [2, 1], {"t": 1, "event": "end", "outcome": "result"}, [4, 1], pictures_per_second=5)
    assert run.result
    assert [event.kind for event in run if not isinstance(event, videoid.PictureEvent) or event.pixels.shape == (1, 4, 4)] == [
        "end",
        "picture",
    ]
