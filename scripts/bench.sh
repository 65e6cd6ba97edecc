#!/usr/bin/env bash
# Measures the library on this machine and rewrites the tables of docs/benchmarks.md.
#
#   scripts/bench.sh                         all builds: linux-x64, linux-x86, win32 (under Wine)
#   scripts/bench.sh linux-x86 win32         only the builds named
#   scripts/bench.sh --quick [BUILD...]      few short samples; prints the tables, leaves the document as it is
#   scripts/bench.sh --compare [BUILD...]    compares with the run before, leaves the document as it is
#
# Together with each build the same library is measured once more for each lower level of row kernels. The results are
# in build/bench: BUILD.json, BUILD.csv, BUILD.txt, and BUILD.old.json of the run before. Nothing else should run
# meanwhile.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

all_presets=(linux-x64 linux-x86 win32)
# has_level OPTION...: whether this processor has the instructions that these compiler options allow
has_level() {
  local option flags
  flags=$(grep -m 1 '^flags' /proc/cpuinfo)
  for option; do
    # The kernel writes the names of newer instructions with an underscore.
    [[ " $flags " == *" ${option#-m} "* || " $flags " == *" ${option/#-mavx512v/avx512_v} "* ]] || return 1
  done
}

# The levels of row kernels that this processor has, lowest first, without the highest, which the full library uses.
levels=()
while IFS=$'\t' read -r name options; do
  # shellcheck disable=SC2086  # several options
  ! has_level $options || levels+=("$name")
done < <(scripts/kernel_levels.sh)
unset 'levels[-1]'
document=docs/benchmarks.md
results=build/bench

fail() {
  echo "bench: $*" >&2
  exit 1
}

quick=
compare=
presets=()
for argument in "$@"; do
  case $argument in
    --quick) quick=--quick ;;
    --compare) compare=yes ;;
    linux-x64 | linux-x86 | win32) presets+=("$argument") ;;
    *)
      sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
      exit 2
      ;;
  esac
done
[ ${#presets[@]} -gt 0 ] || presets=("${all_presets[@]}")

library_of() {
  case $1 in
    win32*) echo "build/bench/$1/bin/QNVDRV10.dll" ;;
    *) echo "build/bench/$1/bin/libqnvdrv10.so" ;;
  esac
}

# The library as a processor of a lower level of row kernels runs it: library_at PRESET LEVEL
library_at() {
  case $1 in
    win32*) echo "build/bench/$1/bin/levels/$2/QNVDRV10.dll" ;;
    *) echo "build/bench/$1/bin/levels/$2/libqnvdrv10.so" ;;
  esac
}

# build PRESET: makes the build that is measured, and the same library stopping at each lower level. They have a build
# folder of their own, so that options of other builds, such as sanitizers, have no effect.
build() {
  local preset=$1 tree=build/bench/$1
  cmake --preset "$preset" -B "$tree" -DQNV_TESTS=OFF -DQNV_TOOLS=OFF >"$results/build.log" 2>&1 &&
    cmake --build "$tree" --target qnvdrv10 qnvbench "${levels[@]/#/qnvdrv10_}" >>"$results/build.log" 2>&1
}

# run PRESET ARGUMENT...: the benchmark of that build
run() {
  local preset=$1
  shift
  case $preset in
    win32) QNV_WINE_TIMEOUT=7200 scripts/wine.sh build/bench/win32/bin/qnvbench.exe "$@" ;;
    *) "build/bench/$preset/bin/qnvbench" "$@" ;;
  esac
}

# Replaces the text between the two marks by the tables; the text around them is written by hand.
rewrite_document() {
  local tables=$1
  grep -q '^<!-- tables begin' "$document" && grep -q '^<!-- tables end' "$document" ||
    fail "$document has lost its marks"
  awk -v tables="$tables" '
    /^<!-- tables end/ { inside = 0 }
    !inside { print }
    /^<!-- tables begin/ { inside = 1; while ((getline line < tables) > 0) print line }
  ' "$document" >"$results/document.md"
  cp "$results/document.md" "$document"
}

mkdir -p "$results"
reports=()
for preset in "${presets[@]}"; do
  echo "bench: building $preset"
  build "$preset" || {
    tail -n 40 "$results/build.log" >&2
    fail "$preset could not be built"
  }
  options=(--library "$(library_of "$preset")" --baseline "$(library_at "$preset" "${levels[0]}")")
  for level in "${levels[@]:1}"; do
    options+=(--level "$level=$(library_at "$preset" "$level")")
  done
  report=$results/$preset.json
  if [ -n "$quick" ]; then
    report=$results/$preset.quick.json
    options+=("$quick")
  fi
  old=$results/$preset.old.json
  if [ -n "$compare" ]; then
    [ -e "$report" ] || fail "there is no $report to compare with"
    cp "$report" "$old"
    options+=(--compare "$old")
  fi
  echo "bench: measuring $preset, output in $results/$preset.txt"
  run "$preset" "${options[@]}" --json "$report" --csv "${report%.json}.csv" >"$results/$preset.txt" || {
    tail -n 20 "$results/$preset.txt" >&2
    fail "$preset could not be measured"
  }
  [ -z "$compare" ] || sed -n '/ns before/,$p' "$results/$preset.txt"
  reports+=(--table "$report")
done

# Any of the native programs can read the reports; without one the Windows program does.
{
  echo "Measured on $(date -u +%F)."
  echo
  run "${presets[0]}" "${reports[@]}" | tr -d '\r'
} >"$results/tables.md"
if [ -n "$quick$compare" ]; then
  [ -n "$compare" ] || cat "$results/tables.md"
else
  rewrite_document "$results/tables.md"
  echo "bench: $document rewritten"
fi
