#!/bin/sh
# Fails where compiled code holds writable data that scripts/state_allowed.txt does not name: state that
# outlives a call would make one calculation depend on another.
#
#   scripts/check_state.sh FILE...     object files and static libraries of the native build
set -u
allowed=$(dirname "$0")/state_allowed.txt
[ $# -gt 0 ] || { echo "check_state: no files"; exit 1; }
for file in "$@"; do
  [ -r "$file" ] || { echo "$file: not there"; exit 1; }
done

# Symbols in writable sections, those per thread included. Tables of constant addresses (.data.rel.ro) are
# not writable at run time, references of the unwinder (DW.ref) are only relocated, and a guard belongs to a
# variable that is listed itself.
objdump -t -C "$@" | awk -v allowed="$allowed" '
  BEGIN {
    while ((getline line < allowed) > 0) {
      sub(/#.*/, "", line); gsub(/^[[:space:]]+|[[:space:]]+$/, "", line)
      if (line != "") permitted[line] = 1
    }
  }
  /^[^[:space:]].*:[[:space:]]+file format/ { object = $0; sub(/:[[:space:]]+file format.*/, "", object); objects++ }
  /\t/ {
    split($0, half, "\t")
    n = split(half[1], left, " ")
    section = left[n]
    if (section !~ /^\.(data|bss|tdata|tbss)(\.|$)/ || section ~ /^\.data\.rel\.ro/) next
    name = half[2]; sub(/^[0-9a-f]+[[:space:]]+(\.hidden |\.internal )?/, "", name)
    if (half[1] ~ / d  \.| df /) next # the section itself, a file name
    if (name ~ /^guard variable for / || name ~ /^DW\.ref\./) next
    if (name in permitted) next
    print object ": " name " (" section ")"; bad++
  }
  END {
    if (!objects) { print "no object files: nothing was checked"; exit 1 }
    print objects " objects, " bad + 0 " writable variables that are not allowed"
    exit bad > 0
  }'
