# Sourced by the test scripts of programs, with their arguments: the program and the folder of built files. They begin
# in an empty folder, which is removed at the end together with the processes in $started.
#
#   $tool $bin $root $work    the program, the built files, the sources, the empty folder
#   needs_programs NAME...    ends the test when one is not installed
#   fail WHAT                 counts a failure and goes on
#   expect CODE OUTPUT ERROR ARGUMENT...
#   finish_test               the last line of a script

set -uo pipefail
tool=$(realpath "$1")
bin=$(realpath "$2")
root=$(dirname "$(dirname "$(dirname "$(realpath "${BASH_SOURCE[0]}")")")")
work=$(mktemp -d)
started=()
failures=0

# shellcheck disable=SC2317
clean_up() {
  local pid
  for pid in "${started[@]}"; do kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; done
  rm -rf "$work"
}
trap clean_up EXIT
cd "$work" || exit 1

fail() {
  echo "FAILED: $1" >&2
  failures=$((failures + 1))
}

needs_programs() {
  local program
  for program; do
    command -v "$program" >/dev/null || { echo "$program is not installed (scripts/setup.sh check)" >&2; exit 1; }
  done
}

# The exit code, a line of standard output and one of standard error that hold these texts; an empty ERROR allows none.
# What was said is in the files stdout and stderr.
expect() {
  local code=$1 output=$2 error=$3
  shift 3
  "$tool" "$@" >stdout 2>stderr
  local got=$?
  [ "$got" -eq "$code" ] || fail "exit code $got instead of $code: $* ($(cat stderr))"
  [ -z "$output" ] || grep -qF -- "$output" stdout || fail "no \"$output\" on standard output: $* ($(head -5 stdout))"
  if [ -n "$error" ]; then
    grep -qF -- "$error" stderr || fail "no \"$error\" on standard error: $* ($(cat stderr))"
  else
    [ ! -s stderr ] || fail "unexpected message $(cat stderr) [$*]"
  fi
}

finish_test() {
  [ "$failures" -eq 0 ] || { echo "$failures checks failed" >&2; exit 1; }
  echo "all checks passed"
}
