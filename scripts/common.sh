# What the scripts share: the packages that a job needs, and quiet steps with a log.
# Sourced by the scripts beside it, which run in the project's top folder.

cd "$(dirname "${BASH_SOURCE[0]}")/.."
logs=build/logs
mkdir -p "$logs"

# What is built and run stands on these Debian packages.
build_packages=(cmake g++ ninja-build pkg-config libcli11-dev nlohmann-json3-dev libfmt-dev
  libsndfile1-dev libmatio-dev gnuplot-nox fonts-dejavu-core)
test_packages=(clang clang-format libclang-rt-14-dev binutils git googletest libgtest-dev
  libgmock-dev libfftw3-dev python3 python3-numpy python3-jsonschema chromium chromium-driver python3-selenium
  groff-base abigail-tools doxygen libmpfr-dev libgmp-dev g++-aarch64-linux-gnu g++-i686-linux-gnu)
# What is made for Windows.
windows_packages=(g++-mingw-w64-x86-64 gcc-mingw-w64-x86-64)
# What scripts/test --all runs programs for other machines with, and makes those for node with.
all_packages=(qemu-user wine64 wine emscripten nodejs)
# And the Debian packages are made and tried with these.
all_packages+=(dpkg-dev file lintian debootstrap)
bench_packages=(libbenchmark-dev libfftw3-dev python3)
# The Python package and its tests.
python_packages=(python3-dev python3-numpy pybind11-dev python3-pybind11 python3-pytest python3-hypothesis
  python3-matplotlib mypy python3-pip python3-setuptools python3-venv python3-wheel)

# The C++ sources, each ended by a null byte: those that git knows, in an unpacked tarball all.
sources() {
  if [ -e .git ]; then
    git ls-files -z -- '*.h' '*.cpp'
  else
    find . '(' -path ./build -o -path ./out ')' -prune -o -name '*.h' -printf '%P\0' -o -name '*.cpp' -printf '%P\0'
  fi
}

# Runs a command; its output goes to a log, which is shown if it fails.  77 says that it was skipped.
#   quietly NAME COMMAND...
quietly() {
  local log=$logs/$1.log code=0
  shift
  "$@" >"$log" 2>&1 </dev/null || code=$?
  if [ $code -eq 0 ] || [ $code -eq 77 ]; then return $code; fi
  echo "failed: $*" >&2
  tail -n 60 "$log" >&2
  echo "the whole log: $log" >&2
  return 1
}

# Installs those of the named packages that are missing.
need() {
  local package missing=()
  for package in "$@"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
      missing+=("$package")
    fi
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "installing ${missing[*]}"
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  quietly apt-update "${as_root[@]}" apt-get update &&
    quietly apt-install "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y --no-install-recommends "${missing[@]}"
}
