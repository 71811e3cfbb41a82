"""How reads are asked for, as the C++ module takes it."""

from __future__ import annotations

from functools import lru_cache
from typing import Any, Optional

from . import _core
from ._progress import Progress, callable_progress

# Small reads often ask alike, and making the object takes a good part of what Python adds to one.
_kept = lru_cache(maxsize=64, typed=True)(_core.ReadArguments)


def read_arguments(
    order: Optional[str],
    distinct: bool,
    limit: Optional[int],
    all_data: bool,
    ids: bool,
    max_bytes: Optional[int],
    progress: Progress,
) -> Any:
    call = callable_progress(progress, "Reading")
    if call is None:
        try:
            return _kept(order, distinct, limit, all_data, ids, max_bytes, None)
        except TypeError:
            # What cannot be kept is no right argument; the object itself says so best.
            pass
    return _core.ReadArguments(order, distinct, limit, all_data, ids, max_bytes, call)
