#!/usr/bin/env bash
# Fails if a library holds a fused multiply-add: it rounds once where two roundings are promised.
#   check_products.sh LIBRARY...
set -euo pipefail
for library in "$@"; do
  code=$(objdump -d --no-show-raw-insn "$library")
  if ! grep -qE '[[:space:]](mulpd|vmulpd|mulsd|vmulsd|fmul)[[:space:]]' <<<"$code"; then
    echo "$library: no products found, so the check has not seen its code"
    exit 1
  fi
  fused=$(grep -E '[[:space:]](vfn?m(add|sub)[a-z0-9]*|fn?m(add|sub|la|ls))[[:space:]]' <<<"$code" || true)
  if [ -n "$fused" ]; then
    echo "$library: fused products"
    sed -n 1,5p <<<"$fused"
    exit 1
  fi
done
