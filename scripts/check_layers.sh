#!/bin/sh
# Fails where a file includes what its layer must not know, or the papers of the layers are not what the code says.
#
#   edge, support < frame < eos < flash < flash3, envelope, water (unknown to each other) < frame/exports
#
# Of frame the layers between it and the exports know two headers, which lead to no state: what a call works with
# reaches them as its context.
#
# include/kestrune is open to all and knows only itself. Each of siblings/* knows itself and edge/, host/ itself
# alone, python/native itself and the host, web those too. The libraries include nothing from outside but standard headers.
set -u
cd "$(dirname "$0")/.." || exit 1

grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*["<]' include src siblings host python web \
  --include='*.h' --include='*.hpp' --include='*.c' --include='*.cpp' --include='*.inc' 2>/dev/null |
  awk '
    BEGIN {
      level["edge"] = 0; level["support"] = 1; level["frame"] = 2; level["eos"] = 3; level["flash"] = 4
      level["flash3"] = level["envelope"] = level["water"] = 5; level["frame/exports"] = 6
    }
    # Layer of a path below src/: its folder, frame/exports being a layer of its own.
    function layer_of(path) {
      if (path ~ /^frame\/exports\//) return "frame/exports"
      return index(path, "/") ? substr(path, 1, index(path, "/") - 1) : ""
    }
    function complain(why) { print place ": includes " shown ": " why; bad++ }
    {
      count++
      place = $0; sub(/:[[:space:]]*#.*/, "", place)
      file = place; sub(/:[0-9]+$/, "", file)
      shown = $0; sub(/^[^#]*#[[:space:]]*include[[:space:]]*/, "", shown)
      quoted = substr(shown, 1, 1) == "\""
      shown = substr(shown, 1, 1 + index(substr(shown, 2), quoted ? "\"" : ">"))
      target = substr(shown, 2, length(shown) - 2)
      top = index(target, "/") ? substr(target, 1, index(target, "/") - 1) : ""

      if (target ~ /(^|\/)\.\.(\/|$)/) { complain("no way up in an include"); next }
      if (top == "kestrune") next
      if (file !~ /^(host|python|web)\// && !quoted && top != "" && top != "sys" && !(top in level)) {
        complain("not a standard header"); next
      }
      if (file ~ /^include\//) { if (quoted || top in level) complain("public headers know themselves only"); next }
      if (file ~ /^src\//) {
        own = layer_of(substr(file, 5))
        if (!(own in level)) { complain("unknown layer " own "/"); next }
        if (top == "") next # a neighbour in the same folder, or a standard header
        if (!quoted && !(top in level)) next
        other = layer_of(target)
        if (!(other in level)) complain("unknown layer " other "/")
        else if (other != own && level[other] >= level[own]) complain(own " must not know " other)
        else if (other == "frame" && level[own] > level["frame"] && level[own] < level["frame/exports"] &&
                 target != "frame/cas.hpp" && target != "frame/entries.hpp")
          complain(own " knows of frame its cas.hpp and entries.hpp only")
        next
      }
      # siblings/NAME, host, python and web: no folder of src, no other sibling.
      split(file, part, "/")
      own = part[1] == "siblings" ? part[2] : part[1]
      if (part[1] == "siblings" && top == "edge") next
      if (top in level || top == "src") complain(part[1] " must not know src")
      else if ((top == "pure" || top == "tools" || top == "siblings") && top != own) complain(own " must not know " top)
      else if (part[1] == "siblings" && top == "host") complain(own " must not know the host")
    }
    END {
      if (count == 0) { print "no includes found: nothing was checked"; exit 1 }
      print count " includes, " bad + 0 " against the layers"
      exit bad > 0
    }' || exit 1

# An export is one expression behind the guard: nothing stands in front of it.
entries=$(cat src/frame/exports/*.cpp | grep -c 'KV_ENTRY')
guards=$(cat src/frame/exports/*.cpp | grep -c 'KV_GUARDS')
if [ "$entries" = 0 ] || [ "$entries" != "$guards" ]; then
  echo "$entries exports, $guards of them behind the guard"
  exit 1
fi

# The picture of the layers, the equations and sources that the papers and the comments name.
python3 tools/check_papers.py || exit 1
