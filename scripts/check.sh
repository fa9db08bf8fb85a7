#!/bin/sh
# Looks at the sources without running them; fails where something is wrong.
#
#   sh scripts/check.sh              all checks below; clang-tidy for the files that differ from the branch main
#   sh scripts/check.sh --all        all checks; clang-tidy for all files
#   sh scripts/check.sh [--all] NAME...    these only:
#
#   format     sources are formatted (scripts/format.sh mends them)
#   shell      shellcheck finds nothing in the scripts
#   layers     no file includes what its layer must not know
#   state      the compiled library (build/native) holds no writable data that is not allowed
#   warnings   clang has no warning of the library, conversions that lose digits and shadowed names among them
#   clang      the same for a build of library and command line, every file on its own (preset clang)
#   tidy       clang-tidy with the rules of .clang-tidy
#   constants  every number of the solvers is measured, with the value that it has (docs/constants.md)
# shellcheck disable=SC2317 # checks are called by their names
set -u
cd "$(dirname "$0")/.." || exit 1
strict="-Wall -Wextra -Wpedantic -Wconversion -Wno-sign-conversion -Wshadow -Werror"

need() {
  command -v "$1" >/dev/null || { echo "check: $1 is not installed, run sh scripts/setup.sh dev" >&2; exit 2; }
}

check_format() {
  sh scripts/format.sh --check
}

check_shell() {
  need shellcheck
  git ls-files '*.sh' .ci/run | xargs shellcheck
}

check_layers() {
  sh scripts/check_layers.sh
}

# shellcheck disable=SC2046 # one word for each object file
check_state() {
  [ -f build/native/lib/libkestrune_core.a ] || { echo "check: build the preset native first" >&2; return 1; }
  sh scripts/check_state.sh build/native/lib/libkestrune_core.a build/native/lib/libkestrune_tools.a \
    $(find build/native/src build/native/siblings -name '*.o' -not -path '*/kestrune_core.dir/*' \
      -not -path '*/kestrune_tools.dir/*')
}

# The standard headers are read once, which takes two thirds of the time.
# shellcheck disable=SC2086 # the options are separate words
check_warnings() {
  need clang++
  options="-std=c++20 -fPIC -Iinclude -Isrc -Isiblings -DKV_BUILDING -DKESTRUNE_WIDE $strict"
  folder=build/check
  mkdir -p $folder
  for header in algorithm cfloat cmath cstddef cstdint cstdio cstring limits utility; do
    echo "#include <$header>"
  done >$folder/standard.hpp
  clang++ $options -x c++-header $folder/standard.hpp -o $folder/standard.pch || return 1
  find src siblings -name '*.cpp' | sort |
    xargs -P "$(nproc)" -n 12 clang++ $options -include-pch $folder/standard.pch -fsyntax-only
}

check_clang() {
  need clang++
  cmake --preset clang >/dev/null && cmake --build --preset clang -j "$(nproc)"
}

# What differs from main; on main itself, what is not committed.
changed_files() {
  base=$(git merge-base HEAD main 2>/dev/null || git rev-parse HEAD)
  { git diff --name-only --diff-filter=d "$base" && git ls-files -o --exclude-standard; } | sort -u
}

# The files that clang-tidy reads: of src, siblings and host. A header is read with the first file that includes it.
tidy_files() {
  if [ "$tidy_all" ]; then
    find src siblings host -name '*.cpp' | sort
    return
  fi
  for file in $(changed_files); do
    case $file in
      src/*.cpp | siblings/*.cpp | host/*.cpp) echo "$file" ;;
      src/*.hpp | siblings/*.hpp | host/*.hpp)
        grep -rlE "#include \"([a-z0-9/]*/)?$(basename "$file")\"" src siblings host --include='*.cpp' | sort | head -n 1
        ;;
    esac
  done | sort -u
}

check_tidy() {
  need clang-tidy
  cmake --preset clang >/dev/null || return 1
  files=$(tidy_files)
  [ "$files" ] || { echo "no file of src, siblings or host differs from main"; return 0; }
  echo "$files" | xargs -P "$(nproc)" -n 1 clang-tidy -p build/clang --quiet 2>/dev/null
}

check_constants() {
  python3 tools/constants/page.py --check
}

names="format shell layers state warnings clang tidy constants"
tidy_all=
case ${1:-} in
  --all)
    tidy_all=all
    shift
    ;;
esac
case ${1:-} in
  "") ;;
  -*) echo "check: unknown option $1; use --all or some of: $names" >&2; exit 2 ;;
  *) names=$* ;;
esac
for name in $names; do
  case $name in
    format | shell | layers | state | warnings | clang | tidy | constants) ;;
    *) echo "check: there is no check $name; there are: format shell layers state warnings clang tidy constants" >&2; exit 2 ;;
  esac
done

result=0
for name in $names; do
  if "check_$name"; then
    echo "ok      $name"
  else
    echo "FAILED  $name"
    result=1
  fi
done
exit $result
