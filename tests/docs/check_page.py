#!/usr/bin/python3
"""A page is followed: its files are written, its commands run, and what they print on both streams is what the page shows.
examples/ is where a clone has it.

    check_page.py PAGE QARV_WAVE EXAMPLES
"""
import os
import pathlib
import subprocess
import sys
import tempfile

from follow import follow

page, command, examples = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
text = page.read_text()
failures, commands = [], 0


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    (folder / "examples").symlink_to(examples)

    def run(line, expected):
        global commands
        commands += 1
        path = f"{command.parent}:{os.environ['PATH']}"
        done = subprocess.run(["bash", "-c", line], cwd=folder, env={**os.environ, "PATH": path}, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.stdout != expected:
            failures.append(f"$ {line}\n-- prints\n{done.stdout}-- but the page has\n{expected}")

    failures += follow(text, folder, "$ ", run)

print("\n".join(failures) or f"{commands} commands")
sys.exit(bool(failures) or commands == 0)
