"""Pictures with matplotlib. Imported only where one is asked for."""

from __future__ import annotations

import warnings
from collections.abc import Sequence
from typing import Any, Optional

import matplotlib
import matplotlib.pyplot as plt

from . import _core

_DASHES = ("-", (0, (6, 2)), (0, (2, 2)), (0, (8, 2, 2, 2)), (0, (8, 2, 2, 2, 2, 2)))


def draw(connection: str, keywords: Sequence[str], query: str, ax: Optional[Any], logx: bool, logy: bool) -> Any:
    picture = _core.picture(connection, keywords, query, logx, logy)
    if ax is None:
        _, ax = plt.subplots(layout="constrained")
    _draw_series(ax, picture, logx)
    _label(ax.xaxis, ax.set_xlabel, picture["x"])
    _label(ax.yaxis, ax.set_ylabel, picture["y"])
    if logx:
        ax.set_xscale("log")
    if logy:
        ax.set_yscale("log")
    if any(label for label, *_ in picture["series"]):
        ax.legend(title=picture["legend_title"] or None, fontsize="small")
    for note in _notes(picture, keywords):
        warnings.warn(note, stacklevel=3)
    return ax


def _draw_series(ax: Any, picture: dict[str, Any], logx: bool) -> None:
    palette = matplotlib.colormaps["viridis"]
    for label, x, y, colour, dashes in picture["series"]:
        # The lightest end of the palette is hard to see on white.
        style = {"color": palette(0.9 * colour), "label": _plain(label) if label else "_nolegend_"}
        if picture["style"] == "bars":
            half = picture["half_width"]
            left, width = (x / half, x * half - x / half) if logx else (x - half, 2 * half)
            ax.bar(left, y, width=width, align="edge", edgecolor="white", linewidth=0.5, **style)
        elif picture["style"] == "points":
            ax.plot(x, y, linestyle="none", marker="o", markersize=3, **style)
        else:
            ax.plot(x, y, linestyle=_DASHES[dashes % len(_DASHES)], **style)


def _label(axis: Any, set_title: Any, description: dict[str, Any]) -> None:
    set_title(_plain(description["title"]))
    if description["labels"]:
        labels = [_plain(label) for label in description["labels"]]
        axis.set_ticks(range(len(labels)), labels=labels)
    else:
        # Currents are told in powers of ten, and not by zeros.
        axis.get_major_formatter().set_powerlimits((-3, 4))


def _plain(text: str) -> str:
    """A text in which matplotlib finds no formula: names of keys and columns begin with "$"."""
    return text.replace("$", r"\$")


def _notes(picture: dict[str, Any], keywords: Sequence[str]) -> list[str]:
    notes = []
    if picture["setups_left_out"]:
        notes.append(f"{_counted(picture['setups_left_out'], 'setup')} left out, without a sweep of {keywords[0]}.")
    if picture["points_left_out"]:
        points = _counted(picture["points_left_out"], "point")
        notes.append(f"{points} left out: a logarithmic axis shows only what is above 0.")
    if picture["points_shown"] < picture["points"]:
        notes.append(
            f"{picture['points_shown']} of {picture['points']} points drawn: of each short stretch the first, "
            "lowest, highest and last."
        )
    if picture["legend_note"]:
        notes.append(picture["legend_note"])
    if not picture["series"]:
        notes.append("Nothing is found to draw; explain() with the same query tells which term leaves nothing.")
    return notes


def _counted(count: int, thing: str) -> str:
    return f"{count} {thing}" if count == 1 else f"{count} {thing}s"
