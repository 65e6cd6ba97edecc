#!/usr/bin/env bash
# Runs the random cases and some kernel tests on emulated processors that have one level of row kernels and no more, for
# every level of src/raster/rows/levels.h that the build has beyond what its compiler options take for granted: the
# library itself detects the level, and an instruction of a higher one ends the program.
#   scripts/levels.sh [CASES [BUILD_TREE...]]     1000 random cases, build/linux-x64 and build/linux-x86
# qemu knows no AVX-512: for that level it says so, and scripts/emulate_avx512.sh runs it in another emulator.
# One line for each processor, "N passed, N failed" at the end. Needs the package qemu-user and the programs
# random_tests and unit_tests. The plain level is what the preset linux-arm64 runs.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

cases=${1:-1000}
[[ $cases =~ ^[0-9]+$ ]] || {
  sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
  exit 2
}
trees=("${@:2}")
[ ${#trees[@]} -gt 0 ] || trees=(build/linux-x64 build/linux-x86)

# A processor of each level; both presets compile for SSE2, so that there is none below.
declare -A processors=([sse2]=Opteron_G1 [ssse3]=Conroe [avx2]=Haswell)
# Levels that qemu has no processor for, each with what runs them instead.
declare -A elsewhere=([avx512]=scripts/emulate_avx512.sh)
mapfile -t levels < <(scripts/kernel_levels.sh | cut -f 1)
# A few that use every kind of vector code; all of them take minutes under an emulator.
kernel_tests=(RowKernelsTest.RowsOfASource RowKernelsTest.SwapRow24 PixelRowsTest.PixelsOneByOne PixelRowsTest.ShuffleRow)
passed=0
failed=0

for tree in "${trees[@]}"; do
  # The processor of an ELF file: 62 and 3.
  case $(od -An -tu2 -j18 -N2 "$tree/bin/random_tests" 2>/dev/null | tr -d ' ') in
    62) emulator=qemu-x86_64 ;;
    3) emulator=qemu-i386 ;;
    *)
      echo "FAILED  $tree: no programs for x86"
      failed=$((failed + 1))
      continue
      ;;
  esac
  below=()
  for level in "${levels[@]}"; do
    below+=("$level")
    [ "$level" != plain ] || continue
    if [ -n "${elsewhere[$level]:-}" ]; then
      echo "not run $tree $level: qemu has no such processor; ${elsewhere[$level]} runs it"
      continue
    fi
    start=$SECONDS log=$tree/level_$level.log
    if [ -z "${processors[$level]:-}" ]; then
      echo "FAILED  $tree $level: this script names no processor for it"
      failed=$((failed + 1))
      continue
    fi
    run=("$emulator" -cpu "${processors[$level]}")
    # The tests of kernels skip the levels that are not detected, and say so.
    QNV_ALIGNMENT_STEP=7 "${run[@]}" "$tree/bin/unit_tests" \
      --gtest_filter="$(printf '*%s/*:' "${kernel_tests[@]}")" >"$log" 2>&1
    kernels=$?
    ran=$(sed -n 's|^\[       OK \] .*/\([A-Za-z]*\.[A-Za-z0-9]*/[a-z0-9]*\) (.*|\1|p' "$log" | sort | tr '\n' ' ')
    wanted=$(for name in "${kernel_tests[@]}"; do printf "$name/%s\n" "${below[@]}"; done | sort | tr '\n' ' ')
    count=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\{0,1\}\.$/\1/p' "$log")
    "${run[@]}" "$tree/bin/random_tests" --cases "$cases" >>"$log" 2>&1
    random=$?
    summary="$tree $level (${processors[$level]}): ${count:-no} kernel tests; $(tail -n 1 "$log" |
      sed 's/ passed, / random cases passed, /'), $((SECONDS - start)) s"
    if [ $kernels -eq 0 ] && [ $random -eq 0 ] && [ "$ran" = "$wanted" ]; then
      passed=$((passed + 1))
      echo "ok      $summary"
    else
      failed=$((failed + 1))
      echo "FAILED  $summary"
      [ "$ran" = "$wanted" ] || echo "        wanted: $wanted"
      echo "        whole output in $log"
    fi
  done
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
