#!/usr/bin/env bash
# Lists the share of lines and branches that the tests reached, by file of the library, worst first, and the totals.
#   scripts/coverage.sh BUILD_TREE     a tree of the preset "coverage" whose tests have run
# What was not reached is listed in BUILD_TREE/unreached.txt: FILE:LINE and the branches of that line. Headers count with
# all sources that include them and templates with all their instantiations: a branch is reached when one of them took
# it. There are no branches of exceptions, because the library is compiled without them.
set -euo pipefail
tree=$(realpath "${1:?usage: scripts/coverage.sh BUILD_TREE}")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
objects=$tree/CMakeFiles/qnvdrv10_objects.dir/src
[ -n "$(find "$objects" -name '*.gcda' -print -quit)" ] || {
  echo "coverage: no counts in $tree: build the preset \"coverage\" and run its tests first" >&2
  exit 1
}
# Sources that no test reached at all have notes but no counts: gcov then reports every line of them.
find "$objects" -name '*.gcno' -print0 |
  xargs -0 gcov --stdout --branch-counts --branch-probabilities --relative-only --source-prefix "$root" 2>/dev/null |
  awk -v root="$root/" -v unreached="$tree/unreached.txt" '
    # The branches of one line of one instantiation are told apart by their number, and instantiations whose code
    # differs by how many they have.
    function close_line(   i, key) {
      for (i = 0; i < branches; ++i) {
        key = file SUBSEP line SUBSEP branches SUBSEP i
        seen[key] = 1
        if (taken[i] > 0) hit[key] = 1
      }
      branches = 0
    }
    /^ +-: +0:Source:/ { close_line(); file = $0; sub(/.*Source:/, "", file); wanted = file ~ /^src\//; next }
    !wanted { next }
    /^branch / { if ($0 !~ /\(throw\)/) taken[branches++] = $3 == "taken" ? $4 + 0 : 0; next }
    /^(call|function|unconditional|-----)/ { next }
    match($0, /^ *[^ :]+: *[0-9]+:/) {
      close_line()
      split($0, part, ":")
      line = part[2] + 0
      count = part[1]
      gsub(/[ *]/, "", count)
      if (line == 0 || count == "-") next
      lines[file, line] = 1
      if (count !~ /^[#=]/) reached[file, line] = 1
    }
    END {
      close_line()
      for (key in lines) {
        split(key, part, SUBSEP)
        ++all[part[1]]
        if (key in reached) ++good[part[1]]
        else missing[key] = "line"
      }
      for (key in seen) {
        split(key, part, SUBSEP)
        ++allBranches[part[1]]
        if (key in hit) ++goodBranches[part[1]]
        else if (missing[part[1], part[2]] != "line")
          missing[part[1], part[2]] = missing[part[1], part[2]] " " part[4] "/" part[3]
      }
      printf "" >unreached
      for (key in missing) {
        if (missing[key] == "") continue
        split(key, part, SUBSEP)
        printf "%s:%d %s\n", part[1], part[2], missing[key] == "line" ? "line" : "branches" missing[key] >unreached
      }
      for (file in all) {
        printf "%6.1f %% of %4d lines, %6.1f %% of %4d branches  %s\n", 100 * good[file] / all[file], all[file],
          allBranches[file] ? 100 * goodBranches[file] / allBranches[file] : 100, allBranches[file], file
        totalLines += all[file]; goodLines += good[file]
        totalBranches += allBranches[file]; totalGood += goodBranches[file]
      }
      printf "%6.2f %% of %4d lines, %6.2f %% of %4d branches  all of src/\n", 100 * goodLines / totalLines, totalLines,
        100 * totalGood / totalBranches, totalBranches >"/dev/stderr"
    }' | sort -n
sort -t: -k1,1 -k2,2n -o "$tree/unreached.txt" "$tree/unreached.txt"
