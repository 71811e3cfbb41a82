"""Records and keys, one by one."""

from __future__ import annotations

import json
from collections.abc import Iterator, Mapping
from typing import Any, NamedTuple, Optional

from . import _core
from ._errors import ArgumentError
from ._table import Table
from ._text_table import html_table, text_table

__all__ = ["Explanation", "Key", "Keys", "Record", "Setup"]


class Key(NamedTuple):
    """A key that records have: how many, and between which numbers.

    `points` is None for other tables than setup, `minimum` and `maximum` for keys that hold no real
    numbers.
    """

    name: str
    category: str
    datatype: str
    records: int
    points: Optional[int]
    minimum: Optional[float]
    maximum: Optional[float]


class Keys(tuple[Key, ...]):
    """The keys of a table, by name; what `Connection.keys` gives."""

    __slots__ = ()

    def __repr__(self) -> str:
        return text_table(Key._fields, self, numbers=_KEY_NUMBERS) if self else "no keys"

    def _repr_html_(self) -> str:
        return html_table(Key._fields, self, numbers=_KEY_NUMBERS)


_KEY_NUMBERS = (False, False, False, True, True, True, True)


class Record(Mapping[str, Any]):
    """What a record holds, by name: its fixed columns as builtin keynames, and its keys.

    Values are float, int, complex, str, numpy.datetime64 (UTC) or, for a matrix, an array; None is
    no value. Two keys of one name stand under their whole keywords.

    Attributes
    ----------
    table : str
    id : int
    """

    def __init__(self, table: str, id: int, values: dict[str, Any]) -> None:
        self.table = table
        self.id = id
        self._values = values

    def __getitem__(self, name: str) -> Any:
        return self._values[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._values)

    def __len__(self) -> int:
        return len(self._values)

    def __repr__(self) -> str:
        return f"{self.table} {self.id}\n" + text_table(("name", "value"), list(self.items()), numbers=(False, False))

    def _repr_html_(self) -> str:
        return html_table(("name", "value"), list(self.items()), numbers=(False, False), note=f"{self.table} {self.id}")


class Setup:
    """One sweep.

    Attributes
    ----------
    id : int
    record : Record
        The setup's fixed columns.
    points : Table
        The columns of the sweep, inputs first, in their stored order; by the names of their keys.
    headers : dict
        The header that came with each column, by the same names; empty where there was none.
    """

    def __init__(self, record: Record, points: Table, headers: dict[str, str]) -> None:
        self.id = record.id
        self.record = record
        self.points = points
        self.headers = headers

    def __repr__(self) -> str:
        return f"{self.record!r}\n\n{self.points!r}"

    def _repr_html_(self) -> str:
        return self.record._repr_html_() + self.points._repr_html_()


class Explanation:
    """How a read was understood and run. Printed, it is what ``dbapi explain`` shows.

    Attributes
    ----------
    text : str
    """

    def __init__(self, text: str, json_text: str) -> None:
        self.text = text
        self._json = json_text

    def as_dict(self) -> dict[str, Any]:
        """All of it as data: ``dbapi explain --format json``. Times are in seconds."""
        found: dict[str, Any] = json.loads(self._json)
        return found

    def __repr__(self) -> str:
        return self.text


def read_record(connection: str, table: str, id: int) -> Record:
    rows, columns = _core.record(connection, table, id)
    if rows == 0:
        raise ArgumentError(f"There is no {table} with the id {id}. lab.ids({table!r}) gives those that there are.")
    row = Table(rows, columns)
    names = [column.keyword if column.keyword.startswith("$") else column.name for column in columns]
    values = {}
    for place, column in enumerate(columns):
        name = names[place] if names.count(names[place]) == 1 else column.keyword
        values[name] = _value(row, place, column)
    return Record(table, id, values)


def read_setup(connection: str, id: int) -> Setup:
    record = read_record(connection, "setup", id)
    rows, columns, headers = _core.setup(connection, id)
    return Setup(record, Table(rows, columns), {column.name: header for column, header in zip(columns, headers)})


def _value(row: Table, place: int, column: _core.Column) -> Any:
    if column.missing:
        return None
    value = row[place][0]
    return value if column.kind in ("matrix", "time", "text") else value.item()
