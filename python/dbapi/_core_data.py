"""The forms in which the module over the library takes and gives its data."""

from __future__ import annotations

from typing import Any, List, Optional, Tuple, TypedDict

import numpy as np
from numpy.typing import NDArray


class CurveAxis(TypedDict):
    labels: tuple[str, ...]
    is_magnitude: bool


class FoundCurves(TypedDict):
    curves: list[tuple[NDArray[np.float64], NDArray[np.float64], tuple[str, ...], int]]
    parameters: list[tuple[str, bool]]
    x: CurveAxis
    y: CurveAxis
    is_swept: bool
    setups_left_out: int


class ImportedFiles(TypedDict):
    files: int
    setups: int
    points: int
    devices: int
    superseded_setups: int
    superseding: list[tuple[str, str]]
    new_keys: list[tuple[str, str, str, str]]
    faults: list[tuple[str, int, str]]
    fault_count: int
    faulty_files: int
    anonymous_files: int


class WrittenMeasurements(TypedDict):
    written: list[tuple[int, int, int, int, int, int, int]]
    superseded: list[tuple[int, int, int, int]]
    new_keys: list[tuple[str, str, str, str]]


WriteArguments = Tuple[List[Tuple[str, str]], List[Tuple[str, Any, str]], str]
KeyFacts = Tuple[str, str, str, int, Optional[int], Optional[float], Optional[float]]
