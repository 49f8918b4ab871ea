"""What is wrong with a definition: findings, and the exception that carries them."""
from __future__ import annotations

import enum
from typing import NamedTuple


class Severity(enum.Enum):
    """What a broken rule leads to."""

    FAILS = "fails"  # there is no waveform
    WARNS = "warns"  # there is one that nobody wants


class Remedy(NamedTuple):
    """A value of one field that mends a definition, all else left as it is."""

    key: str  # of the field in a definition: "MainWidth"
    value: float
    name: str  # of the field in Python: "main_width"


class Finding(NamedTuple):
    """A broken rule."""

    severity: Severity
    text: str  # what is wrong, with its numbers
    remedies: tuple[Remedy, ...]  # the nearest values that work; each alone


class DefinitionError(ValueError):
    """There is no waveform: a text or a record is no definition, or its parameters are refused; or
    a text is no requirement or machine, or no waveform meets the requirement.

    findings: the broken rules of parameters that are refused, else empty
    key: where in a text ("Classical.TolUserDef.TolMainU"), else empty
    line: of the text, from 1; 0 if it is not known"""

    def __init__(
        self, text: str, findings: tuple[Finding, ...] = (), key: str = "", line: int = 0
    ) -> None:
        super().__init__(text)
        self.findings = findings
        self.key = key
        self.line = line


class Cancelled(Exception):
    """A progress callback has returned False."""
