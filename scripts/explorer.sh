#!/bin/sh
# Builds the explorer, a page of one file with the library in WebAssembly, and serves it on the loopback address.
#
#   sh scripts/explorer.sh            builds, serves it until Ctrl+C and prints the link (port 8321 or the one of PORT)
#   sh scripts/explorer.sh --build    builds it: build/explorer/site/index.html, build/dist/kestrune-explorer.html
#   sh scripts/explorer.sh --test     builds it and tests it in Debian's Chromium
#
# Needs root where emscripten, Node or Chromium are missing: they are Debian's. Takes its tools from npm by the lock file.
set -u
cd "$(dirname "$0")/.." || exit 1
repo=$(pwd)
work=$repo/build/explorer/work
site=$repo/build/explorer/site

fail() {
  echo "explorer: $1" >&2
  exit 1
}

install_chromium() {
  command -v chromium >/dev/null && return
  [ "$(id -u)" = 0 ] || fail "not root; please install: chromium"
  mkdir -p build/logs
  # An index that fails to load is no reason to stop: what is there may do.
  {
    apt-get update || true
    DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600 install -y --no-install-recommends \
      chromium fonts-dejavu-core
  } >build/logs/explorer_setup.log 2>&1 </dev/null || fail "cannot install chromium: build/logs/explorer_setup.log"
}

# A copy of the sources beside the tools of npm, which are installed where the lock file changed.
prepare() {
  mkdir -p "$work" "$site"
  if ! cmp -s web/explorer/package-lock.json "$work/installed.json"; then
    cp web/explorer/package.json web/explorer/package-lock.json "$work"
    (cd "$work" && npm ci --silent --no-audit --no-fund) || fail "npm ci fails"
    cp web/explorer/package-lock.json "$work/installed.json"
  fi
  rm -rf "$work/src" "$work/tests"
  cp -r web/explorer/. "$work"
  cp -r tests/explorer "$work/tests"
}

build() {
  sh scripts/web.sh || exit 1
  prepare
  cd "$work" || exit 1
  node_modules/.bin/tsc -p . || fail "the types are wrong"
  node build.mjs "$repo/build/web/kestrune" "$site/index.html" || fail "cannot make the page"
  cp "$site/index.html" "$repo/build/dist/kestrune-explorer.html"
  echo "explorer: build/dist/kestrune-explorer.html"
}

run_tests() {
  shots=$repo/build/explorer/screenshots
  rm -rf "$shots" bundled
  mkdir -p "$shots"
  for test in state calculate; do
    node_modules/.bin/esbuild "tests/$test.test.mjs" --bundle --platform=node --format=esm --log-level=warning \
      --alias:kestrune="$repo/build/web/kestrune/index.js" --outfile="bundled/$test.test.mjs" || fail "cannot bundle $test"
  done
  export KESTRUNE_PACKAGE="$repo/build/web/kestrune" KESTRUNE_PAGE="$site/index.html" KESTRUNE_SHOTS="$shots"
  node --test --test-reporter=spec bundled/*.test.mjs tests/page*.test.mjs || fail "a test fails"
  echo "explorer: all tests passed, screenshots in build/explorer/screenshots"
}

serve() {
  exec python3 - "$site" "${PORT:-8321}" <<'EOF'
import functools
import http.server
import sys

handler = functools.partial(http.server.SimpleHTTPRequestHandler, directory=sys.argv[1])
try:
    server = http.server.ThreadingHTTPServer(("127.0.0.1", int(sys.argv[2])), handler)
except OSError:  # the port is taken
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
print(f"explorer: http://127.0.0.1:{server.server_port}/ (Ctrl+C ends it)", flush=True)
try:
    server.serve_forever()
except KeyboardInterrupt:
    print()
EOF
}

case ${1:-} in
  "") build && serve ;;
  --build) build ;;
  --test) install_chromium && build && run_tests ;;
  *) fail "unknown option $1; use --build, --test or nothing" ;;
esac
