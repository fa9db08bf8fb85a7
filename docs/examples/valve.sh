#!/bin/sh
# A gas is let down in a valve: its enthalpy stays the same. How cold does it get, and how much of it condenses?
#
#   sh docs/examples/valve.sh [PROGRAM]
set -eu
kestrune=${1:-build/native/bin/kestrune}
gas=methane=0.80,ethane=0.09,propane=0.06,nC4=0.03,nC5=0.015,nC6=0.005

enthalpy=$("$kestrune" flash --z $gas -T 40 C -P 60 bar --print H)
behind=$("$kestrune" flash --z $gas -H "$enthalpy J/mol" -P 20 bar --print T,liquid)

printf '%s\n' "$enthalpy $behind" | awk '{
  printf "before the valve  40.00 C  60 bar  %.1f J/mol\n", $1
  printf "behind it         %.2f C  20 bar  %.3f mol-%% liquid\n", $2 - 273.15, 100 * $3
}'
