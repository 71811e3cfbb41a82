"""The exceptions of the package: one family under `Error`."""

from __future__ import annotations

__all__ = [
    "ArgumentError",
    "Cancelled",
    "DataError",
    "Error",
    "OperationalError",
    "OutOfMemory",
    "QueryError",
]


class Error(Exception):
    """Whatever the library cannot do; all other exceptions of the package are of this class."""

    __module__ = "dbapi"


class QueryError(Error):
    """A keyword or query string that cannot be right.

    Printed, it shows the text with a mark below the place, and what was probably meant.

    Attributes
    ----------
    text : str
        The query string or keyword as it was given.
    position, length : int
        The faulty place, in characters: ``text[position:position + length]``. A length of 0 means
        that something is missing there.
    suggestions : tuple of str
        What to write instead of the whole `text`, the likeliest first.
    """

    __module__ = "dbapi"

    text: str = ""
    position: int = 0
    length: int = 0
    suggestions: tuple[str, ...] = ()


class ArgumentError(Error, ValueError):
    """Another argument of a call that cannot be right, such as a negative limit."""

    __module__ = "dbapi"


class OperationalError(Error):
    """A connection that is not stored, does not open, was closed, or is in use."""

    __module__ = "dbapi"


class DataError(Error):
    """Data that is damaged, or cannot be stored; files of an import that have faults.

    Attributes
    ----------
    faults : tuple of ImportFault
        What is wrong with which file of an import, the first 50 of all; empty otherwise.
    """

    __module__ = "dbapi"

    faults: tuple[object, ...] = ()


class OutOfMemory(Error, MemoryError):
    """A result that is larger than memory, or than ``max_bytes`` allows."""

    __module__ = "dbapi"


class Cancelled(Error):
    """A read that its ``progress`` ended by returning False."""

    __module__ = "dbapi"
