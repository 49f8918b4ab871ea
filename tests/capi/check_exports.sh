#!/usr/bin/env bash
# What the shared library of the C interface shows to the outside: its name, what it needs, and exactly the
# functions of a list.
#   check_exports.sh LIBRARY LIST HEADER SANITIZED(0|1)
set -euo pipefail
library=$1 list=$2 header=$3 sanitized=$4
failed=0
complain() { echo "check_exports: $1"; failed=1; }

soname=$(readelf -d "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\].*/\1/p')
[ "$soname" = libqarv_wave_c.so.1 ] || complain "SONAME is '$soname'"

if [ "$sanitized" = 0 ]; then
  others=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p' |
    grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|ld-linux-x86-64)\.so' || true)
  [ -z "$others" ] || complain "it needs $others"
fi

difference=$(diff "$list" <(nm -D --defined-only "$library" | cut -d' ' -f3 | LC_ALL=C sort)) ||
  complain "exports (>) are not those of $list (<)
$difference"
difference=$(diff "$list" <(sed -n 's/^QARV_WAVE_API .*[ *]\(qarv_wave_[a-z_]*\)(.*/\1/p' "$header" | LC_ALL=C sort)) ||
  complain "functions of the header (>) are not those of $list (<)
$difference"
exit $failed
