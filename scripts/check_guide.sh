#!/bin/sh
# Compiles the C code of a guide, and runs it when there is a library to link it with.
#
#   scripts/check_guide.sh [-o PROGRAM] [-e EMULATOR] GUIDE.md COMPILER INCLUDE_DIR [LINK_ARGUMENT...]
#
# All blocks of a guide make one program:
#   ```c        declarations and functions; they go to file scope, in the guide's order
#   ```c run    statements; each block becomes a function of its own, and main calls them in the guide's order
# The program includes <assert.h>, <stdint.h>, <stdio.h>, <stdlib.h>, <string.h> and qnvdrv10.h (on Windows <windows.h>
# before it). Warnings are errors. Messages name the line of the guide. Blocks of other languages are skipped.
#
# COMPILER may hold options ("gcc -m32"). Without LINK_ARGUMENTs the program is only compiled. With them (the library,
# an -rpath ...) it is linked and run: every block must reach its end and every assertion must hold.
#   -o PROGRAM   where the program is kept, for instance beside the DLL; otherwise a folder that is removed again
#   -e EMULATOR  command that runs it
set -eu

usage() {
  sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0" >&2
  exit 64
}

fail() {
  echo "check_guide.sh: $*" >&2
  exit 1
}

program=
emulator=
while getopts o:e: option; do
  case $option in
    o) program=$OPTARG ;;
    e) emulator=$OPTARG ;;
    *) usage ;;
  esac
done
shift $((OPTIND - 1))
[ $# -ge 3 ] || usage
guide=$1 compiler=$2 include=$3
shift 3
[ -r "$guide" ] || fail "$guide: cannot be read"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT PIPE TERM
[ -n "$program" ] || program=$work/guide.exe

# Two files: what goes to file scope, and the blocks to run with main behind them.
awk -v guide="$guide" -v declarations="$work/declarations" -v runs="$work/runs" '
  function stop(message) {
    printf "%s:%d: %s\n", guide, FNR, message > "/dev/stderr"
    stopped = 1
    exit 1
  }
  BEGIN { printf "" > declarations; printf "" > runs }
  !fenced && /^ *```/ {
    if ($0 !~ /^```/) stop("a fence must stand at the start of its line")
    fenced = 1
    opened = FNR
    out = ""
    if ($0 == "```c") {
      ++blocks
      out = declarations
    } else if ($0 == "```c run") {
      ++blocks
      out = runs
      printf "static void run_%d(void) {\n", ++run > out
    } else if ($0 ~ /^```c([^a-z]|$)/) {
      stop("unknown kind of C block: " $0)
    }
    if (out != "") printf "#line %d \"%s\"\n", FNR + 1, guide > out
    next
  }
  fenced && /^```/ {
    if ($0 != "```") stop("a block is still open since line " opened)
    if (out == runs) printf "}\n" > out
    fenced = 0
    next
  }
  fenced && out != "" { print > out }
  END {
    if (stopped) exit 1
    if (fenced) stop("the block of line " opened " is not closed")
    if (!blocks) stop("no C block at all")
    printf "#line 1 \"main of %s\"\nint main(void) {\n", guide > runs
    for (i = 1; i <= run; ++i) printf "  run_%d();\n", i > runs
    printf "  printf(\"%%s\\n\", \"%d blocks to their end\");\n  return 0;\n}\n", run > runs
    printf "%d %d\n", blocks, run
  }
' "$guide" >"$work/counts"
read -r blocks runs <"$work/counts"

{
  cat <<'PRELUDE'
#undef NDEBUG
#include <assert.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#ifdef _WIN32
#include <windows.h>
#endif
#include "qnvdrv10.h"
PRELUDE
  cat "$work/declarations" "$work/runs"
} >"$work/guide.c"

linked=$#
set -- -std=c99 -Wall -Wextra -pedantic -Werror -I "$include" "$work/guide.c" "$@"
if [ "$linked" -eq 0 ]; then
  $compiler -fsyntax-only "$@" || fail "$guide does not compile"
  echo "$guide: $blocks blocks compiled"
  exit 0
fi
$compiler -o "$program" "$@" || fail "$guide does not compile or link"
case $program in
  */*) ;;
  *) program=./$program ;;
esac
code=0
$emulator "$program" >"$work/output" || code=$?
if [ "$code" -ne 0 ]; then
  cat "$work/output"
  fail "$guide: its program failed with code $code"
fi
tr -d '\r' <"$work/output" | grep -qx "$runs blocks to their end" || fail "$guide: its program did not come to its end"
echo "$guide: $blocks blocks compiled, $runs of them run"
