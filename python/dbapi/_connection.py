"""Connections to databases of measurements."""

from __future__ import annotations

import weakref
from collections.abc import Iterable, Mapping, Sequence
from typing import TYPE_CHECKING, Any, Literal, NoReturn, Optional, Union

from . import _core
from ._batches import Batches
from ._closing import Closing
from ._curves import Curves
from ._errors import ArgumentError, OperationalError
from ._import import ImportResult, Path, import_files
from ._progress import Progress
from ._read_arguments import read_arguments
from ._records import Explanation, Key, Keys, Record, Setup, read_record, read_setup
from ._table import Table, refuse_pickling
from ._write import Measurement, Written, write_measurements

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

__all__ = ["Connection"]

Order = Optional[Literal["sorted", "stored"]]


class Connection(Closing):
    """A database of measurements; `connect` makes one.

    Keywords name keys ("W", "IND.VG") or are builtin keynames ("$DEVNAME"); a query string such as
    "W=[5u,10u];L<=0.15u" selects records, and an empty one all. Only the latest measurements count,
    unless the query begins with "ALLDATA:".

    Threads may share connections. Calls wait for each other, also those of different connections,
    as the library keeps one state in a process; batches of different reads run side by side. All
    let other threads of Python run meanwhile, and Ctrl-C ends long reads.

    Attributes
    ----------
    name : str
        The stored name or path that it was made with.
    """

    def __init__(self, name: str, target: str) -> None:
        self.name = name
        self._target = target
        self._is_closed = False
        self._readers: weakref.WeakSet[Batches] = weakref.WeakSet()

    def values(
        self,
        *keywords: str,
        query: str = "",
        order: Order = "sorted",
        distinct: bool = False,
        limit: Optional[int] = None,
        all_data: bool = False,
        ids: bool = False,
        max_bytes: Optional[int] = None,
        progress: Progress = None,
    ) -> Table:
        """Read the values of keywords, side by side.

        A row is one record of the lowest table among the keywords with its parents or, when one of
        them is a key of setups, one point. A row without any value is left out.

        Parameters
        ----------
        *keywords : str
            What is read, in the order of the columns.
        query : str
            Which records count.
        order : {"sorted", "stored", None}
            Ascending by all keywords, in their order; by the ids of records, and points as they
            stand in their sweep; or as it comes fastest.
        distinct : bool
            Each row once.
        limit : int
            The largest number of rows.
        all_data : bool
            Superseded measurements count too, as with "ALLDATA:" in the query.
        ids : bool
            A last column "id": that of each row's record, of a point's setup.
        max_bytes : int
            Refuse, before the first row is read, what may need more memory.
        progress : bool or callable
            True shows a bar; a callable is given the rows so far and how many there can be at most,
            and ends the read by returning False. Costs a statement that counts the rows.

        Returns
        -------
        Table

        Raises
        ------
        QueryError
            For a keyword or query that cannot be right, with its place and suggestions.
        ArgumentError, OperationalError, DataError, OutOfMemory, Cancelled
            See there.

        Examples
        --------
        >>> sweep = "$DEVNAME=nfet_01v8_w7u_l0p15u_m1;$SUBSITE=8434;$DEVID=10_11;IND.VD=0.1;IND.VB=0"
        >>> t = lab.values("IND.VG", "OUTD.ID", query=sweep, order="stored")
        >>> len(t), t["OUTD.ID"].dtype
        (43, dtype('float64'))
        >>> lab.values("Ws")
        Traceback (most recent call last):
            ...
        dbapi.QueryError: Failed to resolve keyword "Ws" to a valid database key.
        No matching key could be found in the database for the given keyword.
          Ws
          ^^
        Did you mean VS, W or vs?
        """
        arguments = read_arguments(order, distinct, limit, all_data, ids, max_bytes, progress)
        return Table(*_core.read_columns(self._open(), _some(keywords), query, arguments))

    def batches(
        self,
        *keywords: str,
        rows: int = 1_000_000,
        query: str = "",
        order: Order = "stored",
        distinct: bool = False,
        limit: Optional[int] = None,
        all_data: bool = False,
        ids: bool = False,
        max_bytes: Optional[int] = None,
        progress: Progress = None,
    ) -> Batches:
        """Read the same as `values` in batches of so many `rows`, the last one fewer.

        In stored order, or in none, what is in memory does not grow with the number of rows; sorted
        and distinct rows are read and held as a whole by the first batch.

        Returns
        -------
        Batches
            An iterator of `Table`, and a context manager. What fails while a batch is read, such as
            a file that was replaced, is raised there.

        Examples
        --------
        >>> with lab.batches("IND.VG", "OUTD.ID", rows=10_000) as batches:
        ...     sum(len(batch) for batch in batches)
        65564
        """
        arguments = read_arguments(order, distinct, limit, all_data, ids, max_bytes, progress)
        if not isinstance(rows, int) or rows < 1:
            raise ArgumentError("The rows of a batch are an int from 1 on.")
        batches = Batches(_core.BatchReader(self._open(), _some(keywords), query, rows, arguments))
        self._readers.add(batches)
        return batches

    def curves(self, *keywords: str, query: str = "") -> Curves:
        """Read the curves that the last keyword draws over the first.

        Over a key of setups a curve is one sweep: points of one setup that agree in the keywords
        between the two and in the setup's other inputs, in their stored order. Over other keywords
        there is one for each combination of those between.

        Examples
        --------
        >>> family = lab.curves("IND.VG", "OUTD.ID", query="$DEVNAME=nfet_01v8_w0p36u_l0p15u_m1")
        >>> len(family), family[0].parameters["VD"], family[0].y.max()
        (6, 0.1, 4.1243e-05)
        """
        return Curves(_core.curves(self._open(), _some(keywords), query))

    def plot(
        self,
        *keywords: str,
        query: str = "",
        ax: Any = None,
        logx: bool = False,
        logy: bool = False,
    ) -> Any:
        """Draw the last keyword over the first, or how one is distributed; needs matplotlib.

        The curves, their order and their names are those of ``dbapi values --plot``. What is left
        out is told by a warning.

        Parameters
        ----------
        ax : matplotlib.axes.Axes
            Where to draw; a new figure is made where it is None.
        logx, logy : bool
            Logarithmic axes. Negative numbers then lose their sign along y.

        Returns
        -------
        matplotlib.axes.Axes
        """
        from ._plot import draw

        return draw(self._open(), _some(keywords), query, ax, logx, logy)

    def ids(self, table: str, query: str = "") -> NDArray[np.int64]:
        """Give the ids of the selected records of a table, ascending.

        Examples
        --------
        >>> lab.ids("device", "W=[5u,10u];L<=0.15u").size
        21
        """
        return _core.ids(self._open(), table, query)

    def keys(self, table: str, query: str = "") -> Keys:
        """List the keys that the selected records of a table have.

        Examples
        --------
        >>> lab.keys("device", "L<=0.15u")
        name     category    datatype  records  points  minimum  maximum
        L        PHYSICAL    DOUBLE         64          1.5e-07  1.5e-07
        M        PHYSICAL    DOUBLE         64                1     2280
        W        PHYSICAL    DOUBLE         64          3.6e-07  2.5e-05
        process  TECHNOLOGY  TEXT           64
        """
        return Keys(Key(*key) for key in _core.keys(self._open(), table, query))

    def record(self, table: str, id: int) -> Record:
        """Read all that one record holds, be it superseded or not.

        Raises
        ------
        ArgumentError
            When there is no such record.

        Examples
        --------
        >>> lab.record("device", 17)["$DEVNAME"]
        'nfet_01v8_w0p39u_l0p15u_m1'
        """
        return read_record(self._open(), table, id)

    def setup(self, id: int) -> Setup:
        """Read one sweep, be it superseded or not.

        Examples
        --------
        >>> lab.setup(42).points.keys()
        ['VB', 'VD', 'VG', 'IB', 'ID', 'IG']
        """
        return read_setup(self._open(), id)

    def explain(self, *keywords: str, query: str = "") -> Explanation:
        """Run a read and tell how it was understood and what it did.

        Examples
        --------
        >>> print(lab.explain("$DEVNAME", query="W=5u;L<=0.15u").as_dict()["suggestions"][0])
        Stored under W: 17 values from 3.6e-07 to 40; next to 5e-06 stand 3e-06 and 7e-06.
        """
        if not keywords and not query:
            raise ArgumentError("There is nothing to explain: give keywords, a query, or both.")
        return Explanation(*_core.explanation(self._open(), keywords, query))

    def import_files(
        self,
        paths: Union[Path, Iterable[Path]],
        *,
        allow_anonymous: bool = False,
        progress: Progress = None,
    ) -> ImportResult:
        """Import files of annotated CSV: all of them, in one transaction, or none.

        Parameters
        ----------
        paths : path or iterable of paths
            A file, or a folder for all "*.csv" in it.
        allow_anonymous : bool
            Take files that name no device, too.
        progress : bool or callable
            True shows a bar; a callable is given the bytes that were read, and those of all files.

        Returns
        -------
        ImportResult
            How much was stored, which keys are new, and which files superseded earlier sweeps.

        Raises
        ------
        DataError
            When files have faults, with these in `faults`; nothing is stored then.

        Notes
        -----
        An import is not interrupted: Ctrl-C is raised when it is done.

        Examples
        --------
        >>> new = dbapi.connect(sqlite="new.db", create=True)
        >>> new.import_files("examples/measurements").setups
        243
        """
        return import_files(self._open(), paths, allow_anonymous, progress)

    def write(
        self,
        data: Any = None,
        facts: Mapping[str, Any] = {},
        *,
        headers: Mapping[str, str] = {},
        allow_anonymous: bool = False,
    ) -> Written:
        """Write a new measurement.

        Die, device and routine are used where they are there already, and added otherwise. A
        measurement of the same device, routine, temperature and data origin, condition, $SETNAME
        and $SETPATH supersedes the earlier one: queries find the new one only, unless they begin
        with "ALLDATA:". Nothing is ever overwritten.

        Parameters
        ----------
        data : mapping, DataFrame or Table
            The sweep: columns of equal length by keywords of setups, as in the header row of a file
            ("IND.VG" and "OUTD.ID" for numbers, "INS.step" for texts, "OUTX.s11" for complex
            numbers, "OUTM.y" for matrices). NaN and None are no value. None: the measurement has
            no sweep, but its facts.
        facts : mapping
            What the measurement belongs to, and its keys, as the lines "# KEYWORD = VALUE" of a
            file give them: "$DEVNAME", "$TEMP", "Key(VTH,measurement,DOUBLE)". Values are texts,
            numbers, complex numbers or matrices. A device has to be named.
        headers : mapping
            Texts that are stored with columns, such as units: ``{"OUTD.ID": "A"}``.
        allow_anonymous : bool
            Whether no device has to be named.

        Returns
        -------
        Written
            The ids of the new records, what they supersede, and which keys are new.

        Raises
        ------
        ArgumentError
            For a keyword or fact that cannot be stored.
        DataError
            For data that cannot, such as columns of different lengths or infinite numbers.

        Examples
        --------
        >>> new = dbapi.connect(sqlite="written.db", create=True)
        >>> facts = {"$DEVNAME": "nmos1", "$SETNAME": "IDVG", "Key(W,device,DOUBLE,PHYSICAL)": 7e-6}
        >>> sweep = {"IND.VG": [0.0, 0.6, 1.2], "OUTD.ID": [1e-12, 2e-6, 3e-4]}
        >>> first = new.write(sweep, facts)
        >>> again = new.write(sweep, facts)
        >>> again.superseded == ((first.measurement, first.setup),)
        True
        >>> new.values("W", "IND.VG", "OUTD.ID", order="stored")
            W  IND.VG  OUTD.ID
        7e-06       0    1e-12
        7e-06     0.6    2e-06
        7e-06     1.2   0.0003
        [3 rows x 3 columns]
        """
        one = Measurement(data, facts, headers)
        return write_measurements(self._open(), [one], allow_anonymous)[0]

    def write_many(
        self, measurements: Iterable[Measurement], *, allow_anonymous: bool = False
    ) -> list[Written]:
        """Write several measurements in one transaction, as one catalogue entry.

        Each is a `Measurement` of what `write` takes. All are written, or none.
        """
        return write_measurements(self._open(), measurements, allow_anonymous)

    def close(self) -> None:
        """Close the connection and end its batches. Tables and arrays stay valid."""
        if self._is_closed:
            return
        self._is_closed = True
        for batches in list(self._readers):
            batches.close()
        _core.release(self._target)

    def __repr__(self) -> str:
        return f"<dbapi.Connection {self.name!r}{' (closed)' if self._is_closed else ''}>"

    def __reduce__(self) -> NoReturn:
        refuse_pickling("A connection", f"Let each process call dbapi.connect({self.name!r}).")

    def _open(self) -> str:
        if self._is_closed:
            raise OperationalError(f'The connection "{self.name}" is closed. dbapi.connect() opens it again.')
        return self._target


def _some(keywords: Sequence[str]) -> Sequence[str]:
    if not keywords:
        raise ArgumentError('Give a keyword at least, such as "$DEVNAME". keys("device") lists those of devices.')
    return keywords
