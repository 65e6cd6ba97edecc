#!/usr/bin/env bash
# Fetches the sources of zstd, once, into .cache/zstd. The builds for 32 bits compile them, because there is no package
# of zstd for Windows, and the one for 32-bit Linux is not installed beside that of the machine. Without them those
# builds store the blocks of call files as they are, and read only such blocks. Prints nothing when they are there.
#
#   scripts/zstd.sh
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=$root/.cache/zstd
ready=$cache/ready-1 # the number changes when what is kept does

[ ! -e "$ready" ] || exit 0
mkdir -p "$root/.cache"
exec 9>"$root/.cache/zstd.lock"
flock 9
[ ! -e "$ready" ] || exit 0
echo "zstd.sh: fetching the sources of zstd into .cache/zstd (2 MB, once)" >&2

# The sources of the package that the machine's own builds use. Lists of this project alone name source packages, so
# that the lists of the machine stay as they are.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/parts" "$work/source"
{
  cat /etc/apt/sources.list 2>/dev/null || true
  echo
} | sed -n 's/^deb /deb-src /p' >"$work/sources.list"
for list in /etc/apt/sources.list.d/debian*.sources; do
  [ ! -e "$list" ] || sed 's/^Types:.*/Types: deb-src/' "$list" >"$work/parts/$(basename "$list")"
done
options=(
  -q -o Dir::State="$work/state" -o Dir::State::status=/dev/null -o Dir::Cache="$work/cache"
  -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts="$work/parts"
  -o Acquire::Retries=3 -o Dpkg::Use-Pty=0
)
if [ "$(id -u)" -eq 0 ]; then
  options+=(-o APT::Sandbox::User=root)
fi
{
  # Continue when one of several lists cannot be fetched.
  apt-get "${options[@]}" update || echo "some package lists could not be fetched, going on without them"
  cd "$work/source"
  apt-get "${options[@]}" --download-only source libzstd
} >"$work/log" 2>&1 </dev/null || {
  tail -n 20 "$work/log" >&2
  echo "zstd.sh: could not fetch the sources of zstd (output above)" >&2
  exit 1
}

rm -rf "$cache"
mkdir -p "$cache"
tar -xf "$work/source"/libzstd_*.orig.tar.?z -C "$cache" --strip-components=1 --wildcards --no-wildcards-match-slash \
  '*/LICENSE' '*/lib/zstd.h' '*/lib/zstd_errors.h' '*/lib/common/*' '*/lib/compress/*' '*/lib/decompress/*'
touch "$ready"
