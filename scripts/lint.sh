#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy; a finding is a failure. Files that have not changed since they passed
# are not checked again.
#   scripts/lint.sh           the library and the printing tool
#   scripts/lint.sh --all     also tests, benchmark, fuzz targets
#   scripts/lint.sh FILE...   these files
# Prints the findings of each file, and "N passed, N failed" at the end.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
root=$PWD tree=$PWD/build/tidy scope='^(src|calls|recorder|inspector|tools)/'

program=$(command -v clang-tidy-14 || command -v clang-tidy) || {
  echo "lint: clang-tidy is not installed: run scripts/setup.sh check" >&2
  exit 1
}
export program

only=()
case ${1-} in
  --all) scope='^(src|calls|recorder|inspector|tools|tests|bench|fuzz)/' ;;
  -*)
    sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
  ?*)
    scope=.
    for file; do only+=("$(realpath --relative-to=. "$file")"); done
    ;;
esac
source scripts/source_checks.sh

# find_faults ARGUMENT...: what is found in a file of faults, without the static analyzer
find_faults() {
  "$program" --quiet "$@" scripts/lint/faults.cpp -- -std=c++20 2>/dev/null | grep -E 'warning:|error:' | sort
}

# Builds the plugin that keeps the linter's checks out of the standard library, which is three quarters of their time.
# The linter must find the same faults with it. Where the headers of the linter are not installed it works without.
make_plugin() {
  local headers state found
  headers=/usr/lib/llvm-$("$program" --version | sed -n 's/.*version \([0-9]*\).*/\1/p')/include
  [ -e "$headers/clang-tidy/ClangTidyCheck.h" ] || {
    echo "lint: without the headers of clang-tidy this takes longer: run scripts/setup.sh check" >&2
    return
  }
  state=$("$program" --version | cat - .clang-tidy scripts/lint.sh scripts/lint/*.cpp | sha256sum)
  if [ "$state" != "$(cat "$plugin.state" 2>/dev/null)" ]; then
    "$clang" -std=c++17 -O1 -fPIC -shared -fno-rtti -isystem "$headers" scripts/lint/own_code.cpp -o "$plugin" || exit 1
    found=$(find_faults --load="$plugin" --checks='qnv-own-code,-clang-analyzer-*')
    if [ -z "$found" ] || [ "$found" != "$(find_faults --checks='-clang-analyzer-*')" ]; then
      echo "FAILED  scripts/lint/own_code.cpp: other faults are found in faults.cpp with it than without"
      echo "0 passed, 1 failed"
      exit 1
    fi
    echo "$state" >"$plugin.state"
  fi
  plugged=("--load=$plugin" --checks=qnv-own-code)
}

plugin=build/tidy/own_code.so plugged=()
mkdir -p "$tree"
make_plugin
export plugin_arguments="${plugged[*]}"

identity="$("$program" --version) $(cat .clang-tidy scripts/lint/own_code.cpp) $plugin_arguments" batch=25
# Paths through the tools, which are long and made of large library functions, are not followed as far as those through
# the library.
look_at() {
  local depth=()
  [[ " ${*:2}" != *" -I$root/tools "* ]] || depth=(-Xclang -analyzer-config -Xclang mode=shallow)
  # shellcheck disable=SC2086  # two arguments or none
  "$program" --quiet --warnings-as-errors='*' $plugin_arguments "$1" -- "${@:2}" "${depth[@]}"
}

# twice_included FILE...: headers that a source includes twice. The linter's own check cannot tell sources of a batch apart.
twice_included() { awk 'FNR == 1 { split("", seen) } /^ *# *include/ && seen[$0]++ { print FILENAME ": " $0; bad = 1 } END { exit bad }' "$@"; }

configure_sources
mapfile -t list < <(sources_with_flags)
if [ ${#only[@]} -gt 0 ]; then
  mapfile -t list < <(printf '%s\n' "${list[@]}" | awk -v only="${only[*]}" '
    BEGIN { n = split(only, names, " "); for (i = 1; i <= n; ++i) wanted[names[i]] = 1 }
    wanted[$1]')
fi
twice=0
twice_included "${list[@]%% *}" || twice=1
check_sources "${list[@]}" && [ $twice = 0 ]
