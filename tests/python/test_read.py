"""Files of other programs: read by their content, with what they say of their samples."""
import pathlib
import subprocess
import wave

import numpy as np
import pytest

import qarv_wave as qw
from conftest import COMMAND, SOURCE


def test_a_csv_file_of_times_and_values_has_their_sampling_frequency(tmp_path):
    file = tmp_path / "record.csv"
    file.write_text("time [s];acceleration\n0,5;1,25\n0,75;-2,5\n1,0;3\n")
    (signal,) = qw.read(file)
    assert (signal.samples.tolist(), signal.fsamp, signal.begin) == ([1.25, -2.5, 3.0], 4.0, 0.5)
    file.write_text("1\n2\n")
    (signal,) = qw.read(str(file))
    assert (signal.samples.tolist(), signal.fsamp, signal.unit) == ([1.0, 2.0], None, "")


def test_a_numpy_file_has_its_samples_and_a_wav_file_its_rate(tmp_path):
    np.save(tmp_path / "a.npy", np.array([1.0, 2.5, -3.0]))
    assert qw.read(tmp_path / "a.npy")[0].samples.tolist() == [1.0, 2.5, -3.0]
    with wave.open(str(tmp_path / "a.wav"), "wb") as file:
        file.setnchannels(2)
        file.setsampwidth(2)
        file.setframerate(8000)
        file.writeframes(np.array([[0, 32767], [-32767, 0]], dtype="<i2").tobytes())
    left, right = qw.read(tmp_path / "a.wav")
    assert (left.fsamp, len(left.samples)) == (8000.0, 2)
    assert right.samples[0] == -left.samples[1] > 0.99


@pytest.mark.skipif(not COMMAND, reason="the command is not built")
def test_what_the_command_writes_is_read_back(tmp_path):
    waveform = qw.define(qw.Single(period=0.01, peak_level=2.0, nsamp=64), fsamp=1000.0, unit_ampl="g")
    (tmp_path / "sine.json").write_text(waveform.to_json())
    subprocess.run([COMMAND, "generate", "sine.json", "--uff", "sine.uff", "--npy", "sine.npy"], cwd=tmp_path, check=True,
                   capture_output=True)
    of_uff, of_npy = qw.read(tmp_path / "sine.uff")[0], qw.read(tmp_path / "sine.npy")[0]
    assert (of_uff.fsamp, of_uff.unit) == (1000.0, "g")
    np.testing.assert_allclose(of_uff.samples, waveform.wave, rtol=1e-12, atol=1e-15)
    assert of_npy.samples.tobytes() == waveform.wave.tobytes() and of_npy.fsamp == 1000.0


def test_a_file_that_is_none_of_them_is_refused_with_its_name_and_line(tmp_path):
    file = tmp_path / "bad.csv"
    file.write_text("0,1\n1,x\n")
    with pytest.raises(ValueError) as raised:
        qw.read(file)
    assert str(raised.value).startswith(f"{file}: line 2: ")
    file.write_text("0,1\n1,2\n5,3\n")
    with pytest.raises(ValueError, match="bad.csv: line "):
        qw.read(file)
    file.write_bytes(b"")
    with pytest.raises(ValueError, match="bad.csv: "):
        qw.read(file)
    with pytest.raises(FileNotFoundError):
        qw.read(tmp_path / "none.csv")


def test_the_example_record_is_read():
    (signal,) = qw.read(pathlib.Path(SOURCE, "examples/definitions/shock_record.csv"))
    assert signal.fsamp == pytest.approx(25600.0) and len(signal.samples) == 1536
