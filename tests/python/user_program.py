"""A small program of a user's, for mypy in strict mode."""
from __future__ import annotations

import numpy as np
import numpy.typing as npt

import qarv_wave as qw


def shock(level: float) -> qw.Waveform:
    pulse = qw.Classical(
        wave_kind=qw.WaveKind.HALF_SINE,
        main_ampl=level,
        main_width=0.011,
        fmax=2000,
        nsamp=np.int64(2048),
        tol_kind=qw.TolKind.TOL_FIXED_4,
    )
    return qw.define(pulse, unit_ampl="g")


def sine() -> qw.Waveform:
    return qw.define(qw.Single(period=0.01, peak_level=1, nsamp=100), fsamp=1000.0, tol_upper_rat=0.1)


def largest(waveform: qw.Waveform) -> float:
    samples: npt.NDArray[np.float64] = waveform.upper
    return float(samples.max())


def kind_of(waveform: qw.Waveform) -> qw.WaveKind | None:
    return waveform.set.wave_kind if isinstance(waveform.set, qw.Classical) else None


def what_is_wrong(elements: list[qw.DampingElement]) -> list[str]:
    shocks = qw.Damping(nsamp=8, sync_wave_type=qw.SyncWaveType.SYNC_WAVE_WAVELET, elements=elements)
    try:
        qw.define(shocks.replace(nsamp=0), fsamp=100.0)
    except qw.DefinitionError as error:
        return [f"{finding.text}: {remedy.name}" for finding in error.findings for remedy in finding.remedies]
    return [finding.text for finding in qw.check(shocks, fsamp=100.0)]


def verdict(record: npt.NDArray[np.float64]) -> tuple[bool, float, str]:
    waveform = shock(50.0)
    judgement = qw.judge(waveform, record, 5120.0, "g", dv_tol=5.0)
    spectrum = qw.srs(waveform, response="displacement", points=50)
    return bool(judgement), float(spectrum.maximax[0]), qw.motion(waveform).velocity_unit


def report_lines(text: str) -> list[str]:
    restored = qw.Waveform.from_record(qw.Waveform.from_json(text).to_record())
    return [f"{key} {entry.value} {entry.unit}" for key, entry in qw.report(restored).items()]
