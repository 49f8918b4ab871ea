"""Random definitions of every family are the same from Python, from JSON and from the command."""
import copy
import pickle
import subprocess

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import qarv_wave as qw
from conftest import COMMAND
from definitions import FAMILIES, definitions

NAMES = {**{name: getattr(qw, name) for name in qw.__all__}}
each_family = pytest.mark.parametrize("family", FAMILIES, ids=lambda family: family.__name__)


def bits(array):
    return np.asarray(array).tobytes()


def same(a, b):
    return all(bits(getattr(a, name)) == bits(getattr(b, name)) for name in ("time", "wave", "upper", "lower"))


def outcome(make):
    try:
        return make()
    except qw.DefinitionError as error:
        return error


def run_of_examples(family, check):
    """Runs a check over 100 definitions and counts those that have a waveform."""
    defined = []

    @given(data=st.data())
    def examples(data):
        asked = data.draw(definitions(family))
        waveform = outcome(lambda: qw.define(asked.set(), **asked.settings))
        defined.append(isinstance(waveform, qw.Waveform))
        check(asked, waveform)

    examples()
    assert len(defined) >= 100
    assert sum(defined) >= 50, "most definitions are refused: nothing is compared"


@each_family
def test_the_samples_are_those_of_the_json_path(family):
    def check(asked, waveform):
        other = outcome(lambda: qw.Waveform.from_json(asked.text()))
        assert type(other) is type(waveform)
        if isinstance(waveform, qw.Waveform):
            assert same(waveform, other) and waveform == other

    run_of_examples(family, check)


@each_family
@pytest.mark.skipif(not COMMAND, reason="the command is not built")
def test_the_samples_are_those_of_the_commands_csv(family, tmp_path):
    def check(asked, waveform):
        (tmp_path / "asked.json").write_text(asked.text(), encoding="utf-8")
        run = subprocess.run([COMMAND, "generate", "asked.json", "--csv", "out.csv"], cwd=tmp_path,
                             capture_output=True, check=False)
        assert (run.returncode == 0) == isinstance(waveform, qw.Waveform), run.stderr
        if run.returncode:
            return
        table = np.loadtxt(tmp_path / "out.csv", delimiter=",", skiprows=1, ndmin=2)
        columns = [waveform.time, waveform.wave, waveform.lower, waveform.upper]
        # The file has no -0.
        assert bits(table[:, :4] + 0.0) == bits(np.column_stack(columns) + 0.0)

    run_of_examples(family, check)


@each_family
def test_every_copy_is_equal_and_every_repr_can_be_pasted_back(family):
    def check(asked, waveform):
        parameters = asked.set()
        for copied in (pickle.loads(pickle.dumps(parameters)), copy.copy(parameters), copy.deepcopy(parameters),
                       eval(repr(parameters), dict(NAMES)), parameters.replace()):
            assert copied == parameters and copied is not parameters
        if not isinstance(waveform, qw.Waveform):
            return
        for copied in (pickle.loads(pickle.dumps(waveform)), copy.copy(waveform), copy.deepcopy(waveform),
                       eval(repr(waveform), dict(NAMES)), qw.Waveform.from_record(waveform.to_record()),
                       qw.Waveform.from_json(waveform.to_json())):
            assert copied == waveform and copied is not waveform and same(copied, waveform)
        assert waveform.set == parameters or family is qw.Classical  # which has results in it

    run_of_examples(family, check)


@each_family
def test_check_finds_a_failure_where_there_is_no_waveform(family):
    def check(asked, waveform):
        findings = qw.check(asked.set(), **asked.settings)
        fails = any(f.severity is qw.Severity.FAILS for f in findings)
        assert fails == isinstance(waveform, qw.DefinitionError)
        if fails:
            assert waveform.findings == findings

    run_of_examples(family, check)
