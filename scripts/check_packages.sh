#!/usr/bin/env bash
# Makes all packages, installs them into empty folders, and uses them as their users would.
#
#   scripts/check_packages.sh [LINUX_TREE [WIN32_TREE]]
#
# The build trees (default: build/linux-x64 and build/win32) must be configured; the files of the
# packages are rebuilt in them as necessary. One line for each check, "N passed, N failed" at the end.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
linux_tree=$(realpath "${1:-$root/build/linux-x64}") || exit 2
win32_tree=$(realpath "${2:-$root/build/win32}") || exit 2
for tree in "$linux_tree" "$win32_tree"; do
  [ -e "$tree/CPackConfig.cmake" ] || {
    echo "check_packages.sh: $tree: not configured, or with options that make no package" >&2
    echo "0 passed, 1 failed"
    exit 2
  }
done

. "$root/scripts/check_lines.sh"
wine=$root/scripts/wine.sh
mingw=i686-w64-mingw32
mingw_c=$mingw-gcc-posix
umask 022
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$linux_tree/CMakeCache.txt")

# needs FILE...: fails when a file is missing, in which case checks of its content would prove nothing
needs() {
  local file
  for file; do [ -s "$file" ] || { echo "$file: missing or empty"; return 1; }; done
}

# same_lines: the two texts have the same lines
same_lines() { diff -U 0 <(sort -u <<<"$1") <(sort -u <<<"$2"); }

# ---- Making ---------------------------------------------------------------------------------------------------------
make_packages() { # TREE COUNT PATTERN: leaves the paths of the packages in $work/made
  local packages=()
  rm -f "$1"/packages/*.deb "$1"/packages/*.zip
  cmake --build "$1" --target package_files example_host || return 1
  (cd "$1" && cpack) || return 1
  packages=("$1"/packages/$3)
  [ ${#packages[@]} -eq "$2" ] && needs "${packages[@]}" && printf '%s\n' "${packages[@]}" >"$work/made"
}

# ---- Contents -------------------------------------------------------------------------------------------------------
documents() { # all guides of the tree are delivered
  (cd "$root" && find docs -name '*.md' -o -name '*.png')
}

cmake_files() {
  printf 'lib/cmake/QNVDRV10/QNVDRV10%s.cmake\n' Config ConfigVersion SharedTargets SharedTargets-relwithdebinfo \
    StaticTargets StaticTargets-relwithdebinfo
}

example_files() { printf 'examples/%s\n' host.c small_font.h CMakeLists.txt; }

runtime_package=libqnvdrv10-${version%%.*}
deb_packages=("$runtime_package" libqnvdrv10-dev qnvtool)
library_folder=lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
soname=libqnvdrv10.so.${version%%.*}

deb_files() { # PACKAGE
  { # relative to /usr
    printf "share/doc/$1/%s\n" README.md copyright changelog.gz
    case $1 in
      "$runtime_package") printf "$library_folder/%s\n" "$soname" "libqnvdrv10.so.$version" ;;
      libqnvdrv10-dev)
        printf '%s\n' include/qnvdrv10.h include/qnvrec.h
        printf "$library_folder/%s\n" libqnvdrv10.so libqnvdrv10.a pkgconfig/qnvdrv10.pc
        cmake_files | sed "s|^lib/|$library_folder/|"
        { documents; example_files; printf 'include/%s\n' qnvdrv10.h qnvrec.h; } | sed "s|^|share/doc/$1/|"
        ;;
      qnvtool)
        printf '%s\n' bin/qnvtool "$library_folder/libqnvrec.so"
        printf 'share/doc/qnvtool/%s\n' docs/printing.md examples/print_array.slurm
        printf '%s\n' lib/cups/filter/qnvfilter share/ppd/qnvdrv10/qnvdrv10.ppd
        printf 'share/%s\n' man/man1/qnvtool.1.gz man/man8/qnvfilter.8.gz bash-completion/completions/qnvtool
        ;;
    esac
  } | sed 's|^|usr/|'
}

zip_files() {
  printf '%s\n' bin/QNVDRV10.dll bin/QNVDRV10.dll.debug bin/QNVREC.dll bin/qnvtool.exe include/qnvdrv10.h include/qnvrec.h
  printf '%s\n' README.md COPYRIGHT.txt CHANGELOG.md
  printf 'lib/%s\n' QNVDRV10.lib QNVDRV10.def libqnvdrv10.dll.a libqnvdrv10_static.a
  cmake_files
  documents
  example_files
}

holds_exactly() { same_lines "$2" "$(cd "$1" && find . ! -type d -printf '%P\n')"; } # FOLDER FILES

deb_holds() { holds_exactly "$work/$1" "$(deb_files "$1")"; } # PACKAGE

# All files can be read by everybody and written by root only; only programs are executable.
deb_modes() { # PACKAGE
  local odd
  odd=$(dpkg-deb -c "${deb[$1]}" |
    grep -vE '^(drwxr-xr-x|-rw-r--r--|lrwxrwxrwx) root/root |^-rwxr-xr-x root/root .*/usr/(bin|lib/cups/filter)/' || true)
  [ -z "$odd" ] || { echo "$odd"; return 1; }
}

