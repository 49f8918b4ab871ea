#!/usr/bin/python3
"""A page is followed: its files are written, its commands run, and what they print is what the page shows.

A ```json block below a line that ends in `NAME.json`: is that file.  In a ```console block a line that begins with "$ "
is a command, and the lines behind it are what it prints on both streams.  examples/ is where a clone has it.

    check_page.py PAGE QARV_WAVE EXAMPLES
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

page, command, examples = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
text = page.read_text()
failures, commands = [], 0


def run(line, folder, expected):
    path = f"{command.parent}:{os.environ['PATH']}"
    done = subprocess.run(["bash", "-c", line], cwd=folder, env={**os.environ, "PATH": path}, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.stdout != expected:
        failures.append(f"$ {line}\n-- prints\n{done.stdout}-- but the page has\n{expected}")


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    (folder / "examples").symlink_to(examples)
    for before, kind, body in re.findall(r"([^\n]*)\n\n```(\w+)\n(.*?)^```$", text, re.M | re.S):
        if kind == "json":
            file = re.search(r"`([\w.]+\.json)`:$", before)
            if file:
                (folder / file[1]).write_text(body)
            else:
                failures.append(f"a file without a name: {before}")
        elif kind == "console":
            for line, expected in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", body, re.M):
                commands += 1
                run(line, folder, expected)

print("\n".join(failures) or f"{commands} commands")
sys.exit(bool(failures) or commands == 0)
