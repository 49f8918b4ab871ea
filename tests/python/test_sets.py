"""Parameter sets: keyword arguments and properties, enumerations, help, and what is refused."""
import enum
import json
import pathlib

import numpy as np
import pytest

import qarv_wave as qw
from conftest import SOURCE

SINGLE = {"period": 0.01, "peak_level": 2.0, "nsamp": 16}
SETS = {
    "Classical": qw.Classical, "TolUserDef": qw.TolUserDef, "TolSpecify": qw.TolSpecify,
    "Symmetry": qw.Symmetry, "SineBeatBurst": qw.SineBeatBurst, "Measure": qw.Measure,
    "DataEditLog": qw.DataEdit, "Gradual": qw.Gradual, "Single": qw.Single, "Damping": qw.Damping,
    "Elements": qw.DampingElement,
}


def schema():
    return json.loads(pathlib.Path(SOURCE, "examples/definition.schema.json").read_text())


def snake(key):
    return "".join("_" + c.lower() if c.isupper() else c for c in key).lstrip("_")


@pytest.mark.parametrize("key", SETS)
def test_every_field_of_a_definition_is_a_property_with_its_sentence_unit_and_default(key):
    fields = schema()["$defs"][key]["properties"]
    cls = SETS[key]
    properties = {name: value.__doc__ for name, value in vars(cls).items() if isinstance(value, property)}
    assert list(properties) == [snake(name) for name in fields]
    for name, field in fields.items():
        if name == "Samples":
            continue
        doc = properties[snake(name)]
        assert doc.lower().startswith(field["description"].lower())
        required = name in schema()["$defs"][key].get("required", [])
        assert doc.endswith("; required") == required
        if not required and isinstance(field.get("default"), (int, float)):
            assert doc.endswith(f"; default {field['default']!r}")
        assert doc in cls.__doc__


def test_a_set_has_the_values_it_is_given_and_the_defaults_of_the_rest():
    single = qw.Single(**SINGLE)
    assert (single.period, single.peak_level, single.nsamp) == (0.01, 2.0, 16)
    assert (single.edge_time, single.length_type) == (0.0, 0)


def test_numbers_of_numpy_are_numbers():
    single = qw.Single(period=np.float32(0.5), peak_level=np.int64(3), nsamp=np.uint8(16))
    assert (single.period, single.peak_level, single.nsamp) == (0.5, 3.0, 16)
    assert qw.Symmetry(wave_kind=1, peak=1, width=1, devide_comp=np.bool_(True)).devide_comp is True


def test_enumerations_are_python_enums_that_hold_any_code():
    assert issubclass(qw.WaveKind, enum.IntEnum) and qw.WaveKind.HAVERSINE == 6
    pulse = qw.Symmetry(wave_kind=qw.WaveKind.TRIANGLE, peak=1.0, width=0.1)
    assert pulse.wave_kind is qw.WaveKind.TRIANGLE
    strange = pulse.replace(wave_kind=77)
    assert strange.wave_kind == 77 and isinstance(strange.wave_kind, qw.WaveKind)
    assert eval(repr(strange), vars(qw)) == strange
    with pytest.raises(ValueError):
        qw.WaveKind("HAVERSINE")
    with pytest.raises(ValueError):
        qw.WaveKind(2**31)


@pytest.mark.parametrize("change, error, text", [
    ({"period": "0.01"}, TypeError, "period: must be a number, not str"),
    ({"period": None}, TypeError, "period: must be a number, not NoneType"),
    ({"period": True}, TypeError, "period: must be a number, not bool"),
    ({"nsamp": 16.0}, TypeError, "nsamp: must be a whole number, not float"),
    ({"nsamp": -1}, ValueError, "nsamp: is not within 0 to 4294967295"),
    ({"nsamp": 2**32}, ValueError, "nsamp: is not within 0 to 4294967295"),
    ({"nsamp": 2**70}, ValueError, "nsamp: does not fit 64 bits"),
    ({"perod": 0.01}, TypeError, "Single() has no keyword argument 'perod'"),
    ({"length_type": qw.WaveKind.HALF_SINE}, TypeError, None),
])
def test_a_wrong_value_is_refused_with_its_name(change, error, text):
    if text is None:  # a field without enumeration takes any code
        assert qw.Single(**{**SINGLE, **change}).length_type == 1
        return
    with pytest.raises(error) as raised:
        qw.Single(**{**SINGLE, **change})
    assert str(raised.value) == text


