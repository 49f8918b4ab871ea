#!/usr/bin/python3
"""Prints the type stubs of qarv_wave._core, from the one list of fields.

    PYTHONPATH=build/release/python tools/python_stubs.py >python/qarv_wave/_core.pyi
"""
import enum

from qarv_wave import _core

# What a field of a kind takes, and what its property is; {} is the class of the value.
TAKES = {"number": "float", "count": "SupportsIndex", "flag": "bool", "text": "str", "code": "{} | int",
         "unit": "str | dict[str, Any]", "numbers": "Sequence[float]", "set": "{} | None",
         "list": "Sequence[{}]", "samples": "npt.ArrayLike"}
GIVES = {**TAKES, "count": "int", "code": "{}", "numbers": "tuple[float, ...]", "list": "tuple[{}, ...]",
         "samples": "FloatArray"}

HEAD = '''# Made by tools/python_stubs.py from the one list of fields; not edited by hand.
import enum
from collections.abc import Callable, Sequence
from typing import Any, ClassVar, SupportsIndex, Union, overload

import numpy as np
import numpy.typing as npt

from ._codes import Code
from ._errors import Finding

FloatArray = npt.NDArray[np.float64]
'''

WAVEFORM = '''    @property
    def time(self) -> FloatArray: ...
    @property
    def wave(self) -> FloatArray: ...
    @property
    def upper(self) -> FloatArray: ...
    @property
    def lower(self) -> FloatArray: ...
    @property
    def set(self) -> ParameterSet: ...
    @property
    def family(self) -> str: ...
    @property
    def title(self) -> str: ...
    @property
    def unit_text(self) -> str: ...
    @property
    def sample_rate(self) -> float: ...
    @staticmethod
    def from_json(
        text: str, *, samples: Callable[[str], tuple[npt.ArrayLike, float | None]] | None = None
    ) -> Waveform: ...
    def to_json(self) -> str: ...
    @staticmethod
    def from_record(record: bytes) -> Waveform: ...
    def to_record(self) -> bytes: ...
    def plot(self, axes: Any = None) -> Any: ...
    def __len__(self) -> int: ...
    def __eq__(self, other: object) -> bool: ...
    __hash__: ClassVar[None]  # type: ignore[assignment]
'''

ASSESSMENTS = '''
_Value = Union[float, int, str, list[str]]
_Entries = list[tuple[str, str, _Value, str]]
_Motion = tuple[
    FloatArray, FloatArray, str, str, float, float, float, float, float
]

def motion_of_waveform(waveform: Waveform, /) -> _Motion: ...
def motion_of_samples(acceleration: npt.ArrayLike, fsamp: float, unit: str, /) -> _Motion: ...
def spectrum(
    acceleration: npt.ArrayLike,
    fsamp: float,
    unit: str,
    response: str,
    q: float,
    damping: float | None,
    from_: float | None,
    to: float | None,
    per_octave: float,
    points: int | None,
    /,
) -> tuple[
    FloatArray, FloatArray, FloatArray, FloatArray, FloatArray, str, str, float, bool
]: ...
def report(waveform: Waveform, machine: str | None, /) -> tuple[_Entries, str]: ...
_Deviation = tuple[float, float, float, int, int]

def synthesize(
    requirement: str,
    machine: str | None,
    shape: str,
    method: str,
    minimize: str,
    within: float,
    seed: int,
    quick: bool,
    progress: Callable[[float], object] | None,
    /,
) -> tuple[Waveform, _Deviation, _Deviation, str, _Entries, str, list[str]] | None: ...
def judge(
    waveform: Waveform,
    record: npt.ArrayLike,
    fsamp: float,
    unit: str,
    begin: float,
    dv_tol: float,
    force: bool,
    /,
) -> tuple[bool, str, FloatArray, int, int, _Entries, list[str], str, float]: ...
def read_signals(bytes: bytes, /) -> list[
    tuple[FloatArray, float | None, str, str, float]
]: ...
def sampled_at(
    samples: npt.ArrayLike, start: float, step: float, count: int, /
) -> FloatArray: ...
'''


def argument(field, required=None):
    name, kind, cls, needed, default, _ = field
    needed = needed if required is None else required
    return f"        {name}: {TAKES[kind].format(cls)}" + ("," if needed else f" = {default},")


def keywords(fields, required=None):
    return [argument(field, required) for field in fields]


def optional(fields):
    """The arguments of replace: any of them."""
    return [f"        {name}: {TAKES[kind].format(cls)} = ...," for name, kind, cls, *_ in fields]


def properties(fields):
    for name, kind, cls, _, _, text in fields:
        yield f"    @property\n    def {name}(self) -> {GIVES[kind].format(cls)}:"
        yield f'        """{text}"""'


def enumeration(cls):
    yield f"\nclass {cls.__name__}(Code):"
    yield f'    """{cls.__doc__}"""\n'
    yield from (f"    {member.name} = {member.value}" for member in cls)


def parameter_set(name, fields):
    cls = getattr(_core, name)
    yield f"\nclass {name}:"
    yield f'    """{cls.__doc__}"""\n'
    yield "    def __init__(\n        self,\n        *,"
    yield from keywords(fields)
    yield "    ) -> None: ..."
    yield from properties(fields)
    yield f"    def replace(\n        self,\n        *,"
    yield from optional(fields)
    yield f"    ) -> {name}: ..."
    yield "    def __eq__(self, other: object) -> bool: ..."
    yield "    __hash__: ClassVar[None]  # type: ignore[assignment]"


def of_a_definition(name, result, fields):
    """A function of a set and settings.  A classical pulse has a sampling frequency of its own."""
    for sets, needed in (("Classical", False), ("ParameterSet", True)):
        yield f"@overload\ndef {name}(\n        set: {sets},\n        /,\n        *,"
        for field in fields:
            required = needed and field[0] == "fsamp"
            yield argument(field, required).replace("fsamp: float = 0.0", "fsamp: float = ...")
        yield f"    ) -> {result}: ..."


def main():
    fields = dict(_core._fields)
    settings = fields.pop("define")
    families = [name for name in fields
                if name not in ("TolUserDef", "TolSpecify", "DataEdit", "DampingElement")]
    lines = [HEAD]
    codes = [v for _, v in sorted(vars(_core).items()) if isinstance(v, type) and issubclass(v, enum.Enum)]
    for cls in codes:
        lines += enumeration(cls)
    for name, own in fields.items():
        lines += parameter_set(name, own)
    lines.append(f"\nParameterSet = Union[{', '.join(families)}]\n")
    lines.append(f'class Waveform:\n    """{_core.Waveform.__doc__}"""\n')
    lines += properties(settings)
    lines.append(WAVEFORM)
    lines += of_a_definition("define", "Waveform", settings)
    lines += of_a_definition("check", "tuple[Finding, ...]", settings)
    lines.append(ASSESSMENTS)
    lines.append("_fields: dict[str, list[tuple[str, str, str, bool, str, str]]]")
    print("\n".join(lines))


main()
