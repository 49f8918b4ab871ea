#!/usr/bin/env bash
# The table of a page is what its program prints.
#   check_table.sh PAGE PROGRAM [ARGUMENT...]
set -euo pipefail
page=$1
shift
table=$("$@")
diff <(grep -F -x -A "$(($(wc -l <<<"$table") - 1))" -- "$(head -n 1 <<<"$table")" "$page") \
  <(printf '%s\n' "$table")
