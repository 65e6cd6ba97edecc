#!/usr/bin/env bash
# Runs tests on emulated processors that a machine without AVX-512 does not have: one with every instruction that the
# level avx512 asks for, one with AVX-512 but without VBMI, one without AVX-512. The library itself detects the level: it
# must be avx512 on the first and avx2 on the others. An instruction that a processor lacks ends the program. The
# emulator bochs starts a Debian kernel with the test programs and nothing else.
#   scripts/emulate_avx512.sh [OPTION...] [BUILD_TREE...]     build/linux-x64 and build/linux-x86
#     --cases N          random cases (300)
#     --filter PATTERN   the unit tests, a filter of GoogleTest (those of the level avx512)
#     --step N           tests with many rows take every N-th alignment, others for each count (7; 1 is all; a prime is
#                        best, because it differs for all sizes of pixels)
#     --processor NAME   only this one (corei3_cnl, corei7_skylake_x or corei7_haswell_4770); may be repeated
#     --limit SECONDS    ends an emulator that takes longer (1500)
#     --at-once N        emulators at the same time (as many as the machine has processors)
# One line for each processor and build, "N passed, N failed" at the end; on processors without the level only a few
# tests run. Needs the programs unit_tests, random_tests and golden_tests. Installs the emulator where it is missing, and
# fetches the kernel, 27 MB, once into .cache/emulator.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
root=$PWD

usage() {
  sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "${BASH_SOURCE[0]}" >&2
  exit 2
}
fail() {
  echo "emulate_avx512.sh: $*" >&2
  exit 1
}

# The highest level of each processor.
declare -A highest=([corei3_cnl]=avx512 [corei7_skylake_x]=avx2 [corei7_haswell_4770]=avx2)
cases=300 filter='' step=7 limit=1500 at_once=$(nproc) processors=()
while [[ ${1:-} == --* ]]; do
  [ $# -ge 2 ] || usage
  case $1 in
    --cases) cases=$2 ;;
    --filter) filter=$2 ;;
    --step) step=$2 ;;
    --processor) processors+=("$2") ;;
    --limit) limit=$2 ;;
    --at-once) at_once=$2 ;;
    *) usage ;;
  esac
  shift 2
