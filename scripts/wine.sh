#!/usr/bin/env bash
# Runs a 32-bit Windows program under Wine. Wine is not installed on the machine: its packages are fetched once into
# .cache/wine and unpacked there, and its prefix is there too. No display is needed.
#
#   scripts/wine.sh PROGRAM.exe [ARGUMENT...]   run it (fetches Wine first where that has not been done)
#   scripts/wine.sh --setup                     fetch and make the prefix, run nothing
#   scripts/wine.sh --stop                      end the Wine server of this prefix
#
# QNV_WINE_TIMEOUT: seconds a program may take (default 1800).
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=$root/.cache/wine
tree=$cache/root
ready=$cache/ready-1 # the number changes when the way of unpacking does

# Wine itself, and the libraries that its text output loads (with FreeType but without fontconfig it crashes at the
# start). The C library for 32 bits comes with g++-12-multilib.
packages=(
  libwine wine32 libz-mingw-w64 fonts-wine
  libfreetype6 libpng16-16 libbrotli1 zlib1g libfontconfig1 libexpat1
)

# A home of its own keeps links and caches out of the user's.
export HOME=$cache/home WINEPREFIX=$cache/prefix WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLPATH=$tree/usr/lib/i386-linux-gnu/wine
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY

wine() {
  LD_LIBRARY_PATH=$tree/usr/lib/i386-linux-gnu:$tree/lib/i386-linux-gnu "$@"
}

fail() {
  echo "wine.sh: $*" >&2
  exit 125
}

# Package lists of this project alone are used to find the i386 packages, so that the architectures of the machine stay
# as they are.
fetch() {
  local apt=$cache/apt
  mkdir -p "$apt/state/lists/partial" "$apt/cache/archives/partial" "$apt/debs"
  local options=(
    -q -o APT::Architecture=i386 -o APT::Architectures=i386 -o Dir::State="$apt/state" -o Dir::State::status=/dev/null
    -o Dir::Cache="$apt/cache" -o Acquire::Retries=3 -o Dpkg::Use-Pty=0
  )
  if [ "$(id -u)" -eq 0 ]; then
    options+=(-o APT::Sandbox::User=root)
  fi
  # Continue when a source has no i386 packages or is just being updated.
  apt-get "${options[@]}" update || echo "wine.sh: some package lists could not be fetched, going on without them"
  (cd "$apt/debs" && apt-get "${options[@]}" download "${packages[@]}")
  rm -rf "$tree"
  mkdir -p "$tree"
  local package
  for package in "$apt"/debs/*.deb; do
    dpkg-deb -x "$package" "$tree"
  done
  cp "$tree/usr/lib/wine/wineserver32" "$tree/usr/lib/wine/wineserver"
  rm -rf "$apt" "$tree/usr/lib/i386-linux-gnu/wine/x86_64-windows"
}

make_prefix() {
  [ -e /lib/ld-linux.so.2 ] || {
    echo "no 32-bit C library on this machine: run scripts/setup.sh check"
    return 1
  }
  rm -rf "$WINEPREFIX"
  mkdir -p "$HOME"
  # The first start of Wine needs this library before it has made the folder, so the folder is made here.
  mkdir -p "$WINEPREFIX/drive_c/windows/system32"
  cp "$tree/usr/i686-w64-mingw32/lib/zlib1.dll" "$WINEPREFIX/drive_c/windows/system32/"
  wine timeout -k 10 120 "$tree/usr/lib/wine/wine" wineboot.exe --init &&
    wine timeout -k 10 60 "$tree/usr/lib/wine/wineserver" -w &&
    [ -e "$WINEPREFIX/drive_c/windows/system32/kernel32.dll" ]
}

# The server and the services of Windows outlive the program that starts them. Started here they do not keep that
# program's output open, whose reader would wait for them. The server's status is 2 where it runs already.
start_server() {
  (
    flock 9
    if wine "$tree/usr/lib/wine/wineserver" 9>&-; then
      wine timeout -k 5 60 "$tree/usr/lib/wine/wine" wineboot.exe 9>&- || true
    fi
  ) 9>"$cache/lock" </dev/null >/dev/null 2>&1
}

stop_server() {
  wine timeout -k 5 30 "$tree/usr/lib/wine/wineserver" -k 2>/dev/null || true # fails when no server runs
}

# Tests may start at the same time: one of them sets Wine up, the others wait for it.
setup() {
  [ -e "$ready" ] && return 0
  mkdir -p "$cache"
  exec 9>"$cache/lock"
  flock 9
  if [ ! -e "$ready" ]; then
    echo "wine.sh: fetching Wine into .cache/wine (100 MB, once)" >&2
    # The server keeps running after the call that starts it and must not hold the lock.
    if ! "${BASH_SOURCE[0]}" --prepare >"$cache/setup.log" 2>&1 9>&- </dev/null; then
      stop_server
      tail -n 40 "$cache/setup.log" >&2
      fail "could not set up Wine (output above, kept in .cache/wine/setup.log)"
    fi
    touch "$ready"
  fi
  exec 9>&-
}

case ${1-} in
  "") fail "no program given" ;;
  --setup) setup ;;
  --prepare) # a step of --setup, in a shell of its own: an "if" around it would switch "set -e" off
    fetch
    make_prefix
    ;;
  --stop)
    # A server ends by itself soon after its last program. Wait for that first, because programs may still be running.
    if [ -e "$ready" ] && ! wine timeout 15 "$tree/usr/lib/wine/wineserver" -w; then
      stop_server
    fi
    ;;
  *)
    setup
    start_server
    LD_LIBRARY_PATH=$tree/usr/lib/i386-linux-gnu:$tree/lib/i386-linux-gnu \
      exec timeout -k 10 "${QNV_WINE_TIMEOUT:-1800}" "$tree/usr/lib/wine/wine" "$@"
    ;;
esac
