"""The figures as a page for people: one file, which reaches for nothing outside."""
from __future__ import annotations

import dataclasses
import pathlib

import jinja2

from videoid_evaluate import faces, figures, pictures
from videoid_evaluate.figures import Ended
from videoid_evaluate.rates import Rate
from videoid_evaluate.suggest import Suggestion
from videoid_evaluate.summary import Json

ANY_NAME = "backslashreplace"
"""How names of files that are no Unicode are written: readable, and in JSON the same name again."""
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


def _environment() -> jinja2.Environment:
    loader = jinja2.FileSystemLoader(TEMPLATES)
    environment = jinja2.Environment(loader=loader, autoescape=True, undefined=jinja2.StrictUndefined)
    environment.filters.update(percent=percent, with_limits=with_limits)
    return environment


def write_faces(path: pathlib.Path, photographs: faces.Photographs, found: figures.Comparisons) -> None:
    template = _environment().get_template("faces.html")
    part = _plotted(found)
    page = template.render(photographs=photographs, failures=faces.failures(photographs), part=part)
    path.write_text(page, encoding="utf-8", errors=ANY_NAME)


def write(path: pathlib.Path, ended: Ended, summary: Json, suggestion: Suggestion | None = None) -> None:
    cohorts = {
        column: {value: (figures.false_rejections(part), figures.false_acceptances(part)) for value, part in values.items()}
        for column, values in figures.by_cohort(ended).items()
    }
    path.write_text(
        _environment().get_template("report.html").render(
            summary=summary,
            rejections=figures.false_rejections(ended),
            acceptances=figures.false_acceptances(ended),
            parts=[_plotted(found) for kind in figures.KINDS if (found := figures.comparisons(ended, kind)) is not None],
            refusals=figures.refusals(ended),
            times=figures.times(ended),
            cohorts=cohorts,
            suggestion=suggestion,
        ),
        encoding="utf-8",
        errors=ANY_NAME,
    )


def _plotted(found: figures.Comparisons) -> Part:
    det = ""
    if found.mated and found.other:
        points = figures.trade_off(found.mated, found.other, found.kind.less_passes)
        det = pictures.trade_off(points, (found.false_match.share or 0.0, found.false_non_match.share or 0.0))
    return Part(found, pictures.histogram(found.mated, found.other, found.threshold, found.kind.meaning), det)
