#!/usr/bin/python3
"""Runs the tests of the Python package; where what they need is missing it says so and exits with 77.

    run.py BUILD_TREE [COMMAND]     arguments of pytest may follow
"""
import importlib.util
import os
import pathlib
import subprocess
import sys

missing = [name for name in ("pytest", "hypothesis", "numpy", "matplotlib") if importlib.util.find_spec(name) is None]
if missing:
    print("skipped: there is no", ", no ".join(missing))
    sys.exit(77)
here = pathlib.Path(__file__).resolve().parent
package = pathlib.Path(sys.argv[1], "python").resolve()
command = str(pathlib.Path(sys.argv[2]).resolve()) if len(sys.argv) > 2 and sys.argv[2] else ""
environment = {**os.environ, "PYTHONPATH": str(package), "PYTHONDONTWRITEBYTECODE": "1",
               "QARV_SOURCE_DIR": str(here.parent.parent), "QARV_WAVE_COMMAND": command}
sys.exit(subprocess.run([sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", str(here), *sys.argv[3:]],
                        env=environment, cwd=here, check=False).returncode)
