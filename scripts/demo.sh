#!/bin/sh
# Builds the 32-bit libraries and flashes a rich natural gas through the command line, under Wine, the way a
# Windows host uses them.
#
#   sh scripts/demo.sh
set -u
cd "$(dirname "$0")/.." || exit 1
sh scripts/setup.sh demo || exit 1
log=build/logs/demo.log
mkdir -p build/logs
if ! { cmake --preset win32 && cmake --build build/win32 -j "$(nproc)" \
  --target KVGasThermo KVCmpdPureLite KVToolsLite kestrune; } >"$log" 2>&1; then
  echo "demo: the build failed, end of $log:"
  tail -n 40 "$log"
  exit 1
fi

gas="methane=70,ethane=9,propane=6,isobutane=1.5,n-butane=2.5,isopentane=1,n-pentane=1,n-hexane=1"
gas="$gas,nitrogen=3,carbon dioxide=5"
status=0

# show TEXT ARGUMENT...: the explanation, the command, its output.
show() {
  printf '\n%s\n\n' "$1"
  shift
  echo "  kestrune $* --z (the gas)"
  echo
  scripts/wine.sh build/win32/bin/kestrune.exe "$@" --z "$gas" || status=1
}

# The same, with the first lines of a long output only.
show_head() {
  lines=$1
  shift
  show "$@" >"$log.head"
  head -n "$lines" "$log.head"
  rm -f "$log.head"
}

echo "A rich natural gas, mole percent:"
echo "  methane 70, ethane 9, propane 6, isobutane 1.5, n-butane 2.5, isopentane 1, n-pentane 1, n-hexane 1,"
echo "  nitrogen 3, carbon dioxide 5"

show "1. At the wellhead, in detail: how much condenses at 0 C and 60 bar, and what the phases are made of." \
  flash -T 0 -P 60
show "2. Along a pipeline at 60 bar: all gas when warm; the colder it gets, the more liquid." \
  flash -T 100,60,40,20,0,-20,-40,-60 -P 60
show "3. Compression at 20 C: gas, then liquid drops out, then it goes again: one dense phase." \
  flash -T 20 -P 1,10,30,60,90,120,150,200,300
show "4. Its dew points: the highest temperature at which liquid is left at a pressure." \
  flash --dew -P 1,5,10,20,40,60,80,100
show "5. Properties of the gas on the way to the compressor." \
  props -T 20 -P 10,60,120 --phase gas
show_head 11 "6. Its phase envelope (with --svg FILE as a picture): critical point and extremes." \
  envelope
show "7. How much water it holds at saturation." \
  water -T 0,20,40 -P 60
gas="$gas,n-octane=2,water=10"
show "8. With heavier ends and water in it: vapour, hydrocarbon liquid and aqueous liquid." \
  flash --phases 3 -T 120,80,40,10 -P 60
echo
[ $status = 0 ] || echo "demo: a calculation did not succeed"
exit $status
