"""Motion, report, spectrum, verdict, resampling and pictures, against computations of their own."""
import json
import subprocess

import numpy as np
import pytest
from matplotlib import pyplot

import qarv_wave as qw
from conftest import COMMAND

G = 9.80665
PULSE = qw.Classical(
    wave_kind=qw.WaveKind.HALF_SINE, main_ampl=50.0, main_width=0.011, fmax=2000.0, nsamp=1024,
    tol_kind=qw.TolKind.TOL_USER_DEF,
    tol_user_def=qw.TolUserDef(tol_left_u=0.2, tol_left_l=0.2, tol_front_a=0.1, tol_main_u=0.15, tol_main_l=0.15,
                               tol_right_u=0.2, tol_right_l=0.2, tol_rear_a=0.1),
)


@pytest.fixture(scope="module")
def pulse():
    return qw.define(PULSE, unit_ampl="g")


def trapezoid(x, fsamp):
    steps = (x[1:] + x[:-1]) / 2.0 / fsamp
    return np.concatenate([[0.0], np.cumsum(steps)])


def test_motion_is_the_integral_by_the_trapezoidal_rule(pulse):
    motion = qw.motion(pulse)
    velocity = trapezoid(G * pulse.wave, pulse.sample_rate)
    displacement = 1000.0 * trapezoid(velocity, pulse.sample_rate)
    np.testing.assert_allclose(motion.velocity, velocity, rtol=1e-9, atol=1e-12)
    np.testing.assert_allclose(motion.displacement, displacement, rtol=1e-9, atol=1e-9)
    assert (motion.velocity_unit, motion.displacement_unit) == ("m/s", "mm")
    assert motion.peak_velocity == pytest.approx(np.abs(velocity).max())
    assert motion.peak_displacement == pytest.approx(np.abs(displacement).max())
    assert motion.peak_to_peak_displacement == pytest.approx(np.ptp(displacement))
    assert motion.residual_velocity == pytest.approx(velocity[-1])
    assert motion.residual_displacement == pytest.approx(displacement[-1])


def test_motion_of_an_array_is_that_of_its_waveform(pulse):
    a, b = qw.motion(pulse), qw.motion(pulse.wave, pulse.sample_rate, "g")
    assert a.displacement.tobytes() == b.displacement.tobytes() and a.peak_velocity == b.peak_velocity
    assert qw.motion([1.0, 1.0], 1.0).velocity_unit == "s"
    with pytest.raises(TypeError):
        qw.motion([1.0])
    with pytest.raises(TypeError):
        qw.motion(pulse, 1000.0)
    with pytest.raises(ValueError, match="unit"):
        qw.motion([1.0], 1.0, "parsec")
    with pytest.raises(ValueError, match="fsamp"):
        qw.motion([1.0], 0.0)


def test_the_report_has_the_figures_of_the_waveform(pulse):
    report = qw.report(pulse)
    assert report["peak"].value == 50.0 and report["peak"].unit == "g"
    assert report["samples"].value == 1024
    assert "peak" in str(report).splitlines()[4] and len(report) == len(list(report))
    with pytest.raises(KeyError):
        report["colour"]


@pytest.mark.skipif(not COMMAND, reason="the command is not built")
def test_report_and_verdict_are_those_of_the_command(pulse, tmp_path):
    (tmp_path / "pulse.json").write_text(pulse.to_json(), encoding="utf-8")
    record = 1.1 * pulse.wave
    rows = [f"{t!r},{v!r}" for t, v in zip(pulse.time.tolist(), record.tolist())]
    (tmp_path / "record.csv").write_text("time,value\n" + "\n".join(rows) + "\n", encoding="utf-8")
    subprocess.run([COMMAND, "report", "pulse.json", "--json", "report.json"], cwd=tmp_path, check=True,
                   capture_output=True)
    subprocess.run([COMMAND, "judge", "pulse.json", "record.csv", "--json", "verdict.json"], cwd=tmp_path, check=False,
                   capture_output=True)

    def values(name):
        entries = json.loads((tmp_path / name).read_text())
        return {key: entry["value"] for key, entry in entries.items() if key not in ("warnings", "findings")}

    def numbers(found):
        return {key: v for key, v in found.items() if isinstance(v, (int, float))}

    report = {key: entry.value for key, entry in qw.report(pulse).items()}
    commands = values("report.json")
    assert numbers(report) == {key: v for key, v in numbers(commands).items() if key in report}
    judged = qw.judge(pulse, record, pulse.sample_rate)
    mine = numbers({key: entry.value for key, entry in judged.entries.items()})
    assert mine == pytest.approx(numbers(values("verdict.json")), rel=1e-6) and len(mine) > 4


def oscillator_peak(samples, fsamp, frequency, damping, seconds):
    """The largest absolute acceleration of an oscillator, stepped exactly over straight lines by a fine
    Runge-Kutta rule: another method than that of the library."""
    steps = 40
    padded = np.concatenate([[0.0], samples, np.zeros(int(seconds * fsamp))])
    w = 2 * np.pi * frequency
    z = v = 0.0
    h = 1.0 / fsamp / steps
    peak = 0.0

    def slope(position, speed, base):
        return speed, -base - 2 * damping * w * speed - w * w * position

    for a, b in zip(padded[:-1], padded[1:]):
        for i in range(steps):
            x0, x1 = a + (b - a) * i / steps, a + (b - a) * (i + 1) / steps
            xm = (x0 + x1) / 2
            k1 = slope(z, v, x0)
            k2 = slope(z + h / 2 * k1[0], v + h / 2 * k1[1], xm)
            k3 = slope(z + h / 2 * k2[0], v + h / 2 * k2[1], xm)
            k4 = slope(z + h * k3[0], v + h * k3[1], x1)
            z += h / 6 * (k1[0] + 2 * k2[0] + 2 * k3[0] + k4[0])
            v += h / 6 * (k1[1] + 2 * k2[1] + 2 * k3[1] + k4[1])
            peak = max(peak, abs(2 * damping * w * v + w * w * z))
    return peak


