#!/bin/sh
# Runs all benchmarks, native and 32-bit under Wine, and prints the rows of the table in README.md.
#
#   sh bench/run.sh [--write] [NATIVE_BUILD WIN32_BUILD]
#   sh bench/run.sh --counts        only writes the counts that the tests compare (counts_*.txt)
#
# Build folders default to build/native and build/win32; their programs are brought up to date first. --write
# also puts the rows into README.md. ROUNDS=3: every program runs that often and the lowest figures count. As
# root it runs at raised priority. About three minutes.
set -u
cd "$(dirname "$0")/.." || exit 1
export LC_ALL=C
write=
if [ "${1:-}" = --write ]; then
  write=1
  shift
fi
if [ "${1:-}" = --counts ]; then
  for name in bench_core bench_dll; do
    cmake --build build/native --target "$name" >/dev/null && build/native/bin/"$name" --counts >bench/counts_$name.txt || exit 1
  done
  exit
fi
native=${1:-build/native}
win32=${2:-build/win32}
priority=
nice -n -5 true 2>/dev/null && priority="nice -n -5"
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT

build() {  # FOLDER PRESET
  if [ ! -e "$1/CMakeCache.txt" ]; then
    [ "$1" = "build/$2" ] || { echo "run.sh: no build in $1" >&2; return 1; }
    cmake --preset "$2" || return 1
  fi
  cmake --build "$1" --target bench_core bench_dll
}
build "$native" native >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
build "$win32" win32 >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }

failed() {
  echo "run.sh: $1 failed" >&2
  exit 1
}
round=0
while [ "$round" -lt "${ROUNDS:-3}" ]; do
  for name in bench_core bench_dll; do
    $priority "$native/bin/$name" >>"$work/native" || failed "$name"
    $priority sh scripts/wine.sh "$win32/bin/$name.exe" >>"$work/win32" || failed "$name.exe"
  done
  round=$((round + 1))
done
for name in bench_core bench_dll; do
  "$native/bin/$name" --counts >>"$work/counts" || failed "$name --counts"
  sh scripts/wine.sh "$win32/bin/$name.exe" --counts >>"$work/counts32" || failed "$name.exe --counts"
done
tr -d '\r' <"$work/win32" >"$work/win32.txt"
tr -d '\r' <"$work/counts32" | cmp -s - "$work/counts" || echo "run.sh: note: the counts of the two builds differ" >&2

awk -F '\t' '
  function time(ns) {
    if (ns == "") return "-"
    if (ns >= 1000) return sprintf("%.2f us", ns / 1000)
    return sprintf((ns < 100) ? "%.1f ns" : "%.0f ns", ns)
  }
  function lower(old, new) { return (old == "" || new + 0 < old + 0) ? new : old }
  FILENAME == ARGV[1] { counts[$1] = counts[$1] (counts[$1] == "" ? "" : "; ") $2; next }
  FILENAME == ARGV[2] {
    if (!($1 in minimum)) order[++n] = $1
    minimum[$1] = lower(minimum[$1], $2); median[$1] = lower(median[$1], $3); target[$1] = $4; what[$1] = $5
    next
  }
  { minimum32[$1] = lower(minimum32[$1], $2); median32[$1] = lower(median32[$1], $3) }
  END {
    print "| bench | what is timed | target | native: min, median | 32-bit, Wine: min, median | ratio | counts |"
    print "| --- | --- | --- | --- | --- | --- | --- |"
    for (k = 1; k <= n; ++k) {
      c = order[k]
      goal = target[c] > 0 ? time(target[c]) : "-"
      ratio = minimum32[c] == "" ? "-" : sprintf("%.2f", minimum32[c] / minimum[c])
      work = (c in counts) ? counts[c] : "-"
      printf("| `%s` | %s | %s | %s, %s | %s, %s | %s | %s |\n", c, what[c], goal, time(minimum[c]), time(median[c]),
        time(minimum32[c]), time(median32[c]), ratio, work)
    }
  }' "$work/counts" "$work/native" "$work/win32.txt" >"$work/table"
[ -s "$work/table" ] || failed "the table"
printf '\nLowest of %d runs of each program; load average %s at the end, %d cores.\n' \
  "$round" "$(cut -d ' ' -f 1 /proc/loadavg)" "$(nproc)" >>"$work/table"
cat "$work/table"

if [ -n "$write" ]; then
  awk -v table="$work/table" '
    /^<!-- table/ { print; while ((getline line < table) > 0) print line; inside = 1; next }
    /^<!-- end of table/ { inside = 0 }
    !inside' bench/README.md >"$work/readme" && cat "$work/readme" >bench/README.md
fi
