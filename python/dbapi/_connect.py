"""The way to a connection."""

from __future__ import annotations

import os
from typing import Optional, Union

from . import _core
from ._connection import Connection
from ._errors import ArgumentError, OperationalError

__all__ = ["connect"]

_FILE_ENDINGS = (".db", ".sqlite", ".sqlite3")


def connect(
    name: Optional[Union[str, os.PathLike[str]]] = None,
    *,
    sqlite: Optional[Union[str, os.PathLike[str]]] = None,
    create: bool = False,
) -> Connection:
    """Open a database of measurements.

    Parameters
    ----------
    name : str or path
        The name of a stored connection, or the path of an SQLite file: a text with a "/" in it, or
        that ends in ".db", ".sqlite" or ".sqlite3".
    sqlite : path
        Instead of it, the path of a file, whatever it looks like.
    create : bool
        Make the file, with an empty database in it, where there is none.

    Returns
    -------
    Connection

    Raises
    ------
    OperationalError
        When no connection has the name, there is no such file, or the database does not open.

    Examples
    --------
    >>> import dbapi
    >>> with dbapi.connect("lab.db") as lab:
    ...     lab.values("W", query="L<=0.15u", distinct=True)["W"].max()
    2.5e-05
    """
    if (name is None) == (sqlite is None):
        raise ArgumentError("Give either the name of a stored connection or a path, or sqlite=PATH.")
    path = _path_of(name) if sqlite is None else os.fspath(sqlite)
    if path is None:
        if create:
            raise ArgumentError("Only a file is created: give its path. dbapi.connections.add() stores a connection.")
        stored = str(name)
        _core.check_opens(stored)
        return Connection(stored, stored)
    whole = os.path.abspath(path)
    if not os.path.exists(whole):
        if not create:
            raise OperationalError(f'There is no file "{whole}". Give create=True to make it.')
        _core.create_file(whole)
    _core.check_opens(whole)
    return Connection(path, whole)


def _path_of(name: Optional[Union[str, os.PathLike[str]]]) -> Optional[str]:
    """The path that a name is; None for one that is stored, or that can only be stored."""
    if not isinstance(name, str):
        return None if name is None else os.fspath(name)
    if "/" not in name and not name.lower().endswith(_FILE_ENDINGS):
        return None
    return None if any(record[0] == name for record in _core.stored_connections()) else name
