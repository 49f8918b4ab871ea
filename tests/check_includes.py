#!/usr/bin/python3
"""Every folder includes only what its floor may: nothing points upwards, and the libraries of numbers stand on the
C++ standard library alone.

    check_includes.py         in the project's top folder
"""
import pathlib
import re
import sys

# A floor and those that it stands on.
FLOORS = {
    "common": [],
    "wave_def": ["common"],
    "analysis": ["common"],
    "synthesis": ["wave_def", "analysis", "common"],
    "text": [],
    "definition": ["text", "analysis", "wave_def", "common"],
    "exchange": ["text", "common"],
    "assess": ["definition", "synthesis", "text", "analysis", "wave_def", "common"],
    "capi": ["assess", "exchange", "definition", "synthesis", "text", "analysis", "wave_def", "common"],
    "python": ["assess", "exchange", "definition", "synthesis", "text", "analysis", "wave_def", "common"],
    "command": ["assess", "exchange", "definition", "synthesis", "text", "analysis", "wave_def", "common"],
}
# Libraries beside the C++ standard library, by the folder or name of their headers.
LIBRARIES = {
    "text": ["fmt/"],
    "definition": ["fmt/", "nlohmann/"],
    "exchange": ["fmt/", "sndfile.h", "matio.h", "hdf5.h", "stdlib.h", "unistd.h"],
    "assess": ["fmt/", "nlohmann/"],
    "capi": ["nlohmann/", "stddef.h", "stdint.h"],
    "python": ["fmt/", "nlohmann/", "pybind11/", "Python.h"],
    "command": ["fmt/", "nlohmann/", "CLI/", "sys/", "fcntl.h", "spawn.h", "unistd.h", "direct.h", "io.h", "process.h",
                "windows.h"],
}
# What is internal to a floor and meant for those above it.
SHARED = {"common": ["common/src/numeric"], "wave_def": ["wave_def/internal"], "definition": ["definition/internal"]}
SOURCES = ("*.h", "*.cpp")


def files_of(floor):
    root = pathlib.Path(floor)
    return [path for pattern in SOURCES for path in sorted(root.rglob(pattern))]


def homes():
    """From the name by which a header is included to the files that it may be."""
    found = {}
    for floor in FLOORS:
        for path in files_of(floor):
            if path.suffix == ".h":
                parts = path.parts
                start = 2 if parts[1] in ("hdr", "src", "internal") else 1
                found.setdefault("/".join(parts[start:]), []).append((floor, path))
    return found


def is_offered(floor, path):
    if path.parts[1] == "hdr":
        return True
    return any(str(path).startswith(shared) for shared in SHARED.get(floor, []))


def main():
    headers = homes()
    wrong = []
    checked = 0
    for floor, below in FLOORS.items():
        for path in files_of(floor):
            for number, line in enumerate(path.read_text().splitlines(), 1):
                match = re.match(r'\s*#\s*include\s+(["<])([^">]+)[">]', line)
                if not match:
                    continue
                checked += 1
                quote, name = match.groups()
                place = f"{path}:{number}: {name}"
                if quote == "<":
                    standard = re.fullmatch(r"[a-z_0-9]+", name) is not None
                    if not standard and not any(name.startswith(prefix) for prefix in LIBRARIES.get(floor, [])):
                        wrong.append(f"{place} is no header of {floor}/'s libraries")
                    continue
                if name == "wave_def/export.h":  # made when the library is built
                    continue
                at = headers.get(name, []) + [(floor, path.parent / name)] * (path.parent / name).exists()
                own = any(home == floor for home, _ in at)
                offered = any(home in below and is_offered(home, file) for home, file in at)
                if not own and not offered:
                    wrong.append(f"{place} is not below {floor}/" if at else f"{place} is nowhere")
    print("\n".join(wrong) or f"{checked} includes")
    return bool(wrong) or checked < 500


sys.exit(main())
