#!/usr/bin/env bash
# Installs the package with pip, without a network, and uses it from elsewhere.
#   check_pip.sh SOURCE WORK [PYTHON]
set -euo pipefail
unset PYTHONPATH
source=$(realpath "$1")
work=$2
python=${3:-/usr/bin/python3}
rm -rf "$work"
mkdir -p "$work"
work=$(realpath "$work")
# The sources as they are in the repository: pip leaves folders of its own beside them.
git -C "$source" ls-files -z | (cd "$source" && tar --null -T - -cf -) | (mkdir "$work/source" && tar -xf - -C "$work/source")
"$python" -m venv --system-site-packages "$work/venv"
cd "$work/source"
"$work/venv/bin/python" -m pip install --no-build-isolation --no-index --no-deps .
cd "$work"
"$work/venv/bin/python" - <<'END'
import pathlib
import sys

import qarv_wave as qw

assert pathlib.Path(qw.__file__).is_relative_to(sys.prefix), qw.__file__
for name in ("py.typed", "_core.pyi", "_define.pyi"):
    assert pathlib.Path(qw.__file__).with_name(name).exists(), name
wave = qw.define(qw.Single(period=0.01, peak_level=2.0, nsamp=16), fsamp=1000.0)
assert len(wave) == 16 and qw.Waveform.from_record(wave.to_record()) == wave
END
echo "installed and used"
