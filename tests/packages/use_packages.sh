#!/usr/bin/env bash
# Uses what is installed, as one who has the README and the packages.  It runs in the root of check_root.sh.
#   use_packages.sh WORK_DIR
set -euo pipefail
cd "$1"
examples=/usr/share/doc/qarv-wave/examples/definitions

qarv-wave --version
qarv-wave batch "$examples" --output out >summary.txt || [ $? -eq 3 ]  # warnings
test -s out/index.html && test -s out/half_sine_fixed.png
zcat /usr/share/man/man1/qarv-wave.1.gz | grep '^\.TH' >/dev/null
(source /usr/share/bash-completion/completions/qarv-wave && complete -p qarv-wave)

# blocks LANGUAGE FILE: the code of a page.
blocks() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/!p}" "$2"; }

# The README's program, by both ways in.
mkdir -p program
blocks cpp README.md >program/program.cpp
{
  echo 'cmake_minimum_required(VERSION 3.25)'
  echo 'project(program LANGUAGES CXX)'
  echo 'add_executable(program program.cpp)'
  blocks cmake README.md
} >program/CMakeLists.txt
cmake -S program -B program/build
cmake --build program/build
program/build/program >by_cmake.txt
read -ra options <<<"$(pkg-config --cflags --libs qarv_vib_ctrl_wave_def)"
g++ program/program.cpp -o by_pkg_config "${options[@]}"
./by_pkg_config | cmp - by_cmake.txt
[ "$(wc -l <by_cmake.txt)" -eq 1000 ]

# The examples that come with the headers, of which those in C have a library of their own.
for example in /usr/share/doc/libqarv-vib-ctrl-wave-def-dev/examples/*.cpp; do
  g++ "$example" -o example "${options[@]}"
  ./example
done
if pkg-config --exists qarv_wave_c; then
  read -ra options <<<"$(pkg-config --cflags --libs qarv_wave_c)"
  cc -std=c99 /usr/share/doc/libqarv-vib-ctrl-wave-def-dev/examples/c/half_sine.c -o half_sine "${options[@]}"
  ./half_sine
fi
# The tutorial is one program, which runs beside the examples.
if dpkg-query -W python3-qarv-wave 2>/dev/null; then
  blocks python tutorial_python.md >tutorial.py
  mkdir -p tutorial/examples
  ln -sfn "$examples" tutorial/examples/definitions
  (cd tutorial && HOME=$PWD MPLBACKEND=Agg python3 ../tutorial.py)
fi
