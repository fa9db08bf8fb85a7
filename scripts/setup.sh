#!/bin/sh
# Installs what the build and the tests need on Debian 12: compilers (also of the languages of examples/), test
# libraries, what looks at sources, what makes packages, and Wine for 32- and 64-bit programs. Does nothing, and says
# so, when everything is there. Needs root only where something is missing.
#
#   sh scripts/setup.sh          all that scripts/test.sh needs
#   sh scripts/setup.sh dev      and what a change asks for: clang-tidy (scripts/check.sh), mpmath (references), valgrind
#   sh scripts/setup.sh all      and what scripts/test.sh --all needs: 64-bit Windows, packages, MPI
#   sh scripts/setup.sh demo     what the 32-bit DLLs and scripts/demo.sh need
# shellcheck disable=SC2086 # packages and options are separate words
set -u
cd "$(dirname "$0")/.." || exit 1
repo=$(pwd)
log=$repo/build/logs/setup.log
mkdir -p "$repo/build/logs"
export DEBIAN_FRONTEND=noninteractive

required="cmake ninja-build g++ g++-mingw-w64-i686-posix libgtest-dev googletest libbenchmark-dev
  libcli11-dev nlohmann-json3-dev libfmt-dev libxxhash-dev python3"
# The languages of examples/.
hosts="gfortran gfortran-mingw-w64-i686-posix fp-compiler mono-mcs mono-runtime pkgconf"
# All rules of scripts/check.sh, tools/make_*_reference.py, instructions counted (CONTRIBUTING.md).
dev="clang-tidy python3-mpmath valgrind"
# Packages, 64-bit Windows and kestrune-mpi.
all="dpkg-dev lintian zip unzip g++-mingw-w64-x86-64-posix libopenmpi-dev openmpi-bin"
# The wheel, its tests and the packages that it uses where they are installed.
python="python3-setuptools python3-wheel python3-build python3-pip python3-venv python3-numpy python3-pytest
  python3-hypothesis python3-pandas python3-matplotlib python3-pint python3-distributed python3-nbformat"
# What scripts/check.sh runs, but for clang-tidy.
checks="clang clang-format shellcheck"
optional="gnuplot-nox mypy"
wine="wine wine32:i386"
full="$required $hosts $python $checks"
case ${1:-} in
  "") required=$full ;;
  dev) required="$full $dev" ;;
  all)
    required="$full $dev $all"
    wine="$wine wine64"
    ;;
  demo) optional= ;;
  *)
    echo "setup: there is no word $1; there are: dev all demo, or none" >&2
    exit 2
    ;;
esac

# The packages of "$@" that are not installed, on one line.
missing() {
  have=$(dpkg-query -W -f='${db:Status-Status} ${Package} ${Package}:${Architecture}\n' 2>/dev/null |
    awk '$1 == "installed" { print $2; print $3 }')
  for package in "$@"; do
    printf '%s\n' "$have" | grep -qxF "$package" || printf '%s ' "$package"
  done
}

fail() {
  echo "setup: $1" >&2
  if [ -s "$log" ]; then
    echo "setup: end of $log:" >&2
    tail -n 40 "$log" >&2
  fi
  exit 1
}

# apt-get with its output in the log, never asking, waiting for another apt that holds the lock.
apt_options=
apt() {
  echo "+ apt-get $apt_options $*" >>"$log"
  apt-get -q -o DPkg::Lock::Timeout=600 -o Acquire::Retries=3 $apt_options "$@" </dev/null >>"$log" 2>&1
}

# Installs "$@" when apt finds a way to do so without removing anything.
apt_install() {
  apt install -s -y --no-remove --no-install-recommends "$@" &&
    apt install -y --no-remove --no-install-recommends "$@"
}

codename() {
  sed -n 's/^VERSION_CODENAME=//p' /etc/os-release
}