deb_control() { # PACKAGE FIELD=PATTERN...
  local package=$1 value field
  shift
  for field in "Package=^$package\$" "Version=^${version//./\\.}\$" "Architecture=^$(dpkg --print-architecture)\$" \
    Maintainer=. "Description=^[A-Z].{20,70}\$" "$@"; do
    value=$(dpkg-deb -f "${deb[$package]}" "${field%%=*}")
    grep -qE -- "${field#*=}" <<<"$value" || { echo "${field%%=*}: $value"; return 1; }
  done
}

# Debian's own tool finds all that the packages depend on.
can_be_installed() { # FILE...
  local said
  said=$(apt-get -s -o APT::Get::Show-User-Simulation-Note=false install "$@") || { echo "$said"; return 1; }
  same_lines "$(printf '%s\n' "${deb_packages[@]}")" "$(sed -n 's/^Inst \([^ ]*\) ('"$version"' .*/\1/p' <<<"$said")"
}

# FILE: paragraphs of fields as Debian's format 1.0 has them, and every licence that a paragraph names has its text.
copyright_is_readable() {
  python3 - "$1" <<'CODE'
import re, sys
text = open(sys.argv[1], encoding='utf-8').read()
paragraphs = []
for block in re.split(r'\n\s*\n', text.strip()):
    fields = {}
    for line in block.split('\n'):
        if re.match(r'[A-Z][A-Za-z-]*:', line):
            name, _, value = line.partition(':')
            assert name not in fields, f'{name} twice in a paragraph'
            fields[name] = value.strip()
        else:
            assert line.startswith(' ') and fields, f'neither a field nor a continued one: {line!r}'
            fields[name] += '\n' + line[1:]
    paragraphs.append(fields)
header, *rest = paragraphs
assert header['Format'] == 'https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/', header
files = [p for p in rest if 'Files' in p]
texts = {p['License'].split('\n')[0]: p['License'] for p in rest if 'Files' not in p}
assert files and files[0]['Files'] == '*', 'the first paragraph is not about all files'
for paragraph in files:
    assert paragraph['Copyright'], paragraph
    for name in paragraph['License'].split(' and '):
        assert '\n' in texts.get(name, ''), f'no text of the licence {name}'
assert 'No licence has been chosen yet' in texts['none-chosen-yet'], texts
CODE
}

# Files that documents link to are in the same package. The README of the library has no links.
links_lead_to_files() { # PACKAGE
  if [ "$1" = "$runtime_package" ]; then
    ! grep -E '\]\(' "$work/$1/usr/share/doc/$1/README.md"
  else
    "$root/scripts/check_links.py" "$work/$1"
  fi
}

dead_links_are_found() {
  mkdir -p "$work/dead" && echo '[gone](gone.md)' >"$work/dead/page.md" && ! "$root/scripts/check_links.py" "$work/dead"
}

# No file contains the name of the folder where it was built. Compressed files are unpacked for this.
no_machine_paths() {
  local folder=$1 found
  find "$folder" -name '*.gz' -exec gzip -dkf {} + || return 1
  found=$(grep -rlaF -e "$root" -e "$linux_tree" -e "$win32_tree" -e "$work" -e "$HOME/" "$folder")
  find "$folder" -name '*.gz' -exec sh -c 'for z; do rm -f "${z%.gz}"; done' sh {} +
  [ -z "$found" ] || { echo "in $found"; return 1; }
}

