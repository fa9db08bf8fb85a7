#!/bin/sh
# The published seven-component natural gas: its critical point and the extremes of its envelope.
#
#   sh docs/examples/envelope.sh [PROGRAM]
set -eu
kestrune=${1:-build/native/bin/kestrune}
gas=methane=94.30,ethane=2.70,propane=0.74,n-butane=0.49,n-pentane=0.27,n-hexane=0.10,nitrogen=1.40

"$kestrune" envelope --z $gas --units K,atm | sed -n '/^C/p'
