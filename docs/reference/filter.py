#!/usr/bin/python3
"""A header as Doxygen gets it: a comment stands for every declaration that follows it without a blank line, as the
setter below its getter; and the members that every value has get theirs.

    filter.py HEADER
"""
import re
import sys

# What every value class has, by what its declaration looks like.
COMMON = [
    (r"\w+\(\) = default;", "All fields at their defaults."),
    (r"(\w+)\(const \1&\) = default;", "A copy."),
    (r"(\w+)\(\1&&(?: \w+)?\).*", "Takes everything over and leaves the source cleared."),
    (r"\w+& operator=\(const (\w+)&(?: \w+)?\).*", "Becomes a copy."),
    (r"\w+& operator=\(\w+&&(?: \w+)?\).*", "Takes everything over and leaves the source cleared."),
    (r"(?:virtual )?~\w+\(\).*", "Gives its memory back."),
    (r"bool operator==\(const \w+&(?: \w+)?\) const.*", "Every field equal; a NaN is equal to nothing."),
]

comment = []     # that stands for the group of declarations that is being read
indent = ""      # of the group
covered = False  # the line has a comment right above it
for line in open(sys.argv[1], encoding="utf-8").read().splitlines():
    text = line.strip()
    if text.startswith("///"):
        comment = comment + [line] if covered else [line]
        indent = line[:len(line) - len(line.lstrip())]
        covered = True
        print(line)
        continue
    common = next((said for pattern, said in COMMON if re.fullmatch(pattern, text.split("  ///<")[0])), None)
    if not text:
        comment = []
    elif text.startswith("//"):
        print(line)
        continue
    elif common and not covered:
        line = line.split("  ///<")[0]
        print("  /// " + common)
        comment = []
    elif comment and not covered and re.match(indent + r"[^\s}]", line) and "///<" not in line:
        print("\n".join(comment))
    covered = text.startswith("template") and text.endswith(">")
    print(line)
