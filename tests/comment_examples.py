#!/usr/bin/python3
"""Makes a program of the lines of use in the public headers and in pages, so that none of them rots.

What stands between @code and @endcode, or in a page between ```cpp and ```, is the body of a function; a page's
block with a main() is left to whoever builds it.  A line that ends in a comment with a value,

    const bool defined = def.SetDefSingle(sine);  // true

is checked: the program says where another value came out, and fails.

    comment_examples.py OUTPUT ROOT FILE...     files below ROOT; headers as they are included
"""
import pathlib
import re
import sys

VALUE = re.compile(r'^\s*(?:const )?[\w:]+ (\w+) = .*;\s+// (true|false|-?[\d.]+(?:e-?\d+)?|"[^"]*")(?:$|,)')


def blocks(path):
    """The blocks of a file: the number of the first line, and the lines."""
    page = path.suffix == ".md"
    begin, end = ("```cpp", "```") if page else ("@code", "@endcode")
    found = None
    for number, line in enumerate(path.read_text().splitlines(), 1):
        text = line if page else re.sub(r"^\s*/// ?", "", line)
        if found is None:
            if text.strip() == begin:
                found = (number + 1, [])
        elif text.strip() == end:
            yield found
            found = None
        else:
            found[1].append(text)
    if found is not None:
        sys.exit(f"{path}:{found[0]}: the block has no end")


root = pathlib.Path(sys.argv[2])
functions, includes, without = [], set(), []
for name in sys.argv[3:]:
    path = root / name
    own = [block for block in blocks(path) if "int main" not in "\n".join(block[1])]
    if path.suffix == ".h":
        includes.add(name.split("/hdr/")[1])
        # Every class with an interface of its own shows how it is used.
        exported = re.search(r"^class \w+_EXPORT", path.read_text(), re.M)
        if exported and not own:
            without.append(name)
    for number, lines in own:
        body = []
        for line in lines:
            if include := re.match(r'#include "(.*)"', line):
                includes.add(include[1])
                continue
            body.append("  " + line)
            if match := VALUE.match(line):
                body.append(f'  Expect({match[1]} == {match[2]}, "{name}:{number + lines.index(line)}");')
        used = "\n".join(body)
        functions.append((f"{name}:{number}", used))
if without:
    sys.exit("no lines of use: " + ", ".join(without))

includes.add("wave_def/wave_def.h")
out = ["// Made by comment_examples.py.", "#include <cstdio>", "#include <vector>", ""]
out += [f'#include "{include}"' for include in sorted(includes)]
out += ["", "using namespace qarv;", "using namespace qarv::common;", "using namespace qarv::wave_def;",
        "using namespace qarv::data_edit_log;", "using namespace qarv::analysis;", "", "namespace {", "int failures = 0;",
        "void Expect(bool holds, const char* place) {", "  if (holds) return;", "  ++failures;",
        r'  std::printf("%s: another value\n", place);', "}"]
for index, (place, body) in enumerate(functions):
    out += ["", f"// {place}", f"void Example{index}() {{", body, "}"]
out += ["}  // namespace", "", "int main() {"]
out += [f"  Example{index}();" for index in range(len(functions))]
out += [f'  std::printf("{len(functions)} examples\\n");', "  return failures == 0 ? 0 : 1;", "}", ""]
pathlib.Path(sys.argv[1]).write_text("\n".join(out))