no_search_paths() {
  local file entries
  for file in "$deb_root/usr/bin/qnvtool" "$installed_library" "$deb_root/usr/$library_folder/libqnvrec.so"; do
    entries=$(readelf -d "$file")
    grep -qF '(NEEDED)' <<<"$entries" || { echo "$file: not read"; return 1; }
    ! grep -E '\(R(UN)?PATH\)' <<<"$entries" || return 1
  done
}

has_soname() { # FILE SONAME
  same_lines "$2" "$(readelf -d "$1" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')"
}

component_holds() { # TREE COMPONENT FILES
  local prefix=$work/component
  rm -rf "$prefix"
  cmake --install "$1" --prefix "$prefix" --component "$2" && holds_exactly "$prefix" "$3"
}

# ---- qnvtool --------------------------------------------------------------------------------------------------------
long_options() { sed 's/\\-/-/g' | grep -oE -- '--[a-z][a-z-]*' | sort -u; }

options_of_help() { # of the program and of each command that it lists
  local command commands
  commands=$("$tool" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p')
  [ "$(wc -w <<<"$commands")" -ge 12 ] || { echo "only these commands: $commands" >&2; return 1; }
  # shellcheck disable=SC2086
  for command in '' $commands; do "$tool" $command --help || return 1; done | long_options
}

man_page_is_true() {
  local page
  page=$(zcat "$deb_root/usr/share/man/man1/qnvtool.1.gz") && grep "^\.TH QNVTOOL 1 .*qnvtool $version" <<<"$page" &&
    same_lines "$(options_of_help)" "$(long_options <<<"$page")"
}

completion_is_true() {
  same_lines "$(options_of_help)" "$(long_options <"$deb_root/usr/share/bash-completion/completions/qnvtool")"
}

completes() { # EXPECTED WORD...
  local expected=$1
  shift
  (
    . "$deb_root/usr/share/bash-completion/completions/qnvtool"
    COMP_WORDS=(qnvtool "$@")
    COMP_CWORD=$#
    _qnvtool
    same_lines "${expected// /$'\n'}" "$(printf '%s\n' "${COMPREPLY[@]}")"
  )
}

completion_works() {
  completes 'print' pr && completes '--paper' print --pap && completes 'a4' print --paper a &&
    completes '--height --help' make-picture photo --he && completes 'photo' make-picture ph
}

tool_says_version() { [ "$("$tool" --version)" = "qnvtool $version" ]; }

prints_through_library() {
  local print=("$tool" print "$work/photo.bmp" --paper 60x40mm --margin 5 --dpi 90 -q)
  "$tool" make-picture photo "$work/photo.bmp" --width 60 --height 40 &&
    "${print[@]}" -o "$work/linked.ppm" &&
    "${print[@]}" -o "$work/loaded.ppm" --library "$installed_library" &&
    needs "$work/linked.ppm" && cmp "$work/linked.ppm" "$work/loaded.ppm"
}

# ---- Windows files --------------------------------------------------------------------------------------------------
published() { sed -n 's/^\([0-9]*\) \(QNV[A-Za-z]*\)\r\{0,1\}$/\1 \2/p' "$root/tests/published_exports.txt"; }

version_resource() { # FILE DESCRIPTION
  local resource
  resource=$($mingw-windres -i "$zip_root/bin/$1" -O rc) || return 1
  local line
  for line in "FILEVERSION ${version//./, }, 0" "PRODUCTVERSION ${version//./, }, 0" \
    "\"ProductVersion\", \"$version\"" "\"FileVersion\", \"$version\"" '"ProductName", "QNVDRV10"' \
    "\"FileDescription\", \"$2\"" "\"OriginalFilename\", \"$1\""; do
    grep -qF -- "$line" <<<"$resource" || { echo "no $line in: $resource"; return 1; }
  done
}

symbols_beside_dll() {
  local dll=$zip_root/bin/QNVDRV10.dll in_dll beside link
  beside=$($mingw-objdump -h "$dll.debug") && in_dll=$($mingw-objdump -h "$dll") &&
    link=$($mingw-objdump -s -j .gnu_debuglink "$dll") || return 1
  grep -q ' \.debug_info ' <<<"$beside" || { echo "no debug information in $dll.debug"; return 1; }
  ! grep ' \.debug_info ' <<<"$in_dll" || return 1
  grep -qF 'QNVDRV10.dll.deb' <<<"$link" || { echo "no link to the symbols: $link"; return 1; }
}

import_symbols() { # LIBRARY: exactly the published functions, undecorated, each with its import pointer
  local library=$zip_root/lib/$1
  needs "$library" && same_lines "$(published | sed 's/^[0-9]* \(.*\)/_\1\n__imp__\1/')" \
    "$($mingw-nm "$library" 2>/dev/null | sed -n 's/^[0-9a-f]* [TI] \(_\(_imp__\)\{0,1\}QNV[A-Za-z]*\)$/\1/p')"
}

# The program imports names that the DLL exports, with matching ordinals (the hints), and at least FEWEST of them.
binds_right() { # PROGRAM FEWEST
  local bound
  bound=$($mingw-objdump -p "$1" | tr -d '\r' | sed -n '/DLL Name: QNVDRV10.dll$/,/^$/p' |
    awk 'NF == 3 && $3 ~ /^QNV[A-Za-z]+$/ { print $2, $3 }')
  [ "$(grep -c . <<<"$bound")" -ge "$2" ] || { echo "only these are imported: $bound"; return 1; }
  ! grep -vxFf <(published) <<<"$bound"
}

needs_only() { # PROGRAM LIBRARY...: imports from these and nothing else
  local program=$1
  shift
  same_lines "$(printf '%s\n' "$@")" "$($mingw-objdump -p "$program" | tr -d '\r' | sed -n 's/.*DLL Name: //p')"
}
needs_system_only() { needs_only "$1" KERNEL32.dll msvcrt.dll; } # PROGRAM

# PROGRAM
needs_c_library_only() { same_lines libc.so.6 "$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')"; }

# ---- qnvtool.exe ----------------------------------------------------------------------------------------------------
# It runs in the folder $work/windows, its own from the unpacked zip.
windows_tool() { (cd "$work/windows" && LC_ALL=C.UTF-8 QNV_WINE_TIMEOUT=120 "$wine" "$zip_root/bin/qnvtool.exe" "$@"); }

windows_tool_says_version() { [ "$(windows_tool --version | tr -d '\r')" = "qnvtool $version" ]; }

# OPTION...: figures and pictures as qnvtool of the Debian package prints them. The pixels of PNG files are compared, as
# their compression is that of another zlib.
prints_as_linux() {
  local format options=(drawing.fig photo.bmp map.bmp --no-header --dpi 100 -q "$@")
  for format in ppm png pdf; do
    rm -f "$work/windows"/{page,linux}*
    windows_tool print "${options[@]}" -o "page.$format" &&
      (cd "$work/windows" && "$tool" print "${options[@]}" -o "linux.$format") || return 1
    case $format in
      ppm) cmp "$work/windows/linux-01.ppm" "$work/windows/page-01.ppm" &&
        cmp "$work/windows/linux-03.ppm" "$work/windows/page-03.ppm" ;;
      png) pngcheck -q "$work/windows"/page-0[123].png &&
        cmp <(pixels "$work/windows"/linux-0[123].png) <(pixels "$work/windows"/page-0[123].png) ;;
      pdf) cmp <(pdftoppm -r 100 "$work/windows/linux.pdf") <(pdftoppm -r 100 "$work/windows/page.pdf") ;;
    esac || return 1
  done
}

