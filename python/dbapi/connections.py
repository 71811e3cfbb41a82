"""Stored connections: names for SQLite files and for databases of MySQL servers.

They are those of the command ``dbapi connection``, and of every program that uses the library.

Examples
--------
>>> import dbapi
>>> dbapi.connections.add("bench", sqlite="bench.db")
>>> dbapi.connections.test("bench").ok
True
>>> [c.name for c in dbapi.connections.list()]
['bench']
>>> dbapi.connections.remove("bench")
"""

from __future__ import annotations

import builtins
import os
from typing import NamedTuple, Optional, Union

from . import _core
from ._errors import ArgumentError

__all__ = ["Check", "Diagnosis", "StoredConnection", "add", "list", "remove", "test"]


class StoredConnection(NamedTuple):
    """A stored connection, without its password. `database` is the path of an SQLite file."""

    name: str
    driver: str
    database: str
    host: str
    port: str
    user: str


class Check(NamedTuple):
    """One layer of a connection: `outcome` is "ok", "warning", "failed" or "skipped"."""

    layer: str
    outcome: str
    detail: str
    advice: str


class Diagnosis(tuple[Check, ...]):
    """The checks of a connection, from the record to the right to write."""

    __slots__ = ()

    @property
    def ok(self) -> bool:
        """Whether nothing failed."""
        return all(check.outcome != "failed" for check in self)

    def __repr__(self) -> str:
        lines = []
        for check in self:
            lines.append(f"{check.layer:<12} {check.outcome:<8} {check.detail}")
            if check.advice:
                lines.append(f"{'':<21} -> {check.advice}")
        return "\n".join(lines)


def add(
    name: str,
    *,
    sqlite: Optional[Union[str, os.PathLike[str]]] = None,
    mysql: Optional[str] = None,
    host: str = "",
    user: str = "",
    password: str = "",
    port: Union[int, str] = "",
) -> None:
    """Store a connection under a new name, after opening it for a test.

    Parameters
    ----------
    name : str
        The new name.
    sqlite : path
        An SQLite file; one that does not exist is created, with an empty database in it.
    mysql : str
        Instead of a file, a database of the server at `host`, for `user` with `password`. `port`
        is 3306 unless it is given. Passwords are stored scrambled, which is no protection.

    Raises
    ------
    OperationalError
        When the name is taken, or the database does not open or is none of this library.
    ArgumentError
        When not exactly one of `sqlite` and `mysql` is given.
    """
    if (sqlite is None) == (mysql is None):
        raise ArgumentError("Give either sqlite, the path of a file, or mysql, a database of a server.")
    if mysql is not None:
        _core.add_mysql(name, mysql, host, user, password, str(port))
    elif sqlite is not None:
        if host or user or password or port:
            raise ArgumentError("A file has no host, user, password or port: these go with mysql.")
        _core.add_sqlite(name, os.path.abspath(os.fspath(sqlite)))


def list() -> builtins.list[StoredConnection]:  # noqa: A001
    """All stored connections, by name."""
    return sorted(StoredConnection(*record) for record in _core.stored_connections())


def test(name: str) -> Diagnosis:
    """Follow a stored connection layer by layer, and tell what was found and what to do.

    Nothing is changed. Each layer gives up on its own within seconds.

    Raises
    ------
    OperationalError
        When no connection has the name.
    """
    return Diagnosis(Check(*step) for step in _core.diagnose(name))


def remove(name: str) -> None:
    """Forget a stored connection; its database stays.

    Raises
    ------
    OperationalError
        When no connection has the name.
    """
    _core.remove_connection(name)
