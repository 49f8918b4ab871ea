"""Waveforms: views, findings, JSON and records, other processes, threads."""
import gc
import json
import multiprocessing
import pickle
import sys
import threading
import weakref
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import qarv_wave as qw

ARRAYS = ("time", "wave", "upper", "lower")
SINGLE = qw.Single(period=0.01, peak_level=2.0, nsamp=16)


def waveform(**changes):
    return qw.define(SINGLE.replace(**changes), fsamp=1000.0, tol_upper_rat=0.1, tol_lower_rat=-0.2)


def test_define_gives_the_samples_and_bands_of_the_formula():
    wave = waveform()
    k = np.arange(16)
    assert len(wave) == 16 and wave.time.tolist() == (k / 1000.0).tolist()
    np.testing.assert_allclose(wave.wave, 2.0 * np.sin(2 * np.pi * k / 10), atol=1e-14)
    peak = np.abs(wave.wave).max()
    assert (wave.upper == wave.wave + peak * 0.1).all() and (wave.lower == wave.wave + peak * -0.2).all()


def test_the_settings_are_properties_and_a_classical_pulse_has_its_own_sampling_frequency():
    wave = qw.define(SINGLE, fsamp=1000.0, unit_ampl="g", long_wave=True, max_nsamp=7, auto_fsamp=True)
    assert (wave.fsamp, wave.sample_rate, wave.unit_ampl, wave.unit_text) == (1000.0, 1000.0, "g", "g")
    assert (wave.long_wave, wave.max_nsamp, wave.auto_fsamp, wave.tol_upper_rat) == (True, 7, True, 0.0)
    assert wave.set == SINGLE and wave.family == "single sine wave" and str(wave) == wave.title == "sine 2 g, 100 Hz"
    pulse = qw.Classical(wave_kind=1, main_ampl=50.0, main_width=0.011, fmax=1000.0, nsamp=512, tol_kind=4)
    assert qw.define(pulse).fsamp == qw.define(pulse).sample_rate == 2560.0
    assert qw.define(pulse, fsamp=2000.0).fsamp == 2000.0
    with pytest.raises(TypeError, match="needs the keyword argument 'fsamp'"):
        qw.define(SINGLE)


def test_views_are_no_copies_and_outlive_their_waveform():
    for name in ARRAYS:
        wave = waveform(nsamp=4096)
        view = getattr(wave, name)
        again = getattr(wave, name)
        assert view.__array_interface__["data"] == again.__array_interface__["data"]
        assert not view.flags.owndata and view.base is wave
        kept = view.copy()
        held = sys.getrefcount(wave)
        del again
        assert sys.getrefcount(wave) == held - 1  # each view holds the waveform
        del wave
        gc.collect()
        [waveform(nsamp=4096, peak_level=float(i)) for i in range(50)]  # who would take its memory
        assert view.tobytes() == kept.tobytes()


def test_a_view_cannot_be_written_nor_made_writeable():
    wave = waveform()
    for name in ARRAYS:
        view = getattr(wave, name)
        with pytest.raises(ValueError):
            view[0] = 1.0
        with pytest.raises(ValueError):
            view.flags.writeable = True
        with pytest.raises(AttributeError):
            setattr(wave, name, np.zeros(16))


def test_a_waveform_is_made_by_define_only():
    with pytest.raises(TypeError):
        qw.Waveform()
    with pytest.raises(TypeError, match="takes the parameter set of a waveform family, not TolUserDef|not qarv"):
        qw.define(qw.TolUserDef(), fsamp=1.0)


def test_an_empty_waveform_has_empty_views():
    wave = qw.define(qw.Measure(meas_path="x", samples=[]), fsamp=1.0)
    assert [getattr(wave, name).size for name in ARRAYS] == [0] * 4


# ---- What is refused ----------------------------------------------------------------------------


