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
#
# Returns 0 when every answer is right; wrong ones stand in build/native/sweep_failures.csv.
set -eu
cd "$(dirname "$0")/.."
[ -f build/native/build.ninja ] || cmake --preset native
cmake --build --preset native --target KVGasThermo KVCmpdPureLite KVToolsLite kestrune_sweep
KESTRUNE_DATA=$PWD/data exec build/native/bin/kestrune_sweep --jobs "$(nproc)" \
  --failures build/native/sweep_failures.csv "$@"
