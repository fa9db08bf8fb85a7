#!/bin/sh
# Builds everything and runs every check: what continuous integration runs, and what a developer runs before
# handing over a change. From a fresh clone it installs what is missing (as root).
#
#   sh scripts/test.sh            everything but what follows
#   sh scripts/test.sh --all      also the build for 64-bit Windows, the packages, clang and clang-tidy, before a release
#   sh scripts/test.sh --fast     while working: the native build, its quick tests, layers and format
#
# One line per step with its seconds and those of the processors, logs in build/logs. The closing line sums the tests
# that CTest ran over all presets; a failed step that is no CTest run counts as one failure.
# shellcheck disable=SC2086,SC2317 # options are separate words; steps call functions by their names
set -u
cd "$(dirname "$0")/.." || exit 1
export LC_ALL=C
logs=build/logs
mkdir -p "$logs"
jobs=$(nproc)
passed=0
failed=0
started=$(date +%s)

# Seconds of the processors that all that was run has taken so far.
processor_seconds() {
  times >"$logs/times.txt"
  seconds=$(awk 'NR == 2 { split($1 "m" $2, t, /[ms]+/); printf "%d", 60 * (t[1] + t[3]) + t[2] + t[4] }' "$logs/times.txt")
}

# step NAME COMMAND...: runs it with its output in build/logs/NAME.log; prints one line, and the end of the log
# where it failed. A line of the log that starts with "note: " is printed too.
step() {
  step_name=$1
  shift
  step_log=$logs/$step_name.log
  step_begin=$(date +%s)
  processor_seconds
  step_seconds=$seconds
  if "$@" >"$step_log" 2>&1 </dev/null; then
    step_result=0
    processor_seconds
    printf 'ok      %-16s %4d s %5d\n' "$step_name" $(($(date +%s) - step_begin)) $((seconds - step_seconds))
  else
    step_result=1
    printf 'FAILED  %-16s %4d s, end of %s:\n' "$step_name" $(($(date +%s) - step_begin)) "$step_log"
    tail -n 40 "$step_log" | sed 's/^/        /'
  fi
  sed -n 's/^note: /        /p' "$step_log"
  return $step_result
}

# A step whose failure counts as one.
check() {
  step "$@" || failed=$((failed + 1))
}

# build PRESET [OPTION...]: configures and builds a preset.
build() {
  preset=$1
  shift
  cmake --preset "$preset" "$@" && cmake --build "build/$preset" -j "$jobs"
}

# run_tests PRESET [PREFIX...]: runs CTest of a preset, PREFIX being put before the command, and adds its counts.
run_tests() {
  preset=$1
  shift
  step "test_$preset" "$@" ctest --test-dir "build/$preset" -j "$jobs" --output-on-failure $ctest_options
  result=$?
  counts=$(sed -n 's/.* tests passed, \([0-9]*\) tests failed out of \([0-9]*\).*/\1 \2/p' "$logs/test_$preset.log")
  if [ -n "$counts" ]; then
    bad=${counts% *}
    all=${counts#* }
    echo "        $((all - bad)) of $all tests passed"
    passed=$((passed + all - bad))
    failed=$((failed + bad))
  fi
  # No summary, no test, or a failure that is no test's: one failure all the same.
  if [ -z "$counts" ] || [ "$all" = 0 ] || { [ $result != 0 ] && [ "$bad" = 0 ]; }; then
    failed=$((failed + 1))
  fi
}

# build_and_test PRESET "OPTIONS" [PREFIX...]
build_and_test() {
  preset=$1
  options=$2
  shift 2
  if step "build_$preset" build "$preset" $options; then
    run_tests "$preset" "$@"
  else
    failed=$((failed + 1))
    echo "        the tests of $preset were not run"
  fi
}

# Decides what the sanitizers need on this machine: no address-space randomisation where that can be
# switched off (older run-time libraries stumble over it), no leak check where tracing is forbidden.
probe_sanitizers() {
  fixed_addresses=
  if setarch "$(uname -m)" -R true 2>/dev/null; then
    fixed_addresses="setarch $(uname -m) -R"
  fi
  leaks=1
  echo 'int main() { return 0; }' >"$logs/probe.cpp"
  if ! { g++ -fsanitize=address "$logs/probe.cpp" -o "$logs/probe" && $fixed_addresses "$logs/probe"; } \
    >"$logs/probe.log" 2>&1; then
    leaks=0
    echo "        leak check off: it does not work on this machine"
  fi
  rm -f "$logs/probe" "$logs/probe.cpp"
  export ASAN_OPTIONS="detect_leaks=$leaks" UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
  export TSAN_OPTIONS="halt_on_error=1"
}

has_target() {
  ninja -C "build/$1" -t targets all 2>/dev/null | grep -q "^$2: phony"
}

build_reentrancy() {
  cmake --preset tsan -DKESTRUNE_BENCH=OFF && cmake --build build/tsan -j "$jobs" --target test_reentrancy
}

check_all_exports() {
  result=0
  count=0
  for definition in $(find src siblings -name '*.def' | sort); do
    library=$(basename "$definition" .def)
    count=$((count + 1))
    sh scripts/check_exports.sh "build/win32/bin/$library.dll" "$definition" || result=1
    [ -z "$release" ] || sh scripts/check_exports.sh "build/win64/bin/$library.dll" "$definition" || result=1
    sh scripts/check_exports.sh "build/native/bin/lib$library.so" "$definition" || result=1
  done
  [ $count = 3 ] || { echo "$count libraries, 3 expected"; result=1; }
  return $result
}

make_and_check_packages() {
  sh scripts/package.sh && sh tests/packages/check_packages.sh
}

finish() {
  echo "total time $(($(date +%s) - started)) s"
  echo "$passed passed, $failed failed"
  [ $failed = 0 ] && [ $passed -gt 0 ]
  exit
}

release=
fast=
case ${1:-} in
  "") ;;
  --all) release=all ;;
  --fast) fast=fast ;;
  *) echo "test.sh: unknown option $1; use --all, --fast or nothing" >&2; exit 2 ;;
esac
sh scripts/setup.sh $release || { printf '\n%s passed, %s failed\n' 0 1; exit 1; }

ctest_options=
if [ "$fast" ]; then
  ctest_options="-LE slow"
  build_and_test native ""
  check layers sh scripts/check.sh layers
  check format sh scripts/check.sh format
  finish
fi
probe_sanitizers
build_and_test native ""
check wine_prefix sh scripts/wine.sh cmd /c exit
build_and_test win32 ""
[ -z "$release" ] || build_and_test win64 ""
build_and_test asan -DKESTRUNE_BENCH=OFF $fixed_addresses

if has_target native test_reentrancy; then
  if step build_tsan build_reentrancy; then
    ctest_options="-R ^test_reentrancy$"
    run_tests tsan $fixed_addresses
    ctest_options=
  else
    failed=$((failed + 1))
  fi
fi

check wheel sh scripts/wheel.sh --test native ${release:+win64}
if [ "$release" ]; then
  check packages make_and_check_packages
  check web sh scripts/web.sh --test
  check explorer sh scripts/explorer.sh --test
  check clang sh scripts/check.sh clang
  check tidy sh scripts/check.sh --all tidy
fi
check fuzz sh scripts/fuzz.sh 2
check exports check_all_exports
for name in layers state format shell warnings; do
  check $name sh scripts/check.sh $name
done
finish