done
[[ $cases =~ ^[0-9]+$ && $step =~ ^[1-9][0-9]*$ && $limit =~ ^[0-9]+$ && $at_once =~ ^[1-9][0-9]*$ && $filter != *[[:space:]]* ]] || usage
[ ${#processors[@]} -gt 0 ] || processors=(corei3_cnl corei7_skylake_x corei7_haswell_4770)
for processor in "${processors[@]}"; do [ -n "${highest[$processor]:-}" ] || usage; done
trees=("$@")
[ ${#trees[@]} -gt 0 ] || trees=(build/linux-x64 build/linux-x86)

for tree in "${trees[@]}"; do
  for program in unit_tests random_tests golden_tests; do
    [ -x "$tree/bin/$program" ] || fail "there is no program $tree/bin/$program"
  done
done

scripts/setup.sh emulator >&2 || exit 1

work=$(mktemp -d)
# Ends what still runs: bochs does not end at SIGTERM, but when the timeout that started it ends.
finish() {
  local pid
  for pid in "$work"/*/pid; do [ ! -e "$pid" ] || kill -KILL "$(cat "$pid")"; done
  wait
  rm -rf "$work"
} 2>/dev/null
trap finish EXIT
trap 'exit 130' INT TERM

# The kernel for virtual machines: it is smaller, and has the drivers that are needed here built in.
fetch_kernel() {
  local package
  mkdir -p "$work/kernel" .cache
  exec 9>.cache/emulator.lock
  flock 9
  if [ ! -e .cache/emulator/vmlinuz ]; then
    echo "emulate_avx512.sh: fetching a kernel into .cache/emulator (27 MB, once)" >&2
    package=$(apt-cache depends linux-image-cloud-amd64 2>/dev/null | awk '$1 == "Depends:" {print $2; exit}')
    [ -n "$package" ] || fail "no package linux-image-cloud-amd64; does apt-get update help?"
    (cd "$work/kernel" && apt-get -q -o APT::Sandbox::User=root download "$package") >"$work/log" 2>&1 </dev/null || {
      cat "$work/log" >&2
      fail "could not fetch the package $package"
    }
    dpkg-deb --fsys-tarfile "$work"/kernel/*.deb | tar -xf - -C "$work/kernel" --wildcards './boot/vmlinuz-*' &&
      mkdir -p .cache/emulator && mv "$work"/kernel/boot/vmlinuz-* .cache/emulator/vmlinuz || exit 1
  fi
  exec 9>&-
}
fetch_kernel

mapfile -t levels < <(scripts/kernel_levels.sh | cut -f 1)
# A quick test that every level has: it tells which levels the processor is seen to have.
witness='*PixelRowsTest.ShuffleRow/*'
g++ -O2 -static -s tests/levels/guest_init.cpp -o "$work/init" || fail "cannot build tests/levels/guest_init.cpp"

# The programs of a build with their libraries and files, at the same paths as here, without debug information.
make_files() { # TREE DIR
  local bin program library
  bin=$(cd "$1/bin" && pwd) || return
  mkdir -p "$2"/{dev,proc,tmp} && cp "$work/init" "$2/init" || return
  for program in unit_tests random_tests golden_tests; do
    for library in $(ldd "$bin/$program" | grep -o '/[^ ]*') "$bin/$program"; do
      [ -e "$2/$library" ] && continue
      mkdir -p "$2/$(dirname "$library")" && strip -o "$2/$library" "$library" || return
    done
  done
  mkdir -p "$2/$root/tests" && cp -r tests/golden "$2/$root/tests"
}

# Runs the tests of one build on one processor; what they print goes to DIR/output.
emulate() { # PROCESSOR TREE DIR
  local bin files=$3/files
  bin=$(cd "$2/bin" && pwd) && make_files "$2" "$files" || return
  local tests=$witness few=$cases
  if [ "${highest[$1]}" = avx512 ]; then
    tests=${filter:-*/avx512}:$witness
  elif [ "$few" -gt 30 ]; then
    few=30
  fi
  {
    echo "$bin/unit_tests --gtest_filter=$tests"
    echo "$bin/random_tests --cases $few"
    echo "$bin/golden_tests"
  } >"$files/commands"
  mkdir -p "$3/disc/isolinux"
  (cd "$files" && find . | cpio -o -H newc -R 0:0 --quiet) >"$3/disc/files" || return
  cp .cache/emulator/vmlinuz "$3/disc/" || return
  cp /usr/lib/ISOLINUX/isolinux.bin /usr/lib/syslinux/modules/bios/ldlinux.c32 "$3/disc/isolinux/" || return
  # The emulator gives wrong sizes for the compact form of saved registers (XSAVEC, XSAVES) and for protection keys, and
  # loses ticks of the timer that counts with the time stamp counter. Most other parameters make the start quicker;
  # one that the kernel does not know is a variable of the environment.
  cat >"$3/disc/isolinux/isolinux.cfg" <<END
DEFAULT tests
PROMPT 0
LABEL tests
  KERNEL /vmlinuz
  INITRD /files
  APPEND console=ttyS0 quiet panic=-1 noxsaves clearcpuid=pku,ospke,xsaves,xsavec lapic=notscdeadline idle=halt nokaslr mitigations=off cryptomgr.notests lsm=capability audit=0 tsc=reliable no_timer_check initcall_blacklist=load_system_certificate_list QNV_ALIGNMENT_STEP=$step
END
  xorriso -as mkisofs -quiet -o "$3/disc.iso" -b isolinux/isolinux.bin -c isolinux/boot.cat -no-emul-boot \
    -boot-load-size 4 -boot-info-table "$3/disc" 2>"$3/xorriso.log" || return
  rm -rf "$3/disc" "$files"
  # A low number of instructions in a second of the emulated clock makes its waits short.
  cat >"$3/bochsrc" <<END
display_library: term
romimage: file=/usr/share/bochs/BIOS-bochs-latest
vgaromimage: file=/usr/share/vgabios/vgabios.bin
memory: guest=512, host=512
cpu: model=$1, ips=10000000, reset_on_triple_fault=0
clock: sync=none, time0=1
ata0-master: type=cdrom, path=$3/disc.iso, status=inserted
boot: cdrom
com1: enabled=1, mode=file, dev=$3/console
parport1: enabled=1, file=$3/output
log: $3/bochs.log
panic: action=fatal
error: action=ignore
info: action=ignore
debug: action=ignore
END
  # The package is built with bochs's debugger, which waits for the command to begin.
  echo c >"$3/begin"
  TERM=vt100 timeout -s KILL "$limit" setpriv --pdeathsig KILL bochs -q -f "$3/bochsrc" -rc "$3/begin" \
    </dev/null >"$3/terminal" 2>&1 &
  echo $! >"$3/pid"
  wait $!
  rm -f "$3/pid"
}

number=0 directories=()
for processor in "${processors[@]}"; do
  for tree in "${trees[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "$at_once" ]; do wait -n; done
    directories[number]=$work/$number
    mkdir -p "$work/$number"
    {
      start=$EPOCHSECONDS
      emulate "$processor" "$tree" "$work/$number" 2>"$work/$number/errors"
      echo $((EPOCHSECONDS - start)) >"$work/$number/seconds"
    } &
    number=$((number + 1))
  done
done
wait

passed=0 failed=0 number=0
for processor in "${processors[@]}"; do
  wanted=''
  for level in "${levels[@]}"; do
    wanted+="$level "
    [ "$level" != "${highest[$processor]}" ] || break
  done
  for tree in "${trees[@]}"; do
    directory=${directories[number]} log=$tree/emulated_$processor.log
    number=$((number + 1))
    seconds=$(cat "$directory/seconds")
    cat "$directory"/{errors,xorriso.log,console,output} >"$log" 2>/dev/null
    ran=$(sed -n 's|^\[       OK \] .*ShuffleRow/\([a-z0-9]*\) (.*|\1|p' "$log" | tr '\n' ' ')
    ended=$(grep -c '^\[guest\] exit 0: ' "$log")
    mapfile -t counts < <(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\{0,1\}\.$/\1/p; s/^\([0-9]* passed, [0-9]* failed\)$/\1/p' "$log")
    # The time of the emulated processor, in instructions, is what every line of the emulator's log begins with.
    instructions=$(sed -n '$s/^0*\([0-9]*\).*/\1/p' "$directory/bochs.log")
    summary="$tree on $processor: ${counts[0]:-no} unit tests on ${ran% }; ${counts[1]:-no} random cases"
    summary+="; ${counts[2]:-no} golden tests; $seconds s, $((${instructions:-0} / 1000000 / (seconds + 1))) million instructions/s"
    # More tests than those that name the levels, so that a filter without tests does not pass.
    enough=$(wc -w <<<"$wanted")
    [ "${highest[$processor]}" != avx512 ] || enough=$((enough + 1))
    if [ "$ended" -eq 3 ] && [ "$ran" = "$wanted" ] && grep -qxF '[guest] end' "$log" &&
      [ ${#counts[@]} -eq 3 ] && [ "${counts[0]}" -ge "$enough" ] && [[ ${counts[1]} == *' 0 failed' ]]; then
      passed=$((passed + 1))
      echo "ok      $summary"
    else
      failed=$((failed + 1))
      echo "FAILED  $summary"
      [ "$ran" = "$wanted" ] || echo "        wanted: $wanted"
      [ "$seconds" -lt "$limit" ] || echo "        ended after $limit s"
      echo "        whole output in $log"
    fi
  done
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
