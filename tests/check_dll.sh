#!/usr/bin/env bash
# What the libraries for Windows export: the public classes and nothing else, the functions of the C interface
# and nothing else.  The latter needs no library that Windows has not.
#   check_dll.sh DLL C_DLL
set -euo pipefail
exports_of() {
  x86_64-w64-mingw32-objdump -p "$1" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^\t\[ *[0-9]*\] //p'
}
exports=$(exports_of "$1" | c++filt)
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

other=$(exports_of "$2" | sort | diff - <(sort tests/capi/exports.txt) || true)
[ -z "$other" ] || complain "the C interface exports other functions than it should
$other"
needed=$(x86_64-w64-mingw32-objdump -p "$2" | sed -n 's/^\tDLL Name: //p' | grep -vixE 'kernel32.dll|msvcrt.dll' || true)
[ -z "$needed" ] || complain "the C interface needs $needed"
exit $failed
