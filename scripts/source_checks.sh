# Functions for the scripts that check single sources (lint.sh, analyze.sh): list the sources with their compiler
# flags, and skip those that have passed before. To be sourced with these variables set:
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

# headers_of FILE FLAG...: the headers of this project that a source reads. Those of the system are left out, so that
# this takes milliseconds: -MG names what is not found instead of failing.
headers_of() {
  local file=$1 flags=() flag skip=0 header
  shift
  for flag; do
    [ $skip = 0 ] && [ "$flag" != -isystem ] && flags+=("$flag")
    [ "$flag" = -isystem ] && skip=1 || skip=0
  done
  "$clang" "${flags[@]}" -MM -MG -nostdinc -nostdinc++ "$file" 2>/dev/null | tr -s ' \\' '\n\n' | sed 1d |
    while read -r header; do [ ! -e "$header" ] || echo "$header"; done
}

# state_of FILE FLAG...: a hash of everything that the result for a source depends on
state_of() {
  { echo "$* $identity"; headers_of "$@" | xargs cat "$1"; } 2>&1 | sha256sum
}

# The place where the state in which a source passed is remembered.
record_of() { echo "$tree/passed/${1//\//_}"; }

# unless_passed "FILE FLAGS": prints the line again unless the file has passed in its present state
unless_passed() {
  local flags
  eval "flags=(${1#* })"
  [ "$(cat "$(record_of "${1%% *}")" 2>/dev/null)" = "$(state_of "${1%% *}" "${flags[@]}")" ] || echo "$1"
}

# check_source "FILE FLAGS": silent when nothing is found
check_source() {
  local file=${1%% *} flags log
  eval "flags=(${1#* })"
  log=$(record_of "$file").log
  if look_at "$file" "${flags[@]}" >"$log" 2>&1; then
    state_of "$file" "${flags[@]}" >"$(record_of "$file")"
  else
    rm -f "$(record_of "$file")"
    echo "FAILED  $file"
    grep -E 'warning:|error:' "$log" | cut -c1-220 | sort -u | head -n 12 | sed 's/^/        /'
  fi
}

# check_batch NUMBER "FILE FLAGS"...: sources that have the same flags as one text, so that the headers of the system
# are read and looked at once. The line markers keep every source a main file, which is what analyzers follow paths in.
# Where something is found, or where two sources define the same name, each half is looked at for itself.
check_batch() {
  local number=$1 text=$tree/batch_$1.cpp line flags beside=()
  shift
  if [ $# -gt 1 ] && [ "${one_by_one-}" = "" ]; then
    for line; do
      printf '# 1 "%s/%s"\n' "$root" "${line%% *}"
      cat "${line%% *}"
      beside+=("-I$(dirname "${line%% *}")")
    done >"$text"
    eval "flags=(${1#* })"
    # A source finds the headers beside it; the text lies elsewhere.
    if look_at "$text" "${flags[@]}" "${beside[@]}" >"${text%.cpp}.log" 2>&1; then
      for line; do state_of "${line%% *}" "${flags[@]}" >"$(record_of "${line%% *}")"; done
      return
    fi
    check_batch "$number.1" "${@:1:$#/2}"
    check_batch "$number.2" "${@:$#/2+1}"
    return
  fi
  for line; do check_source "$line"; done
}

# in_batches SIZE: reads lines "FILE FLAGS", writes the arguments of check_batch, each followed by a zero byte, and an
# empty one after each batch
in_batches() {
  awk -v size="$1" '
    { flags = substr($0, index($0, " ")); if (flags != last || count == size) { if (NR > 1) printf "%c", 0; count = 0 } }
    count++ == 0 { printf "%d%c", ++number, 0 }
    { printf "%s%c", $0, 0; last = flags }
    END { if (NR) printf "%c", 0 }'
}

# check_sources "FILE FLAGS"...: all of them, as many at once as there are cores; prints "N passed, N failed". The
# script defines
#   identity       what else the result depends on: programs with their versions, settings
#   batch          how many sources may be looked at together; 1 where not set
#   look_at FILE FLAG...   prints findings; its status says whether there are none
check_sources() {
  if [ $# -eq 0 ]; then
    echo "none of these files is compiled" >&2
    echo "0 passed, 1 failed"
    return 1
  fi
  export identity
  export -f headers_of state_of record_of unless_passed check_source check_batch look_at
  local waiting failed
  waiting=$(printf '%s\0' "$@" | xargs -0 -n 1 -P "$(nproc)" bash -c 'unless_passed "$1"' _ | sort -k 2)
  # Every core gets work before a batch is full.
  local count most=${batch:-1} each
  count=$(grep -c . <<<"$waiting")
  each=$(((count + $(nproc) - 1) / $(nproc)))
  [ "$each" -ge 1 ] || each=1
  [ "$each" -le "$most" ] || each=$most
  : >"$tree/findings.log"
  if [ "$count" -gt 0 ]; then
    local arguments=() argument
    while IFS= read -r -d '' argument; do
      if [ -n "$argument" ]; then
        arguments+=("$argument")
        continue
      fi
      while [ "$(jobs -pr | wc -l)" -ge "$(nproc)" ]; do wait -n; done
      check_batch "${arguments[@]}" >>"$tree/findings.log" &
      arguments=()
    done < <(in_batches "$each" <<<"$waiting")
    wait
  fi
  cat "$tree/findings.log"
  failed=$(grep -c '^FAILED' "$tree/findings.log")
  echo "$(($# - failed)) passed, $failed failed"
  [ "$failed" -eq 0 ]
}
