#!/bin/sh
# Unpacks what scripts/package.sh has made into empty folders and uses it there; the Debian package goes through lintian.
#
#   tests/packages/check_packages.sh
set -eu
cd "$(dirname "$0")/../.."
root=$PWD
scratch=$(mktemp -d /tmp/kestrune-packages.XXXXXX)
trap 'rm -rf "$scratch"' EXIT
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/native/CMakeCache.txt)

use() { # NAME PREFIX PLATFORM
  python3 tests/packages/check_install.py "$root" "$2" "$3" "$scratch/use_$1"
}

cd "$scratch"
tar xzf "$root/build/packages/kestrune-$version-linux.tar.gz"
for platform in win32 win64; do
  unzip -q "$root/build/packages/kestrune-$version-$platform.zip"
done
deb=$root/build/packages/kestrune_$version-1_$(dpkg --print-architecture).deb
dpkg-deb -x "$deb" "$scratch/deb"
cd "$root"
for platform in linux win32 win64; do
  use $platform "$scratch/kestrune-$version-$platform" $platform
done
use deb "$scratch/deb/usr" linux
lintian --allow-root --fail-on error,warning "$deb"

# A symbol of the library is found through the debugging data that lie apart.
unzip -q build/packages/kestrune-"$version"-linux-debug.zip -d "$scratch/debug"
nm "$scratch/debug/libKVGasThermo.so.$version.debug" | grep -q LoadSiblingLibrary
echo "all packages of $version work"
