#!/bin/sh
# Builds the wheels of the Python package, without the network: Linux from the preset native, and 64-bit Windows from
# win64 where that preset and its compiler are there.
#
#   sh scripts/wheel.sh [--linux] [--test]   wheels into build/dist, with --linux that of Linux only; --test installs
#                                            it into a virtual environment in an empty folder and runs the tests of
#                                            the package there
#
# Uses Debian's Python with its setuptools, wheel and build; PYTHON names another one.
# shellcheck disable=SC2016,SC2086 # the run path is $ORIGIN itself; lists of targets are separate words
set -u
cd "$(dirname "$0")/.." || exit 1
repo=$(pwd)
python=${PYTHON:-/usr/bin/python3}
dist=$repo/build/dist
glibc=36  # 2.36, of Debian 12, where the wheel is built
linux=manylinux_2_${glibc}_x86_64

fail() {
  echo "wheel: $1" >&2
  exit 1
}

# A library looks for others beside itself only (an empty element of the run path would be the current folder), and runs
# where the C library is that of the wheel's platform or later.
check_library() {
  run_path=$(readelf -d "$1" | sed -n 's/.*R\(UN\)\{0,1\}PATH.*\[\(.*\)\]/\2/p')
  [ "$run_path" = '$ORIGIN' ] || [ -z "$run_path" ] || fail "$1 has the run path $run_path"
  needed=$(readelf -V "$1" | grep -o 'GLIBC_2\.[0-9]*' | sort -t . -k 2 -n | tail -n 1)
  [ "${needed#GLIBC_2.}" -le "$glibc" ] || fail "$1 needs $needed: name a later glibc at the head of this script"
}

# wheel PRESET PLATFORM SUFFIX STRIP: the package with the libraries of a preset.
wheel() {
  stage=$repo/build/wheel/$2
  libraries="kestrune_arrays KVGasThermo KVCmpdPureLite KVToolsLite"
  [ -f "build/$1/build.ninja" ] || cmake --preset "$1" >/dev/null || fail "cannot configure $1"
  cmake --build "build/$1" -j "$(nproc)" --target $libraries || fail "cannot build the libraries of $1"
  version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "build/$1/CMakeCache.txt")
  [ -n "$version" ] || fail "no version in build/$1/CMakeCache.txt"
  rm -rf "$stage"
  mkdir -p "$stage/kestrune/_lib" "$dist"
  cp python/pyproject.toml python/setup.py python/README.md "$stage/"
  cp python/kestrune/*.py python/kestrune/py.typed "$stage/kestrune/"
  cp data/NOTICE.md "$stage/kestrune/_lib/"
  cp LICENSE "$stage/"
  for library in $libraries; do
    file=$(find "build/$1/bin" -name "*$library$3" | head -n 1)
    [ -n "$file" ] || fail "no $library$3 in build/$1/bin"
    "$4" --strip-unneeded -o "$stage/kestrune/_lib/$(basename "$file")" "$file" || fail "cannot strip $file"
    [ "$3" = .dll ] || check_library "$stage/kestrune/_lib/$(basename "$file")"
  done
  KESTRUNE_VERSION=$version KESTRUNE_WHEEL_PLATFORM=$2 "$python" -m build --wheel --no-isolation --outdir "$dist" \
    "$stage" >"$stage/build.log" 2>&1 || { tail -n 20 "$stage/build.log" >&2; fail "cannot build the wheel of $2"; }
  echo "wheel: build/dist/kestrune-$version-py3-none-$2.whl"
}

# Nothing of the repository is in reach of the tests but the tests themselves.
run_tests() {
  place=$(mktemp -d /tmp/kestrune-wheel.XXXXXX) || fail "no temporary folder"
  trap 'rm -rf "$place"' EXIT
  mkdir "$place/docs" "$place/python"
  cp docs/python.md docs/tutorial.ipynb "$place/docs/"
  cp -r python/tests "$place/python/"
  cd "$place" || fail "cannot enter $place"
  unset PYTHONPATH KESTRUNE_LIBRARIES
  "$python" -m venv --system-site-packages env || fail "no virtual environment"
  env/bin/python -m pip install -q --no-index --no-deps "$dist/kestrune-$version-py3-none-$linux.whl" ||
    fail "the wheel cannot be installed"
  MPLBACKEND=agg env/bin/python -m pytest -q -p no:cacheprovider python/tests
}

windows=yes
if [ "${1:-}" = --linux ]; then
  windows=
  shift
fi
wheel native "$linux" .so strip
if [ -z "$windows" ]; then
  :
elif cmake --list-presets | grep -q '"win64"' && command -v x86_64-w64-mingw32-g++-posix >/dev/null; then
  wheel win64 win_amd64 .dll x86_64-w64-mingw32-strip
else
  echo "note: no wheel of 64-bit Windows: the preset win64 or its compiler is missing"
fi
if [ "${1:-}" = --test ]; then run_tests; fi
