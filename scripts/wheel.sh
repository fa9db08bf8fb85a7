#!/bin/sh
# Builds the wheels of the Python package, without the network: Linux from the preset native, 64-bit Windows from win64.
#
#   sh scripts/wheel.sh [--test] [native] [win64]
#
# Without presets both, the second one where its compiler is there. The wheels go to build/dist. --test installs that of
# Linux into a virtual environment in an empty folder and runs the tests of the package there; the libraries of that of
# Windows are opened by a C program under Wine, which has to find the numbers of the Linux ones.
#
# Uses Debian's Python with its setuptools, wheel and build; PYTHON names another one.
# shellcheck disable=SC2016,SC2086 # the run path is $ORIGIN itself; lists of targets are separate words
set -u
cd "$(dirname "$0")/.." || exit 1
repo=$(pwd)
python=${PYTHON:-/usr/bin/python3}
dist=$repo/build/dist
objdump=x86_64-w64-mingw32-objdump
glibc=36  # 2.36, of Debian 12, where the wheel is built
linux=manylinux_2_${glibc}_x86_64

fail() {
  echo "wheel: $1" >&2
  exit 1
}

# A library looks for others beside itself only (an empty element of the run path would be the current folder), needs
# nothing but the C library, and runs where that is the one of the wheel's platform or later. A DLL needs what Windows has.
check_library() {
  case $1 in
    *.dll)
      needed=$("$objdump" -p "$1" | sed -n 's/.*DLL Name: //p' | grep -vixE '(kernel32|user32|advapi32|msvcrt)\.dll')
      [ -z "$needed" ] || fail "$1 needs $needed"
      return
      ;;
  esac
  needed=$(readelf -d "$1" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | grep -vxE '(libc|libm)\.so\.6|ld-linux.*')
  [ -z "$needed" ] || fail "$1 needs $needed: configure with KESTRUNE_STATIC_RUNTIME"
  public=$(nm -D --defined-only "$1" | grep -E ' (_Z|__cxa)')
  [ -z "$public" ] || fail "$1 exports names of C++, which other libraries of a process might take: $public"
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
    check_library "$stage/kestrune/_lib/$(basename "$file")"
  done
  KESTRUNE_VERSION=$version KESTRUNE_WHEEL_PLATFORM=$2 "$python" -m build --wheel --no-isolation --outdir "$dist" \
    "$stage" >"$stage/build.log" 2>&1 || { tail -n 20 "$stage/build.log" >&2; fail "cannot build the wheel of $2"; }
  echo "wheel: build/dist/kestrune-$version-py3-none-$2.whl"
}

# Nothing of the repository is in reach of the tests but the tests themselves.
run_tests() (
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
)

# The same program on the unpacked libraries of both wheels.
run_windows_tests() (
  place=$(mktemp -d /tmp/kestrune-wheel.XXXXXX) || fail "no temporary folder"
  trap 'rm -rf "$place"' EXIT
  flags="-std=c99 -Wall -Wextra -Wpedantic -Werror -Ipython/native python/tests/arrays_host.c -o $place/arrays_host"
  for platform in "$linux" win_amd64; do
    "$python" -m zipfile -e "$dist/kestrune-$version-py3-none-$platform.whl" "$place/$platform" || fail "no wheel of $platform"
  done
  # shellcheck disable=SC2086 # the flags are separate words
  { x86_64-w64-mingw32-gcc $flags.exe && gcc $flags; } || fail "cannot compile arrays_host.c"
  "$place/arrays_host" "$place/$linux/kestrune/_lib" >"$place/linux.txt" || fail "no numbers on Linux"
  sh scripts/wine.sh --64 "$place/arrays_host.exe" "Z:$place/win_amd64/kestrune/_lib" | tr -d '\r' >"$place/windows.txt"
  diff "$place/linux.txt" "$place/windows.txt" || fail "the wheel of Windows has other numbers than that of Linux"
  echo "wheel: the libraries of win_amd64 give the numbers of $linux"
)

test=
if [ "${1:-}" = --test ]; then
  test=1
  shift
fi
if [ $# = 0 ]; then
  set -- native
  if command -v x86_64-w64-mingw32-g++-posix >/dev/null; then
    set -- native win64
  else
    echo "note: no wheel of 64-bit Windows: its compiler is missing"
  fi
fi
for preset in "$@"; do
  case $preset in
    native) wheel native "$linux" .so strip ;;
    win64) wheel win64 win_amd64 .dll x86_64-w64-mingw32-strip ;;
    *) echo "wheel: '$preset' is none of native, win64" >&2; exit 2 ;;
  esac
done
for preset in "$@"; do
  [ -z "$test" ] && continue
  case $preset in
    native) run_tests || exit 1 ;;
    win64) run_windows_tests || exit 1 ;;
  esac
done
