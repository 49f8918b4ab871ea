#!/usr/bin/python3
"""The comment of every accessor in the public headers begins with what the list of fields says of it:

    /// Nominal width of the pulse. [s]  Default 0; above 0.

    check_headers.py FIELD_LIST SOURCE_DIR
"""
import json
import pathlib
import re
import subprocess
import sys

# The class of every set, and its header.
CLASSES = {
    "settings": ("CWaveDef", "wave_def/hdr/wave_def/wave_def.h"),
    "Single": ("CWaveDefSingle", "wave_def/hdr/wave_def/wave_def_single.h"),
    "Gradual": ("CWaveDefGradual", "wave_def/hdr/wave_def/wave_def_gradual.h"),
    "SineBeatBurst": ("CWaveDefSineBeatBurst", "wave_def/hdr/wave_def/wave_def_sine_beat_burst.h"),
    "Symmetry": ("CWaveDefSymmetry", "wave_def/hdr/wave_def/wave_def_symmetry.h"),
    "Damping": ("CWaveDefDamping", "wave_def/hdr/wave_def/wave_def_damping.h"),
    "Elements": ("CWaveDefDampingElm", "wave_def/hdr/wave_def/wave_def_damping_elm.h"),
    "Measure": ("CWaveDefMeasure", "wave_def/hdr/wave_def/wave_def_measure.h"),
    "DataEditLog": ("CDataEditLogElm", "common/hdr/data_edit_log/data_edit_log.h"),
    "Classical": ("CWaveDefClassical", "wave_def/hdr/wave_def/wave_def_classical.h"),
    "TolUserDef": ("CWaveDefTolUserDef", "wave_def/hdr/wave_def/wave_def_tol_user_def.h"),
    "TolSpecify": ("CWaveDefTolSpecify", "wave_def/hdr/wave_def/wave_def_tol_specify.h"),
}
# Fields that have another name in the class, and the one that is an argument there instead.
NAMES = {"Elements": "DefDampingElmList", "TolUserDef": "DefTolUserDef", "TolSpecify": "DefTolSpecify"}
ARGUMENTS = {("Measure", "Samples")}
# Members that are no field of a definition: its family, and the list that has its own set.
MEMBERS = {("settings", "WaveType"), ("Damping", "Elms")}
# The headers count units as one; a ratio is one to the peak.
UNITS = {"samples": "sample", "widths": "width", "frames": "frame", "ratio to the peak": "ratio",
         "ratio to the area": "1"}


def number(value):
    return f"{value:g}"


def initial(field):
    value = field.get("initial")
    if value is None or value == [] or field["kind"] == "Unit":
        return "none"
    if value == "":
        return "empty"
    if isinstance(value, bool):
        return str(value).lower()
    return number(value) if isinstance(value, (int, float)) else value


def span(field):
    """The range that makes sense; none of what takes no part in the waveform or comes out of it."""
    sentence = field["sentence"]
    if field["kind"] not in ("Number", "Count") or sentence.startswith("result") or "kept for" in sentence:
        return ""
    if "above" in field:
        return "; above " + number(field["above"])
    if "from" in field and "to" in field:
        return f"; {number(field['from'])} to {number(field['to'])}"
    if "to" in field:
        return "; up to " + number(field["to"])
    if "from" in field or field["kind"] == "Count":
        return "; from " + number(field.get("from", 0))
    return "; any"


def comment(field):
    """What the comment of the field's accessors begins with."""
    unit = UNITS.get(field["unit"], field["unit"])
    if not unit and field["kind"] in ("Number", "Count"):
        unit = "1"
    sentence = field["sentence"][0].upper() + field["sentence"][1:]
    return f"{sentence}. {f'[{unit}] ' if unit else ''}Default {initial(field)}{span(field)}."


def class_text(source, name, header):
    text = (source / header).read_text()
    begin = re.search(rf"^class (?:\w+_EXPORT )?{name} {{", text, re.M).start()
    return text[begin:text.index("\n};", begin)]


def comments(text):
    """The comment over every getter: over itself, or over a group of them."""
    found, lines = {}, []
    for line in text.splitlines():
        if match := re.match(r"\s*/// ?(.*)", line):
            lines.append(match[1])
            continue
        if match := re.search(r"\bGet(\w+)\(\) const", line):
            found[match[1]] = " ".join(" ".join(lines).split())
        lines = []
    return found


def members(text):
    """The members of the data model."""
    fields = re.search(r"struct Fields {(.*?)operator==", text, re.S)[1]
    return re.findall(r"(\w+)(?: =[^;]*)?;", fields)


source = pathlib.Path(sys.argv[2])
sets = json.loads(subprocess.run([sys.argv[1]], check=True, capture_output=True, text=True).stdout)
failures = [f"{key}: no class is known" for key in sets.keys() - CLASSES.keys()]
checked = 0
for key, (name, header) in CLASSES.items():
    text = class_text(source, name, header)
    said = comments(text)
    expected = {NAMES.get(field["key"], field["key"]): comment(field) for field in sets[key]
                if (key, field["key"]) not in ARGUMENTS}
    for field, begin in expected.items():
        checked += 1
        if not said.get(field, "").startswith(begin):
            failures.append(f"{header}: Get{field}\n  says   {said.get(field)}\n  list   {begin}")
    for field in members(text):
        if field not in expected and (key, field) not in MEMBERS:
            failures.append(f"{header}: {field} is not in the list of fields")

print("\n".join(failures) or f"{checked} accessors")
sys.exit(bool(failures) or checked < 100)
