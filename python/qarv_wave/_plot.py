"""Pictures of waveforms and spectra; matplotlib is asked for when one is drawn."""
from __future__ import annotations

import importlib
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from ._assess import Spectrum
    from ._core import Waveform


def _axes(axes: Any) -> Any:
    if axes is not None:
        return axes
    # Not every release of matplotlib says what its types are.
    return importlib.import_module("matplotlib.pyplot").subplots()[1]


def _label(quantity: str, unit: str) -> str:
    return f"{quantity} [{unit}]" if unit else quantity


def plot_waveform(waveform: Waveform, axes: Any = None) -> Any:
    """Draws a waveform between its bands over time."""
    axes = _axes(axes)
    axes.plot(waveform.time, waveform.wave, color="C0", label="reference")
    for band, label in ((waveform.upper, "upper band"), (waveform.lower, "lower band")):
        if len(band) == len(waveform):  # that of a record may have any length
            axes.plot(waveform.time, band, color="C3", linestyle="--", linewidth=1, label=label)
    axes.set_title(waveform.title)
    axes.set_xlabel("time [s]")
    axes.set_ylabel(_label("amplitude", waveform.unit_text))
    axes.legend()
    return axes


def plot_spectrum(spectrum: Spectrum, axes: Any = None) -> Any:
    """Draws a shock response spectrum over the natural frequency."""
    axes = _axes(axes)
    axes.loglog(spectrum.frequency, spectrum.maximax, color="C0", label="maximax")
    axes.loglog(spectrum.frequency, spectrum.positive, color="C2", linestyle="--", label="positive")
    axes.loglog(spectrum.frequency, -spectrum.negative, color="C3", linestyle=":", label="negative")
    axes.set_title(f"shock response spectrum, damping {spectrum.damping:.3g}")
    axes.set_xlabel("natural frequency [Hz]")
    axes.set_ylabel(_label(spectrum.response, spectrum.unit))
    axes.grid(True, which="both", alpha=0.3)
    axes.legend()
    return axes
