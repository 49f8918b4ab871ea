"""Waveforms for required spectra, and reports beside a machine: the same as the command's."""
import json
import subprocess

import pytest

import qarv_wave as qw
from conftest import COMMAND

REQUIRED = {"Points": [[45, 20], [90, 40], [500, 40]], "TolUpper": 3, "TolLower": -1.5}
MACHINE = {"Name": "V-9", "MaxAccel": 60, "MaxVelocity": "1 m/s", "Stroke": 51}
needs_command = pytest.mark.skipif(not COMMAND, reason="the command is not built")


@pytest.fixture(scope="module")
def made():
    return qw.synthesize(REQUIRED, quick=True)


def run(folder, *arguments):
    return subprocess.run([COMMAND, *arguments], cwd=folder, capture_output=True, text=True, check=False)


def test_the_waveform_has_the_required_spectrum(made):
    assert made and made.failure == ""
    spectrum = qw.srs(made.waveform, from_=45.0, to=500.0)
    assert spectrum.maximax[0] == pytest.approx(20.0, rel=0.1)
    assert spectrum.maximax[-1] == pytest.approx(40.0, rel=0.1)
    assert made.between.lines == made.between.inside > made.on_grid.lines
    assert abs(made.between.worst) < 1.5 and abs(made.on_grid.rms) <= abs(made.on_grid.worst)
    assert 45.0 <= made.between.worst_frequency <= 500.0
    assert made.entries["betweenWorst"].value == made.between.worst
    assert isinstance(made.waveform.set, qw.Damping) and made.waveform.unit_ampl == "g"
    again = qw.define(made.waveform.set, fsamp=made.waveform.fsamp, unit_ampl="g",
                      tol_upper_rat=made.waveform.tol_upper_rat, tol_lower_rat=made.waveform.tol_lower_rat)
    assert again == made.waveform


@needs_command
def test_it_is_the_same_bits_as_the_commands(tmp_path):
    (tmp_path / "r.json").write_text(json.dumps(REQUIRED))
    (tmp_path / "m.json").write_text(json.dumps(MACHINE))
    said = run(tmp_path, "synthesize", "r.json", "--machine", "m.json", "--quick", "--shape", "random", "--seed", "3",
               "-o", "d.json", "--json", "f.json")
    assert said.returncode in (0, 3), said.stderr
    mine = qw.synthesize(json.dumps(REQUIRED), machine=MACHINE, quick=True, shape="random", seed=3)
    assert mine.waveform.to_json() == (tmp_path / "d.json").read_text()
    assert mine.waveform.wave.tobytes() == qw.Waveform.from_json((tmp_path / "d.json").read_text()).wave.tobytes()
    assert str(mine.entries) == said.stdout
    figures = json.loads((tmp_path / "f.json").read_text())
    assert list(mine.warnings) == figures.pop("warnings")["value"]
    assert {key: entry.value for key, entry in mine.entries.items()} == {k: v["value"] for k, v in figures.items()}


@needs_command
def test_a_report_beside_a_machine_is_the_commands(tmp_path, made):
    (tmp_path / "d.json").write_text(made.waveform.to_json())
    (tmp_path / "m.json").write_text(json.dumps(MACHINE))
    said = run(tmp_path, "report", "d.json", "--machine", "m.json")
    assert said.returncode == 0, said.stderr
    report = qw.report(made.waveform, machine=MACHINE)
    assert str(report) == said.stdout
    assert str(qw.report(made.waveform, json.dumps(MACHINE))) == said.stdout
    assert report["machine_fits"].value in ("yes", "no")
    assert "machine_fits" not in qw.report(made.waveform)


def test_the_progress_rises_and_false_or_an_exception_ends_the_work():
    shares = []
    qw.synthesize(REQUIRED, quick=True, progress=shares.append)
    assert len(shares) > 10 and shares == sorted(shares) and 0.0 <= shares[0] and shares[-1] <= 1.0
    calls = []
    with pytest.raises(qw.Cancelled):
        qw.synthesize(REQUIRED, quick=True, progress=lambda share: bool(calls.append(share)))
    assert len(calls) == 1

    def fail(share):
        raise LookupError("mine")

    with pytest.raises(LookupError, match="mine"):
        qw.synthesize(REQUIRED, quick=True, progress=fail)
    with pytest.raises(TypeError):
        qw.synthesize(REQUIRED, quick=True, progress=3)


def test_what_is_wrong_is_raised_with_its_key_and_line(made):
    with pytest.raises(qw.DefinitionError, match="Q: stands twice") as raised:
        qw.synthesize('{"Points": [[1, 1], [2, 1]],\n"Q": 5, "Q": 6}')
    assert raised.value.key == "Q" and raised.value.line == 2
    with pytest.raises(qw.DefinitionError, match="MaxForce: needs MovingMass"):
        qw.report(made.waveform, {"MaxForce": 5})
    with pytest.raises(ValueError, match="states no limit"):
        qw.report(made.waveform, {})
    with pytest.raises(ValueError, match="shape: is none of shock, sweep, random"):
        qw.synthesize(REQUIRED, shape="round")
    with pytest.raises(ValueError, match="Fsamp: 100 Hz is too low"):
        qw.synthesize({**REQUIRED, "Fsamp": 100})
    with pytest.raises(ValueError):
        qw.synthesize("")


def test_what_is_not_met_is_raised_unless_it_is_forced():
    tight = {**REQUIRED, "MaxDisplacement": 0.01}
    with pytest.raises(qw.DefinitionError, match="MaxDisplacement: .* the limit is 0.01 mm"):
        qw.synthesize(tight, quick=True)
    forced = qw.synthesize(tight, quick=True, force=True)
    assert not forced and forced.failure == forced.warnings[0] and len(forced.waveform) > 0
