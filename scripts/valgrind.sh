#!/usr/bin/env bash
# Runs tests under valgrind: no access outside of what was allocated, no decision on memory that nothing wrote, nothing
# leaked.
#   scripts/valgrind.sh [BUILD_TREE [PROGRAM [ARGUMENT...]]]     build/linux-x64, interface_tests
# Prints what valgrind finds, and "N passed, N failed" at the end. Installs valgrind where it is missing; takes
# twenty to fifty times the time of the program.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
case ${1-} in
  -*)
    sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
esac
scripts/setup.sh valgrind >&2 || exit 1
tree=${1:-build/linux-x64} program=${2:-interface_tests}
log=$tree/valgrind_$program.log
start=$SECONDS
valgrind --quiet --leak-check=full --errors-for-leak-kinds=definite,indirect,possible --track-origins=no \
  --error-exitcode=99 --log-file="$log" "$tree/bin/$program" "${@:3}" >"$log.out" 2>&1
status=$?
grep -E '^\[  (PASSED|FAILED)  \]|passed, ' "$log.out" | head -n 5
echo "$program: $(grep -cE '^==[0-9]+== [A-Z]' "$log") findings, $((SECONDS - start)) s"
[ $status -eq 0 ] || {
  head -n 40 "$log"
  echo "whole output in $log and $log.out"
  echo "0 passed, 1 failed"
  exit 1
}
echo "1 passed, 0 failed"
