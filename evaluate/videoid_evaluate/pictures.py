"""Plots as SVG, the same bytes for the same data."""
from __future__ import annotations

import io
from collections.abc import Sequence

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams.update({"svg.hashsalt": "videoid", "svg.fonttype": "none", "font.size": 9})

import numpy as np  # noqa: E402
from matplotlib import pyplot  # noqa: E402
from scipy import stats  # noqa: E402

MATED, OTHER = "#1b6ca8", "#b3541e"
MOST_POINTS = 400
LEAST_RATE = 1e-5


def histogram(mated: Sequence[float], other: Sequence[float], threshold: float | None, label: str) -> str:
    """How the values of both lie about the threshold."""
    figure, axes = pyplot.subplots(figsize=(5.2, 2.6), layout="constrained")
    values = [*mated, *other]
    bins = np.linspace(min(values), max(values) + 1e-9, 40)
    for part, color, name in ((mated, MATED, "belong together"), (other, OTHER, "do not")):
        if part:
            weights = np.full(len(part), 1 / len(part))
            axes.hist(part, bins=bins, weights=weights, color=color, alpha=0.65, label=f"{name} ({len(part)})")
    if threshold is not None:
        axes.axvline(threshold, color="black", linestyle="--", linewidth=1, label=f"threshold {threshold:g}")
    axes.set_xlabel(label)
    axes.set_ylabel("share")
    axes.legend(frameon=False)
    return _svg(figure)


def trade_off(points: Sequence[tuple[float, float, float]], now: tuple[float, float] | None) -> str:
    """DET: both error rates at every threshold, on axes on which normal distributions are straight lines."""
    figure, axes = pyplot.subplots(figsize=(4.2, 4.0), layout="constrained")
    step = max(1, len(points) // MOST_POINTS)
    axes.plot(*(_deviate([point[i] for point in points[::step]]) for i in (1, 2)), color=MATED)
    if now is not None:
        axes.plot(*(_deviate([one]) for one in now), "o", color=OTHER, label="at the threshold in use")
        axes.legend(frameon=False)
    ticks = [1e-4, 1e-2, 0.1, 0.5, 0.9]
    for axis, name in ((axes.xaxis, "false match rate"), (axes.yaxis, "false non-match rate")):
        axis.set_ticks(_deviate(ticks), [f"{100 * one:g} %" for one in ticks])
        axis.set_label_text(name)
    axes.grid(linewidth=0.4)
    return _svg(figure)


def _deviate(shares: Sequence[float]) -> list[float]:
    return [float(one) for one in stats.norm.ppf(np.clip(shares, LEAST_RATE, 1 - LEAST_RATE))]


def _svg(figure: pyplot.Figure) -> str:
    file = io.StringIO()
    figure.savefig(file, format="svg", metadata={"Date": None, "Creator": None})
    pyplot.close(figure)
    whole = file.getvalue()
    return whole[whole.index("<svg") :]