pixels() { # PNG...
  "$linux_tree/bin/raster_to_ppm" "$@" | tee "$work/pixels"
  needs "$work/pixels" >&2
}

makes_same_pictures() {
  local kind
  for kind in photo map; do
    windows_tool make-picture $kind $kind.bmp --width 200 --height 150 &&
      "$tool" make-picture $kind "$work/same.bmp" --width 200 --height 150 &&
      cmp "$work/same.bmp" "$work/windows/$kind.bmp" || return 1
  done
}

# Two lines of the same letters have the same ink, one of dashes has less.
prints_text() {
  local ink=() line
  for line in MMMM MMMM $'MMMM\nMMMM' ----; do
    printf '%s\n' "$line" >"$work/windows/text.c"
    windows_tool print text.c --paper 80x40mm --margin 5 --dpi 150 --no-header --device gray -q -o text.pgm || return 1
    ink+=("$(tail -c +16 "$work/windows/text.pgm" | tr -d '\377' | wc -c)")
  done
  echo "ink: ${ink[*]}"
  [ "${ink[0]}" -ge 200 ] && [ "${ink[0]}" -eq "${ink[1]}" ] && [ "${ink[2]}" -eq $((2 * ink[0])) ] &&
    [ "${ink[3]}" -gt 0 ] && [ "${ink[3]}" -lt "${ink[0]}" ]
}

