#!/usr/bin/env bash
# Installs the Debian packages that are missing, and says which. Prints nothing when none is missing. For "check" it also
# fetches the sources that scripts/zstd.sh names.
#
#   scripts/setup.sh demo      what ./demo needs
#   scripts/setup.sh check     also what ./check needs: 32-bit, Windows and ARM compilers, test framework, package tools,
#                              formatter, linter, analyzer, fuzzer, compiler cache, fonts of other scripts, Chromium
#                              and Node.js (the default)
#   scripts/setup.sh emulator  what scripts/emulate_avx512.sh needs
#   scripts/setup.sh slurm     what scripts/check_slurm.sh needs
#   scripts/setup.sh valgrind  what scripts/valgrind.sh needs
# Those scripts call it themselves.
set -euo pipefail

mode=${1:-check}

demo_packages=(
  cmake ninja-build g++ pkg-config
  libpng-dev libjpeg-dev libtiff-dev libcups2-dev libfreetype-dev libfontconfig-dev libcli11-dev libfmt-dev
  nlohmann-json3-dev
  libzstd-dev libharfbuzz-dev libfribidi-dev libunibreak-dev libmicrohttpd-dev
  fontconfig fonts-dejavu-core fonts-liberation2
)
# g++-12-multilib instead of g++-multilib, because the latter conflicts with every cross compiler. It lacks the link to
# the headers of the kernel, whose folder is therefore given in the preset linux-x86.
check_packages=(
  binutils googletest g++-12-multilib g++-mingw-w64-i686-posix libz-mingw-w64-dev
  dpkg-dev unzip clang llvm lld
  clang-tidy clang-format cppcheck libclang-rt-dev ccache
  libclang-14-dev llvm-14-dev
  g++-aarch64-linux-gnu qemu-user
  fonts-lohit-deva fonts-droid-fallback
  poppler-utils qpdf libtiff-tools pngcheck
  cups-ipp-utils dbus-daemon cups-daemon cups-core-drivers cups-client cups-filters
  parallel openssh-client openssh-server
  chromium
  clang-14 wasi-libc libc++-14-dev-wasm32 libclang-rt-14-dev-wasm32
)
# The page of the inspector is built and tested with any Node.js from 18.15 on.
if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
  check_packages+=(nodejs npm)
fi

emulator_packages=(bochs bochsbios bochs-term vgabios isolinux syslinux-common xorriso cpio)
slurm_packages=(slurmctld slurmd slurm-client munge)

case $mode in
  emulator) wanted=("${emulator_packages[@]}") ;;
  slurm) wanted=("${slurm_packages[@]}") ;;
  valgrind) wanted=(valgrind) ;;
  demo) wanted=("${demo_packages[@]}") ;;
  check) wanted=("${demo_packages[@]}" "${check_packages[@]}") ;;
  *)
    echo "usage: scripts/setup.sh [demo|check|emulator|slurm|valgrind]" >&2
    exit 2
    ;;
esac

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  echo "setup: this script knows Debian only. Install what matches these packages yourself:" >&2
  echo "  ${wanted[*]}" >&2
  exit 1
fi

# One query for all packages; a package that was never installed is missing from its output.
installed=$(dpkg-query -W -f='${db:Status-Abbrev} ${Package}\n' "${wanted[@]}" 2>/dev/null | sed -n 's/^.i  *//p' || true)
missing=()
for package in "${wanted[@]}"; do
  grep -qxF -- "$package" <<<"$installed" || missing+=("$package")
done

# The 32-bit builds do without the sources of zstd when they cannot be had.
fetch_sources() {
  [ "$mode" != check ] || "${BASH_SOURCE[0]%/*}/zstd.sh" ||
    echo "setup: going on without zstd in the 32-bit builds" >&2
}
if [ ${#missing[@]} -eq 0 ]; then
  fetch_sources
  exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "setup: these packages are missing, and there is no sudo to install them with:" >&2
    echo "  ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "setup: installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt_get() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o Dpkg::Use-Pty=0 -o Acquire::Retries=3 "$@" \
    >"$log" 2>&1 </dev/null
}
# An index that cannot be refreshed matters only if the installation then fails.
apt_get update || echo "setup: apt-get update reported an error, going on with the lists there are"
if ! apt_get install -y --no-install-recommends "${missing[@]}"; then
  cat "$log" >&2
  echo "setup: apt-get install failed (its output is above)" >&2
  exit 1
fi
fetch_sources
echo "setup: done"
