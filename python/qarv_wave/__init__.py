"""Test waveforms of a shock and vibration test controller, with their tolerance bands.

    from qarv_wave import Single, define

    wave = define(Single(period=0.01, peak_level=2.0, nsamp=1000), fsamp=1000.0, tol_upper_rat=0.1)
    wave.time, wave.wave, wave.upper, wave.lower    # NumPy arrays, read-only, without a copy
"""
from ._assess import (
    Entry,
    Judgement,
    Motion,
    Report,
    Spectrum,
    judge,
    motion,
    report,
    resample,
    sampled_at,
    srs,
)
from ._core import (
    BaseStandard,
    Classical,
    CmpType,
    Damping,
    DampingElement,
    DataEdit,
    DataEditKind,
    EdgeWindow,
    Gradual,
    LengthType,
    Measure,
    SineBeatBurst,
    SineBeatBurstWaveKind,
    Single,
    Symmetry,
    SyncWaveType,
    TolKind,
    TolSpecify,
    TolUserDef,
    Waveform,
    WaveKind,
)
from ._define import check, define
from ._errors import DefinitionError, Finding, Remedy, Severity
from ._read import Signal, read

__all__ = [
    "BaseStandard",
    "Classical",
    "CmpType",
    "Damping",
    "DampingElement",
    "DataEdit",
    "DataEditKind",
    "DefinitionError",
    "EdgeWindow",
    "Entry",
    "Finding",
    "Gradual",
    "Judgement",
    "LengthType",
    "Measure",
    "Motion",
    "Remedy",
    "Report",
    "Severity",
    "Signal",
    "SineBeatBurst",
    "SineBeatBurstWaveKind",
    "Single",
    "Spectrum",
    "Symmetry",
    "SyncWaveType",
    "TolKind",
    "TolSpecify",
    "TolUserDef",
    "WaveKind",
    "Waveform",
    "check",
    "define",
    "judge",
    "motion",
    "read",
    "report",
    "resample",
    "sampled_at",
    "srs",
]
