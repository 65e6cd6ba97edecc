#!/usr/bin/env bash
# Prints the same documents through the library of each build, the Windows one under Wine, on every device and in bands
# of several heights: all pages must be equal byte for byte, to each other and to the page painted in one band.
#
#   scripts/check_pages.sh [LINUX_TREE WIN32_TREE [OTHER_TREE...]]
#
# The build trees (default: build/linux-x64 build/win32) must be configured; the printing host and the library are
# rebuilt in them as necessary. The first tree also holds qnvtool. One line for each check, "N passed, N failed" at the
# end.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
[ $# -ge 2 ] || set -- "$root/build/linux-x64" "$root/build/win32"
trees=()
for tree; do trees+=("$(realpath "$tree")") || exit 2; done

. "$root/scripts/check_lines.sh"

# host TREE ARGUMENT...
host() {
  local bin=$1/bin
  shift
  if [ -e "$bin/print_host.exe" ]; then
    "$root/scripts/wine.sh" "$bin/print_host.exe" "$@"
  else
    "$bin/print_host" "$@"
  fi
}

library_of() { # TREE
  local file
  for file in "$1"/bin/QNVDRV10.dll "$1"/bin/libqnvdrv10.so; do [ ! -e "$file" ] || echo "$file"; done
}

# print TREE FOLDER DEVICE ROWS: the pages of all documents, on the dual-plane device with their tags
print() {
  local tree=$1 folder=$2 device=$3 rows=$4 options=(--device "$3" --band-rows "$4" --library "$(library_of "$1")" -q)
  mkdir "$folder"
  case $device in *:*) ;; *) options+=(--dpi 127) ;; esac
  [ "$device" != dual ] || options+=(--tags "$folder/tags.pgm" --overlay "$folder/overlay.ppm")
  host "$tree" print "${documents[@]}" -o "$folder/page.ppm" "${options[@]}"
}

# Every document has its pages, and no page is nearly white.
is_printed() { # FOLDER
  local pages=("$1"/page*.ppm) page
  [ ${#pages[@]} -ge ${#documents[@]} ] || { ls -l "$1"; return 1; }
  for page in "${pages[@]}"; do
    [ "$(tr -d '\377' <"$page" | wc -c)" -ge 20000 ] || { echo "${page##*/} is nearly white"; return 1; }
  done
  # The last document has many images, so tag 3 must occur.
  [ ! -e "$1/tags-01.pgm" ] || [ "$(tr -dc '\003' <"$1/tags-$(printf %02d ${#pages[@]}).pgm" | wc -c)" -ge 100000 ] || {
    echo "no images in the tags"
    return 1
  }
}

prints() { print "$@" && is_printed "$2"; }

prints_same() { # REFERENCE TREE FOLDER DEVICE ROWS
  local reference=$1
  shift
  print "$@" && diff -rq "$reference" "$2"
}

# Documents without text: the tool with its linked library and a host that loads the library print the same pages.
as_qnvtool_prints() { # TREE
  local options=(photo.bmp map.bmp rle4.bmp --no-header --dpi 127 -q)
  rm -rf by-tool by-host && mkdir by-tool by-host &&
    "${trees[0]}/bin/qnvtool" print "${options[@]}" -o by-tool/page.ppm &&
    host "$1" print "${options[@]}" -o by-host/page.ppm --library "$(library_of "$1")" &&
    [ -s by-tool/page-03.ppm ] && diff -rq by-tool by-host
}

# ---- Programs and documents -----------------------------------------------------------------------------------------
for tree in "${trees[@]}"; do
  targets=(print_host qnvdrv10)
  [ "$tree" != "${trees[0]}" ] || targets+=(qnvtool)
  check "${tree##*/}: built" cmake --build "$tree" --target "${targets[@]}" || finish
done
cd "$work" || exit 1
cp "$root"/examples/demo/{sample.txt,figures.fig} "$root/tests/pages/images.fig" . || exit 1
documents=(sample.txt figures.fig images.fig)
check "images of every depth" host "${trees[0]}" make-samples . || finish
check "a photograph" host "${trees[0]}" make-picture photo photo.bmp || finish
check "a map" host "${trees[0]}" make-picture map map.bmp --width 650 --height 440 || finish

# ---- Pages ----------------------------------------------------------------------------------------------------------
for device in color gray dual scaled:254/127 scaled:190/127 scaled:100/127 scaled-gray:254/127; do
  echo "$device"
  check "${trees[0]##*/}, whole pages" prints "${trees[0]}" whole "$device" 0 || finish
  for tree in "${trees[@]}"; do
    for rows in 0 256 37; do
      [ "$tree $rows" != "${trees[0]} 0" ] || continue
      what="${tree##*/}, bands of $rows rows: the same"
      [ "$rows" -ne 0 ] || what="${tree##*/}, whole pages: the same"
      check "$what" prints_same whole "$tree" printed "$device" "$rows"
      rm -rf printed
    done
  done
  rm -rf whole
done

echo "qnvtool"
for tree in "${trees[@]}"; do check "the pages of ${tree##*/}" as_qnvtool_prints "$tree"; done
finish
