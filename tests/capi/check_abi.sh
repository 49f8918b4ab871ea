#!/usr/bin/env bash
# Compares the interface of the shared library, functions with their types, with its committed description.  Any
# difference fails: one that breaks programs needs another major version, one that does not a new description.
#   check_abi.sh LIBRARY DESCRIPTION HEADERS           the library has debug information
#   check_abi.sh LIBRARY DESCRIPTION HEADERS --renew
set -euo pipefail
library=$1 description=$2 headers=$3
if ! command -v abidiff >/dev/null; then
  echo "check_abi: no abidiff here (Debian: abigail-tools), so the interface is NOT compared"
  exit 77
fi

if [ "${4:-}" = --renew ]; then
  abidw --headers-dir "$headers" --drop-private-types --no-show-locs --no-corpus-path --no-comp-dir-path \
    --short-locs --no-elf-needed "$library" | sed 's/ elf-needed[^>]*//; s/ language=.LANG_[A-Za-z0-9_+]*.//' >"$description"
  exit
fi

compare() {
  abidiff --headers-dir2 "$headers" --drop-private-types "$1" "$library"
}
compare "$description" || {
  echo "check_abi: the interface is not that of $description; where that is meant: $0 $1 $2 $3 --renew"
  exit 1
}

# A comparison that sees nothing is no comparison: one function more, and one parameter less, have to be noticed.
changed=$(mktemp --suffix=.abi)
trap 'rm -f "$changed"' EXIT
must_differ() {
  cmp -s "$description" "$changed" && { echo "check_abi: the description has no $1"; exit 1; }
  if compare "$changed" >/dev/null; then
    echo "check_abi: abidiff does not notice $1"
    exit 1
  fi
}
sed "s/name='qarv_wave_size'/name='qarv_wave_length'/g" "$description" >"$changed"
must_differ "another name of a function"
awk '/<function-decl name=.qarv_wave_main_pulse/ { inside = 1 }
     inside && /<parameter / && !done { done = 1; next } 
     /<\/function-decl>/ { inside = 0 } { print }' "$description" >"$changed"
must_differ "a parameter less"
echo "check_abi: the interface is that of $description"
