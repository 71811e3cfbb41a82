"""Results: columns as NumPy arrays."""

from __future__ import annotations

from collections.abc import Iterator, Sequence
from typing import TYPE_CHECKING, Any, NoReturn, Union

from . import _core
from ._text_table import html_table, text_table

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

__all__ = ["Column", "Table"]

Column = _core.Column

_SHOWN_ROWS = 10
_NUMBERS = ("number", "integer", "complex")


def refuse_pickling(what: str, instead: str) -> NoReturn:
    raise TypeError(f"{what} cannot be pickled or copied to another process. {instead}")


class Table:
    """Columns side by side, one value of each in every row.

    ``table["OUTD.ID"]`` is a NumPy array over the library's own memory: nothing is copied, it is
    read-only, and it stays valid when table and connection are gone. ``len(table)`` is the number
    of rows; iteration gives the keywords, as that of a DataFrame does.

    ===================  =========================  ===========================================
    a keyword of         is an array of             no value
    ===================  =========================  ===========================================
    numbers              float64                    NaN
    ids                  int64                      makes the array one of float64, with NaN
    complex numbers      complex128                 NaN
    matrices             complex128, (rows, n, m)   NaN; shapes that differ make an array of
                                                    objects, with None
    texts                object, of ``str``         None
    times                datetime64[us], UTC        NaT
    ===================  =========================  ===========================================

    Threads may share a table.

    Examples
    --------
    >>> t = lab.values("$DEVNAME", "W", "L", query="W=[5u,10u];L<=0.15u", distinct=True)
    >>> t
    $DEVNAME                     W        L
    nfet_01v8_w7u_l0p15u_m1  7e-06  1.5e-07
    pfet_01v8_w7u_l0p15u_m1  7e-06  1.5e-07
    [2 rows x 3 columns]
    >>> t["W"]
    array([7.e-06, 7.e-06])
    >>> t.column("W").table
    'device'
    """

    __slots__ = ("_arrays", "_columns", "_rows", "__weakref__")

    def __init__(self, rows: int, columns: Sequence[Column]) -> None:
        self._rows = rows
        self._columns = tuple(columns)
        self._arrays: dict[int, NDArray[Any]] = {}

    def __len__(self) -> int:
        return self._rows

    def __bool__(self) -> bool:
        return self._rows > 0

    def __iter__(self) -> Iterator[str]:
        return iter(self.keys())

    def __contains__(self, keyword: object) -> bool:
        return keyword in self.keys()

    def __getitem__(self, keyword: Union[str, int]) -> NDArray[Any]:
        place = self._place(keyword)
        array = self._arrays.get(place)
        if array is None:
            array = self._arrays.setdefault(place, self._columns[place].array())
        return array

    def keys(self) -> list[str]:
        """The keywords, in their order."""
        return [column.keyword for column in self._columns]

    @property
    def columns(self) -> tuple[Column, ...]:
        """The columns, with what their keywords stand for."""
        return self._columns

    def column(self, keyword: Union[str, int]) -> Column:
        """The column of a keyword or place.

        Returns
        -------
        Column
            With `keyword`, `name`, `table`, `category`, `datatype` and `unit` (empty where it is
            not known) of the key, `kind` and the number of rows without a value (`missing`).
        """
        return self._columns[self._place(keyword)]

    def codes(self, keyword: Union[str, int]) -> NDArray[np.int32]:
        """Of a column of texts, the place of each row's text in `dictionary`; -1 is no value."""
        return self._texts(keyword).raw()

    def dictionary(self, keyword: Union[str, int]) -> list[str]:
        """The texts of a column, each once."""
        return self._texts(keyword).dictionary()

    def to_pandas(self, *, categories: bool = True) -> Any:
        """The table as a DataFrame; needs pandas.

        Parameters
        ----------
        categories : bool
            Whether texts that repeat become a ``Categorical``, which takes little memory and is
            grouped fast. Otherwise they are objects.

        Returns
        -------
        pandas.DataFrame
            Ids of which some are missing are ``Int64``, times are in UTC without a zone. Numbers
            are copied, as DataFrames may be written to.
        """
        from ._frames import frame_of

        return frame_of(self, categories)

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """The table as an Arrow C stream (PyCapsule interface), which shares its memory.

        DuckDB, Polars, pandas and pyarrow call it. `requested_schema` is not followed, which the
        interface allows.
        """
        return _core.table_stream(list(self._columns), self._rows)

    def __repr__(self) -> str:
        headings, rows, numbers = self._excerpt()
        columns = len(self._columns)
        size = f"[{self._rows} {_counted('row', self._rows)} x {columns} {_counted('column', columns)}]"
        return f"{text_table(headings, rows, numbers=numbers)}\n{size}" if self._rows else f"Empty: {', '.join(headings)}\n{size}"

    def _repr_html_(self) -> str:
        headings, rows, numbers = self._excerpt()
        note = f"{self._rows} {_counted('row', self._rows)} × {len(headings)} {_counted('column', len(headings))}"
        return html_table(headings, rows, numbers=numbers, note=note)

    def __reduce__(self) -> NoReturn:
        refuse_pickling("A table, whose memory is the library's,", "Pickle table.to_pandas() instead.")

    def _excerpt(self) -> tuple[list[str], list[list[Any]], list[bool]]:
        """Headings, the first and last rows, and which columns hold numbers."""
        half = _SHOWN_ROWS // 2
        isCut = self._rows > _SHOWN_ROWS
        places = [*range(half), *range(self._rows - half, self._rows)] if isCut else list(range(self._rows))
        shown = [self[i][places].tolist() if self._columns[i].kind != "time" else self[i][places] for i in range(len(self._columns))]
        rows: list[list[Any]] = [list(row) for row in zip(*shown)]
        if isCut:
            rows.insert(half, ["..."] * len(self._columns))
        return self.keys(), rows, [column.kind in _NUMBERS for column in self._columns]

    def _place(self, keyword: Union[str, int]) -> int:
        if isinstance(keyword, str):
            for place, column in enumerate(self._columns):
                if column.keyword == keyword:
                    return place
            raise KeyError(f"{keyword!r} was not read; the table has {', '.join(self.keys()) or 'no column'}")
        try:
            return range(len(self._columns))[keyword]
        except IndexError:
            raise IndexError(f"there is no column {keyword}; the table has {len(self._columns)}") from None

    def _texts(self, keyword: Union[str, int]) -> Column:
        column = self.column(keyword)
        if column.kind != "text":
            raise TypeError(f"{column.keyword} holds no texts, which alone have codes; its kind is {column.kind}")
        return column


def _counted(word: str, count: int) -> str:
    return word if count == 1 else word + "s"
