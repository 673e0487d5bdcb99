"""All figures of an evaluation as one JSON value."""
from __future__ import annotations

from videoid_evaluate import faces, figures
from videoid_evaluate.faces import Photographs
from videoid_evaluate.figures import Comparisons, Ended
from videoid_evaluate.program import Program

Json = dict[str, object]


def of(ended: Ended, program: Program, faults: list[str]) -> Json:
    """Rates of the whole and of each cohort; the same inputs give the same bytes."""
    return {
        "program": {"sha256": program.sha256, "options": program.options, "date": program.date},
        "sessions": len(ended),
        "notRun": sorted(faults),
        "notAsExpected": figures.surprises(ended),
        "session": _rates(ended),
        "comparison": _comparisons(ended),
        "refusals": [{"reason": r, "stage": s, "count": n} for r, s, n in figures.refusals(ended)],
        "seconds": {name: list(spread) for name, spread in figures.times(ended).items()},
        "cohorts": {
            column: {value: _rates(part) for value, part in values.items()}
            for column, values in figures.by_cohort(ended).items()
        },
    }


def of_faces(photographs: Photographs, found: Comparisons, program: Program) -> Json:
    return {
        "program": {"sha256": program.sha256, "options": program.options},
        "photographs": len(photographs.persons),
        "persons": len(set(photographs.persons)),
        "refused": list(photographs.refused),
        "failureToAcquire": faces.failures(photographs).as_json(),
        "threshold": found.threshold,
        "falseNonMatch": found.false_non_match.as_json(),
        "falseMatch": found.false_match.as_json(),
    }


def _rates(ended: Ended) -> Json:
    return {
        "falseRejection": figures.false_rejections(ended).as_json(),
        "falseAcceptance": {label: rate.as_json() for label, rate in figures.false_acceptances(ended).items()},
    }


def _comparisons(ended: Ended) -> Json:
    parts: Json = {}
    for kind in figures.KINDS:
        found = figures.comparisons(ended, kind)
        if found is not None:
            parts[kind.name] = {
                "threshold": found.threshold,
                "falseNonMatch": found.false_non_match.as_json(),
                "falseMatch": found.false_match.as_json(),
            }
    return parts
