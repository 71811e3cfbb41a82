"""Bars that show how far a call is."""

from __future__ import annotations

import sys
from typing import Any, Callable, Optional, Union

# What calls take: nothing, a bar, or a callable of how much is done and how much there is.
Progress = Union[None, bool, Callable[[int, int], Any]]


def callable_progress(progress: Progress, what: str) -> Optional[Callable[[int, int], Any]]:
    if progress is True:
        return _Bar(what)
    return None if progress is None or progress is False else progress


class _Bar:
    """A line of the standard error stream, whether that is a terminal or a notebook."""

    def __init__(self, what: str) -> None:
        self._what = what
        self._percent = -1

    def __call__(self, done: int, total: int) -> None:
        percent = 100 if total <= 0 else min(100, 100 * done // total)
        if percent == self._percent:
            return
        self._percent = percent
        bar = "#" * (percent // 4)
        end = "\n" if percent == 100 else ""
        sys.stderr.write(f"\r{self._what} [{bar:<25}] {percent:3d} %{end}")
        sys.stderr.flush()
