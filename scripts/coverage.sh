#!/usr/bin/env bash
# Lists the share of lines that the tests reached, by file of the library, worst first.
#   scripts/coverage.sh BUILD_TREE     a tree of the preset "coverage" whose tests have run
set -euo pipefail
tree=$(realpath "${1:?usage: scripts/coverage.sh BUILD_TREE}")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
objects=$tree/CMakeFiles/qnvdrv10_objects.dir/src
[ -n "$(find "$objects" -name '*.gcda' -print -quit)" ] || {
  echo "coverage: no counts in $tree: build the preset \"coverage\" and run its tests first" >&2
  exit 1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
find "$objects" -name '*.gcda' -print0 | xargs -0 gcov --relative-only --source-prefix "$root" >summary.txt 2>/dev/null
# A source file is compiled once, but a header is reported with every file that includes it: its best figure is used.
awk -v prefix="src/" '
  /^File / { file = $2; gsub(/\x27/, "", file) }
  /^Lines executed:/ && index(file, prefix) == 1 {
    split($2, part, /[:%]/)
    share = part[2] + 0
    lines = $4
    if (!(file in best) || share > best[file]) { best[file] = share; count[file] = lines }
  }
  END {
    for (file in best) {
      printf "%6.1f %% of %5d lines  %s\n", best[file], count[file], file
      if (file ~ /\.cpp$/) { reached += best[file] * count[file] / 100; all += count[file] }
    }
    printf "%6.1f %% of %5d lines  all source files\n", all ? 100 * reached / all : 0, all > "/dev/stderr"
  }' summary.txt | sort -n
