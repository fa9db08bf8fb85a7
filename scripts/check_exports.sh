#!/bin/sh
# Fails unless a library exports exactly the names of its .def file, undecorated, and needs nothing but system
# libraries.
#
#   scripts/check_exports.sh LIBRARY DEF     LIBRARY: a .dll or a native .so
set -u
library=$1
definition=$2
[ -r "$library" ] || { echo "$library: not there"; exit 1; }
[ -r "$definition" ] || { echo "$definition: not there"; exit 1; }
scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT

awk '{ sub(/;.*/, "") } $1 == "EXPORTS" { exports = 1; next } exports && NF { print $1 }' "$definition" |
  sort >"$scratch/wanted"
case $library in
  *.dll)
    x86_64-w64-mingw32-objdump -p "$library" >"$scratch/dump" || exit 1
    awk '/\[Ordinal\/Name Pointer\] Table/ { names = 1; next } names && !/^\t\[/ { names = 0 }
         names { print $NF }' "$scratch/dump" | sort >"$scratch/found"
    awk '/DLL Name:/ { print tolower($3) }' "$scratch/dump" >"$scratch/needed"
    system='kernel32\.dll|user32\.dll|advapi32\.dll|msvcrt\.dll'
    ;;
  *)
    nm -D --defined-only "$library" | awk '{ print $NF }' | sort >"$scratch/found"
    objdump -p "$library" | awk '$1 == "NEEDED" { print $2 }' >"$scratch/needed"
    system='(libc|libm|libdl|libpthread|libstdc\+\+|libgcc_s)\.so\.[0-9]+|ld-linux.*'
    ;;
esac

status=0
if [ ! -s "$scratch/wanted" ] || ! diff "$scratch/wanted" "$scratch/found" >"$scratch/diff"; then
  echo "$library: exports differ from $definition (< missing, > too many):"
  grep '^[<>]' "$scratch/diff"
  status=1
fi
if grep -vxE "$system" "$scratch/needed" >"$scratch/foreign"; then
  echo "$library: needs $(tr '\n' ' ' <"$scratch/foreign")"
  status=1
fi
[ $status = 0 ] && echo "$library: $(wc -l <"$scratch/found") names, as in $definition"
exit $status
