"""The stubs are those of the fields, and mypy accepts them and a program that uses them."""
import os
import pathlib
import shutil
import subprocess
import sys

import pytest

import qarv_wave
from conftest import SOURCE

HERE = pathlib.Path(__file__).parent
MYPY = shutil.which("mypy", path="/usr/bin:" + os.environ["PATH"])
needs_mypy = pytest.mark.skipif(MYPY is None, reason="mypy is not installed")
# What a user may get wrong, and what mypy calls it.
WRONG = {
    "qw.Single(period=0.01)": "call-arg",
    "qw.Single(period='x', peak_level=1.0, nsamp=1)": "arg-type",
    "qw.define(qw.Single(period=0.01, peak_level=1.0, nsamp=1))": "call-overload",
    "qw.define(qw.TolUserDef(), fsamp=1.0)": "call-overload",
    "qw.Single(period=0.01, peak_level=1.0, nsamp=1).nsamp = 2": "misc",
    "qw.Symmetry(wave_kind='HALF_SINE', peak=1.0, width=1.0)": "arg-type",
}


@pytest.fixture(scope="module")
def cache(tmp_path_factory):
    """What mypy has learned of NumPy, for all tests."""
    return tmp_path_factory.mktemp("mypy")


def mypy(cache, *arguments):
    package = pathlib.Path(qarv_wave.__file__).parent.parent
    return subprocess.run(
        [MYPY, "--strict", "--python-executable", sys.executable, "--cache-dir", str(cache / "cache"), *arguments],
        cwd=cache, env={**os.environ, "MYPYPATH": str(package)}, capture_output=True, text=True, check=False)


def test_the_stubs_are_what_the_tool_prints():
    printed = subprocess.run([sys.executable, f"{SOURCE}/tools/python_stubs.py"], capture_output=True, text=True,
                             check=True).stdout
    assert printed == pathlib.Path(SOURCE, "python/qarv_wave/_core.pyi").read_text()


@needs_mypy
def test_mypy_accepts_the_package_and_a_program_in_strict_mode(cache):
    run = mypy(cache, str(HERE / "user_program.py"))
    assert run.returncode == 0, run.stdout
    run = mypy(cache, "-p", "qarv_wave")
    assert run.returncode == 0, run.stdout


@needs_mypy
def test_mypy_refuses_what_a_user_gets_wrong(cache):
    program = cache / "wrong.py"
    program.write_text("import qarv_wave as qw\n" + "\n".join(WRONG) + "\n")
    run = mypy(cache, "--show-error-codes", str(program))
    for line, code in enumerate(WRONG.values(), 2):
        assert any(text.startswith(f"wrong.py:{line}:") and f"[{code}]" in text for text in run.stdout.splitlines()), \
            f"line {line}, {code}\n{run.stdout}"


def test_the_stubs_name_what_the_package_has():
    for name in qarv_wave.__all__:
        assert hasattr(qarv_wave, name)
    public = {name for name in vars(qarv_wave) if not name.startswith("_")}
    assert public == set(qarv_wave.__all__)
