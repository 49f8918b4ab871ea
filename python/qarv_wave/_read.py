"""Measured records from files of other programs."""
from __future__ import annotations

import dataclasses
import os
import pathlib
from typing import Union

import numpy as np
import numpy.typing as npt

from . import _core


@dataclasses.dataclass(frozen=True, eq=False)
class Signal:
    """The samples of one channel, with what the file says of them."""

    samples: npt.NDArray[np.float64]
    fsamp: float | None  # [Hz]; None if the file does not say
    unit: str  # empty if the file does not say
    name: str
    begin: float  # [s] time of the first sample


def read(file: Union[str, os.PathLike[str]]) -> list[Signal]:
    """The channels of a CSV, universal (UFF 58), NumPy or WAV file, which is known by its content.

    ValueError, with the file and its line, if it is none or its times are uneven."""
    try:
        return [Signal(*signal) for signal in _core.read_signals(pathlib.Path(file).read_bytes())]
    except ValueError as error:
        raise ValueError(f"{os.fspath(file)}: {error}") from None
