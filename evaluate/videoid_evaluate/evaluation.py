"""One evaluation: shows the sessions that are not done yet, and writes what came of all of them."""
from __future__ import annotations

import csv
import dataclasses
import json
import pathlib
from collections.abc import Sequence

import distributed

from videoid_evaluate import figures, page, suggest, summary, workers
from videoid_evaluate.figures import Ended
from videoid_evaluate.manifest import Session
from videoid_evaluate.program import Program, key_of
from videoid_evaluate.rates import TAIL
from videoid_evaluate.records import Outcome
from videoid_evaluate.store import Store
from videoid_evaluate.suggest import Suggestion, Wish


@dataclasses.dataclass(frozen=True)
class Shown:
    ended: Ended
    ran: int
    """How many were shown now; the others had been before."""
    faults: list[str]


def show(client: distributed.Client, sessions: Sequence[Session], program: Program, store: Store) -> Shown:
    keys = [key_of(session, program) for session in sessions]
    left = {key: session for key, session in zip(keys, sessions) if store.get(key) is None}
    faults = workers.show_all(client, left, program, store.put) if left else []
    found = [(session, store.get(key)) for key, session in zip(keys, sessions)]
    return Shown([(session, outcome) for session, outcome in found if outcome is not None], len(left), faults)


def report(
    folder: pathlib.Path, shown: Shown, program: Program, suggestion: Suggestion | None, told: dict[str, object] | None
) -> None:
    """Writes summary.json, scores.csv and report.html."""
    figures_of_all = summary.of(shown.ended, program, shown.faults)
    if told is not None:
        figures_of_all["suggestion"] = told
    text = json.dumps(figures_of_all, indent=2, sort_keys=True, ensure_ascii=False)
    (folder / "summary.json").write_text(text + "\n", encoding="utf-8", errors=page.ANY_NAME)
    _write_scores(folder / "scores.csv", shown.ended)
    page.write(folder / "report.html", shown.ended, figures_of_all, suggestion)


def _write_scores(path: pathlib.Path, ended: Ended) -> None:
    with path.open("w", newline="", encoding="utf-8", errors=page.ANY_NAME) as file:
        table = csv.writer(file)
        table.writerow(["film", "label", "person", "owner", "accepted", "decision", "t", "value", "threshold", "passed"])
        for session, outcome in ended:
            head = [session.film, session.label, session.person, session.owner, outcome.accepted]
            for one in outcome.decisions:
                table.writerow([*head, one.name, one.t, one.value, one.threshold, one.passed])


def suggested(
    client: distributed.Client, shown: Shown, program: Program, store: Store, wish: Wish
) -> tuple[Suggestion, dict[str, object], list[str]]:
    """Chooses on one half of the persons, runs the other half again with what was chosen, and says what it costs, and
    which of it could not be run."""
    first, second = suggest.halves(shown.ended)
    suggestion = suggest.choose(first, wish)
    told: dict[str, object] = {"option": wish.kind.option, "target": wish.target, "chosenOn": suggestion.chosen_on.as_json()}
    if suggestion.threshold is None:
        return suggestion, {**told, "declined": suggestion.why_not}, []
    options = json.dumps({**json.loads(program.options or "{}"), wish.kind.option: suggestion.threshold}, sort_keys=True)
    moved = dataclasses.replace(program, options=options)
    again = show(client, [session for session, _ in second], moved, store)
    faults = [f"{fault} (with {wish.kind.option} = {suggestion.threshold})" for fault in again.faults]
    accepted = figures.of_sessions(
        suggest.impostors(again.ended, wish.kind), lambda _, outcome: outcome.accepted, suggest.ONE_SIDED
    )
    told |= {
        "threshold": suggestion.threshold,
        "falseAcceptance": accepted.as_json(),
        "falseRejectionBefore": figures.of_sessions(figures.genuine(second), _refused, TAIL).as_json(),
        "falseRejection": figures.false_rejections(again.ended).as_json(),
    }
    if accepted.upper > wish.target:
        why = (
            f"on the other half of the persons the upper limit is {accepted.upper:.2g} with {accepted.persons} independent "
            f"impostors: {wish.target:g} takes about {suggest.needed(wish.target)} without an error."
        )
        return dataclasses.replace(suggestion, threshold=None, why_not=why), {**told, "declined": why}, faults
    return suggestion, told, faults


def _refused(_: Session, outcome: Outcome) -> bool:
    return not outcome.accepted
