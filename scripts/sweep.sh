#!/bin/sh
# Judges the flashes of two and three phases of the native build at many states with an independent model and reports
# every wrong answer. Builds what is missing. Options go to kestrune_sweep, for instance
#
#   scripts/sweep.sh                    the flash at T and P: the full sweep, on all processors
#   scripts/sweep.sh --saturation       bubble, dew and quality points at given T and at given P
#   scripts/sweep.sh --caloric          flashes at given enthalpy and at given entropy
#   scripts/sweep.sh --values           the same at values on a grid
#   scripts/sweep.sh --three-phase      two liquids and a vapour at T and P
#   scripts/sweep.sh --three-phase-caloric   the same at enthalpy, entropy and vapour fraction
#   scripts/sweep.sh --free-water       all two-phase flashes of random feeds with free water
#   scripts/sweep.sh --own-routines     the library's own routines in the record against the null record
#   scripts/sweep.sh --sample           the fixed sample of the test suite, of any of them
#   scripts/sweep.sh --seed 7 --warm    other states, every one asked a second time from a warm start
#   scripts/sweep.sh --long [SEED]      a million states of the flash at T and P and a hundred thousand each with
#                                       free water, of three phases and at given values, on ten seeds from SEED (1)
#
# Returns 0 when every answer is right; wrong ones stand in build/native/sweep_failures.csv. A long sweep takes
# hours; it keeps what is done in build/native/long_sweep, goes on from there when it is started again, and ends
# with a table. Remove that folder after a change of the library.
set -eu
cd "$(dirname "$0")/.."
[ -f build/native/build.ninja ] || cmake --preset native
cmake --build --preset native --target KVGasThermo KVCmpdPureLite KVToolsLite kestrune_sweep
export KESTRUNE_DATA="$PWD/data"

sweep() {
  build/native/bin/kestrune_sweep --jobs "$(nproc)" "$@"
}

# long_part RUN STATES SEED: one part of the long sweep, unless it was done before. A part that was cut short leaves
# no log behind.
long_part() {
  part=$kept/${1#--}_$3
  number=$((number + 1))
  if [ ! -f "$part.log" ]; then
    printf '[%2d/40] %s, seed %s ... ' "$number" "${1#--}" "$3"
    sweep "$1" --states "$2" --seed "$3" --failures "$part.csv" >"$part.running" 2>&1 || true
    grep -q ' passed, ' "$part.running" || { tail -n 5 "$part.running"; exit 2; }
    mv "$part.running" "$part.log"
    sed -n 's/.* passed, .* failed/&/p' "$part.log" | tail -n 1
  fi
}

if [ "${1:-}" = --long ]; then
  first=${2:-1}
  kept=build/native/long_sweep
  number=0
  mkdir -p "$kept"
  for seed in $(seq "$first" $((first + 9))); do
    long_part --isothermal 100000 "$seed"
    long_part --free-water 10000 "$seed"
    long_part --three-phase 10000 "$seed"
    long_part --values 10000 "$seed"
  done
  printf '\n| run | seeds | passed | failed |\n|---|---|---|---|\n'
  for run in isothermal free-water three-phase values; do
    sed -n 's/.*\( [0-9]*\|^[0-9]*\) passed, \([0-9]*\) failed.*/\1 \2/p' "$kept/$run"_*.log |
      awk -v run="$run" -v seeds="$first to $((first + 9))" '{ good += $1; bad += $2 }
        END { printf "| %s | %s | %d | %d |\n", run, seeds, good, bad; exit bad > 0 }' || failed=1
  done
  exit "${failed:-0}"
fi
sweep --failures build/native/sweep_failures.csv "$@"
