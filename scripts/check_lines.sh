# Sourced by the scripts that check something step by step: prints a line for each check and counts those that passed.
# Sets $work, a folder that is removed at the end.

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
export LC_ALL=C
passed=0
failed=0

# check WHAT COMMAND...: runs a command and prints one line; on failure also the output of the command
check() {
  local what=$1
  shift
  if "$@" >"$work/said" 2>&1 </dev/null; then
    echo "  ok      $what"
    passed=$((passed + 1))
  else
    echo "  FAILED  $what"
    tail -n 20 "$work/said" | cut -c1-300 | sed 's/^/          /'
    failed=$((failed + 1))
    return 1
  fi
}

# finish: prints the last line, "N passed, N failed"
finish() {
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
  exit
}
