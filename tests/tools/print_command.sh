#!/usr/bin/env bash
# The program as a user calls it: results, messages and exit codes.
#   print_command.sh QNVTOOL FOLDER-OF-BUILT-FILES
set -uo pipefail

tool=$1
bin=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

fail() {
  echo "FAILED: $1" >&2
  failures=$((failures + 1))
}

# expect CODE TEXT ARGUMENT...: the exit code, one line on standard error that holds TEXT, nothing left over.
expect() {
  local code=$1 text=$2
  shift 2
  "$tool" "$@" >stdout 2>stderr
  local got=$?
  [ "$got" -eq "$code" ] || fail "exit code $got instead of $code: $*"
  if [ -n "$text" ]; then
    grep -qF -- "$text" stderr || fail "no \"$text\" in: $(cat stderr) [$*]"
    [ "$(wc -l <stderr)" -eq 1 ] || fail "$(wc -l <stderr) lines on standard error: $*"
    [ ! -e out.png ] || fail "out.png was left behind: $*"
  else
    [ ! -s stderr ] || fail "unexpected message $(cat stderr) [$*]"
  fi
  rm -f out.png
}

"$tool" make-picture photo photo.bmp --width 90 --height 60 || fail "make-picture photo"
"$tool" make-picture map map.bmp --width 100 --height 70 || fail "make-picture map"
printf '# Title\n\nSome text with a Euro sign: \xe2\x82\xac.\n\n    listing\n' >text.txt
printf 'ellipse 5 5 30 20 fill=hatch:cross:#102030\nimage map.bmp 5 30 30 -\n' >drawing.fig
: >empty.txt
printf 'caf\xe9' >latin.txt
printf '\0\1\2' >binary.txt
head -c 40 photo.bmp >cut.bmp
head -c 3000 photo.bmp >rows.bmp
small=(--paper 80x60mm --margin 5 --dpi 60)

# What works.
expect 0 "" --help
expect 0 "" print --help
expect 0 "" --version
expect 0 "" print "${small[@]}" photo.bmp text.txt drawing.fig -o pages.png
for page in pages.png pages-2.png pages-3.png; do [ -s $page ] || fail "$page is missing"; done
for device in gray dual scaled:60/30 scaled-gray:60/40; do
  expect 0 "" print "${small[@]}" photo.bmp map.bmp -o "dev.png" --device $device
  [ -s dev-2.png ] || fail "no second page on $device"
  rm -f dev.png dev-2.png
done
expect 0 "" print "${small[@]}" map.bmp -o dual.png --device dual --tags tags.png --overlay overlay.png
for page in dual.png tags.png overlay.png; do [ -s $page ] || fail "$page is missing"; done
"$tool" print "${small[@]}" photo.bmp -o - --device gray >page.pgm
[ "$(head -c 10 page.pgm | tr '\n' ' ')" = "P5 189 142" ] || fail "no PGM on standard output"
for rows in 1 7 64 0; do
  "$tool" print "${small[@]}" photo.bmp text.txt drawing.fig -o - --band-rows $rows | cksum >>sums
done
[ "$(sort -u sums | wc -l)" -eq 1 ] || fail "pages depend on the height of the bands"
if [ -e "$bin/libqnvdrv10.so" ]; then
  "$tool" print "${small[@]}" photo.bmp -o linked.ppm
  "$tool" print "${small[@]}" photo.bmp -o loaded.ppm --library "$bin/libqnvdrv10.so"
  cmp -s linked.ppm loaded.ppm || fail "the loaded library paints another page than the linked one"
fi

# Wrong command lines.
expect 1 "subcommand is required"
expect 1 "--out is required" print photo.bmp
expect 1 "files is required" print -o out.png
expect 1 "--paper a7: use a4" print photo.bmp -o out.png --paper a7
expect 1 "--margin 100: leaves nothing" print photo.bmp -o out.png --paper 80x60mm --margin 100
expect 1 "--device color3:" print photo.bmp -o out.png --device color3
expect 1 "--tags and --overlay need --device dual" print photo.bmp -o out.png --tags tags.png
expect 1 "photo.bmp: is an input file" print photo.bmp -o photo.bmp
expect 1 "no such font file" print text.txt -o out.png --font ./none.ttf
expect 1 "--scale 0:" print photo.bmp -o out.png --scale 0
expect 1 "--fit excludes --scale" print photo.bmp -o out.png --scale 2 --fit

# Files that cannot be used; nothing is printed before all of them are read.
expect 2 "none.bmp: No such file" print photo.bmp none.bmp -o out.png
expect 2 "empty.txt: is empty" print empty.txt -o out.png
expect 2 "latin.txt: is no UTF-8 text: byte 0xe9 at offset 3" print latin.txt -o out.png
expect 2 "binary.txt: is no text: zero byte at offset 0" print binary.txt -o out.png
expect 2 "cut.bmp: header: the file ends at byte 40" print cut.bmp -o out.png
expect 2 "rows.bmp: pixel rows: " print rows.bmp -o out.png
expect 2 "text.txt: bfType: " print text.txt -o out.png --type bmp
expect 2 ".: is a folder" print . -o out.png
expect 2 "text.txt: is no scalable font" print text.txt -o out.png --font text.txt

# Results that cannot be written.
expect 3 "none/out.png: cannot be written" print photo.bmp -o none/out.png "${small[@]}"
expect 3 "/dev/full: cannot be written" print photo.bmp -o /dev/full "${small[@]}"

# Libraries that are none.
expect 4 "none.so: no such library file" print photo.bmp -o out.png --library none.so
expect 4 "text.txt: cannot be loaded: " print photo.bmp -o out.png --library text.txt
libc=$(ldd "$tool" | sed -n 's/.*=> \(.*libz[^ ]*\) .*/\1/p' | head -n 1)
[ -n "$libc" ] && expect 4 "does not export QNVEnable" print photo.bmp -o out.png --library "$libc"

if [ "$failures" -ne 0 ]; then
  echo "$failures checks failed" >&2
  exit 1
fi
echo "all checks passed"
