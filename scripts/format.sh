#!/bin/sh
# Formats the C and C++ sources in place; with --check only lists the files that are not formatted.
#
#   sh scripts/format.sh [--check]
set -u
cd "$(dirname "$0")/.." || exit 1
if ! command -v clang-format >/dev/null; then
  echo "format: clang-format is not installed" >&2
  exit 2
fi
files() {
  find include src siblings host python tests bench fuzz -type f \
    \( -name '*.h' -o -name '*.hpp' -o -name '*.c' -o -name '*.cpp' \) 2>/dev/null | sort
}
if [ "${1:-}" != --check ]; then
  files | xargs clang-format -i
  exit
fi
unformatted=$(files | xargs clang-format --dry-run 2>&1 | sed -n 's/:[0-9]*:[0-9]*: warning: .*clang-format-violations.*//p' | uniq)
[ -z "$unformatted" ] || { echo "$unformatted"; exit 1; }
