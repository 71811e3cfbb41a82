"""Curves: points that belong together."""

from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING, NoReturn, Union, overload

from ._table import refuse_pickling

if TYPE_CHECKING:
    from ._core_data import FoundCurves
    import numpy as np
    from numpy.typing import NDArray

__all__ = ["Curve", "Curves"]

Parameter = Union[float, int, str, None]


class Curve:
    """Points that belong together, in the order in which they were measured.

    Attributes
    ----------
    x, y : ndarray of float64
        The points, read-only and without missing values. Where a keyword holds texts, its numbers
        are places in `Curves.x_labels`; of complex numbers they are the magnitudes.
    parameters : dict
        What tells curves apart: keyword, swept input or builtin keyname to its value, a float (in
        six digits), an int (an id), a str, or None where the curve has none.
    setup : int or None
        The id of the setup that the points are of; None for points of many records.
    """

    __slots__ = ("parameters", "setup", "x", "y")

    def __init__(
        self,
        x: NDArray[np.float64],
        y: NDArray[np.float64],
        parameters: dict[str, Parameter],
        setup: Union[int, None],
    ) -> None:
        self.x = x
        self.y = y
        self.parameters = parameters
        self.setup = setup

    def __len__(self) -> int:
        return len(self.x)

    def __repr__(self) -> str:
        parameters = ", ".join(f"{name}={value}" for name, value in self.parameters.items())
        return f"<Curve of {len(self)} points: {parameters}>"

    def __reduce__(self) -> NoReturn:
        refuse_pickling("A curve, whose memory is the library's,", "Pickle its x and y as copies.")


class Curves(Sequence[Curve]):
    """A sequence of `Curve`; what `Connection.curves` gives.

    Attributes
    ----------
    is_swept : bool
        Whether the points of a curve follow each other in a sweep.
    x_labels, y_labels : tuple of str
        The texts for which the numbers 0, 1, 2 ... stand, where the keyword holds texts.
    setups_left_out : int
        How many setups sweep something else than x and were left out.
    """

    def __init__(self, found: FoundCurves) -> None:
        names = [name for name, _ in found["parameters"]]
        kinds = [_kind(name, is_number) for name, is_number in found["parameters"]]
        self.is_swept: bool = found["is_swept"]
        self.x_labels: tuple[str, ...] = found["x"]["labels"]
        self.y_labels: tuple[str, ...] = found["y"]["labels"]
        self.setups_left_out: int = found["setups_left_out"]
        self._curves = [
            Curve(x, y, dict(zip(names, map(_value, texts, kinds))), setup or None)
            for x, y, texts, setup in found["curves"]
        ]

    @overload
    def __getitem__(self, place: int) -> Curve: ...

    @overload
    def __getitem__(self, place: slice) -> list[Curve]: ...

    def __getitem__(self, place: Union[int, slice]) -> Union[Curve, list[Curve]]:
        return self._curves[place]

    def __len__(self) -> int:
        return len(self._curves)

    def __repr__(self) -> str:
        left_out = f", {self.setups_left_out} setups left out" if self.setups_left_out else ""
        return f"<{len(self)} curves{left_out}>"

    def __reduce__(self) -> NoReturn:
        refuse_pickling("Curves, whose memory is the library's,", "Pickle their x and y as copies.")


def _kind(name: str, is_number: bool) -> type[Union[float, int, str]]:
    if not is_number:
        return str
    return int if name.endswith("DBID") else float


def _value(text: str, kind: type[Union[float, int, str]]) -> Parameter:
    return kind(text) if text else None
