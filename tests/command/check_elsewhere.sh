#!/usr/bin/env bash
# The command of another machine writes the same bytes, and says what it cannot do there.
#   check_elsewhere.sh COMMAND WORK_DIR THERE...
#     COMMAND   of this machine
#     THERE...  what runs that of the other one
set -euo pipefail
here=$(realpath "$1") work=$2
shift 2
rm -rf "$work"
mkdir -p "$work"
definitions=examples/definitions
complain() { echo "check_elsewhere: $1"; exit 1; }

for name in half_sine_fixed compensated_cosine damped_sine wavelet sine_burst measured; do
  "$here" generate "$definitions/$name.json" >"$work/here.txt" \
    --csv "$work/here.csv" --npy "$work/here.npy" --wav "$work/here.wav" --uff "$work/here.uff" \
    --record "$work/here.rec"
  "$@" generate "$definitions/$name.json" >"$work/there.txt" \
    --csv "$work/there.csv" --npy "$work/there.npy" --wav "$work/there.wav" --uff "$work/there.uff" \
    --record "$work/there.rec"
  for ending in txt csv npy wav uff rec; do
    cmp "$work/here.$ending" "$work/there.$ending"
  done
done
# Again, over the files that are there; through the standard streams; of what was read.
"$@" generate "$definitions/measured.json" --csv "$work/there.csv" >"$work/there.txt"
cmp "$work/here.csv" "$work/there.csv"
"$@" generate - --csv - <"$definitions/half_sine_fixed.json" 2>/dev/null |
  cmp - <("$here" generate "$definitions/half_sine_fixed.json" --csv - 2>/dev/null)
"$@" check /dev/stdin <"$definitions/half_sine_fixed.json" >"$work/there.txt"
"$@" show "$work/here.rec" -o "$work/there.json"
"$here" show "$work/here.rec" -o "$work/here.json"
cmp "$work/here.json" "$work/there.json"
code=0
"$@" generate "$definitions/measured.json" --csv "$definitions/measured_shock.csv" 2>"$work/said.txt" || code=$?
[ $code -eq 2 ] && grep -q 'is an input' "$work/said.txt" || complain "an input was not kept"

# A plot, or the sentence why there is none, and then no file either.
if ! "$@" generate "$definitions/half_sine_fixed.json" --csv "$work/with.csv" --plot "$work/plot.png" 2>"$work/said.txt"; then
  [ "$(wc -l <"$work/said.txt")" -eq 1 ] || complain "the reason is not one line"
  grep -q 'gnuplot' "$work/said.txt" || complain "no reason is given"
  [ ! -e "$work/with.csv" ] && [ ! -e "$work/plot.png" ] || complain "a refusal has left files"
fi
rest=$(find "$work" -name '.qarv-wave*')
[ -z "$rest" ] || complain "it has left $rest"