windows_refuses() { # CODE TEXT ARGUMENT...
  local wanted=$1 text=$2 said code
  shift 2
  said=$(windows_tool "$@" 2>&1 | tr -d '\r'; exit "${PIPESTATUS[0]}")
  code=$?
  [ $code -eq "$wanted" ] && grep -qxF -- "qnvtool: $text" <<<"$said" || { echo "$code: $said"; return 1; }
}

refuses_what_it_lacks() {
  local only="this build does not write that format, only PPM, PGM, PNG, PDF"
  (cd "$work/windows" && "$tool" print photo.bmp --paper 20x20mm --margin 1 --dpi 50 -q -o in.png &&
    "$tool" print photo.bmp --paper 20x20mm --margin 1 --dpi 50 -q -o in.tiff) || return 1
  printf '\xff\xd8\xff\xe0\x00\x10JFIF' >"$work/windows/in.jpg"
  local without="which this program was built without a reader for"
  windows_refuses 2 "in.png: is a PNG picture, $without" print in.png -o out.png &&
    windows_refuses 2 "in.tiff: is a TIFF picture, $without" print in.tiff -o out.png &&
    windows_refuses 2 "in.jpg: is a JPEG picture, $without" print in.jpg -o out.png &&
    windows_refuses 1 "out.tiff: $only" print photo.bmp -o out.tiff &&
    windows_refuses 1 "out.pwg: $only" print photo.bmp -o out.pwg &&
    windows_refuses 1 "--printer: this program sends nothing" print photo.bmp --printer ipp://localhost/x &&
    windows_refuses 1 "--encoding KOI8-R: is unknown; this program knows UTF-8, UTF-16LE, UTF-16BE, UTF-32LE, UTF-32BE \
and ISO-8859-1" print text.c --encoding KOI8-R -o out.png &&
    windows_refuses 1 "text.c: this build takes the names of installed fonts, no files" print text.c --font text.c -o out.png &&
    windows_refuses 1 "record runs under Linux; elsewhere put the recorder before the library yourself" \
      record -o calls.qnv -- host.exe && [ ! -e "$work/windows/out.png" ]
}

# Names of all alphabets, of an input, an image of a figure file, and outputs.
takes_all_names() {
  mkdir -p "$work/windows/größe" && cp "$work/windows/photo.bmp" "$work/windows/größe/写真.bmp" &&
    echo 'image 写真.bmp 5 5 20 -' >"$work/windows/größe/ü.fig" &&
    windows_tool print größe/写真.bmp größe/ü.fig --paper 60x40mm --margin 5 --dpi 100 -q -o größe/été.png &&
    windows_tool print größe/写真.bmp --paper 60x40mm --margin 5 --dpi 100 -q -o größe/été.pdf &&
    (cd "$work/windows" && "$tool" print größe/写真.bmp größe/ü.fig --paper 60x40mm --margin 5 --dpi 100 --no-header -q -o names.png) &&
    same_lines $'été-01.png\nété-02.png\nété.pdf\nü.fig\n写真.bmp' "$(cd "$work/windows/größe" && ls)" &&
    cmp <(pixels "$work/windows/größe/été-02.png") <(pixels "$work/windows/names-02.png")
}

# The delivered recorder in the place of the library, which has the other name then; qnvtool.exe replays what it wrote.
records_on_windows() {
  local folder=$work/windows-record
  mkdir -p "$folder" && cp "$1" "$folder/host.exe" && cp "$zip_root/bin/QNVDRV10.dll" "$folder/QNVDRV10_REAL.dll" &&
    cp "$zip_root/bin/QNVREC.dll" "$folder/QNVDRV10.dll" && printf 'file = calls.qnv\r\n' >"$folder/QNVDRV10.ini" &&
    (cd "$folder" && "$wine" host.exe page.bmp) && cmp "$work/reference.bmp" "$folder/page.bmp" &&
    cp "$folder/calls.qnv" "$work/windows" && windows_tool replay calls.qnv >"$work/replayed" &&
    grep -F ' 0 differences' "$work/replayed"
}

