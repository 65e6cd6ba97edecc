#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy; a finding is a failure. Files that have not changed since they passed
# are not checked again.
#   scripts/lint.sh           the library and the printing tool
#   scripts/lint.sh --all     also tests, benchmark, fuzz targets
#   scripts/lint.sh FILE...   these files
# Prints the findings of each file, and "N passed, N failed" at the end. build/tidy/passed holds a hash for each file
# that passed: of the file, of every header of this project that it reads, of its compiler flags and of the checks.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
export root=$PWD tree=$PWD/build/tidy

program=$(command -v clang-tidy-14 || command -v clang-tidy) && clang=$(command -v clang++-14 || command -v clang++) || {
  echo "lint: clang-tidy or clang is not installed: run scripts/setup.sh check" >&2
  exit 1
}
export program clang

scope='^(src|tools)/'
only=()
case ${1-} in
  --all) scope='^(src|tools|tests|bench|fuzz)/' ;;
  -*)
    sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
  ?*)
    scope=.
    for file; do only+=("$(realpath --relative-to=. "$file")"); done
    ;;
esac

mkdir -p "$tree/passed"
cmake --preset tidy >"$tree/configure.log" 2>&1 || {
  tail -n 20 "$tree/configure.log"
  echo "0 passed, 1 failed"
  exit 1
}

# Prints "FILE FLAGS" once for each source. A source that several targets compile is checked with the flags of the
# first.
commands() {
  sed -n 's/^ *"command": "\(.*\)",\{0,1\}$/C \1/p; s/^ *"file": "\(.*\)",\{0,1\}$/F \1/p' "$tree/compile_commands.json" |
    sed 's/\\"/"/g; s/\\\\/\\/g' |
    awk -v root="$root/" -v scope="$scope" '
      /^C / { flags = substr($0, 3); sub(/^[^ ]+ /, " ", flags); sub(/ -o [^ ]+ -c .*/, "", flags) }
      /^F / && index($2, root) == 1 {
        file = substr($2, length(root) + 1)
        if (file ~ scope && !seen[file]++) print file flags
      }' | sort
}

# lint_one "FILE FLAGS": checks a file; prints nothing when it passes
lint_one() {
  local file=${1%% *} flags=() key=${1%% *} headers name
  eval "flags=(${1#* })"
  name=${key//\//_}
  key=$tree/passed/$name
  hash_of() { # of the headers listed in the file $1
    { echo "$file ${flags[*]} $program"; "$program" --version; cat .clang-tidy; xargs cat <"$1"; } 2>&1 | sha256sum
  }
  if [ -e "$key.headers" ] && [ "$(cat "$key" 2>/dev/null)" = "$(hash_of "$key.headers")" ]; then
    return 0
  fi
  rm -f "$key"
  if ! "$clang" "${flags[@]}" -MM "$file" 2>"$key.log" | tr -s ' \\' '\n\n' | sed '1d' |
    grep -v '^$' >"$key.headers"; then
    echo "FAILED  $file"
    head -n 5 "$key.log"
    return 0
  fi
  if "$program" --quiet --warnings-as-errors='*' "$file" -- "${flags[@]}" >"$key.log" 2>"$key.errors"; then
    hash_of "$key.headers" >"$key"
  else
    echo "FAILED  $file"
    grep -E 'warning:|error:' "$key.log" "$key.errors" -h | cut -c1-220 | sort -u | head -n 12 | sed 's/^/        /'
  fi
}
export -f lint_one

mapfile -t list < <(commands)
if [ ${#only[@]} -gt 0 ]; then
  mapfile -t list < <(printf '%s\n' "${list[@]}" | awk -v only="${only[*]}" '
    BEGIN { n = split(only, names, " "); for (i = 1; i <= n; ++i) wanted[names[i]] = 1 }
    wanted[$1]')
fi
if [ ${#list[@]} -eq 0 ]; then
  echo "lint: none of these files is compiled" >&2
  echo "0 passed, 1 failed"
  exit 1
fi
printf '%s\0' "${list[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'lint_one "$1"' _ | tee "$tree/findings.log"
failed=$(grep -c '^FAILED' "$tree/findings.log")
echo "$((${#list[@]} - failed)) passed, $failed failed"
[ "$failed" -eq 0 ]
