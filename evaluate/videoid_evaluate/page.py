"""The figures as a page for people: one file, which reaches for nothing outside."""
from __future__ import annotations

import dataclasses
import pathlib

import jinja2

from videoid_evaluate import figures, pictures
from videoid_evaluate.figures import Ended
from videoid_evaluate.rates import Rate
from videoid_evaluate.suggest import Suggestion
from videoid_evaluate.summary import Json

TEMPLATES = pathlib.Path(__file__).parent / "templates"


@dataclasses.dataclass(frozen=True)
class Part:
    """One kind of decision with its plots as SVG."""

    found: figures.Comparisons
    histogram: str
    det: str


def percent(share: float | None) -> str:
    return "–" if share is None else f"{100 * share:.3g} %"


def with_limits(rate: Rate) -> str:
    if rate.trials == 0:
        return "–"
    return f"{rate.errors} of {rate.trials}: {percent(rate.share)} ({percent(rate.lower)} to {percent(rate.upper)})"


def write(path: pathlib.Path, ended: Ended, summary: Json, suggestion: Suggestion | None = None) -> None:
    loader = jinja2.FileSystemLoader(TEMPLATES)
    environment = jinja2.Environment(loader=loader, autoescape=True, undefined=jinja2.StrictUndefined)
    environment.filters.update(percent=percent, with_limits=with_limits)
    cohorts = {
        column: {value: (figures.false_rejections(part), figures.false_acceptances(part)) for value, part in values.items()}
        for column, values in figures.by_cohort(ended).items()
    }
    path.write_text(
        environment.get_template("report.html").render(
            summary=summary,
            rejections=figures.false_rejections(ended),
            acceptances=figures.false_acceptances(ended),
            parts=[part for part in map(lambda kind: _part(ended, kind), figures.KINDS) if part is not None],
            refusals=figures.refusals(ended),
            times=figures.times(ended),
            cohorts=cohorts,
            suggestion=suggestion,
        ),
        encoding="utf-8",
    )


def _part(ended: Ended, kind: figures.Kind) -> Part | None:
    found = figures.comparisons(ended, kind)
    if found is None:
        return None
    det = ""
    if found.mated and found.other:
        points = figures.trade_off(found.mated, found.other, kind.less_passes)
        det = pictures.trade_off(points, (found.false_match.share or 0.0, found.false_non_match.share or 0.0))
    return Part(found, pictures.histogram(found.mated, found.other, found.threshold, kind.meaning), det)