# ---- Consumers ------------------------------------------------------------------------------------------------------
configure_and_build() { # SOURCES BUILD PREFIX OPTION...
  cmake -G Ninja -S "$1" -B "$2" -D CMAKE_PREFIX_PATH="$3" "${@:4}" && cmake --build "$2"
}

# Compiled with the Windows compiler alone, without the build system of this project.
windows=(-D CMAKE_SYSTEM_NAME=Windows -D "CMAKE_C_COMPILER=$mingw_c" -D "CMAKE_CXX_COMPILER=$mingw-g++-posix")
microsoft=(
  -D CMAKE_SYSTEM_NAME=Windows -D CMAKE_C_COMPILER=clang -D CMAKE_C_COMPILER_TARGET=i686-pc-windows-msvc
  -D CMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY -D CMAKE_C_STANDARD_LIBRARIES= -D CMAKE_BUILD_TYPE=Release
)

example_compiles() { # COMPILER
  $1 -std=c99 -Wall -Wextra -pedantic -Werror -I "$root/include" -c "$root/examples/host.c" -o "$work/host.o"
}

with_ms_library() { # MinGW's linker reads the other import library as well
  mkdir -p "$work/by-lib" && cp "$zip_root/bin/QNVDRV10.dll" "$work/by-lib" &&
    $mingw_c -std=c99 -I "$zip_root/include" "$zip_root/examples/host.c" "$zip_root/lib/QNVDRV10.lib" \
      -o "$work/by-lib/host.exe"
}

microsoft_runs() {
  "$wine" "$work/microsoft/consumer.exe"
  local code=$?
  [ $code -eq 42 ] || { echo "exit code $code"; return 1; }
}

paints() { # COMMAND...: the page of the build tree's host
  rm -f "$work/page.bmp"
  "$@" "$work/page.bmp" && needs "$work/page.bmp" && cmp "$work/reference.bmp" "$work/page.bmp"
}

loads_from() { # PROGRAM LIBRARY: the installed shared object, not one of the build tree
  ldd "$1" | grep -F "=> $2 "
}

# The compiler with the options of pkg-config, which looks into the installation only.
by_pkg_config() { # PROGRAM [--static]
  local options
  options=$(PKG_CONFIG_LIBDIR=$deb_root/usr/$library_folder/pkgconfig pkg-config ${2-} --cflags --libs qnvdrv10) || return 1
  # shellcheck disable=SC2086
  gcc -std=c99 -Wall -Wextra -Werror ${2:+-static} "$examples/host.c" $options -o "$1"
}

pkg_config_version() {
  [ "$(PKG_CONFIG_LIBDIR=$deb_root/usr/$library_folder/pkgconfig pkg-config --modversion qnvdrv10)" = "$version" ]
}

needs_soname() { # PROGRAM
  same_lines "$(printf '%s\n' libc.so.6 "$soname")" "$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')"
}

# A program runs where only the package of the library is installed.
runs_with_runtime_package() { # PROGRAM
  ! LD_LIBRARY_PATH='' "$1" "$work/none.bmp" && [ ! -e "$work/none.bmp" ] &&
    paints env "LD_LIBRARY_PATH=$work/$runtime_package/usr/$library_folder" "$1"
}

is_static() { # PROGRAM
  local entries
  entries=$(readelf -d "$1")
  ! grep -F '(NEEDED)' <<<"$entries"
}

# The installed tool finds the installed recorder and library.
records() {
  (cd "$work" && env "LD_LIBRARY_PATH=$deb_root/usr/$library_folder" "$tool" record -o calls.qnv -- \
    "$work/by-pkg-config" recorded.bmp) && cmp "$work/reference.bmp" "$work/recorded.bmp" &&
    "$tool" replay "$work/calls.qnv" --library "$installed_library"
}

# ---- The checks -----------------------------------------------------------------------------------------------------
echo "examples/host.c"
for compiler in gcc clang "$mingw_c"; do
  check "compiled as C99 without a warning by $compiler" example_compiles "$compiler"
