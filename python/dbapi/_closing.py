"""What may stand behind `with`."""

from __future__ import annotations

from types import TracebackType
from typing import Optional, TypeVar

_Self = TypeVar("_Self", bound="Closing")


class Closing:
    """Is closed at the end of a ``with``."""

    __slots__ = ()

    def close(self) -> None:
        raise NotImplementedError

    def __enter__(self: _Self) -> _Self:
        return self

    def __exit__(
        self,
        exc_type: Optional[type[BaseException]],
        exc_value: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None:
        self.close()
