"""What all enumerations of parameter sets have in common."""
from __future__ import annotations

import enum


class Code(enum.IntEnum):
    """A 32-bit code with names for the values that are known.

    A record may hold others: they are members without a name of their own."""

    @classmethod
    def _missing_(cls, value: object) -> Code | None:
        if not isinstance(value, int) or not -(2**31) <= value < 2**31:
            return None
        member = int.__new__(cls, value)
        member._name_ = f"UNKNOWN_{value}"
        member._value_ = value
        return member

    @property
    def source(self) -> str:
        """The member as it is written in a program."""
        cls = type(self)
        known = self._name_ in cls.__members__
        return f"{cls.__name__}.{self._name_}" if known else f"{cls.__name__}({int(self)})"
