#!/usr/bin/python3
"""The schema of a definition: it is the committed one, takes every example, and refuses what the command refuses.

    check_schema.py QARV_WAVE EXAMPLES
"""
import copy
import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

command, examples = sys.argv[1], pathlib.Path(sys.argv[2])
text = subprocess.run([command, "schema"], check=True, capture_output=True, text=True).stdout
schema = json.loads(text)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
failures = []


def expect(condition, what):
    if not condition:
        failures.append(what)


expect((examples / "definition.schema.json").read_text() == text, "examples/definition.schema.json is another one")
definitions = sorted((examples / "definitions").glob("*.json"))
expect(len(definitions) > 20, "there are no examples")


def is_read(definition, folder):
    """Whether the command takes the text as a definition, whatever it thinks of its values."""
    file = folder / "d.json"
    file.write_text(json.dumps(definition))
    return subprocess.run([command, "check", file], capture_output=True).returncode != 2


def broken(definition):
    """Variants that are no definitions, with what is wrong with them."""
    family = next(key for key in definition if isinstance(definition[key], dict))
    for key in definition[family]:
        if key == "MeasPath" or key == "Elements":
            continue
        other = copy.deepcopy(definition)
        other[family][key] = {"No": "such value"}
        yield f"{family}.{key} is an object", other
    other = copy.deepcopy(definition)
    other[family]["NoSuchKey"] = 1
    yield "an unknown key", other
    other = copy.deepcopy(definition)
    other["Single" if family != "Single" else "Gradual"] = {}
    yield "two families", other
    other = copy.deepcopy(definition)
    del other[family]
    yield "no family", other


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    for file in definitions:
        definition = json.loads(file.read_text())
        expect(definition.get("$schema") == "../definition.schema.json", f"{file.name} names no schema")
        for error in validator.iter_errors(definition):
            failures.append(f"{file.name}: {error.message}")
        shown = subprocess.run([command, "generate", file, "--record", folder / "r"], capture_output=True)
        expect(shown.returncode == 0, f"{file.name} is not generated")
        full = subprocess.run([command, "show", folder / "r"], capture_output=True, text=True).stdout
        for error in validator.iter_errors(json.loads(full)):
            failures.append(f"{file.name} with every field: {error.message}")
        for what, other in broken(definition):
            expect(not validator.is_valid(other), f"{file.name}: the schema takes {what}")
            expect(not is_read(other, folder), f"{file.name}: the command takes {what}")

print("\n".join(failures) or f"{len(definitions)} examples")
sys.exit(bool(failures))
