#!/usr/bin/env bash
# What the shared library shows to the outside: its name, what it needs, what it exports.
#   check_library.sh LIBRARY SANITIZED(0|1)
set -euo pipefail
library=$1 sanitized=$2
failed=0
complain() { echo "check_library: $1"; failed=1; }

soname=$(readelf -d "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\].*/\1/p')
[ "$soname" = libqarv_vib_ctrl_wave_def.so.1 ] || complain "SONAME is '$soname'"

if [ "$sanitized" = 0 ]; then
  others=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p' |
    grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|ld-linux-x86-64)\.so' || true)
  [ -z "$others" ] || complain "it needs $others"
fi

symbols=$(nm -DC --defined-only "$library" | cut -d' ' -f3-)
foreign=$(grep -vE '^((vtable|typeinfo|typeinfo name) for )?qarv::wave_def::CWaveDef' <<<"$symbols" || true)
[ -z "$foreign" ] || complain "it exports
$foreign"
for class in CWaveDef CWaveDefClassical CWaveDefDamping CWaveDefDampingElm CWaveDefGradual \
  CWaveDefMeasure CWaveDefSineBeatBurst CWaveDefSingle CWaveDefSymmetry CWaveDefTolSpecify \
  CWaveDefTolUserDef; do
  for symbol in "vtable for qarv::wave_def::$class" \
    "qarv::wave_def::$class::Serialize(qarv::common::CSerialData*)"; do
    grep -qxF "$symbol" <<<"$symbols" || complain "it does not export $symbol"
  done
done
exit $failed
