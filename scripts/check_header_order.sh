#!/bin/sh
# Compiles qnvdrv10.h together with <windows.h>: behind it there is no complaint, before it the compiler must name the
# remedy.
#   scripts/check_header_order.sh INCLUDE_DIR COMPILER...    C and C++ compilers for Windows
set -eu
include=${1:?usage: check_header_order.sh INCLUDE_DIR COMPILER...}
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
passed=0

# expect LANGUAGE COMPILER MESSAGE HEADER...: compiles these headers in this order; an empty message: without complaint
expect() {
  language=$1 compiler=$2 message=$3
  shift 3
  : >"$work/source"
  for header in "$@"; do echo "#include <$header>" >>"$work/source"; done
  if "$compiler" -x "$language" -fsyntax-only -Wall -Wextra -I "$include" "$work/source" 2>"$work/said"; then
    [ -z "$message" ] && [ ! -s "$work/said" ]
  else
    [ -n "$message" ] && grep -q -- "$message" "$work/said"
  fi && passed=$((passed + 1)) && return
  failed=$((failed + 1))
  echo "failed: $compiler, $*: expected '$message', got:"
  cat "$work/said"
}

for compiler in "$@"; do
  case $compiler in
    *++*) language=c++ ;;
    *) language=c ;;
  esac
  expect $language "$compiler" "" windows.h qnvdrv10.h
  expect $language "$compiler" "" windows.h qnvdrv10.h windows.h qnvdrv10.h
  expect $language "$compiler" include_windows_h_before_qnvdrv10_h qnvdrv10.h windows.h
  expect $language "$compiler" "#error \"Include <windows.h> before qnvdrv10.h" qnvdrv10.h windows.h qnvdrv10.h
done
echo "$passed passed, $failed failed"
[ $failed -eq 0 ]
