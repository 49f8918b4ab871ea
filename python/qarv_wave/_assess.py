"""Assessments of waveforms and measured records: motion, report, spectrum, verdict, resampling."""
from __future__ import annotations

import dataclasses
import json
import math
from collections.abc import Callable, Iterator, Mapping
from typing import Any, Union

import numpy as np
import numpy.typing as npt

from . import _core
from ._errors import Cancelled, DefinitionError

FloatArray = npt.NDArray[np.float64]
Samples = Union[_core.Waveform, npt.ArrayLike]
Value = Union[float, int, str, list[str]]
Text = Union[str, Mapping[str, Any]]  # JSON, or what becomes JSON


def _json(text: Text | None) -> str | None:
    return text if text is None or isinstance(text, str) else json.dumps(dict(text))


def _signal(samples: Samples, fsamp: float | None, unit: str | None) -> tuple[Any, float, str]:
    """Samples with their sampling frequency and unit: those of a waveform are its own."""
    if isinstance(samples, _core.Waveform):
        if fsamp is not None or unit is not None:
            raise TypeError("a waveform has its own fsamp and unit")
        return samples.wave, samples.sample_rate, samples.unit_text
    if fsamp is None:
        raise TypeError("an array of samples needs fsamp")
    return samples, fsamp, unit or ""


@dataclasses.dataclass(frozen=True, eq=False)
class Motion:
    """The motion of a table that follows an acceleration from rest, by the trapezoidal rule.

    In m/s and mm where the amplitude unit is known as an acceleration, otherwise in its own times s
    and s^2."""

    velocity: FloatArray
    displacement: FloatArray
    velocity_unit: str
    displacement_unit: str
    peak_velocity: float
    peak_displacement: float
    peak_to_peak_displacement: float
    residual_velocity: float
    residual_displacement: float


def motion(acceleration: Samples, fsamp: float | None = None, unit: str | None = None) -> Motion:
    """The motion that a waveform, or samples taken at fsamp [Hz], make of the table."""
    if isinstance(acceleration, _core.Waveform):
        _signal(acceleration, fsamp, unit)
        return Motion(*_core.motion_of_waveform(acceleration))
    return Motion(*_core.motion_of_samples(*_signal(acceleration, fsamp, unit)))


@dataclasses.dataclass(frozen=True)
class Entry:
    """One result."""

    label: str  # for people
    value: Value
    unit: str


class Report(Mapping[str, Entry]):
    """Results by their keys, in the order in which they are read; str() is the text for people."""

    def __init__(self, entries: list[tuple[str, str, Value, str]], text: str) -> None:
        self._entries = {key: Entry(label, value, unit) for key, label, value, unit in entries}
        self._text = text

    def __getitem__(self, key: str) -> Entry:
        return self._entries[key]

    def __iter__(self) -> Iterator[str]:
        return iter(self._entries)

    def __len__(self) -> int:
        return len(self._entries)

    def __str__(self) -> str:
        return self._text


def report(waveform: _core.Waveform, machine: Text | None = None) -> Report:
    """What a waveform asks of the shaker, and how it lies in its bands.

    machine: whose limits and the margins to them are reported too, as JSON or as a dictionary

    ValueError if it has no bands of its length, or is no acceleration that a machine has limits for;
    DefinitionError if the machine is none."""
    return Report(*_core.report(waveform, _json(machine)))


@dataclasses.dataclass(frozen=True, eq=False)
class Spectrum:
    """A shock response spectrum: the largest responses of oscillators, one value per line.

    primary: while the shock lasts; residual: afterwards.  positive, negative: to either side, the
    negative ones as negative numbers."""

    frequency: FloatArray  # [Hz]
    primary_positive: FloatArray
    primary_negative: FloatArray
    residual_positive: FloatArray
    residual_negative: FloatArray
    response: str  # for people: "absolute acceleration"
    unit: str
    damping: float  # ratio
    coarse: bool  # whether it goes where the samples are fewer than 10 per cycle

    @property
    def positive(self) -> FloatArray:
        """The largest response to the positive side."""
        return np.maximum(self.primary_positive, self.residual_positive)

    @property
    def negative(self) -> FloatArray:
        """The largest response to the negative side, as a negative number."""
        return np.minimum(self.primary_negative, self.residual_negative)

    @property
    def maximax(self) -> FloatArray:
        """The largest response to either side."""
        return np.maximum(self.positive, -self.negative)

    def __len__(self) -> int:
        return len(self.frequency)

    def plot(self, axes: Any = None) -> Any:
        """Draws the spectrum with matplotlib; returns the axes."""
        from . import _plot

        return _plot.plot_spectrum(self, axes)


def srs(
    acceleration: Samples,
    fsamp: float | None = None,
    unit: str | None = None,
    *,
    response: str = "acceleration",
    q: float = 10.0,
    damping: float | None = None,
    from_: float | None = None,
    to: float | None = None,
    per_octave: float = 12.0,
    points: int | None = None,
) -> Spectrum:
    """The shock response spectrum of a waveform, or of samples taken at fsamp [Hz].

    response: "acceleration", "displacement", "pseudo-velocity", "relative-velocity" or "static-equivalent"
    q, damping: quality factor, or the damping ratio in its place
    from_, to: frequencies [Hz]; else 5 Hz to a tenth of the sampling frequency
    per_octave, points: lines in each octave, or the number of all lines in its place

    ValueError if there is no such spectrum."""
    samples, rate, known = _signal(acceleration, fsamp, unit)
    return Spectrum(
        *_core.spectrum(
            samples, rate, known, response, q, damping, from_, to, per_octave, points
        )
    )