@pytest.mark.parametrize("make, error, text", [
    (lambda: qw.Single(period=0.01), TypeError, "Single() needs the keyword argument 'peak_level'"),
    (lambda: qw.Symmetry(wave_kind=qw.CmpType.CMP_RAMP, peak=1, width=1), TypeError,
     "wave_kind: must be a WaveKind, not CmpType"),
    (lambda: qw.Symmetry(wave_kind=1, peak=1, width=1, devide_comp=1), TypeError,
     "devide_comp: must be True or False, not int"),
    (lambda: qw.TolUserDef(tol_puls_beg_u=0.1), ValueError, "tol_puls_beg_u: has no effect without TolPulsSet"),
    (lambda: qw.Damping(nsamp=1, sync_wave_type=1, elements=[1]), TypeError,
     "elements[0]: must be a DampingElement, not int"),
    (lambda: qw.Damping(nsamp=1, sync_wave_type=1, elements=1), TypeError, "elements: must be a list, not int"),
    (lambda: qw.TolSpecify(wave_kind=1, base_standard=1, std_name=b"x"), TypeError,
     "std_name: must be a string, not bytes"),
    (lambda: qw.Measure(meas_path="x", samples=[[1.0]]), ValueError, "samples: has not one dimension"),
    (lambda: qw.Measure(meas_path="x", samples=["a"]), TypeError, "samples: is no array of real numbers"),
    (lambda: qw.Measure(meas_path="x", samples=[1j]), TypeError, "samples: is no array of real numbers"),
    (lambda: qw.DataEdit(kind=1, params="12"), TypeError, "params: must be a list, not str"),
])
def test_a_set_that_makes_no_sense_is_refused(make, error, text):
    with pytest.raises(error) as raised:
        make()
    assert str(raised.value) == text


def test_a_set_is_frozen_and_replace_makes_another():
    single = qw.Single(**SINGLE)
    with pytest.raises(AttributeError):
        single.period = 1.0
    with pytest.raises(AttributeError):
        single.colour = "red"
    other = single.replace(nsamp=32)
    assert (single.nsamp, other.nsamp, other.period) == (16, 32, 0.01)
    assert single != other and single == qw.Single(**SINGLE) and single != 5
    with pytest.raises(TypeError):
        single.replace(perod=1.0)
    with pytest.raises(TypeError):
        hash(single)


def test_nested_sets_and_lists_go_in_and_come_out():
    element = qw.DampingElement(freq=50.0, ampl=10.0, zeta=0.05)
    shock = qw.Damping(nsamp=8, sync_wave_type=qw.SyncWaveType.SYNC_WAVE_WAVELET, elements=[element, element])
    assert shock.elements == (element, element) and shock.replace(nsamp=9).elements == shock.elements
    levels = qw.TolUserDef(tol_main_u=0.2)
    pulse = qw.Classical(wave_kind=1, main_ampl=1.0, main_width=0.01, fmax=100.0, nsamp=64, tol_kind=10)
    assert pulse.tol_user_def is None
    assert pulse.replace(tol_user_def=levels).tol_user_def == levels
    assert pulse.replace(tol_user_def=levels).replace(tol_user_def=None) == pulse


def test_what_is_no_number_is_kept_and_can_be_pasted_back():
    single = qw.Single(period=float("inf"), peak_level=float("-inf"), nsamp=16, edge_time=float("nan"))
    assert np.isnan(single.edge_time)
    assert repr(single) == ("Single(period=float('inf'), peak_level=float('-inf'), edge_time=float('nan'), nsamp=16)")


def test_texts_keep_bytes_that_are_no_utf8():
    measured = qw.Measure(meas_path=b"\xff\x82.csv".decode("utf-8", "surrogateescape"), samples=[1.0])
    assert measured.meas_path.encode("utf-8", "surrogateescape") == b"\xff\x82.csv"
    assert eval(repr(measured), vars(qw)) == measured


def test_the_samples_of_a_measured_set_are_a_copy_that_cannot_be_written():
    source = np.arange(5.0)[::2]
    measured = qw.Measure(meas_path="x", samples=source)
    source[0] = 9.0
    assert measured.samples.tolist() == [0.0, 2.0, 4.0]
    with pytest.raises(ValueError):
        measured.samples[0] = 1.0
    assert qw.Measure(meas_path="x", samples=np.arange(3, dtype=np.int16)).samples.dtype == np.float64