def test_the_spectrum_is_that_of_oscillators():
    samples = 10.0 * np.sin(np.pi * np.arange(1, 20) / 20)
    spectrum = qw.srs(samples, 1000.0, from_=25.0, to=100.0, per_octave=1.0, q=5.0)
    assert spectrum.frequency == pytest.approx([25.0, 50.0, 100.0]) and spectrum.damping == 0.1
    for frequency, value in zip(spectrum.frequency, spectrum.maximax):
        assert value == pytest.approx(oscillator_peak(samples, 1000.0, frequency, 0.1, 0.06), rel=1e-5)
    assert len(spectrum) == 3 and not spectrum.coarse and spectrum.response == "absolute acceleration"
    assert (spectrum.positive >= spectrum.primary_positive).all() and (spectrum.negative <= 0).all()


def test_the_spectrum_of_a_waveform_has_its_unit(pulse):
    spectrum = qw.srs(pulse, response="pseudo-velocity", damping=0.05, points=7)
    assert (len(spectrum), spectrum.unit, spectrum.damping) == (7, "m/s", 0.05)
    same = qw.srs(pulse.wave, pulse.sample_rate, "g", response="pseudo-velocity", damping=0.05, points=7)
    assert spectrum.maximax.tobytes() == same.maximax.tobytes()


@pytest.mark.parametrize("arguments, text", [
    ({"response": "colour"}, "response: "), ({"q": 0.1}, "q: "), ({"damping": 2.0}, "damping: "),
    ({"from_": 0.0}, "from, to: "), ({"points": 0}, "points: "), ({"to": 1e9}, "to: "),
])
def test_a_spectrum_that_cannot_be_says_why(pulse, arguments, text):
    with pytest.raises(ValueError) as raised:
        qw.srs(pulse, **arguments)
    assert str(raised.value).startswith(text)
    with pytest.raises(ValueError, match="sample 1 is no number"):
        qw.srs([0.0, float("nan")], 100.0)
    with pytest.raises(ValueError, match="has no samples"):
        qw.srs([], 100.0)


def test_a_record_within_the_bands_passes_and_one_outside_fails(pulse):
    good = qw.judge(pulse, np.concatenate([np.zeros(100), 1.05 * pulse.wave]), pulse.sample_rate)
    assert good and good.passes and good.failed == "" and good.correlation == pytest.approx(1.0)
    np.testing.assert_allclose(good.wave, 1.05 * pulse.wave, atol=1e-9)
    bad = qw.judge(pulse, 1.3 * pulse.wave, pulse.sample_rate, "g")
    assert not bad and bad.failed and "worst_time" in bad.entries and str(bad.entries)
    in_metres = qw.judge(pulse, 1.05 * G * pulse.wave, pulse.sample_rate, "m/s^2")
    np.testing.assert_allclose(in_metres.wave, 1.05 * pulse.wave, atol=1e-9)


def test_a_record_that_cannot_be_judged_says_why(pulse):
    with pytest.raises(ValueError, match="upside down"):
        qw.judge(pulse, -pulse.wave, pulse.sample_rate)
    with pytest.raises(ValueError, match="below"):
        qw.judge(pulse, pulse.wave[::4], pulse.sample_rate / 4)
    with pytest.raises(ValueError, match="no bands"):
        qw.judge(qw.define(qw.Measure(meas_path="x", samples=[]), fsamp=1.0), [1.0], 1.0)


def test_resampling_keeps_a_sine_and_its_duration():
    sine = np.sin(2 * np.pi * 20.0 * np.arange(1001) / 1000.0)
    out = qw.resample(sine, 1000.0, 2500.0)
    assert len(out) == 2501
    inner = np.arange(200, 2300)
    np.testing.assert_allclose(out[inner], np.sin(2 * np.pi * 20.0 * inner / 2500.0), atol=1e-4)
    assert qw.resample(sine, 1000.0, 1000.0).tobytes() == sine.tobytes()
    between = np.sin(2 * np.pi * 20.0 * (500.5 + np.arange(4)) / 1000.0)
    np.testing.assert_allclose(qw.sampled_at(sine, 500.5, 1.0, 4), between, atol=1e-4)
    for bad in (0.0, -1.0, float("nan"), float("inf")):
        with pytest.raises(ValueError):
            qw.resample(sine, 1000.0, bad)
    with pytest.raises(ValueError):
        qw.resample([], 1000.0, 500.0)


def test_pictures_show_the_waveform_and_the_spectrum(pulse):
    axes = pulse.plot()
    curves = {line.get_label(): line for line in axes.lines}
    assert curves["reference"].get_ydata().tobytes() == pulse.wave.tobytes()
    assert curves["upper band"].get_ydata().tobytes() == pulse.upper.tobytes()
    assert axes.get_ylabel() == "amplitude [g]" and axes.get_title() == pulse.title
    spectrum = qw.srs(pulse)
    other = pyplot.subplots()[1]
    assert spectrum.plot(other) is other
    assert other.lines[0].get_ydata().tobytes() == spectrum.maximax.tobytes()
    assert other.get_ylabel() == "absolute acceleration [g]"
    pyplot.close("all")
