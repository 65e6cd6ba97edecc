#!/usr/bin/env bash
# Compares the includes of the sources with the include graph in ARCHITECTURE.md, which must list exactly the edges
# that exist, and none that close a cycle.
#
#   scripts/check_includes.sh [SOURCE_TREE]    a tree with ARCHITECTURE.md and src/ (default: this one)
#   scripts/check_includes.sh --self-test      small trees with one mistake each must be refused
#
# The graph is the block of ARCHITECTURE.md that is fenced as ```include-graph, one line for each folder:
#   folder -> folder, folder
# Folders are named below src/; "include" is the folder of the public header. An arrow without folders behind it means
# that the folder includes no other one.
set -uo pipefail

check_tree() { # SOURCE_TREE
  local tree=$1
  [ -r "$tree/ARCHITECTURE.md" ] && [ -d "$tree/src" ] || {
    echo "check_includes: $tree: no ARCHITECTURE.md or no src/" >&2
    return 2
  }
  # Lines "listed FROM TO", "folder FROM" from the document; "found FROM TO FILE" from the sources.
  {
    awk '
      /^```include-graph$/ { inside = 1; next }
      /^```/ { inside = 0 }
      inside {
        arrow = index($0, "->")
        if (!arrow) { print "bad", $0; next }
        from = substr($0, 1, arrow - 1)
        gsub(/ /, "", from)
        print "folder", from
        n = split(substr($0, arrow + 2), to, ",")
        for (i = 1; i <= n; ++i) { gsub(/ /, "", to[i]); if (to[i] != "") print "listed", from, to[i] }
      }' "$tree/ARCHITECTURE.md"
    (cd "$tree/src" && find . -name '*.cpp' -o -name '*.h' | sort | while read -r file; do
      file=${file#./}
      folder=${file%/*}
      echo "seen $folder"
      sed -n 's/^ *# *include *"\([^"]*\)".*/\1/p' "$file" | while read -r included; do
        if [ -e "${file%/*}/$included" ]; then
          target=$folder/$included
        elif [ -e "$included" ]; then
          target=$included
        elif [ -e "../include/$included" ]; then
          target=include/$included
        else
          echo "lost $included $file"
          continue
        fi
        case $target in *..*) echo "lost $included $file"; continue ;; esac
        target=${target%/*}
        [ "$target" = "$folder" ] || echo "found $folder $target $file"
      done
    done)
  } | awk '
    function fail(message) { print "check_includes: " message; failed = 1 }
    # Depth-first search; a folder that occurs again on its own path closes a cycle.
    function visit(folder, path,    edge, ends) {
      if (state[folder] == 2) return
      if (state[folder] == 1) { fail("cycle: " path " -> " folder); return }
      state[folder] = 1
      for (edge in found) {
        split(edge, ends, SUBSEP)
        if (ends[1] == folder) visit(ends[2], path " -> " folder)
      }
      state[folder] = 2
    }
    $1 == "bad" { fail("not a line of the graph: " substr($0, 5)) }
    $1 == "folder" { folders[$2] = 1; ++count }
    $1 == "listed" { listed[$2, $3] = 1 }
    $1 == "seen" { seen[$2] = 1 }
    $1 == "lost" { fail($3 " includes " $2 ", which is not below src/ or in include/") }
    $1 == "found" { if (!(($2, $3) in found)) found[$2, $3] = $4 }
    END {
      if (!count) fail("ARCHITECTURE.md has no include graph")
      for (folder in seen) if (!(folder in folders)) fail("not in the graph: " folder)
      for (folder in folders) if (!(folder in seen) && folder != "include") fail("in the graph without sources: " folder)
      for (edge in found) if (!(edge in listed)) {
        split(edge, ends, SUBSEP)
        fail("not in the graph: " ends[1] " -> " ends[2] " (" found[edge] ")")
      }
      for (edge in listed) if (!(edge in found)) {
        split(edge, ends, SUBSEP)
        fail("in the graph without an include: " ends[1] " -> " ends[2])
      }
      for (folder in seen) visit(folder, "")
      exit failed
    }'
}

self_test() {
  local work failures=0
  work=$(mktemp -d)
  trap "rm -rf '$work'" EXIT

  # make GRAPH_LINES: entry includes raster and the interface, raster includes raster/rows
  make() {
    rm -rf "$work/tree"
    mkdir -p "$work/tree/src/entry" "$work/tree/src/raster/rows" "$work/tree/include"
    cd "$work/tree" || exit 1
    touch include/api.h src/raster/rows/kernels.h
    printf '#include "rows/kernels.h"\n' >src/raster/raster.h # beside the file that includes it
    printf '#include <vector>\n\n#include "api.h"\n#include "raster/raster.h"\n' >src/entry/entry.cpp
    printf 'Text\n\n```include-graph\n%s\n```\n' "$1" >ARCHITECTURE.md
  }
  # refused WHAT MESSAGE
  refused() {
    local said
    if said=$(check_tree "$work/tree" 2>&1); then
      echo "self-test: accepted: $1"
      failures=$((failures + 1))
    elif ! grep -qF -- "$2" <<<"$said"; then
      echo "self-test: $1: expected \"$2\", not: $said"
      failures=$((failures + 1))
    fi
  }
  local good=$'entry -> raster, include\nraster -> raster/rows\nraster/rows ->'
  make "$good"
  check_tree "$work/tree" || { echo "self-test: refused a good tree"; failures=$((failures + 1)); }
  make $'entry -> raster\nraster -> raster/rows\nraster/rows ->'
  refused "an edge that is not listed" "not in the graph: entry -> include (entry/entry.cpp)"
  make $'entry -> raster, include\nraster -> raster/rows, include\nraster/rows ->'
  refused "a listed edge that no include makes" "in the graph without an include: raster -> include"
  make $'entry -> raster, include\nraster -> raster/rows'
  refused "a folder that is not listed" "not in the graph: raster/rows"
  make "$good"$'\ncolor ->'
  refused "a listed folder without sources" "in the graph without sources: color"
  make $'entry -> raster, include\nraster -> raster/rows\nraster/rows -> raster'
  echo '#include "raster/raster.h"' >src/raster/rows/kernels.h
  refused "a cycle of listed edges" "cycle:"
  make "$good"
  echo '#include "nowhere.h"' >src/raster/rows/kernels.h
  refused "an include that leads nowhere" "includes nowhere.h"
  make "$good"
  echo "Text" >ARCHITECTURE.md
  refused "a document without a graph" "has no include graph"
  make "$good"$'\nriddle'
  refused "a line that is no edge" "not a line of the graph: riddle"
  [ "$failures" -eq 0 ] && echo "self-test: all mistakes found"
}

case ${1-} in
  --self-test) self_test ;;
  *) check_tree "${1:-$(dirname "${BASH_SOURCE[0]}")/..}" && echo "include graph: as drawn" ;;
esac
