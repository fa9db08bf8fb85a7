#!/bin/sh
# Runs a 32-bit (64-bit) Windows program under Wine, without a display: standard input, standard output and the exit
# code (its low eight bits) pass through. CMake and CTest use it as the emulator of the presets win32 and win64.
#
#   scripts/wine.sh [--64] PROGRAM.exe [ARGUMENTS...]
#
# The Wine prefix is build/wine (build/wine64), made at the first call; any number of first calls at once is safe.
set -u
repo=$(cd "$(dirname "$0")/.." && pwd) || exit 127
wine=wine
export WINEARCH=win32 WINEDEBUG=-all WINEPREFIX="$repo/build/wine"
if [ "${1:-}" = --64 ]; then
  shift
  wine=/usr/lib/wine/wine64
  export WINEARCH=win64 WINEPREFIX="$repo/build/wine64" WINELOADER="$wine"
fi
lock=$WINEPREFIX.lock
# No prompts for Mono and Gecko, no desktop entries.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
unset DISPLAY WAYLAND_DISPLAY

if ! command -v "$wine" >/dev/null; then
  echo "wine.sh: Wine is not installed, run scripts/setup.sh" >&2
  exit 127
fi

# What Wine starts here must hold neither the caller's pipes nor the lock.
make_prefix() {
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX" "$repo/build/logs"
  {
    timeout 300 "$wine" wineboot -i &&
      timeout 60 "$wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f &&
      timeout 60 wineserver -w
  } </dev/null >"$repo/build/logs/${WINEPREFIX##*/}_prefix.log" 2>&1 9>&- && : >"$WINEPREFIX/ready"
}

if [ ! -e "$WINEPREFIX/ready" ]; then
  mkdir -p "$repo/build"
  (
    flock 9
    [ -e "$WINEPREFIX/ready" ] || make_prefix
  ) 9>"$lock" || {
    echo "wine.sh: the Wine prefix could not be made, see build/logs/${WINEPREFIX##*/}_prefix.log" >&2
    exit 127
  }
fi

exec "$wine" "$@"
