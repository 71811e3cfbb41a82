"""Tables of texts, for terminals and notebooks."""

from __future__ import annotations

import html
import math
from collections.abc import Sequence
from typing import Any


def shown(value: Any) -> str:
    """A value in a cell: numbers in six digits, no value as nothing."""
    if value is None:
        return ""
    if isinstance(value, complex):
        return "" if math.isnan(value.real) else f"{value:.6g}"
    if isinstance(value, float):
        return "" if math.isnan(value) else f"{value:.6g}"
    text = str(value)
    return "" if text == "NaT" else _visible(text)


def text_table(headings: Sequence[str], rows: Sequence[Sequence[Any]], *, numbers: Sequence[bool]) -> str:
    """Columns side by side, those of numbers to the right."""
    cells = [[_cut(_visible(heading)) for heading in headings]]
    cells += [[_cut(shown(value)) for value in row] for row in rows]
    widths = [max(len(row[i]) for row in cells) for i in range(len(headings))]
    lines = []
    for row in cells:
        columns = zip(row, widths, numbers)
        lines.append("  ".join(c.rjust(w) if n else c.ljust(w) for c, w, n in columns).rstrip())
    return "\n".join(lines)


def html_table(
    headings: Sequence[str], rows: Sequence[Sequence[Any]], *, numbers: Sequence[bool], note: str = ""
) -> str:
    """The same as a table of a notebook; every text is escaped."""
    sides = ["right" if number else "left" for number in numbers]

    def line(tag: str, texts: Sequence[str]) -> str:
        cells = (f'<{tag} style="text-align:{s}">{html.escape(t)}</{tag}>' for t, s in zip(texts, sides))
        return f"<tr>{''.join(cells)}</tr>"

    body = "".join(line("td", [shown(value) for value in row]) for row in rows)
    table = f"<table><thead>{line('th', headings)}</thead><tbody>{body}</tbody></table>"
    return f"<div>{table}<p>{html.escape(note)}</p></div>" if note else f"<div>{table}</div>"


def _cut(text: str, width: int = 60) -> str:
    return text if len(text) <= width else text[: width - 3] + "..."


def _visible(text: str) -> str:
    """The text on one line; what is not printable, such as a terminal's escapes, as an escape."""
    return "".join(c if c.isprintable() else c.encode("unicode_escape").decode() for c in text)
