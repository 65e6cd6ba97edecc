#!/usr/bin/env bash
# Tests every pair of extreme numbers in every call: runs extremes_tests --pairs in shares. Finished shares are recorded
# beside the program, so that a stopped run can be continued.
#
#   scripts/extremes.sh                       all 200 shares, by build/linux-x64/bin/extremes_tests
#   scripts/extremes.sh --shares 1000         smaller shares, recorded separately
#   scripts/extremes.sh --minutes 10          as many as begin within ten minutes
#   scripts/extremes.sh --program build/asan/bin/extremes_tests
#   scripts/extremes.sh --restart             forget what is done
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

program=build/linux-x64/bin/extremes_tests
shares=200
minutes=0
restart=no
while [ $# -gt 0 ]; do
  case $1 in
    --program) program=$2 && shift ;;
    --shares) shares=$2 && shift ;;
    --minutes) minutes=$2 && shift ;;
    --restart) restart=yes ;;
    *)
      sed -n '2,10s/^# \{0,1\}//p' "$0" >&2
      exit 2
      ;;
  esac
  shift
done
[ -x "$program" ] || { echo "extremes: there is no $program; build the target extremes_tests" >&2; exit 2; }

# Another program has other results.
version=$(cksum <"$program" | tr ' ' -)
log=$program.pairs-$shares-$version.log
[ "$restart" = no ] || rm -f "$log"
touch "$log"

begun=$SECONDS
made=0
for ((share = 1; share <= shares; share++)); do
  grep -q "^share $share " "$log" && continue
  if [ "$minutes" -gt 0 ] && [ $((SECONDS - begun)) -ge $((minutes * 60)) ]; then break; fi
  output=$("$program" --pairs --share "$share/$shares" 2>&1)
  status=$?
  calls=$(sed -n 's/^\([0-9]*\) calls.*/\1/p' <<<"$output")
  if [ $status -ne 0 ] || [ -z "$calls" ]; then
    echo "$output"
    echo "extremes: share $share of $shares failed"
    echo "0 passed, 1 failed"
    exit 1
  fi
  echo "share $share of $shares: $calls calls" >>"$log"
  made=$((made + 1))
  if [ -t 1 ]; then printf '\r%d of %d shares ' "$(wc -l <"$log")" "$shares"; fi
done
[ ! -t 1 ] || echo

done_shares=$(wc -l <"$log")
awk -v shares="$shares" -v seconds=$((SECONDS - begun)) -v made=$made '
  { calls += $(NF - 1) }
  END { printf "%d calls in %d of %d shares without a fault; this run made %d shares in %d s\n", calls, NR, shares, made, seconds }
' "$log"
echo "$done_shares passed, 0 failed"
