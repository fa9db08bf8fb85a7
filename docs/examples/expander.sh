#!/bin/sh
# A gas drives an expander. The ideal machine leaves the entropy as it is; a real one has an efficiency, the
# part of the ideal drop of enthalpy that becomes work.
#
#   sh docs/examples/expander.sh [PROGRAM [EFFICIENCY]]
set -eu
kestrune=${1:-build/native/bin/kestrune}
efficiency=${2:-0.80}
gas=methane=0.80,ethane=0.09,propane=0.06,nC4=0.03,nC5=0.015,nC6=0.005

inlet=$("$kestrune" flash --z $gas -T 40 C -P 60 bar --print H,S,M)
H_in=$(printf '%s\n' "$inlet" | awk '{print $1}')
S_in=$(printf '%s\n' "$inlet" | awk '{print $2}')
M=$(printf '%s\n' "$inlet" | awk '{print $3}')

ideal=$("$kestrune" flash --z $gas -S "$S_in J/(mol K)" -P 20 bar --print H,T)
H_out=$(printf '%s\n' "$H_in $efficiency $ideal" | awk '{printf "%.6f", $1 - $2 * ($1 - $3)}')
real=$("$kestrune" flash --z $gas -H "$H_out J/mol" -P 20 bar --print T,liquid)

printf '%s\n' "$H_in $H_out $M $ideal $real" | awk '{
  printf "outlet of the ideal machine  %.2f C\n", $5 - 273.15
  printf "outlet of the real machine   %.2f C, %.3f mol-%% liquid\n", $6 - 273.15, 100 * $7
  printf "work                         %.1f J/mol, %.2f kJ/kg\n", $1 - $2, ($1 - $2) / $3
}'
