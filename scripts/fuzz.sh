#!/bin/sh
# Calls the exports and the readers of the command line with hostile input for some minutes and prints what was called,
# what it found and how long the slowest calls took. Builds what is missing.
#
#   sh scripts/fuzz.sh MINUTES [native] [win32] [clang]     (native and win32 where none is named)
#
# native is a plain random driver on all processors, win32 the same for the 32-bit DLL under Wine, clang libFuzzer with
# the address and undefined-behaviour sanitizers (needs clang). They share the minutes. SEED=7 in the environment makes
# other runs. A fault is printed with the options that repeat it alone; the logs are in build/fuzz_run.
# Returns 0 when there was none.
# shellcheck disable=SC2015,SC2086 # a prefix of several words; "a && b || fail" is meant
set -u
cd "$(dirname "$0")/.." || exit 1
repo=$(pwd)
minutes=${1:?"usage: fuzz.sh MINUTES [native] [win32] [clang]"}
shift
[ $# -gt 0 ] || set -- native win32
seed=${SEED:-1}
share=$(awk "BEGIN { print $minutes / $# }")
work=$repo/build/fuzz_run
mkdir -p "$work"
result=0

build() {
  { [ -f "build/$1/build.ninja" ] || cmake --preset "$1"; } >"$work/build_$1.log" 2>&1 &&
    cmake --build "build/$1" -j "$(nproc)" --target fuzz_exports fuzz_readers >>"$work/build_$1.log" 2>&1 || {
    tail -n 30 "$work/build_$1.log"
    exit 1
  }
}

# minutes_of NUMBER: that share of the minutes of a target
minutes_of() {
  awk "BEGIN { print $share * $1 }"
}

# run NAME MINUTES COMMAND...: in the background, in the scratch folder, ended where it does not end by itself
run() {
  run_name=$1
  limit=$(awk "BEGIN { printf \"%d\", $2 * 60 + 120 }")
  shift 2
  (cd "$work" && timeout "$limit" "$@" </dev/null >"$run_name.log" 2>&1) &
  started="$started $run_name:$!"
}

# Waits for what was started and prints the reports.
finish() {
  for job in $started; do
    wait "${job#*:}"
    code=$?
    echo "---- ${job%%:*}"
    grep -a -v '^#' "$work/${job%%:*}.log" | tail -n 200
    [ $code = 0 ] || { echo "${job%%:*}: exit code $code"; result=1; }
  done
  started=
}

started=
for target in "$@"; do
  case $target in
    native)
      build native
      k=0
      while [ $k -lt "$(nproc)" ]; do
        run "native_exports_$k" "$(minutes_of 0.85)" "$repo/build/native/bin/fuzz_exports" --seed $((seed + 1000 * k)) \
          --minutes "$(minutes_of 0.85)"
        k=$((k + 1))
      done
      finish
      run native_readers "$(minutes_of 0.15)" "$repo/build/native/bin/fuzz_readers" --seed "$seed" --minutes "$(minutes_of 0.15)"
      ;;
    win32)
      build win32
      run win32_exports "$share" sh "$repo/scripts/wine.sh" "$repo/build/win32/bin/fuzz_exports.exe" \
        --seed $((seed + 500)) --minutes "$share"
      ;;
    clang)
      build fuzz
      export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=0}"
      fixed=
      setarch "$(uname -m)" -R true 2>/dev/null && fixed="setarch $(uname -m) -R"
      for name in exports readers; do
        mkdir -p "$work/corpus_$name"
        run "clang_$name" "$share" $fixed "$repo/build/fuzz/bin/fuzz_$name" -seed="$seed" -max_len=4096 -len_control=0 \
          -timeout=60 -max_total_time="$(awk "BEGIN { printf \"%d\", $share * 60 }")" "corpus_$name"
      done
      ;;
    *)
      echo "fuzz.sh: unknown target $target" >&2
      exit 2
      ;;
  esac
  finish
done
rm -f "$work"/fort.*
exit $result
