#!/bin/sh
# Makes the packages in build/packages: kestrune-<version>-win32.zip, -win64.zip, -linux.tar.gz and a Debian package, each
# with its debugging data in an archive of its own.
#
#   sh scripts/package.sh [PRESET...]      presets: native win32 win64 (default: all three)
set -eu
cd "$(dirname "$0")/.."
out=$PWD/build/packages
[ $# -gt 0 ] || set -- native win32 win64
mkdir -p "$out"
for preset in "$@"; do
  case $preset in
    native | win32 | win64) ;;
    *) echo "package: '$preset' is none of native, win32, win64" >&2; exit 2 ;;
  esac
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
  targets="KVGasThermo KVCmpdPureLite KVToolsLite kestrune"
  [ "$preset" = native ] || targets="$targets KVGasThermo_import"
  # shellcheck disable=SC2086 # the targets are separate words
  cmake --build "build/$preset" -j "$(nproc)" --target $targets
  (cd "build/$preset" && cpack -B "$out")
  rm -rf "$out/_CPack_Packages"
  version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "build/$preset/CMakeCache.txt")
  platform=$preset
  [ "$preset" = native ] && platform=linux
  debug=$out/kestrune-$version-$platform-debug.zip
  rm -f "$debug"
  # shellcheck disable=SC2015 # files that are missing are none of its business
  (cd "build/$preset/bin" && zip -q "$debug" KV*.debug libKV*.debug kestrune*.debug 2>/dev/null || [ -s "$debug" ])
done
ls -l "$out"
