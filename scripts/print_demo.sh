#!/usr/bin/env bash
# Prints the sample document on every device that the library has.
#   scripts/print_demo.sh QNVTOOL OUTDIR
# Writes to OUTDIR the pages of each device, DEVICE-01.png, DEVICE-02.png ..., for the dual device also its tag plane
# and the pages with their image areas tinted, and the images of the sample as BMP files.
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "usage: $0 QNVTOOL OUTDIR" >&2
  exit 1
fi
tool=$(realpath "$1")
mkdir -p "$2"
out=$(realpath "$2")
demo=$(dirname "$(dirname "$(realpath "$0")")")/examples/demo

"$tool" make-picture photo "$out/photo.bmp" --width 900 --height 600
"$tool" make-picture map "$out/map.bmp" --width 650 --height 440
cp "$demo/figures.fig" "$out/figures.fig"  # figure files refer to images in their own folder

# print_on DEVICE NAME [OPTION...]
print_on() {
  local device=$1 name=$2
  shift 2
  local status=0
  "$tool" print "$demo/sample.txt" "$out/figures.fig" "$out/map.bmp" --device "$device" -o "$out/$name.png" "$@" ||
    status=$?
  if [ "$status" -eq 4 ] && [ "$device" != color ] && [ "$device" != gray ]; then
    echo "  $device: left out, this library does not have the device"
  elif [ "$status" -ne 0 ]; then
    echo "  $device: printing failed" >&2
    exit "$status"
  else
    echo "  $device: $(find "$out" -name "$name-[0-9]*.png" | wc -l) pages, $out/$name-01.png and so on"
  fi
}

echo "Sample document:"
print_on color color
print_on gray gray
print_on dual dual --tags "$out/dual_tags.png" --overlay "$out/dual_overlay.png"
print_on scaled:720/360 scaled_720_360
print_on scaled:600/400 scaled_600_400
print_on scaled-gray:720/360 scaled_gray_720_360
rm "$out/figures.fig"
