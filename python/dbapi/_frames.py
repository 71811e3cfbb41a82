"""From tables to DataFrames. Imported only where pandas is asked for."""

from __future__ import annotations

from typing import Any

import numpy as np
import pandas as pd

from . import _core
from ._table import Table

# Texts repeat enough for a Categorical where there are at least so many rows for each.
_ROWS_PER_TEXT = 2
_NO_ID = np.iinfo(np.int64).min


def frame_of(table: Table, categories: bool) -> Any:
    names = _unique([column.keyword for column in table.columns])
    data = {name: _series(table, place, categories) for place, name in enumerate(names)}
    return pd.DataFrame(data, index=pd.RangeIndex(len(table)), copy=False)


def _series(table: Table, place: int, categories: bool) -> Any:
    column: _core.Column = table.columns[place]
    if column.kind == "text" and categories:
        dictionary = column.dictionary()
        if len(dictionary) * _ROWS_PER_TEXT <= len(table):
            return pd.Categorical.from_codes(column.raw(), categories=np.array(dictionary, dtype=object))
    if column.kind == "integer" and column.missing:
        raw = column.raw()
        missing = raw == _NO_ID
        return pd.arrays.IntegerArray(np.where(missing, 0, raw), missing)
    array = table[place]
    if array.ndim > 1:
        cells = np.empty(len(table), dtype=object)
        cells[:] = list(array)
        return cells
    return array.copy()


def _unique(names: list[str]) -> list[str]:
    """A keyword that was asked for twice has its number behind it."""
    seen: dict[str, int] = {}
    unique = []
    for name in names:
        seen[name] = seen.get(name, 0) + 1
        unique.append(name if seen[name] == 1 else f"{name} ({seen[name]})")
    return unique
