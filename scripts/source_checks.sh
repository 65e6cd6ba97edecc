# Shared by the scripts that look at sources one by one (lint.sh, analyze.sh): which sources there are, with the flags
# they are compiled with, and which of them have passed before. Sourced with these variables set:
#   root      the checkout, which is also the working folder
#   tree      a folder under build/ for logs and for what passed: $tree/passed
#   scope     a regular expression: names of the sources to look at
# shellcheck shell=bash
export root tree tidy_tree=$root/build/tidy
# The compiler that says which headers a source reads.
clang=$(command -v clang++-14 || command -v clang++) || {
  echo "clang is not installed: run scripts/setup.sh check" >&2
  exit 1
}
export clang

# configure_sources: the preset "tidy" writes down how each source is compiled; nothing is built.
configure_sources() {
  mkdir -p "$tree/passed" "$tidy_tree"
  cmake --preset tidy >"$tidy_tree/configure.log" 2>&1 || {
    tail -n 20 "$tidy_tree/configure.log"
    echo "0 passed, 1 failed"
    exit 1
  }
}

# "FILE FLAGS" of each source, once: a source that several targets compile is looked at with the flags of the first.
sources_with_flags() {
  sed -n 's/^ *"command": "\(.*\)",\{0,1\}$/C \1/p; s/^ *"file": "\(.*\)",\{0,1\}$/F \1/p' \
    "$tidy_tree/compile_commands.json" | sed 's/\\"/"/g; s/\\\\/\\/g' |
    awk -v root="$root/" -v scope="$scope" '
      /^C / { flags = substr($0, 3); sub(/^[^ ]+ /, " ", flags); sub(/ -o [^ ]+ -c .*/, "", flags) }
      /^F / && index($2, root) == 1 {
        file = substr($2, length(root) + 1)
        if (file ~ scope && !seen[file]++) print file flags
      }' | sort
}

# check_source "FILE FLAGS": silent when the file has passed. The script defines
#   identity       prints what else the result depends on: programs with their versions, settings
#   look_at FILE FLAG...   prints findings; its status says whether there are none
# What passed is remembered by a hash of the file, every header of this project that it reads, its flags and identity.
check_source() {
  local file=${1%% *} flags=() name key
  eval "flags=(${1#* })"
  name=${file//\//_}
  key=$tree/passed/$name
  hash_of() { # of the headers listed in the file $1
    { echo "$file ${flags[*]}"; identity; xargs cat <"$1"; } 2>&1 | sha256sum
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
  if look_at "$file" "${flags[@]}" >"$key.log" 2>&1; then
    hash_of "$key.headers" >"$key"
  else
    echo "FAILED  $file"
    grep -E 'warning:|error:' "$key.log" | cut -c1-220 | sort -u | head -n 12 | sed 's/^/        /'
  fi
}

# check_sources "FILE FLAGS"...: all of them, as many at once as there are cores; prints "N passed, N failed"
check_sources() {
  if [ $# -eq 0 ]; then
    echo "none of these files is compiled" >&2
    echo "0 passed, 1 failed"
    return 1
  fi
  export -f check_source identity look_at
  printf '%s\0' "$@" | xargs -0 -n 1 -P "$(nproc)" bash -c 'check_source "$1"' _ | tee "$tree/findings.log"
  local failed
  failed=$(grep -c '^FAILED' "$tree/findings.log")
  echo "$(($# - failed)) passed, $failed failed"
  [ "$failed" -eq 0 ]
}