@dataclasses.dataclass(frozen=True)
class Deviation:
    """How far a spectrum lies from the required one, over the lines of a grid."""

    worst: float  # [dB] the largest one, with its sign
    worst_frequency: float  # [Hz]
    rms: float  # [dB]
    lines: int
    inside: int  # of them, within the tolerance


@dataclasses.dataclass(frozen=True, eq=False)
class Synthesis:
    """A waveform for a required shock response spectrum; true if it meets the requirement."""

    waveform: _core.Waveform  # its parameter set is waveform.set
    on_grid: Deviation  # on the lines of the requirement
    between: Deviation  # on lines twelve times as close
    failure: str  # why it does not meet the requirement; empty if it does
    entries: Report  # every number of it
    warnings: tuple[str, ...]

    def __bool__(self) -> bool:
        return not self.failure


def synthesize(
    requirement: Text,
    *,
    machine: Text | None = None,
    shape: str = "shock",
    method: str = "wavelet",
    minimize: str | None = None,
    within: float = 0.0,
    seed: int = 1,
    quick: bool = False,
    force: bool = False,
    progress: Callable[[float], object] | None = None,
) -> Synthesis:
    """Finds a waveform that has a required shock response spectrum.

    requirement: the spectrum and what else is required, as JSON or as a dictionary
    machine: whose limits hold beside those of the requirement, in the same way
    shape: "shock" (all frequencies start together), "sweep" or "random"
    method: "wavelet", "damped" or "modified"
    minimize: "displacement", "velocity" or "acceleration" instead of the best match
    within: with minimize, within so many dB of the requirement; 0 for its tolerance
    seed: of what is drawn at random
    quick: a first look, in a third of the time
    force: return the best waveform if none meets the requirement
    progress: is called with the share that is done, from 0 to 1; False ends the work, and so does
        an exception, which is passed on

    DefinitionError if a text is wrong, or no waveform meets the requirement; ValueError if another
    argument is wrong, or such a requirement has no waveform; Cancelled where progress ended it."""
    made = _core.synthesize(
        _json(requirement) or "", _json(machine), shape, method, minimize or "", within, seed,
        quick, progress,
    )
    if made is None:
        raise Cancelled("cancelled")
    waveform, on_grid, between, failure, entries, text, warnings = made
    if failure and not force:
        raise DefinitionError(failure)
    return Synthesis(
        waveform, Deviation(*on_grid), Deviation(*between), failure, Report(entries, text),
        tuple(warnings),
    )


@dataclasses.dataclass(frozen=True, eq=False)
class Judgement:
    """Whether a measured record keeps within the bands of a waveform; true if it does."""

    passes: bool
    failed: str  # what fails, for people; empty if nothing does
    wave: FloatArray  # the record on the samples of the waveform
    first: int  # sample of the waveform, the first one that the record covers
    last: int
    entries: Report  # every number of it
    warnings: tuple[str, ...]
    correlation: float  # with the waveform, over the pulse

    def __bool__(self) -> bool:
        return self.passes


def judge(
    waveform: _core.Waveform,
    record: npt.ArrayLike,
    fsamp: float,
    unit: str = "",
    *,
    begin: float = 0.0,
    dv_tol: float = 10.0,
    force: bool = False,
) -> Judgement:
    """Lays a measured record over a waveform and compares it with the bands.

    record, fsamp: its samples, and their sampling frequency [Hz]
    unit: of the samples; that of the waveform if it is empty
    begin: time of the first sample, as the record counts it [s]
    dv_tol: that the velocity change of a classical pulse may deviate [%]
    force: judge whatever the sampling does not show

    ValueError where there is no verdict: the waveform has no bands, or the record does not show it."""
    passes, failed, wave, first, last, entries, warnings, text, correlation = _core.judge(
        waveform, record, fsamp, unit, begin, dv_tol, force
    )
    results = Report(entries, text)
    return Judgement(passes, failed, wave, first, last, results, tuple(warnings), correlation)


def resample(samples: npt.ArrayLike, fsamp: float, to: float) -> FloatArray:
    """The signal of samples taken at fsamp, sampled at another frequency [Hz] from the first sample
    on, as long as it lasts; band-limited."""
    if not (fsamp > 0 and to > 0 and math.isfinite(fsamp) and math.isfinite(to)):
        raise ValueError("fsamp, to: are not positive numbers")
    step = fsamp / to
    # A last place that only rounding has put behind the last sample belongs to it.
    count = math.floor((np.size(samples) - 1) / step * (1 + 1e-12)) + 1
    return _core.sampled_at(samples, 0.0, step, count)


def sampled_at(samples: npt.ArrayLike, start: float, step: float, count: int) -> FloatArray:
    """The signal at count places between its samples, from start on, a step apart [sample]."""
    return _core.sampled_at(samples, start, step, count)
