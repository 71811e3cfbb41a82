"""The module over the library; programs use the package above it."""

from collections.abc import Callable, Sequence
from typing import Any, Optional, TypedDict, final

import numpy as np
from numpy.typing import NDArray

WriteArguments = tuple[list[tuple[str, str]], list[tuple[str, Sequence[Any], str]], str]