def test_what_is_refused_raises_its_findings():
    with pytest.raises(qw.DefinitionError) as raised:
        waveform(nsamp=0)
    error = raised.value
    assert isinstance(error, ValueError) and str(error) == "Single: Nsamp is 0"
    assert error.findings == qw.check(SINGLE.replace(nsamp=0), fsamp=1000.0, tol_upper_rat=0.1, tol_lower_rat=-0.2)
    assert error.findings[0].severity is qw.Severity.FAILS and error.findings[0].text == "Nsamp is 0"
    copied = pickle.loads(pickle.dumps(error))
    assert (str(copied), copied.findings) == (str(error), error.findings)


def test_a_remedy_mends_the_definition():
    pulse = qw.Classical(wave_kind=qw.WaveKind.HALF_SINE, main_ampl=50.0, main_width=0.0001, fmax=1000.0, nsamp=512,
                         tol_kind=qw.TolKind.TOL_FIXED_4)
    with pytest.raises(qw.DefinitionError) as raised:
        qw.define(pulse)
    finding = raised.value.findings[0]
    assert finding.severity is qw.Severity.FAILS
    assert finding.remedies == (qw.Remedy("MainWidth", 0.00078125, "main_width"),)
    assert len(qw.define(pulse.replace(**{r.name: r.value for r in finding.remedies}))) == 512


def test_check_warns_of_a_waveform_that_nobody_wants_and_is_empty_for_a_sound_one():
    warned = qw.check(SINGLE, fsamp=1000.0, tol_upper_rat=0.1, tol_lower_rat=0.2)
    assert warned and all(f.severity is qw.Severity.WARNS for f in warned)
    assert qw.check(SINGLE, fsamp=1000.0, tol_upper_rat=0.1, tol_lower_rat=-0.1) == ()


def test_a_frame_beyond_all_memory_is_an_error_of_its_own():
    beat = qw.SineBeatBurst(wave_kind=qw.SineBeatBurstWaveKind.SINE_BURST, ampl=1.0, freq=1.0, cycle=2**32 - 1,
                            frame=2**32 - 1)
    with pytest.raises((qw.DefinitionError, MemoryError)):
        qw.define(beat, fsamp=1e9)


# ---- JSON and records ---------------------------------------------------------------------------


@pytest.mark.parametrize("text, key, line", [
    ('{"Fsamp": 1,\n "Single": {"Perod": 1}}', "Single.Perod", 2),
    ('{"Fsamp": "x",\n "Single": {}}', "Fsamp", 1),
    ('{"Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 1}}', "Fsamp", 1),
    ("[]", "", 0),
])
def test_a_text_that_is_no_definition_says_where(text, key, line):
    with pytest.raises(qw.DefinitionError) as raised:
        qw.Waveform.from_json(text)
    assert (raised.value.key, raised.value.line, raised.value.findings) == (key, line, ())


def test_a_text_whose_parameters_are_refused_has_findings():
    with pytest.raises(qw.DefinitionError) as raised:
        qw.Waveform.from_json('{"Fsamp": 0, "Single": {"Period": 1, "PeakLevel": 1, "Nsamp": 1}}')
    assert raised.value.findings


def test_json_holds_every_field_and_reads_back():
    wave = waveform()
    values = json.loads(wave.to_json())
    assert values["Fsamp"] == 1000.0 and values["Single"]["PeakLevel"] == 2.0
    assert qw.Waveform.from_json(wave.to_json()) == wave


def test_a_definition_with_a_file_asks_for_its_samples():
    text = '{"Measure": {"MeasPath": "drop.csv"}}'
    asked = []

    def samples(path):
        asked.append(path)
        return [1.0, 2.0], 50.0

    wave = qw.Waveform.from_json(text, samples=samples)
    assert (asked, wave.wave.tolist(), wave.sample_rate) == (["drop.csv"], [1.0, 2.0], 50.0)
    with pytest.raises(qw.DefinitionError):
        qw.Waveform.from_json(text)
    with pytest.raises(ZeroDivisionError):
        qw.Waveform.from_json(text, samples=lambda path: 1 / 0)


