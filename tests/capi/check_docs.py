#!/usr/bin/python3
"""Compares what the docs say of the C interface with its header: every function in every language, the number and the
types of its parameters; the lines in C stand in the example that is compiled.

    check_docs.py HEADER DOCS EXAMPLE.c
"""
import pathlib
import re
import sys

# A type of the header, and what other languages pass for it, as a result and as a parameter.
CSHARP_RESULTS = {"int32_t": "int", "size_t": "nuint", "double": "double", "void": "void", "const char*": "IntPtr",
                  "const double*": "IntPtr", "qarv_wave*": "IntPtr"}
CSHARP_PARAMETERS = {"qarv_wave*": "IntPtr", "const qarv_wave*": "IntPtr", "const char*": "byte[]", "char*": "byte[]",
                     "const uint8_t*": "byte[]", "uint8_t*": "byte[]", "const double*": "double[]",
                     "double*": "double[]", "size_t": "nuint", "size_t*": "out nuint", "double": "double",
                     "qarv_wave_progress": "QarvProgress", "void*": "IntPtr"}
LABVIEW_RESULTS = {"int32_t": "I32", "size_t": "UPtr", "double": "DBL", "void": "void", "const char*": "CStr",
                   "const double*": "UPtr", "qarv_wave*": "UPtr"}
LABVIEW_PARAMETERS = {"qarv_wave*": "UPtr", "const qarv_wave*": "UPtr", "const char*": "CStr", "char*": "U8[]",
                      "const uint8_t*": "U8[]", "uint8_t*": "U8[]", "const double*": "DBL[]", "double*": "DBL[]",
                      "size_t": "UPtr", "size_t*": "UPtr*", "double": "DBL",
                      "qarv_wave_progress": "UPtr", "void*": "UPtr"}

wrong = []


def complain(text):
    wrong.append(text)


def typed(declaration):
    """The type and the name of a parameter."""
    match = re.fullmatch(r"(.*[\w\]*])\s+(\w+)", " ".join(declaration.split()))
    return match.groups() if match else (declaration, "")


def functions_of(header):
    """name -> (result, [(type, name)])"""
    found = {}
    for result, name, parameters in re.findall(r"^QARV_WAVE_API ([^;]*?[ *])(qarv_wave_\w+)\(([^)]*)\);", header, re.M):
        parts = [] if parameters.strip() == "void" else parameters.split(",")
        found[name] = (result.strip(), [typed(part) for part in parts])
    return found


def parts_of(docs):
    """Heading -> text of its part."""
    pieces = re.split(r"^## (.*)$", docs, flags=re.M)
    return dict(zip(pieces[1::2], pieces[2::2]))


def compare(language, functions, said, results, parameters):
    for name in sorted(functions.keys() - said.keys()):
        complain(f"{language}: {name} is missing")
    for name, (result, types) in said.items():
        if name not in functions:
            complain(f"{language}: {name} is not in the header")
            continue
        wanted = (results[functions[name][0]], [parameters[kind] for kind, _ in functions[name][1]])
        if (result, types) != wanted:
            complain(f"{language}: {name} is {result} {types}, and in the header {wanted[0]} {wanted[1]}")


def check_csharp(functions, text):
    said, names = {}, {}
    for result, name, parameters in re.findall(r"extern (\w+) (\w+)\(([^)]*)\);", text):
        parts = [typed(part) for part in parameters.split(",") if part.strip()]
        said[name] = (result, [kind for kind, _ in parts])
        names[name] = [word for _, word in parts]
    compare("C#", functions, said, CSHARP_RESULTS, CSHARP_PARAMETERS)
    for name in said.keys() & functions.keys():
        if names[name] != [word for _, word in functions[name][1]]:
            complain(f"C#: the parameters of {name} are named {names[name]}")
    for name, arguments in calls_of(r"Qarv\.(qarv_wave_\w+)\(", text):
        if arguments != len(functions.get(name, ("", []))[1]):
            complain(f"C#: {name} is called with {arguments} arguments")


def check_labview(functions, text):
    said = {}
    for name, result, parameters in re.findall(r"^\| `(qarv_wave_\w+)` \| `(.*?)` \|(.*)\|$", text, re.M):
        said[name] = (result, re.findall(r"`(.*?)`", parameters))
    compare("LabVIEW", functions, said, LABVIEW_RESULTS, LABVIEW_PARAMETERS)


def calls_of(pattern, text):
    """The name and the number of arguments of each call that begins with the pattern."""
    for match in re.finditer(pattern, text):
        depth, at, count, any_argument = 1, match.end(), 0, False
        quote = ""
        while depth > 0:
            c = text[at]
            if c in "'\"" and quote in ("", c):
                quote = "" if quote else c
            elif not quote:
                depth += (c in "([{") - (c in ")]}")
                count += c == "," and depth == 1
            any_argument |= depth > 0 and not c.isspace()
            at += 1
        yield match.group(1), count + any_argument


def check_matlab(functions, text):
    calls = list(calls_of(r"calllib\('libqarv_wave_c', '(qarv_wave_\w+)'(?=[,)])", text))
    if len(calls) < 5:
        complain("MATLAB: no calls found")
    for name, arguments in calls:
        # What stands behind the name begins with a comma, which the count takes for one argument more.
        if name not in functions:
            complain(f"MATLAB: {name} is not in the header")
        elif max(arguments - 1, 0) != len(functions[name][1]):
            complain(f"MATLAB: {name} is called with {arguments - 1} arguments")


def check_c(text, example):
    blocks = re.findall(r"```c\n(.*?)```", text, re.S)
    if not blocks:
        complain("C: no lines found")
    for block in blocks:
        if block not in example:
            complain(f"C: these lines are not in the example:\n{block}")


def check_statuses(header, docs):
    constants = dict(re.findall(r"^  (QARV_WAVE_\w+) = (\d+)", header, re.M))
    said = {name: number for number, name in re.findall(r"^\| (\d+) \| `(QARV_WAVE_\w+)` \|", docs, re.M)}
    if not constants or constants != said:
        complain(f"the statuses are {said}, and in the header {constants}")


def main():
    header, docs, example = (pathlib.Path(name).read_text() for name in sys.argv[1:4])
    functions = functions_of(header)
    if len(functions) != header.count("\nQARV_WAVE_API "):
        complain(f"{len(functions)} functions of the header were understood, not all")
    parts = parts_of(docs)
    check_statuses(header, docs)
    check_c(parts["C"], example)
    check_matlab(functions, parts["MATLAB"])
    check_csharp(functions, parts["C#"])
    check_labview(functions, parts["LabVIEW"])
    print("\n".join(wrong) or f"{len(functions)} functions")
    return bool(wrong)


sys.exit(main())
