#!/usr/bin/env bash
# The Debian packages by their contents: which there are, that every installed file is in one of them, what they
# depend on, and what lintian says.
#   check_files.sh BUILD_DIR WORK_DIR
set -euo pipefail
build=$1 work=$2

rm -rf "$work"
mkdir -p "$work"
failed=0
complain() { echo "check_files: $1"; failed=1; }

declare -A of
for file in "$build"/*.deb; do
  of[$(dpkg-deb -f "$file" Package)]=$file
done
names=(libqarv-vib-ctrl-wave-def1 libqarv-vib-ctrl-wave-def-dev qarv-wave)
python=$(sed -n 's/^QARV_BUILD_PYTHON:[A-Z]*=//p' "$build/CMakeCache.txt")
if [ -d "$build/python" ] && [ "$python" != OFF ]; then
  names+=(python3-qarv-wave)
fi
diff <(printf '%s\n' "${names[@]}" | sort) <(printf '%s\n' "${!of[@]}" | sort) || complain "these packages are not those"
[ $failed -eq 0 ] || exit 1

# files NAME: what a package holds, without folders.
files() { dpkg-deb --fsys-tarfile "${of[$1]}" | tar -t | sed -n 's|^\.\(/.*[^/]\)$|\1|p' | sort; }
# has NAME PATTERN: a file of the package matches.
has() { files "$1" | grep -xE "$2" >/dev/null || complain "$1 has no file $2"; }
# field NAME FIELD PATTERN
field() { dpkg-deb -f "${of[$1]}" "$2" | grep -E "$3" >/dev/null || complain "$1: $2 has no $3"; }

# Nothing that is installed is forgotten, and nothing is in two packages.
DESTDIR=$work/installed cmake --install "$build" --prefix /usr >"$work/install.log"
(cd "$work/installed" && find . -mindepth 1 -not -type d | sed 's|^\.||; s|\(/man[0-9]/.*\)|\1.gz|' | sort) \
  >"$work/installed.txt"
for name in "${names[@]}"; do
  files "$name" | grep -v -e ^/usr/share/doc/ -e ^/usr/lib/python3/ || true
done | sort >"$work/packed.txt"
diff "$work/installed.txt" "$work/packed.txt" || complain "the packages do not hold what is installed"
[ "$(wc -l <"$work/installed.txt")" -gt 30 ] || complain "nothing is installed"

triplet=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
version=$(dpkg-deb -f "${of[qarv-wave]}" Version)
lib=/usr/lib/$triplet
has libqarv-vib-ctrl-wave-def1 "$lib/libqarv_vib_ctrl_wave_def\.so\.1"
has libqarv-vib-ctrl-wave-def-dev "$lib/libqarv_vib_ctrl_wave_def\.so"
has libqarv-vib-ctrl-wave-def-dev "$lib/libqarv_analysis\.a"
has libqarv-vib-ctrl-wave-def-dev "$lib/pkgconfig/qarv_vib_ctrl_wave_def\.pc"
has libqarv-vib-ctrl-wave-def-dev "/usr/include/wave_def/wave_def\.h"
has libqarv-vib-ctrl-wave-def-dev "/usr/include/wave_def/export\.h"
has qarv-wave /usr/bin/qarv-wave
has qarv-wave '/usr/share/man/man1/qarv-wave\.1\.gz'
has qarv-wave /usr/share/bash-completion/completions/qarv-wave
if [ -d "$build/capi" ]; then
  has libqarv-vib-ctrl-wave-def1 "$lib/libqarv_wave_c\.so\.1"
  has libqarv-vib-ctrl-wave-def-dev '/usr/include/qarv_wave\.h'
fi
field libqarv-vib-ctrl-wave-def1 Depends libc6
field libqarv-vib-ctrl-wave-def-dev Depends "libqarv-vib-ctrl-wave-def1 \(= $version\)"
field qarv-wave Depends libsndfile1
if [ -n "${of[python3-qarv-wave]:-}" ]; then
  has python3-qarv-wave '/usr/lib/python3/dist-packages/qarv_wave/__init__\.py'
  has python3-qarv-wave '/usr/lib/python3/dist-packages/qarv_wave/_core\..*\.so'
  field python3-qarv-wave Depends python3-numpy
fi
dpkg-deb -I "${of[libqarv-vib-ctrl-wave-def1]}" triggers | grep -x 'activate-noawait ldconfig' >/dev/null ||
  complain "the libraries' package does not trigger ldconfig"
for name in "${names[@]}"; do
  for kind in copyright changelog.Debian.gz; do
    has "$name" "/usr/share/doc/$name/${kind//./\\.}"
  done
  dpkg-deb --fsys-tarfile "${of[$name]}" | tar -xO "./usr/share/doc/$name/copyright" |
    grep '^No licence has been chosen' >/dev/null || complain "$name does not say that there is no licence"
done

lintian --allow-root --fail-on error --tag-display-limit 0 "${of[@]}" || complain "lintian has errors"
exit $failed