def test_a_record_that_is_cut_or_goes_on_is_refused():
    record = waveform().to_record()
    for end in range(len(record)):
        with pytest.raises(qw.DefinitionError):
            qw.Waveform.from_record(record[:end])
    with pytest.raises(qw.DefinitionError):
        qw.Waveform.from_record(record + b"\0")
    with pytest.raises(TypeError):
        qw.Waveform.from_record("text")


def test_a_unit_that_no_text_names_survives():
    codes = {"Codes": [99, 1, 1, 1], "Calcs": [1, 1, 1, 1], "Suffix": 0}
    wave = qw.define(SINGLE, fsamp=1000.0, unit_ampl=codes)
    assert wave.unit_ampl == codes and wave.unit_text == "?"
    assert eval(repr(wave), vars(qw)) == wave == pickle.loads(pickle.dumps(wave))


def test_equality_is_that_of_settings_parameters_and_samples():
    assert waveform() == waveform() and waveform() != waveform(peak_level=3.0)
    assert waveform() != qw.define(SINGLE, fsamp=1000.0) and waveform() != "a waveform"
    with pytest.raises(TypeError):
        hash(waveform())


def other_side(wave):
    return wave, wave.wave.sum(), qw.define(wave.set, fsamp=wave.fsamp)


def test_waveforms_sets_and_errors_travel_between_processes():
    waves = [waveform(peak_level=float(level)) for level in range(1, 5)]
    with multiprocessing.get_context("spawn").Pool(2) as pool:
        for sent, (came, total, anew) in zip(waves, pool.map(other_side, waves)):
            assert came == sent and total == sent.wave.sum() and anew.wave.tobytes() == sent.wave.tobytes()
        texts = [sent.to_json() for sent in waves]
        assert pool.map(qw.Waveform.from_json, texts) == waves
        assert pool.map(qw.Waveform.from_record, [sent.to_record() for sent in waves]) == waves
        with pytest.raises(qw.DefinitionError) as raised:
            pool.apply(qw.define, (SINGLE.replace(nsamp=0),), {"fsamp": 1000.0})
    assert raised.value.findings


# ---- Threads ------------------------------------------------------------------------------------


def test_threads_generate_side_by_side():
    elements = [qw.DampingElement(freq=10.0 + i, ampl=1.0, zeta=0.02) for i in range(20)]
    shock = qw.Damping(nsamp=20000, sync_wave_type=qw.SyncWaveType.SYNC_WAVE_DAMPED_SINE, freq=3.0, zeta=0.5,
                       elements=elements)

    def generate(level):
        made = qw.define(shock.replace(zeta=0.5 + 0.01 * level), fsamp=5000.0)
        return made.wave.tobytes()

    alone = [generate(level) for level in range(8)]
    with ThreadPoolExecutor(4) as pool:
        for _ in range(3):
            assert list(pool.map(generate, range(8))) == alone


def test_the_lock_is_released_while_a_waveform_is_generated():
    # With a switch interval beyond the test's end another thread runs only where the lock is given away.
    ran = threading.Event()
    go = threading.Event()

    def other():
        go.wait()
        ran.set()

    thread = threading.Thread(target=other)
    interval = sys.getswitchinterval()
    thread.start()
    try:
        sys.setswitchinterval(1000.0)
        go.set()
        for _ in range(2000):
            qw.define(SINGLE.replace(nsamp=100000), fsamp=1e5)
            if ran.is_set():
                break
        assert ran.is_set()
    finally:
        sys.setswitchinterval(interval)
        thread.join()


def test_nothing_is_kept_of_a_waveform_that_is_gone():
    class Watched(np.ndarray):
        pass

    wave = waveform()
    view = wave.wave.view(Watched)
    gone = weakref.ref(view)
    del view
    gc.collect()
    assert gone() is None and sys.getrefcount(wave) == 2
