"""New data out of files."""

from __future__ import annotations

import os
from collections.abc import Iterable
from typing import NamedTuple, Union

from . import _core
from ._core_data import ImportedFiles
from ._errors import DataError
from ._progress import Progress, callable_progress

__all__ = ["ImportFault", "ImportResult", "NewKey", "SupersedingSweep"]

Path = Union[str, "os.PathLike[str]"]


class NewKey(NamedTuple):
    """A key that the database did not have before."""

    table: str
    name: str
    datatype: str
    category: str


class SupersedingSweep(NamedTuple):
    """A file whose sweep superseded an earlier one, and its device ("" for none)."""

    file: str
    device: str


class ImportFault(NamedTuple):
    """What is wrong with a file, in its `line`; 0 is the file as a whole."""

    file: str
    line: int
    text: str


class ImportResult(NamedTuple):
    """What an import stored."""

    files: int
    setups: int
    points: int
    devices: int
    superseded_setups: int
    superseding: tuple[SupersedingSweep, ...]
    new_keys: tuple[NewKey, ...]


def import_files(
    connection: str, paths: Union[Path, Iterable[Path]], allow_anonymous: bool, progress: Progress
) -> ImportResult:
    several = [paths] if isinstance(paths, (str, os.PathLike)) else list(paths)
    texts = [os.fspath(path) for path in several]
    bar = callable_progress(progress, "Importing")
    found = _core.import_files(connection, texts, allow_anonymous, bar)
    if found["fault_count"]:
        _raise_faults(found)
    return ImportResult(
        found["files"],
        found["setups"],
        found["points"],
        found["devices"],
        found["superseded_setups"],
        tuple(SupersedingSweep(*sweep) for sweep in found["superseding"]),
        tuple(NewKey(*key) for key in found["new_keys"]),
    )


def _raise_faults(found: ImportedFiles) -> None:
    faults = tuple(ImportFault(*fault) for fault in found["faults"])
    lines = [f"Nothing was imported: {found['faulty_files']} of {found['files']} files have faults."]
    lines += [f"{fault.file}{f':{fault.line}' if fault.line else ''}: {fault.text}" for fault in faults[:20]]
    if found["fault_count"] > 20:
        lines.append(f"... and {found['fault_count'] - 20} more.")
    if found["anonymous_files"]:
        lines.append("With allow_anonymous=True, files need not name a device.")
    error = DataError("\n".join(lines))
    error.faults = faults
    raise error
