#!/usr/bin/env bash
# Looks at the library with two more analyzers; a finding is a failure. What has not changed since it passed is not
# looked at again.
#   scripts/analyze.sh
# cppcheck sees each source with its headers. GCC's analyzer (-fanalyzer) follows paths through one source: in GCC 12 it
# was written for C and knows little of C++ (no exceptions, no new), but the library has neither. It knows nothing of
# vector instructions and takes minutes over each of their sources, so these are left to cppcheck, the linter and the
# sanitizers. GCC compiles at -O2 for it, because some warnings come from the optimiser only.
# One line for each file with findings, "N passed, N failed" at the end.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
root=$PWD tree=$PWD/build/analyze scope='^src/'

for program in cppcheck g++; do
  command -v "$program" >/dev/null || {
    echo "analyze: $program is not installed: run scripts/setup.sh check" >&2
    exit 1
  }
done
[ $# -eq 0 ] || {
  sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
  exit 2
}
source scripts/source_checks.sh

identity="$(cppcheck --version) $(g++ --version) $(cat scripts/analyze.sh)"

# What cppcheck is told not to say, and why:
#   uninitMemberVar         work memory is written before it is read, and filling it first would cost time
#   shiftTooManyBitsSigned  defined since C++20: the sign is copied
#   CastIntegerToAddressAtReturn  takes a pointer with offsets for an integer
#   useInitializationList   vectors are computed, not constructed
#   uninitvar in two files  memory that std::memcpy sets inside a lambda
#   cppcheckError           says that it gave up on a loop, not that something is wrong
#   missingIncludeSystem    the standard library is not analysed
look_at() {
  local file=$1 flags=("${@:2}") includes=() analyzer=() flag status=0
  for flag in "${flags[@]}"; do
    case $flag in -I* | -D*) includes+=("$flag") ;; esac
  done
  cppcheck --quiet --std=c++20 --language=c++ --enable=warning,performance,portability --inline-suppr \
    --suppress=uninitMemberVar --suppress=shiftTooManyBitsSigned --suppress=CastIntegerToAddressAtReturn \
    --suppress=uninitvar:src/image/kept_row_copier.cpp --suppress=uninitvar:src/raster/source_rows.cpp \
    --suppress=useInitializationList --suppress=cppcheckError --suppress=missingIncludeSystem \
    --template='{file}:{line}: error: {message} [{id}]' --template-location='' --error-exitcode=1 \
    -D__x86_64__ "${includes[@]}" "$file" || status=1
  [[ $file =~ _($vector_levels)\.cpp$ ]] || analyzer=(-fanalyzer)
  g++ "${flags[@]}" -O2 "${analyzer[@]}" -Wold-style-cast -Wnull-dereference -Werror -c -o /dev/null "$file" || status=1
  return $status
}

vector_levels=$(scripts/kernel_levels.sh | cut -f 1 | grep -vx plain | paste -sd '|')
export vector_levels
configure_sources
mapfile -t list < <(sources_with_flags)
check_sources "${list[@]}"
