#!/usr/bin/env bash
# What the library for Windows exports: the public classes and nothing else.
#   check_dll.sh DLL
set -euo pipefail
exports=$(x86_64-w64-mingw32-objdump -p "$1" |
  sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^\t\[ *[0-9]*\] //p' | c++filt)
failed=0
complain() { echo "check_dll: $1"; failed=1; }

foreign=$(grep -vE '^((vtable|typeinfo|typeinfo name) for )?qarv::wave_def::CWaveDef' <<<"$exports" || true)
[ -z "$foreign" ] || complain "it exports
$foreign"
for class in CWaveDef CWaveDefClassical CWaveDefDamping CWaveDefDampingElm CWaveDefGradual \
  CWaveDefMeasure CWaveDefSineBeatBurst CWaveDefSingle CWaveDefSymmetry CWaveDefTolSpecify \
  CWaveDefTolUserDef; do
  symbol="qarv::wave_def::$class::Serialize(qarv::common::CSerialData*)"
  grep -qxF "$symbol" <<<"$exports" || complain "it does not export $symbol"
done
exit $failed
