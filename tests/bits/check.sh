#!/usr/bin/env bash
# Compares what a program of bits.cpp prints with the committed hashes.
#   check.sh HASHES RECORDS PROGRAM...      the program may be run by an emulator before it
# Renews them with   build/release/tests/bits/bits_avx512 build/release/tests/bits/records/*.rec >HASHES
set -euo pipefail
hashes=$1
records=("$2"/*.rec)
shift 2
[ ${#records[@]} -gt 20 ]
# The arrays report on standard error what arbitrary definitions ask of them.
diff "$hashes" <("$@" "${records[@]}" 2>/dev/null | tr -d '\r')
