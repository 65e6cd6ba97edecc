#!/usr/bin/env bash
# --compression: every level has the same pixels, higher ones are smaller, and formats without levels say so.
#   compression_levels.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
needs_programs pdftoppm tiffcmp

"$tool" make-picture photo photo.bmp --width 300 --height 200 || fail "make-picture"
cp "$root/examples/demo/sample.txt" .
files=(sample.txt photo.bmp)
page=(--dpi 100 --quiet)
print() { "$tool" print "${files[@]}" "${page[@]}" "$@" || fail "print $*"; } # OPTION...
size() { cat "$@" | wc -c; }                                                  # FILE...

print -o plain.ppm
cat plain-01.ppm plain-02.ppm >plain
rm plain-0?.ppm
print -o plain.tiff

for level in default 0 1 2 3 4 5 6 7 8 9; do
  option=(--compression $level)
  [ $level != default ] || option=()
  print "${option[@]}" -o level.png
  "$bin/raster_to_ppm" level-01.png level-02.png | cmp -s - plain || fail "pixels of PNG at level $level"
  png[${level/default/10}]=$(size level-0?.png)
  print "${option[@]}" -o level.pdf
  pdftoppm -r 100 level.pdf | cmp -s - plain || fail "pixels of PDF at level $level"
  pdf[${level/default/10}]=$(size level.pdf)
  print "${option[@]}" -o level.tiff
  tiffcmp level.tiff plain.tiff >/dev/null || fail "pixels of TIFF at level $level"
  tiff[${level/default/10}]=$(size level.tiff)
done
for format in png pdf tiff; do
  declare -n sizes=$format
  [ "${sizes[0]}" -ge "$(size plain)" ] || fail "$format: level 0 has ${sizes[0]} bytes, less than the pixels"
  [ $((sizes[1] * 5)) -lt "${sizes[0]}" ] || fail "$format: level 1 has ${sizes[1]} bytes, level 0 ${sizes[0]}"
  # A level may try harder in vain, but not by much.
  for level in 2 3 4 5 6 7 8 9; do
    [ "${sizes[level]}" -le $((sizes[level - 1] * 102 / 100)) ] || fail "$format: sizes grow at level $level: ${sizes[*]}"
  done
  [ "${sizes[9]}" -lt "${sizes[1]}" ] || fail "$format: level 9 is not smaller than 1: ${sizes[*]}"
  [ $((sizes[10] * 5)) -lt "${sizes[0]}" ] || fail "$format: the default has ${sizes[10]} bytes, level 0 ${sizes[0]}"
done

# On other devices, where a row of the file is another one than that of the band.
for device in gray scaled-gray:200/100; do
  page=(--device "$device" --quiet)
  case $device in *:*) ;; *) page+=(--dpi 100) ;; esac
  print -o level.pgm
  cat level-0?.pgm >expected
  for level in 0 9; do
    print -o level.pdf --compression $level
    pdftoppm -gray -r 100 level.pdf | cmp -s - expected || fail "pixels of $device at level $level"
  done
done

# Tag planes have levels, whatever the format of the pages.
page=(--dpi 60 --device dual)
print --compression 0 -o page.ppm --tags stored.png
print --compression 9 -o page.ppm --tags small.png
[ "$(size small-0?.png)" -lt "$(size stored-0?.png)" ] || fail "the level does not count for tag planes"

# Formats without levels, and numbers that are no levels.
expect 1 "" "--compression: PPM and PGM files are not compressed; PNG, TIFF and PDF are" \
  print photo.bmp -o out.ppm --compression 3
for ending in pwg urf ras; do
  expect 1 "" "--compression: raster files have one way of compression, without levels; PNG, TIFF and PDF files have them" \
    print photo.bmp -o out.$ending --compression 3
done
for level in 10 -1 fast 4.5; do
  expect 1 "" "--compression $level: use a whole number from 0 to 9" print photo.bmp -o out.png "--compression=$level"
done
[ -z "$(ls out* 2>/dev/null)" ] || fail "a refused job left $(ls out*)"
finish_test
