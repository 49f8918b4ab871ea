#!/usr/bin/env bash
# Compares the interface in C, functions with their types, with its committed description.  Any difference fails: one
# that breaks programs needs another major version, one that does not a new description.
#
# What is described is a library of empty functions made of the header, which shows nothing of what is behind a handle;
# that the real one has these functions is compiled (it includes the header) and checked (check_exports.sh).
#   check_abi.sh HEADER DESCRIPTION [--renew]
set -euo pipefail
header=$1 description=$2
if ! command -v abidiff >/dev/null; then
  echo "check_abi: no abidiff here (Debian: abigail-tools), so the interface is NOT compared"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The library of a header, as libqarv_wave_c.so.
library_of() {
  {
    echo '#include "qarv_wave.h"'
    tr '\n' ' ' <"$1/qarv_wave.h" |
      grep -oE 'QARV_WAVE_API [a-z][a-z0-9_ *]*qarv_wave_[a-z_]*\([^)]*\);' |
      sed -E 's/^QARV_WAVE_API //; s/^void (.*);$/void \1 {}/; s/;$/ { return 0; }/'
  } >"$1/empty.c"
  # In its folder, so that the description holds no path.
  (cd "$1" && cc -std=c99 -g -shared -fPIC -I. empty.c -Wl,-soname,libqarv_wave_c.so.1 -o libqarv_wave_c.so)
}
mkdir "$work/here"
cp "$header" "$work/here/qarv_wave.h"
library_of "$work/here"

if [ "${3:-}" = --renew ]; then
  abidw --no-show-locs --no-corpus-path --no-comp-dir-path "$work/here/libqarv_wave_c.so" >"$description"
  exit
fi
abidiff "$description" "$work/here/libqarv_wave_c.so" || {
  echo "check_abi: the interface is not that of $description; where that is meant: $0 $1 $2 --renew"
  exit 1
}

# A comparison that sees nothing is no comparison.
must_notice() {
  local what=$1 change=$2
  rm -rf "$work/other"
  mkdir "$work/other"
  sed "$change" "$header" >"$work/other/qarv_wave.h"
  cmp -s "$header" "$work/other/qarv_wave.h" && { echo "check_abi: the header has no $what"; exit 1; }
  library_of "$work/other"
  if abidiff "$description" "$work/other/libqarv_wave_c.so" >/dev/null; then
    echo "check_abi: abidiff does not notice $what"
    exit 1
  fi
}
must_notice "function less" '/^QARV_WAVE_API size_t qarv_wave_size/d'
must_notice "parameter less" 's/, size_t\* last)/)/'
must_notice "other type of a parameter" 's/double\* displacement/float* displacement/'
must_notice "other type of a result" 's/^QARV_WAVE_API double qarv_wave_sample_rate/QARV_WAVE_API float qarv_wave_sample_rate/'
echo "check_abi: the interface is that of $description"
