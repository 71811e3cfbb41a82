"""Measurements of semiconductor devices, as NumPy arrays.

Connect to a stored connection or a file, and ask in the words of the trade: a keyword says which
key you want, a query string of which records.

    import dbapi

    lab = dbapi.connect("lab")                 # a stored name, or the path of a file
    t = lab.values("IND.VG", "OUTD.ID", query="W=[5u,10u];L<=0.15u", order="stored")
    t["OUTD.ID"]                               # a NumPy array over the library's memory
    t.to_pandas()                              # a DataFrame

`Connection` has the rest: `batches` for what is larger than memory, `curves` and `plot`, `ids`,
`keys`, `record`, `setup` and `explain`, and for new data `import_files` and `write`. Stored
connections are managed in `dbapi.connections`. All exceptions are of the class `Error`;
`QueryError` shows where a keyword or query string is wrong, and what was probably meant.

Examples
--------
>>> import dbapi
>>> lab = dbapi.connect("lab.db")
>>> lab.values("$DEVNAME", "W", query="W=[5u,10u];L<=0.15u", distinct=True)
$DEVNAME                     W
nfet_01v8_w7u_l0p15u_m1  7e-06
pfet_01v8_w7u_l0p15u_m1  7e-06
[2 rows x 2 columns]
"""

from __future__ import annotations

from . import connections
from ._batches import Batches
from ._connect import connect
from ._connection import Connection
from ._curves import Curve, Curves
from ._errors import (
    ArgumentError,
    Cancelled,
    DataError,
    Error,
    OperationalError,
    OutOfMemory,
    QueryError,
)
from ._import import ImportFault, ImportResult, NewKey, SupersedingSweep
from ._records import Explanation, Key, Keys, Record, Setup
from ._table import Column, Table
from ._write import Measurement, Superseded, Written

__all__ = [
    "ArgumentError",
    "Batches",
    "Cancelled",
    "Column",
    "Connection",
    "Curve",
    "Curves",
    "DataError",
    "Error",
    "Explanation",
    "ImportFault",
    "ImportResult",
    "Key",
    "Keys",
    "Measurement",
    "NewKey",
    "OperationalError",
    "OutOfMemory",
    "QueryError",
    "Record",
    "Setup",
    "Superseded",
    "SupersedingSweep",
    "Table",
    "Written",
    "connect",
    "connections",
]
