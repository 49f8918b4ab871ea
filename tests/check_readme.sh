#!/usr/bin/env bash
# The C++ example of the README is the program that is built.
#   check_readme.sh README EXAMPLE
set -euo pipefail
diff <(sed -n '/^```cpp$/,/^```$/p' "$1" | sed '1d;$d') "$2"
