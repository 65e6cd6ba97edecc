#!/usr/bin/env bash
# Formats all C++ sources with clang-format, or reports which are not formatted.
#   scripts/format.sh            formats them
#   scripts/format.sh --check    changes nothing, fails on a difference; "N passed, N failed" at the end
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

case "$*" in
  "" | --check) ;;
  *)
    sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
esac

# Versions of clang-format differ: the one of Debian 12 is the reference.
program=$(command -v clang-format-14 || command -v clang-format) || {
  echo "format: clang-format is not installed: run scripts/setup.sh check" >&2
  exit 1
}
mapfile -t files < <(find src calls recorder tests tools bench fuzz -name '*.cpp' -o -name '*.h' | sort)
[ ${#files[@]} -gt 0 ] || exit 1
if [ $# -eq 0 ]; then
  "$program" -i --style=file "${files[@]}"
  exit
fi
bad=$({ "$program" --dry-run --style=file "${files[@]}" 2>&1 || true; } |
  sed -n 's/^\(.*\):[0-9]*:[0-9]*: \(warning\|error\).*/\1/p' | sort -u)
failed=0
if [ -n "$bad" ]; then
  sed 's/^/  FAILED  not formatted: /' <<<"$bad"
  failed=$(wc -l <<<"$bad")
  echo "scripts/format.sh formats them"
fi
echo "$((${#files[@]} - failed)) passed, $failed failed"
[ "$failed" -eq 0 ]
