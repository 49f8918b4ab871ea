#!/usr/bin/python3
"""The page for Windows is followed with the archive, under Wine: its files are written, its commands typed, and what they
answer is what the page shows.

    check_windows.py PAGE ARCHIVE      exit 77 where there is no Wine
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "docs"))
from follow import follow  # noqa: E402

page, archive = pathlib.Path(sys.argv[1]).read_text(), sys.argv[2]
if not shutil.which("wine"):
    print("left out: there is no wine to run the archive's programs")
    sys.exit(77)
failures, commands = [], 0


def answer(line, folder):
    words = ["wine", "cmd", "/c", line]
    if line.startswith("gcc "):  # the compiler that makes programs for Windows here
        words = ["x86_64-w64-mingw32-" + line.split()[0], *line.replace("\\", "/").split()[1:]]
    done = subprocess.run(words, cwd=folder, env={**os.environ, "WINEDEBUG": "-all"}, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.stdout.replace("\r\n", "\n")


with tempfile.TemporaryDirectory() as name:
    zipfile.ZipFile(archive).extractall(name)
    (folder,) = pathlib.Path(name).iterdir()

    def run(line, expected):
        global commands
        commands += 1
        said = answer(line, folder)
        whole, further, _ = expected.partition("...\n")
        if not said.startswith(whole) or (said != whole and not further):
            failures.append(f"> {line}\n-- answers\n{said}-- but the page has\n{expected}")

    failures += follow(page, folder, "C:\\shocks>", run)

print("\n".join(failures) or f"{commands} commands")
sys.exit(bool(failures) or commands == 0)
