#!/usr/bin/env bash
# Builds the engine of the inspector as a WebAssembly module, or checks that the committed one is made of its sources.
#   scripts/inspector_engine.sh build    writes inspector/built/engine.wasm and the hash of its sources
#   scripts/inspector_engine.sh check    compares the hash; needs no compiler
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
built=inspector/built
compiler=${QNV_WASM_CXX:-clang++-14}

# What the module is made of. It records nothing, and has the row kernels that every processor can run.
sources() {
  local vector_levels
  vector_levels=$(scripts/kernel_levels.sh | cut -f 1 | grep -vx plain | paste -sd '|')
  find src calls inspector/engine -name '*.cpp' -regextype posix-extended ! -regex ".*_($vector_levels)\.cpp" \
    ! -name call_capture.cpp ! -name call_writer.cpp ! -name font_memory.cpp ! -name stored_copy.cpp |
    LC_ALL=C sort
}

# One hash over the sources, the headers and the options below.
hash_sources() {
  {
    sources
    find src calls inspector/engine include -name '*.h'
    echo scripts/inspector_engine.sh
  } | LC_ALL=C sort | xargs sha256sum | sha256sum | cut -d' ' -f1
}

compile=(--target=wasm32-wasi -std=c++20 -O2 -fno-exceptions -fno-rtti -fvisibility=hidden
  -ffile-prefix-map="$PWD"=. -Wall -Wextra -Iinclude -Isrc -I.)
link=(--target=wasm32-wasi -O2 -mexec-model=reactor -Wl,--gc-sections -Wl,--strip-all -Wl,-z,stack-size=1048576)

case ${1-} in
  build)
    command -v "$compiler" >/dev/null || {
      echo "inspector_engine: $compiler is not installed: run scripts/setup.sh check" >&2
      exit 1
    }
    objects=build/inspector-engine
    mkdir -p $objects
    # Each source is compiled again when anything it may include is newer.
    newest=$(find src calls inspector/engine include scripts/inspector_engine.sh \( -name "*.h" -o -name "*.sh" \) \
      -newer $objects/stamp 2>/dev/null | head -1 || true)
    [ -e $objects/stamp ] && [ -z "$newest" ] || rm -f $objects/*.o
    touch $objects/stamp
    export compiler objects
    sources | xargs -P "$(nproc)" -I{} bash -c '
      object=$objects/$(tr / _ <<<"{}").o
      [ "$object" -nt "{}" ] || "$compiler" "$@" -c "{}" -o "$object" || exit 255' _ "${compile[@]}"
    wanted=()
    while read -r source; do wanted+=("$objects/$(tr / _ <<<"$source").o"); done < <(sources)
    "$compiler" "${link[@]}" "${wanted[@]}" -o $built/engine.wasm
    chmod 644 $built/engine.wasm
    hash_sources >$built/engine.sha256
    ;;
  check)
    [ "$(hash_sources)" = "$(cat $built/engine.sha256 2>/dev/null)" ] || {
      echo "inspector_engine: the built engine is older than its sources: run scripts/inspector_engine.sh build" >&2
      exit 1
    }
    ;;
  *)
    sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
esac
