#!/usr/bin/env bash
# Runs the fuzz targets, as many at once as there are cores, and prints for each its executions, coverage and findings.
#   scripts/fuzz.sh [--preset NAME] [--new] MINUTES [TARGET...]
# MINUTES is the time for the whole run and may have a fraction; 20s gives every target 20 seconds instead. TARGET is
# the name of a file fuzz/fuzz_TARGET.cpp; all by default. --preset: "fuzz" (address and undefined behaviour, the
# default) or "fuzz-msan" (uninitialised memory, all targets but "sequences"
# and "bmp_file"). --new: build first.
# Inputs that reach something new stay in build/PRESET/corpus/TARGET and are where the next run begins; what failed lies
# in build/PRESET/findings/TARGET. The last line is "N passed, N failed", in targets.
#
#   scripts/fuzz.sh --minimize [TARGET...]
# Rewrites fuzz/corpus/TARGET: few small inputs that reach as many edges as it and build/PRESET/corpus/TARGET together.
#
#   scripts/fuzz.sh --record
# Makes fuzz/corpus/sequence_calls what fuzz/corpus/sequences is: each input recorded as a call file, which can be looked
# at, replayed by every build, and mutated by the target "call_file". Takes random_tests and the recorder of
# build/linux-x64.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

usage() {
  sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
  exit 2
}

preset=fuzz
build=
minimize=
record=
while [ $# -gt 0 ]; do
  case $1 in
    --preset) preset=${2:-} && shift 2 || usage ;;
    --new) build=1 && shift ;;
    --minimize) minimize=1 && shift ;;
    --record) record=1 && shift ;;
    -*) usage ;;
    *) break ;;
  esac
done
time=
if [ -n "$record" ]; then
  bin=$PWD/build/linux-x64/bin calls=fuzz/corpus/sequence_calls
  mkdir -p "$calls"
  for file in "$calls"/*.qnv; do
    [ -e "fuzz/corpus/sequences/$(basename "$file" .qnv)" ] || rm -f "$file"
  done
  # Those that are there stay as they are, because every recording has other durations.
  for input in fuzz/corpus/sequences/*; do
    file=$calls/$(basename "$input").qnv
    [ ! -e "$file" ] || continue
    QNVREC_FILE=$file QNVREC_HASH=call QNVREC_COMPRESS=0 QNVREC_LIBRARY=$bin/libqnvdrv10.so LD_PRELOAD=$bin/libqnvrec.so \
      "$bin/random_tests" --files "$input" >"$file.log" 2>&1 && [ -s "$file" ] && rm "$file.log" || {
      tail -n 3 "$file.log"
      rm -f "$file" "$file.log"
      exit 1
    }
  done
  printf '%5d call files, %s\n' "$(find "$calls" -type f | wc -l)" "$(du -sh --apparent-size "$calls" | cut -f1)"
  exit 0
fi
[ -n "$minimize" ] || { time=${1:-} && shift || usage; }
targets=("$@")

export tree=build/$preset
if [ -n "$build" ] || [ ! -d "$tree/bin" ]; then
  cmake --preset "$preset" >"$tree.log" 2>&1 && cmake --build --preset "$preset" >>"$tree.log" 2>&1 || {
    tail -n 20 "$tree.log"
    echo "0 passed, 1 failed"
    exit 1
  }
fi
if [ ${#targets[@]} -eq 0 ]; then
  mapfile -t targets < <(grep -l LLVMFuzzerTestOneInput fuzz/fuzz_*.cpp | sed 's|.*/fuzz_\(.*\)\.cpp|\1|')
  # These two have no build with the memory sanitizer.
  [ "$preset" != fuzz-msan ] || mapfile -t targets < <(printf '%s\n' "${targets[@]}" | grep -vx 'sequences\|bmp_file')
fi
for target in "${targets[@]}"; do
  [ -x "$tree/bin/fuzz_$target" ] || {
    echo "fuzz: $tree has no target '$target'" >&2
    echo "0 passed, 1 failed"
    exit 2
  }
  mkdir -p "$tree/corpus/$target" "$tree/findings/$target"
done
export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:abort_on_error=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

if [ -n "$minimize" ]; then
  for target in "${targets[@]}"; do
    # What libFuzzer keeps of a merge is named by content, so that a second merge changes nothing.
    fresh=$tree/minimal/$target
    rm -rf "$fresh" && mkdir -p "$fresh"
    "$tree/bin/fuzz_$target" -merge=1 -use_counters=0 -max_len=512 "$fresh" "fuzz/corpus/$target" "$tree/corpus/$target" \
      >"$tree/minimal_$target.log" 2>&1 || { tail "$tree/minimal_$target.log"; exit 1; }
    rm -rf "fuzz/corpus/$target" && cp -r "$fresh" "fuzz/corpus/$target"
    printf '%-12s %5d inputs, %s\n' "$target" "$(find "fuzz/corpus/$target" -type f | wc -l)" \
      "$(du -sh --apparent-size "fuzz/corpus/$target" | cut -f1)"
  done
  exit 0
fi

jobs=$(nproc)
case $time in
  *s) seconds=${time%s} ;;
  *)
    # The targets share the cores: each gets its part of the time.
    seconds=$(awk -v minutes="$time" -v targets=${#targets[@]} -v jobs="$jobs" 'BEGIN {
      rounds = int((targets + jobs - 1) / jobs)
      printf "%d", minutes * 60 / rounds }')
    ;;
esac
[[ $seconds =~ ^[0-9]+$ ]] && [ "$seconds" -gt 0 ] || usage
export seconds

# fuzz_one TARGET: prints one line
fuzz_one() {
  local target=$1 log=$tree/fuzz_$1.log status executions edges features inputs found verdict=ok
  local seeds=("fuzz/corpus/$target") longest=2048
  # Whole files are of no use when they are cut.
  [ "$target" != call_file ] || seeds+=(fuzz/corpus/sequence_calls) longest=8192
  "$tree/bin/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=$longest -len_control=0 \
    -print_final_stats=1 -artifact_prefix="$tree/findings/$target/" "$tree/corpus/$target" "${seeds[@]}" \
    >"$log" 2>&1 </dev/null
  status=$?
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  read -r edges features < <(grep -oE 'cov: [0-9]+ ft: [0-9]+' "$log" | tail -n 1 | tr -d 'a-z:')
  inputs=$(sed -n 's/^stat::new_units_added: *//p' "$log")
  found=0
  if [ $status -ne 0 ]; then
    found=1
    verdict=FAILED
  fi
  printf '%-8s %-12s %9s executions, %5s edges, %6s features, %5s new inputs, %d findings\n' "$verdict" "$target" \
    "${executions:-0}" "${edges:-0}" "${features:-0}" "${inputs:-0}" "$found"
  if [ $status -ne 0 ]; then
    grep -E 'DIFFERENCE|ERROR:|runtime error|SUMMARY|Test unit written' "$log" | cut -c1-200 | head -n 6 | sed 's/^/         /'
    # Nothing was tried: no finding, but no success either.
    [ -n "$executions" ] || tail -n 3 "$log" | sed 's/^/         /'
  fi
}
export -f fuzz_one

printf '%s\0' "${targets[@]}" | xargs -0 -n 1 -P "$jobs" bash -c 'fuzz_one "$1"' _ | tee "$tree/fuzz.log"
good=$(grep -cE '^ok .* [1-9][0-9]* executions' "$tree/fuzz.log")
echo "$good passed, $((${#targets[@]} - good)) failed"
[ "$good" -eq ${#targets[@]} ]
