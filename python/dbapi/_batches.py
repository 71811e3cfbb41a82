"""Results larger than memory."""

from __future__ import annotations

from typing import NoReturn

from . import _core
from ._closing import Closing
from ._table import Table, refuse_pickling

__all__ = ["Batches"]


class Batches(Closing):
    """The rows of a read, a `Table` at a time; what `Connection.batches` gives.

    Iterate over it once. It holds a connection and a read transaction of its own, so that all
    batches show one state of the database: read it to its end, or close it, which ``with`` does.
    Threads may share it, each batch going to one of them; different ones run side by side.
    """

    __slots__ = ("_reader", "__weakref__")

    def __init__(self, reader: _core.BatchReader) -> None:
        self._reader = reader

    def __iter__(self) -> Batches:
        return self

    def __next__(self) -> Table:
        rows, columns = self._reader.next()
        if rows == 0:
            raise StopIteration
        return Table(rows, columns)

    def close(self) -> None:
        """End the read. May be called twice, and while another thread reads."""
        self._reader.close()

    @property
    def closed(self) -> bool:
        """Whether the read was ended, or is about to be."""
        return self._reader.closed

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """The batches that are left, as an Arrow C stream (PyCapsule interface).

        The stream takes the read over; these batches are closed by it. `requested_schema` is not
        followed, which the interface allows.
        """
        return self._reader.stream()

    def __reduce__(self) -> NoReturn:
        refuse_pickling("Batches of a read", "Let each process connect and read for itself.")
