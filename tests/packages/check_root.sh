#!/usr/bin/env bash
# The Debian packages in a clean Debian 12: they install, what the README and the examples show works there, and
# they are removed without a trace.  The clean root is made once, with what the packages depend on and a compiler.
#   check_root.sh BUILD_DIR WORK_DIR
# Exit 77 where no such root can be had.
set -euo pipefail
build=$(realpath "$1") work=$2
tests=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
source=$(realpath "$tests/../..")
mkdir -p "$work"
work=$(realpath "$work")
base=$work/base root=$work/root
skip() { echo "skipped: $1"; exit 77; }
[ "$(id -u)" -eq 0 ] || skip "a root of its own takes the rights of root"
command -v debootstrap >/dev/null || skip "there is no debootstrap"

# within ROOT COMMAND...: runs a command there, with nothing of this machine's surroundings but the way out.
within() {
  local where=$1
  shift
  env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
    ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
    chroot "$where" "$@"
}

if [ ! -e "$base/made" ]; then
  rm -rf "$base"
  mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' 'Codename: bookworm' | sort -u | head -n 1)
  debootstrap --variant=minbase --include=g++,make,cmake,pkg-config \
    bookworm "$base" "${mirror:-http://deb.debian.org/debian}" ||
    { tail -n 5 "$base/debootstrap/debootstrap.log" || true; rm -rf "$base"; skip "debootstrap made no root"; }
  touch "$base/made"
fi

# What the packages depend on, and what they recommend, is there before they are: it stays when they go.
rm -rf "$base/packages"
mkdir "$base/packages"
cp "$build"/*.deb "$base/packages"
names=()
recommended=()
for file in "$build"/*.deb; do
  names+=("$(dpkg-deb -f "$file" Package)")
  recommended+=("$(dpkg-deb -f "$file" Recommends | sed 's/|[^,]*//g; s/,/ /g')")
done
read -ra recommended <<<"${recommended[*]}"
needed=$(within "$base" sh -c 'exec apt-get -s install --no-install-recommends /packages/*.deb "$@"' - \
  "${recommended[@]}" | sed -n 's/^Inst \([^ ]*\) .*/\1/p' | grep -vxF "$(printf '%s\n' "${names[@]}")" || true)
if [ -n "$needed" ]; then
  cp /etc/resolv.conf "$base/etc/resolv.conf"
  # shellcheck disable=SC2086
  within "$base" sh -c 'apt-get update && exec apt-get install -y --no-install-recommends "$@"' - $needed
fi
rm -rf "$base/packages"

# Every file with its kind, mode and contents, but for what notes the times of dpkg's work.
trace() {
  (cd "$root" && find . -path ./work -prune -o -printf '%y %m %l %p\n' | sort
    find . -path ./work -prune -o -type f -print0 | sort -z | xargs -0 sha256sum) |
    grep -vE ' \./(var/log/|var/lib/dpkg/(status|status-old|available|lock|triggers/)|var/cache/(ldconfig|fontconfig)|etc/ld\.so\.cache)'
}
rm -rf "$root"
cp -a "$base" "$root"
mkdir -p "$root/work"
cp "$build"/*.deb "$root/work"
trace >"$work/before.txt"
within "$root" sh -c 'exec dpkg -i /work/*.deb'
trace >"$work/between.txt"
if cmp -s "$work/before.txt" "$work/between.txt"; then
  echo "check_root: the trace does not see an installation"
  exit 1
fi

cp "$source/README.md" "$tests/use_packages.sh" "$root/work"
[ ! -e "$source/docs/tutorial_python.md" ] || cp "$source/docs/tutorial_python.md" "$root/work"
within "$root" bash /work/use_packages.sh /work
# The same bytes as from the tree.
for definition in "$source"/examples/definitions/*.json; do
  "$build/command/qarv-wave" generate "$definition" --csv - 2>"$work/said.txt" |
    cmp - "$root/work/out/$(basename "$definition" .json).csv"
done

within "$root" dpkg --purge "${names[@]}"
trace >"$work/after.txt"
diff "$work/before.txt" "$work/after.txt" || { echo "check_root: the packages have left a trace"; exit 1; }
rm -rf "$root"
echo "check_root: ${names[*]}: installed, used, removed"
