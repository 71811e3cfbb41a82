"""New measurements out of memory."""

from __future__ import annotations

import math
from collections.abc import Iterable, Mapping, Sequence
from typing import Any, NamedTuple, Optional

import numpy as np

from . import _core
from ._core_data import WriteArguments
from ._errors import ArgumentError
from ._import import NewKey

__all__ = ["Measurement", "Superseded", "Written"]


class Superseded(NamedTuple):
    """What is no longer the latest: a measurement and its setup, None where it has none."""

    measurement: int
    setup: Optional[int]


class Written(NamedTuple):
    """The ids of a new measurement and its records, None for those that it does not have.

    `superseded` are the earlier measurements and setups that queries no longer find unless they
    begin with "ALLDATA:". `new_keys` are keys that the database did not have before the call.
    """

    catalog_entry: int
    die: Optional[int]
    device: Optional[int]
    routine: Optional[int]
    measurement: int
    condition: Optional[int]
    setup: Optional[int]
    superseded: tuple[Superseded, ...]
    new_keys: tuple[NewKey, ...]


class Measurement(NamedTuple):
    """A measurement that is to be written; see `Connection.write`."""

    data: Any = None
    facts: Mapping[str, Any] = {}
    headers: Mapping[str, str] = {}


def write_measurements(
    connection: str, measurements: Iterable[Measurement], allow_anonymous: bool
) -> list[Written]:
    given = [_arguments(Measurement(*one), place) for place, one in enumerate(measurements, 1)]
    if len(given) == 1:
        given = [(given[0][0], given[0][1], "")]
    found = _core.write(connection, given, allow_anonymous)
    new_keys = tuple(NewKey(*key) for key in found["new_keys"])
    written = []
    for ids in found["written"]:
        superseded = tuple(
            Superseded(measurement, setup or None)
            for measurement, setup, new_measurement, _ in found["superseded"]
            if new_measurement == ids[4]
        )
        entry, die, device, routine, measurement, condition, setup = ids
        written.append(
            Written(
                entry,
                die or None,
                device or None,
                routine or None,
                measurement,
                condition or None,
                setup or None,
                superseded,
                new_keys,
            )
        )
    return written


def _arguments(measurement: Measurement, place: int) -> WriteArguments:
    facts = [(keyword, _fact(keyword, value)) for keyword, value in measurement.facts.items() if not _is_missing(value)]
    headers = dict(measurement.headers)
    columns = []
    if measurement.data is not None:
        for keyword in measurement.data.keys():
            columns.append((keyword, _values(keyword, measurement.data[keyword]), headers.pop(keyword, "")))
    if headers:
        raise ArgumentError(f"There are headers for what is no column: {', '.join(headers)}.")
    return facts, columns, f"measurement {place}"


def _is_missing(value: Any) -> bool:
    return value is None or (isinstance(value, (float, np.floating)) and math.isnan(value))


def _fact(keyword: str, value: Any) -> str:
    """The text of a value, from which the library reads the same number."""
    if isinstance(value, str):
        return value
    if isinstance(value, (bool, np.bool_)):
        raise TypeError(f"{keyword}: a fact is a text or a number, not a bool.")
    if isinstance(value, (int, np.integer)):
        return str(int(value))
    if isinstance(value, (float, np.floating)):
        return repr(float(value))
    if isinstance(value, (complex, np.complexfloating)):
        return _complex_text(complex(value))
    if isinstance(value, np.ndarray) and value.ndim == 2:
        rows = (", ".join(_complex_text(complex(cell)) for cell in row) for row in value)
        return "[" + ", ".join(f"[{row}]" for row in rows) + "]"
    raise TypeError(f"{keyword}: a fact is a text, a number or a matrix, not {type(value).__name__}.")


def _complex_text(number: complex) -> str:
    sign = "" if math.copysign(1, number.imag) < 0 else "+"
    return f"{number.real!r}{sign}{number.imag!r}j"


def _values(keyword: str, values: Any) -> Sequence[Any]:
    """The values with no value as NaN or None; numbers as an array."""
    mask = getattr(values, "mask", None)
    if isinstance(values, np.ndarray) and mask is not None:
        values = np.array(values, dtype=object)
        values[np.asarray(mask)] = None
    if hasattr(values, "isna"):
        missing = np.asarray(values.isna())
        values = np.array(values, dtype=object) if missing.any() else np.asarray(values)
        if missing.any():
            values[missing] = None
    array = np.asarray(values, dtype=object) if isinstance(values, np.ndarray) and values.dtype.kind in "US" else values
    if isinstance(array, np.ndarray) and array.dtype.kind in "mM":
        raise TypeError(f"{keyword}: times cannot be stored in a sweep; give seconds as numbers.")
    found: Sequence[Any] = array
    return found
