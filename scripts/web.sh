#!/bin/sh
# Builds the npm package in web/kestrune: the module with emscripten (preset wasm), the archive with npm.
#
#   sh scripts/web.sh             build/dist/kestrune-<version>.tgz
#   sh scripts/web.sh --test      the same, installed into an empty folder and tested there against the native library
#   sh scripts/web.sh --bench     its speed beside the native library's
#
# Needs root where emscripten or Node are missing: they are Debian's. The tests take TypeScript from npm.
set -u
cd "$(dirname "$0")/.." || exit 1
repo=$(pwd)
stage=$repo/build/web/kestrune
dist=$repo/build/dist
jobs=$(nproc)
export CCACHE_BASEDIR="$repo" CCACHE_NOHASHDIR=1

fail() {
  echo "web: $1" >&2
  exit 1
}

install_tools() {
  missing=
  command -v em++ >/dev/null || missing=emscripten
  command -v npm >/dev/null || missing="$missing nodejs npm"
  [ -n "$missing" ] || return 0
  [ "$(id -u)" = 0 ] || fail "not root; please install: $missing"
  mkdir -p build/logs
  # An index that fails to load is no reason to stop: what is there may do.
  # shellcheck disable=SC2086 # the packages are separate words
  {
    apt-get update || true
    DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600 install -y --no-install-recommends $missing
  } >build/logs/web_setup.log 2>&1 </dev/null || fail "cannot install $missing: build/logs/web_setup.log"
}

# The module and its archive.
pack() {
  if command -v ccache >/dev/null; then export EM_COMPILER_WRAPPER=ccache; fi
  [ -f build/wasm/build.ninja ] || cmake --preset wasm || fail "cannot configure wasm"
  cmake --build build/wasm -j "$jobs" --target kestrune_web || fail "cannot build the module"
  version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/wasm/CMakeCache.txt)
  rm -rf "$stage"
  mkdir -p "$stage" "$dist"
  cp -r web/kestrune/. "$stage"
  cp build/wasm/bin/kestrune.wasm LICENSE data/NOTICE.md "$stage"
  sed -i "s/\"version\": \"[^\"]*\"/\"version\": \"$version\"/" "$stage/package.json"
  (cd "$stage" && npm pack --silent --pack-destination "$dist" >/dev/null) || fail "npm pack fails"
  archive=$dist/kestrune-$version.tgz
  [ -f "$archive" ] || fail "no $archive"
  echo "web: build/dist/kestrune-$version.tgz"
  for file in kestrune.wasm index.js; do
    echo "web: $file $(wc -c <"$stage/$file") bytes"
  done
  echo "web: module and JavaScript $(cat "$stage/kestrune.wasm" "$stage/index.js" "$stage"/lib/*.js | gzip -9 | wc -c) bytes with gzip -9"
}

# The archive alone in an empty folder, which is the working folder afterwards.
install_archive() {
  place=$(mktemp -d /tmp/kestrune-web.XXXXXX) || fail "no temporary folder"
  trap 'rm -rf "$place"' EXIT
  cp tests/web/*.mjs tests/web/*.mts examples/javascript/rich_gas.mjs web/bench/bench.mjs "$place"
  cd "$place" || fail "cannot enter $place"
  npm install --silent --no-audit --no-fund --offline "$archive" || fail "the archive cannot be installed"
}

native() {
  [ -f build/native/build.ninja ] || cmake --preset native >/dev/null || fail "cannot configure native"
  cmake --build build/native -j "$jobs" --target kestrune_arrays KVGasThermo KVCmpdPureLite KVToolsLite ||
    fail "cannot build the native library"
}

with_native() {
  KESTRUNE_LIBRARIES=$repo/build/native/bin PYTHONPATH=$repo/python PYTHONDONTWRITEBYTECODE=1 "${PYTHON:-/usr/bin/python3}" "$@"
}

check_types() {
  tools=$repo/build/web/tools
  [ -x "$tools/node_modules/.bin/tsc" ] || npm install --silent --no-audit --no-fund --prefix "$tools" typescript@5 ||
    fail "TypeScript cannot be installed"
  "$tools/node_modules/.bin/tsc" --noEmit --strict --target es2022 --module nodenext --lib es2023,dom types.mts ||
    fail "the types are not what tests/web/types.mts expects"
}

run_tests() {
  node checks.mjs || fail "the package fails its checks"
  with_native "$repo/tests/web/reference.py" calls.json || fail "no numbers of the native library"
  node numbers.mjs calls.json || fail "other numbers than the native library"
  with_native "$repo/tests/bindings/run_example.py" program "$repo" node rich_gas.mjs || fail "the example gives other numbers"
  check_types
  echo "web: all tests passed"
}

install_tools
pack
case ${1:-} in
  "") ;;
  --test) native && install_archive && run_tests ;;
  --bench) native && install_archive && with_native "$repo/web/bench/bench.py" && node bench.mjs ;;
  *) fail "unknown option $1; use --test, --bench or nothing" ;;
esac