# The lines of a sources list that hold the main suite alone, with the mirrors that this machine uses:
# read from its .list and deb822 .sources files.
main_suite() {
  cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
    awk -v suite="$(codename)" '
      $1 == "deb" {
        line = $0; options = ""
        if (match(line, /\[[^]]*\]/)) { options = substr(line, RSTART, RLENGTH) " "; sub(/\[[^]]*\]/, "", line) }
        n = split(line, word, " ")
        if (word[3] != suite) next
        for (i = 4; i <= n; i++) if (word[i] == "main") print "deb " options word[2] " " suite " main"
      }'
  for file in /etc/apt/sources.list.d/*.sources; do
    [ -r "$file" ] && sed '/^[[:space:]]*#/d' "$file" && echo
  done | awk -v suite="$(codename)" '
    function has(list, wanted,   i, n, word) {
      n = split(list, word, " ")
      for (i = 1; i <= n; i++) if (word[i] == wanted) return 1
      return 0
    }
    BEGIN { RS = ""; FS = "\n" }
    {
      delete field; name = ""
      for (i = 1; i <= NF; i++) {
        if ($i !~ /^[[:space:]]/) { colon = index($i, ":"); name = tolower(substr($i, 1, colon - 1)); text = substr($i, colon + 1) }
        else text = $i
        field[name] = field[name] " " text
      }
      if (!has(field["types"], "deb") || !has(field["suites"], suite) || !has(field["components"], "main")) next
      if (has(tolower(field["enabled"]), "no")) next
      options = ""
      if (field["signed-by"] ~ /^[[:space:]]*\/[^[:space:]]*[[:space:]]*$/) {
        key = field["signed-by"]; gsub(/[[:space:]]/, "", key); options = "[signed-by=" key "] "
      }
      n = split(field["uris"], uri, " ")
      for (i = 1; i <= n; i++) print "deb " options uri[i] " " suite " main"
    }'
}

# Wine needs the i386 twins of libraries at the very version that is installed for amd64. The i386 index of
# the security suite can be behind, and apt then finds no way. The main suite alone is always consistent:
# this one installation is resolved against it, first as it is, then with older versions allowed.
install_from_main_suite() {
  scratch=$(mktemp -d /tmp/kestrune-apt.XXXXXX) || return 1
  chmod 755 "$scratch"
  mkdir -p "$scratch/lists/partial" "$scratch/parts"
  main_suite | sort -u >"$scratch/main.list"
  # Above 1000: the version of the suite wins over a newer one that is installed.
  printf 'Package: *\nPin: release n=%s\nPin-Priority: 1001\n' "$(codename)" >"$scratch/preferences"
  apt_options="-o Dir::Etc::sourcelist=$scratch/main.list -o Dir::Etc::sourceparts=$scratch/parts
    -o Dir::State::Lists=$scratch/lists -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache="
  result=1
  if [ -s "$scratch/main.list" ] && apt update; then
    if apt_install "$@"; then
      result=0
    else
      apt_options="$apt_options --allow-downgrades
        -o Dir::Etc::preferences=$scratch/preferences -o Dir::Etc::preferencesparts=$scratch/parts"
      apt_install "$@"
      result=$?
    fi
  fi
  apt_options=
  rm -rf "$scratch"
  return $result
}

to_install=$(missing $required)
extras=$(missing $optional)
wine_missing=$(missing $wine)
if [ -z "$to_install$extras$wine_missing" ]; then
  echo "setup: everything is installed"
  exit 0
fi
if [ "$(id -u)" != 0 ]; then
  if [ -z "$to_install$wine_missing" ]; then
    echo "setup: everything needed is installed (without $extras)"
    exit 0
  fi
  echo "setup: not root; please install: $to_install$wine_missing$extras" >&2
  exit 1
fi

: >"$log"
echo "setup: installing $to_install$extras$wine_missing(log: build/logs/setup.log)"
if [ -n "$wine_missing" ]; then
  dpkg --print-foreign-architectures | grep -qx i386 || dpkg --add-architecture i386 || fail "cannot add i386"
fi
# An index that fails to load is no reason to stop: what is there may do.
apt update || echo "setup: some package indexes did not load, going on with those that did"
if [ -n "$to_install" ]; then
  apt_install $to_install || install_from_main_suite $to_install || fail "cannot install $to_install"
fi
if [ -n "$wine_missing" ] && ! apt_install $wine; then
  echo "setup: no consistent way to install Wine from all suites, trying the main suite alone"
  install_from_main_suite $wine || fail "cannot install Wine"
fi
if [ -n "$extras" ]; then
  apt_install $extras || echo "setup: $extras could not be installed; it is not needed to build or test"
fi
to_install=$(missing $required $wine)
[ -z "$to_install" ] || fail "still missing: $to_install"
echo "setup: done"