done

check "documents: a dead link is found" dead_links_are_found

echo "Debian packages"
deb_root=$work/deb
zip_top=$work/zip
installed_library=$deb_root/usr/$library_folder/$soname
check "made" make_packages "$linux_tree" ${#deb_packages[@]} '*.deb' || finish
declare -A deb
while read -r file; do deb[$(dpkg-deb -f "$file" Package)]=$file; done <"$work/made"
for package in "${deb_packages[@]}"; do
  check "$package: unpacked into an empty folder" dpkg-deb -x "${deb[$package]-}" "$work/$package" || finish
  check "$package: holds what it should, and nothing else" deb_holds "$package"
  check "$package: owners and permissions" deb_modes "$package"
  check "$package: whose it is, in Debian's format" copyright_is_readable "$work/$package/usr/share/doc/$package/copyright"
  check "$package: links of the documents lead to files" links_lead_to_files "$package"
  check "$package: no path of this machine in any file" no_machine_paths "$work/$package"
  dpkg-deb -x "${deb[$package]}" "$deb_root" || finish
done
tool=$deb_root/usr/bin/qnvtool
check "$runtime_package: control details" deb_control "$runtime_package" Section='^libs$' Depends='(^|, )libc6 '
check "$runtime_package: what programs depend on" test \
  "$(dpkg-deb -I "${deb[$runtime_package]}" shlibs)" = "libqnvdrv10 ${version%%.*} $runtime_package (>= $version)"
check "libqnvdrv10-dev: control details" deb_control libqnvdrv10-dev Section='^libdevel$' \
  "Depends=^$runtime_package \(= ${version//./\\.}\)\$"
check "qnvtool: control details" deb_control qnvtool Section='^text$' \
  Depends='(^|, )'{libc6,zlib1g,libcups2,libfreetype6,libharfbuzz0b,libfribidi0,libunibreak'[0-9]*',libjpeg62-turbo,libtiff6,libpng16-16,libfontconfig1,libzstd1,libmicrohttpd12}' ' \
  Recommends="(^|, )$runtime_package(,|\$)"
check "apt can install all of them" can_be_installed "${deb[@]}"
check "no library search path" no_search_paths
check "soname" has_soname "$installed_library" "$soname"
check "component runtime alone" component_holds "$linux_tree" runtime "$(deb_files "$runtime_package" | sed 's|^usr/||')"
check "qnvtool runs and tells its version" tool_says_version
check "the man page has the options of --help" man_page_is_true
check "the completion has the options of --help" completion_is_true
check "the completion completes" completion_works
check "qnvtool prints the same page through the installed library" prints_through_library

check "build tree: the example paints its page" "$linux_tree/bin/example_host" "$work/reference.bmp" || finish
examples=$deb_root/usr/share/doc/libqnvdrv10-dev/examples
check "pkg-config: version" pkg_config_version
if check "pkg-config, shared: the example is compiled" by_pkg_config "$work/by-pkg-config"; then
  check "pkg-config, shared: needs the library by its soname" needs_soname "$work/by-pkg-config"
  check "pkg-config, shared: the same page, without the development package" runs_with_runtime_package "$work/by-pkg-config"
  check "qnvtool records it with the installed recorder" records
fi
if check "pkg-config, static: the example is compiled" by_pkg_config "$work/by-pkg-config-static" --static; then
  check "pkg-config, static: needs no library" is_static "$work/by-pkg-config-static"
  check "pkg-config, static: the same page" paints "$work/by-pkg-config-static"
fi
if check "example: configured and built" configure_and_build "$examples" "$work/linux" "$deb_root/usr"; then
  check "example: loads the installed library" loads_from "$work/linux/host" "$installed_library"
  check "example, shared: the same page" paints "$work/linux/host"
  check "example, static: needs the C library only" needs_c_library_only "$work/linux/host_static"
  check "example, static: the same page" paints "$work/linux/host_static"
fi
if check "C++ test program: configured and built" \
  configure_and_build "$root/packaging/consumers/cpp_test" "$work/linux-test" "$deb_root/usr"; then
  check "C++ test program: passes" "$work/linux-test/consumer_test"
fi

echo "Windows package"
check "a reader of PNG files" cmake --build "$linux_tree" --target raster_to_ppm
check "made" make_packages "$win32_tree" 1 'QNVDRV10-*-win32.zip' || finish
check "named after its version" test "$(cat "$work/made")" = "$win32_tree/packages/QNVDRV10-$version-win32.zip"
check "unpacked into an empty folder" unzip -q "$(cat "$work/made")" -d "$zip_top" || finish
zip_root=$zip_top/QNVDRV10-$version-win32
check "holds what it should, and nothing else" holds_exactly "$zip_root" "$(zip_files)"
check "no path of this machine in any file" no_machine_paths "$zip_root"
check "links of the documents lead to files" "$root/scripts/check_links.py" "$zip_root"
check "whose it is, in Debian's format" copyright_is_readable "$zip_root/COPYRIGHT.txt"
check "component runtime alone" component_holds "$win32_tree" runtime bin/QNVDRV10.dll
check "version resources" eval 'version_resource QNVDRV10.dll "Band rasteriser" &&
  version_resource qnvtool.exe "Page printer"'
check "symbols beside the DLL" symbols_beside_dll
check "libqnvdrv10.dll.a: the published functions" import_symbols libqnvdrv10.dll.a
check "QNVDRV10.lib: the published functions" import_symbols QNVDRV10.lib
check "DLL: needs the system's libraries only" needs_system_only "$zip_root/bin/QNVDRV10.dll"

mkdir "$work/windows" &&
  grep -v '^text' "$root/examples/demo/figures.fig" >"$work/windows/drawing.fig"
check "qnvtool.exe: needs the system's libraries and the DLL beside it only" needs_only "$zip_root/bin/qnvtool.exe" \
  KERNEL32.dll msvcrt.dll GDI32.dll QNVDRV10.dll
check "qnvtool.exe: imports by the published names" binds_right "$zip_root/bin/qnvtool.exe" 13
check "qnvtool.exe: tells its version" windows_tool_says_version
check "qnvtool.exe: makes the same pictures" makes_same_pictures
check "qnvtool.exe: prints the same pixels" prints_as_linux
check "qnvtool.exe: prints the same pixels, gray" prints_as_linux --device gray
check "qnvtool.exe: prints the same pixels, two pages a sheet" prints_as_linux --n-up 2 --copies 3
check "qnvtool.exe: prints text" prints_text
check "qnvtool.exe: says what it lacks" refuses_what_it_lacks
check "qnvtool.exe: takes file names of all alphabets" takes_all_names

check "build tree: the same page under Wine" paints "$wine" "$win32_tree/bin/example_host.exe"
if check "example: configured and built" \
  configure_and_build "$zip_root/examples" "$work/win32" "$zip_root" "${windows[@]}"; then
  check "example: the DLL beside it is the delivered one" cmp "$zip_root/bin/QNVDRV10.dll" "$work/win32/QNVDRV10.dll"
  check "example: imports by the published names" binds_right "$work/win32/host.exe" 8
  check "example, DLL: the same page" paints "$wine" "$work/win32/host.exe"
  check "QNVREC.dll records it, qnvtool.exe replays it" records_on_windows "$work/win32/host.exe"
  check "example, static: needs the system's libraries only" needs_system_only "$work/win32/host_static.exe"
  check "example, static: the same page" paints "$wine" "$work/win32/host_static.exe"
fi
if check "C++ test program: configured and built" \
  configure_and_build "$root/packaging/consumers/cpp_test" "$work/win32-test" "$zip_root" "${windows[@]}" \
  -D CMAKE_EXE_LINKER_FLAGS=-static; then
  check "C++ test program: passes" "$wine" "$work/win32-test/consumer_test.exe"
fi
if check "QNVDRV10.lib: the example linked with it" with_ms_library; then
  check "QNVDRV10.lib: imports by the published names" binds_right "$work/by-lib/host.exe" 8
  check "QNVDRV10.lib: the same page" paints "$wine" "$work/by-lib/host.exe"
fi
if check "program for Microsoft's linker: configured and built" \
  configure_and_build "$root/packaging/consumers/microsoft" "$work/microsoft" "$zip_root" "${microsoft[@]}"; then
  check "program for Microsoft's linker: imports by the published names" binds_right "$work/microsoft/consumer.exe" 5
  check "program for Microsoft's linker: runs" microsoft_runs
fi
finish
