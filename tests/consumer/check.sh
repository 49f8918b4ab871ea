#!/usr/bin/env bash
# Installs the build tree to a fresh prefix and builds the consumer against it, once through the CMake
# package and once through pkg-config.  The command comes with its manual page and completion, the C interface with
# what a program in C needs to find it.
#   check.sh BUILD_DIR SOURCE_DIR WORK_DIR CXX CXX_FLAGS
set -euo pipefail
build=$1 source=$2 work=$3 cxx=$4 flags=$5

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/prefix" >"$work/install.log"

# The reference is there if it has been made.
[ ! -d "$build/docs/reference/html" ] || [ -f "$work/prefix/share/doc/qarv_vib_ctrl_wave_def/html/index.html" ]

if [ -x "$work/prefix/bin/qarv-wave" ]; then
  "$work/prefix/bin/qarv-wave" schema | cmp - "$work/prefix/share/qarv-wave/definition.schema.json"
  "$work/prefix/bin/qarv-wave" man-page | cmp - "$work/prefix/share/man/man1/qarv-wave.1"
  "$work/prefix/bin/qarv-wave" bash-completion |
    cmp - "$work/prefix/share/bash-completion/completions/qarv-wave"
fi

cmake -S "$source" -B "$work/cmake" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags" \
  -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/configure.log"
cmake --build "$work/cmake"
"$work/cmake/consumer"

export PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig"
read -ra options <<<"$flags $(pkg-config --cflags --libs qarv_vib_ctrl_wave_def)"
"$cxx" "$source/main.cpp" -o "$work/by_pkg_config" "${options[@]}"
LD_LIBRARY_PATH="$work/prefix/lib" "$work/by_pkg_config"

if [ -f "$work/prefix/include/qarv_wave.h" ]; then
  cmake -S "$source/c" -B "$work/c" -G Ninja -DCMAKE_C_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$work/prefix" \
    >"$work/configure_c.log"
  cmake --build "$work/c"
  "$work/c/half_sine" >"$work/half_sine.txt"
  read -ra options <<<"$flags $(pkg-config --cflags --libs qarv_wave_c)"
  cc -std=c99 -pedantic "$source/../../examples/c/half_sine.c" -o "$work/c_by_pkg_config" "${options[@]}"
  LD_LIBRARY_PATH="$work/prefix/lib" "$work/c_by_pkg_config" | cmp - "$work/half_sine.txt"
fi
