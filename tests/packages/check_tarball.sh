#!/usr/bin/env bash
# The tarball of the sources builds where there is no git.
#   check_tarball.sh [--all]     --all: the whole demo, not one library alone
# Exit 77 where there is no git either.
set -euo pipefail
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
if [ ! -e "$here/.git" ]; then
  echo "skipped: a tarball is made of a commit, and this is no checkout"
  exit 77
fi
work=$(mktemp -d)  # outside of every checkout
trap 'rm -rf "$work"' EXIT
"$here/scripts/tarball" "$work/sources.tar.gz"
"$here/scripts/tarball" "$work/again.tar.gz"
cmp "$work/sources.tar.gz" "$work/again.tar.gz"
mkdir "$work/unpacked" "$work/bin"
tar -xzf "$work/sources.tar.gz" -C "$work/unpacked" --strip-components=1

# A git that tells of its use.
printf '#!/bin/sh\necho "$@" >>%s\nexit 127\n' "$work/git-used" >"$work/bin/git"
chmod +x "$work/bin/git"
(cd "$here" && git ls-tree -r --name-only HEAD | grep -E '\.(h|cpp)$' | LC_ALL=C sort) >"$work/expected.txt"
cd "$work/unpacked"
export PATH=$work/bin:$PATH
if [ "${1:-}" = --all ]; then
  scripts/demo
else
  cmake --preset release -DQARV_BUILD_TESTS=OFF
  cmake --build --preset release --target qarv_common
fi
# What the check of the format looks at, after a build too.
bash -c 'source scripts/common.sh; sources' | tr '\0' '\n' | LC_ALL=C sort | diff "$work/expected.txt" -
if [ -e "$work/git-used" ]; then
  echo "check_tarball: git was called: $(cat "$work/git-used")"
  exit 1
fi
