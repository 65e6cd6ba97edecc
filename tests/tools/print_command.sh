#!/usr/bin/env bash
# The program as a user calls it: results, messages and exit codes.
#   print_command.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"

# says CODE TEXT ARGUMENT...: the exit code, one line on standard error that holds TEXT, nothing left over.
says() {
  expect "$1" "" "$2" "${@:3}"
  [ -z "$2" ] || [ "$(wc -l <stderr)" -eq 1 ] || fail "$(wc -l <stderr) lines on standard error: ${*:3}"
  [ -z "$2" ] || [ ! -e out.png ] || fail "out.png was left behind: ${*:3}"
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
head -c 60 photo.bmp >norows.bmp
head -c 3000 photo.bmp >rows.bmp
printf 'PK\3\4zip' >zip.bmp
printf '%%PDF-1.7\n' >doc.txt
printf 'BMW and OTTO are words.' >words.txt
cp photo.bmp photo.txt
small=(--paper 80x60mm --margin 5 --dpi 60)

# What works.
says 0 "" --help
says 0 "" print --help
says 0 "" --version
says 0 "" print "${small[@]}" photo.bmp text.txt drawing.fig -o pages.png
for page in pages-01.png pages-02.png pages-03.png; do [ -s $page ] || fail "$page is missing"; done
for device in gray dual scaled:60/30 scaled-gray:60/40; do
  says 0 "" print "${small[@]}" photo.bmp map.bmp -q -o "dev.png" --device $device
  [ -s dev-02.png ] || fail "no second page on $device"
  rm -f dev-01.png dev-02.png
done
says 0 "" print "${small[@]}" map.bmp -o dual.png --device dual --tags tags.png --overlay overlay.png
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

# What is repaired is said, once.
expect_note() { # NOTE ARGUMENT...
  "$tool" "${@:2}" 2>stderr || fail "exit code $? with a note: ${*:2}"
  [ "$(cat stderr)" = "qnvtool: $1" ] || fail "notes: $(cat stderr) [${*:2}]"
  "$tool" "${@:2}" -q 2>stderr
  [ ! -s stderr ] || fail "notes in spite of -q: $(cat stderr)"
}
expect_note "rows.bmp: note: 50 of 60 rows are missing or damaged and stay white: the file ends at byte 3000" \
  print rows.bmp rows.bmp "${small[@]}" -o notes.png

# Files are what they hold, not what their names say.
says 0 "" print photo.bmp "${small[@]}" --no-header -o byname.png
says 0 "" print photo.txt "${small[@]}" --no-header -o bycontent.png
cmp -s byname.png bycontent.png || fail "photo.txt is another page than photo.bmp"
says 0 "" print words.txt "${small[@]}" -o words.png
# Texts in another encoding print the same page as in UTF-8; without --encoding there is a note about them.
iconv -f UTF-8 -t UTF-16 text.txt >wide.txt
iconv -f UTF-8 -t WINDOWS-1252 text.txt >western.txt
for text in "text.txt" "wide.txt" "western.txt --encoding windows-1252"; do
  # shellcheck disable=SC2086
  says 0 "" print "${small[@]}" --no-header $text -o encoded.ppm
  cksum <encoded.ppm >>encodings
done
[ "$(sort -u encodings | wc -l)" -eq 1 ] || fail "the encoding changes the page"
"$tool" print "${small[@]}" latin.txt -o latin.ppm 2>notes || fail "a text with a faulty byte"
grep -qF "latin.txt: note: 1 sequence of bytes is no character" notes || fail "note of a faulty byte: $(cat notes)"

# A font that is not there is replaced, and a script that no font has is named; --quiet says neither.
printf 'a \xf0\x93\x80\x80 b\n' >glyphs.txt
"$tool" print "${small[@]}" glyphs.txt -o glyphs.ppm --font "No Such Font" 2>notes || fail "a font that is replaced"
grep -qE '^qnvtool: note: font "No Such Font" is not installed; .+ is used$' notes &&
  grep -qF "note: no installed font has Egyptian hieroglyphs (such as U+13000); boxes stand for it" notes &&
  [ "$(wc -l <notes)" -eq 2 ] || fail "notes about fonts: $(cat notes)"
says 0 "" print "${small[@]}" glyphs.txt -o glyphs.ppm --font "No Such Font" -q

# Standard input is a listing unless --flow says otherwise.
printf 'a\nb\n' >lines
cp lines lines.c && cp lines lines.txt
standard_input_as() { # NAME [OPTION]: prints what the file of the name prints without the option
  "$tool" print "${small[@]}" -q --no-header "$1" -o - --format ppm >by-name.ppm
  "$tool" print "${small[@]}" -q --no-header - "${@:2}" -o - --format ppm <lines >by-input.ppm
  [ -s by-name.ppm ] && cmp -s by-name.ppm by-input.ppm || fail "standard input is not set as $*"
}
standard_input_as lines.c
standard_input_as lines.txt --flow
cp by-name.ppm flow.ppm && standard_input_as lines.c --verbatim
! cmp -s by-name.ppm flow.ppm || fail "lines.c and lines.txt give the same page"

# Listings have numbers on request; a form feed at the end gives no page.
printf 'int a;\n\f\n' >source.c
says 0 "" print "${small[@]}" source.c -o source.ppm
[ -s source.ppm ] || fail "no single page of a file that ends in a form feed"
"$tool" print "${small[@]}" source.c -o numbered.ppm --line-numbers -q
! cmp -s source.ppm numbered.ppm || fail "no line numbers"

# Which pages, how many times, how many on a sheet, and which way round.
printf '%s\f' one two three four five >five.txt
size_of() { sed -n 2p "$1"; } # of a PPM file
"$tool" print "${small[@]}" five.txt -o chosen.ppm --pages 2,4- -q && [ -s chosen-03.ppm ] && [ ! -e chosen-04.ppm ] ||
  fail "--pages 2,4- of five pages does not give three"
"$tool" print "${small[@]}" five.txt -o whole.ppm -q && cmp -s whole-02.ppm chosen-01.ppm &&
  cmp -s whole-05.ppm chosen-03.ppm || fail "--pages changes the pages that it chooses"
"$tool" print "${small[@]}" five.txt five.txt -o twice.ppm -q --pages 5-6 --copies 2 &&
  cmp -s twice-01.ppm whole-05.ppm && cmp -s twice-02.ppm whole-01.ppm && cmp -s twice-03.ppm whole-05.ppm && cmp -s twice-04.ppm whole-01.ppm ||
  fail "two copies of pages 5 and 6 of two files"
"$tool" print --paper a6 --dpi 72 five.txt -o sheet.ppm -q --n-up 2 && [ "$(size_of sheet-03.ppm)" = "420 298" ] &&
  [ ! -e sheet-04.ppm ] || fail "five pages, two on each sheet: $(ls sheet*)"
"$tool" print photo.bmp --paper a6 --dpi 72 -o turned.ppm -q --orientation auto &&
  [ "$(size_of turned.ppm)" = "420 298" ] || fail "a wide picture does not turn its sheet"
"$tool" print five.txt --paper a6 --dpi 72 -o turned.ppm -q --orientation landscape --pages 1 &&
  [ "$(size_of turned.ppm)" = "420 298" ] || fail "--orientation landscape"
"$tool" print photo.bmp "${small[@]}" -o notes.ppm --scale 10 2>stderr
grep -q "photo.bmp: note: the picture is cropped: " stderr || fail "no note about a cropped picture: $(cat stderr)"
"$tool" print photo.bmp --device scaled:72/36 --paper 100x100mm -o notes.ppm 2>stderr
grep -q "note: of 72 rows and columns 36 are kept" stderr || fail "no note about dropped rows: $(cat stderr)"
says 1 "--pages: chooses none of the 5 pages" print five.txt -o out.png --pages 7-
says 1 "--pages 0: use page numbers from 1 on" print five.txt -o out.png --pages 0
says 1 "--n-up 3: use one of 1, 2, 4, 6, 9" print five.txt -o out.png --n-up 3
says 1 "--copies 0: use a whole number from 1 to 9999" print five.txt -o out.png --copies 0
says 1 "--scale excludes --crop" print photo.bmp -o out.png --scale 2 --crop
says 1 "--align middle: use center, top" print photo.bmp -o out.png --align middle
says 1 "--orientation up: use one of paper, portrait, landscape, auto" print photo.bmp -o out.png --orientation up

# Wrong command lines.
says 1 "subcommand is required"
says 1 "--out is required" print photo.bmp
says 1 "files is required" print -o out.png
says 1 "--paper a77: use a name such as a4" print photo.bmp -o out.png --paper a77
says 1 "--margin 100: leaves nothing" print photo.bmp -o out.png --paper 80x60mm --margin 100
says 1 "--device color3:" print photo.bmp -o out.png --device color3
says 1 "--tags and --overlay need --device dual" print photo.bmp -o out.png --tags tags.png
says 1 "photo.bmp: is an input file" print photo.bmp -o photo.bmp --format png
says 1 "no such font file" print text.txt -o out.png --font ./none.ttf
says 1 "out.jpg: the name says no format" print photo.bmp -o out.jpg
says 1 "out.pgm: PGM files are gray" print photo.bmp -o out.pgm
says 1 "--format jpg: use one of png, ppm, pgm, tiff, pdf, pwg, urf, cups" print photo.bmp -o out.png --format jpg
says 1 "--type jpg: use one of auto, picture, text, fig" print photo.bmp -o out.png --type jpg
says 1 "--dpi 0: use a whole number from 20 to 4800" print photo.bmp -o out.png --dpi 0
says 1 "--margin nan: use a number from 0 to 1000" print photo.bmp -o out.png --margin nan
says 1 "--encoding none: is unknown; 'iconv -l' lists the names" print text.txt -o out.png --encoding none
says 1 "--flow excludes --verbatim" print text.txt -o out.png --verbatim --flow
says 1 "--size inf: use a number from 2 to 200" print photo.bmp -o out.png --size inf
says 1 "--paper nanx20mm: each side must have 5 to 3000 mm" print photo.bmp -o out.png --paper nanx20mm
says 1 "--width 0: use a whole number from 1 to 8000" make-picture photo out.png --width 0
says 1 "--scale nan:" print photo.bmp -o out.png --scale nan
says 1 "--scale 0:" print photo.bmp -o out.png --scale 0
says 1 "--fit excludes --scale" print photo.bmp -o out.png --scale 2 --fit

# Files that cannot be used; nothing is printed before all of them are read.
says 2 "none.bmp: No such file" print photo.bmp none.bmp -o out.png
says 2 "empty.txt: is empty" print empty.txt -o out.png
says 2 "binary.txt: is no text: zero byte at offset 0" print binary.txt -o out.png
says 2 "cut.bmp: header: the file ends at byte 40" print cut.bmp -o out.png
says 2 "norows.bmp: pixel rows: " print norows.bmp -o out.png
says 2 "text.txt: is no picture" print text.txt -o out.png --type picture
says 2 "zip.bmp: is a zip archive: unpack it first" print zip.bmp -o out.png
says 2 "doc.txt: is a PDF document: turn its pages into pictures" print doc.txt -o out.png
says 2 ".: is a folder" print . -o out.png
says 2 "text.txt: is no scalable font" print text.txt -o out.png --font text.txt

# Results that cannot be written.
says 3 "none/out.png: cannot be written" print photo.bmp -o none/out.png "${small[@]}"
says 3 "/dev/full: cannot be written" print photo.bmp -o /dev/full --format png "${small[@]}"

(
  ulimit -f 10 # blocks of 1 KB: the disk is full
  trap '' XFSZ
  "$tool" print photo.bmp -o full.ppm 2>stderr
  [ $? -eq 3 ]
) || fail "exit code with a full disk"
grep -qF "full.ppm: cannot be written: File too large" stderr || fail "full disk: $(cat stderr)"
[ ! -e full.ppm ] || fail "a piece of a picture was left on the full disk"

# No input is ever replaced, whatever the way its name comes about; nothing else is written either.
refused() { # FILE ARGUMENT...: FILE, an input, would be overwritten
  local before
  before=$(ls; cksum ./*.*)
  says 1 "$1: is an input file and would be overwritten" print "${small[@]}" "${@:2}"
  rm -f stdout stderr
  [ "$(ls; cksum ./*.*)" = "$before" ] || fail "files changed: $*"
}
mkdir kept && cd kept || exit 1
cp ../photo.bmp ../map.bmp ../text.txt ../drawing.fig .
cp map.bmp page-02.png && cp map.bmp map-02.png
printf 'image page-02.png 5 30 30 -\n' >page.fig
ln map.bmp hard.png && ln -s map.bmp soft.png
font=$(fc-match -f '%{file}' serif) && cp "$font" font.png
if [ -e "$bin/libqnvdrv10.so" ]; then
  cp "$bin/libqnvdrv10.so" library.png
  refused library.png photo.bmp --library library.png -o library.png
fi
refused page-02.png text.txt page-02.png -o page.png
refused page-02.png text.txt page.fig -o page.png
refused map-02.png text.txt map-02.png --device dual -o other.png --tags map.png
refused map-02.png text.txt map-02.png --device dual -o other.png --overlay map.png
refused hard.png map.bmp -o hard.png
refused soft.png map.bmp -o soft.png
refused font.png text.txt --font ./font.png -o font.png
refused font.png text.txt --heading-font font.png -o font.png
refused font.png text.txt --listing-font font.png -o font.png
cd .. || exit 1
says 1 "named for two different pictures" print photo.bmp -o out.png --device dual --tags ./out.png
says 1 "named for two different pictures" print photo.bmp map.bmp -o out.png --device dual --overlay x/../out.png

# A picture is replaced when the new one is complete; a run that ends early leaves the old one.
for signal in INT TERM KILL; do
  mkdir early && echo old >early/page.ppm
  env --default-signal=INT "$tool" print photo.bmp --dpi 1200 --paper 300x400mm --band-rows 1 -q \
    -o early/page.ppm 2>/dev/null &
  pid=$!
  # shellcheck disable=SC2010
  until ls -l /proc/$pid/fd 2>/dev/null | grep -q "early/.*deleted\|early/.*part"; do
    kill -0 $pid 2>/dev/null || { fail "ended before SIG$signal"; break; }
  done
  kill -$signal $pid
  wait $pid 2>/dev/null
  code=$?
  [ $code -eq $((128 + $(kill -l $signal))) ] || fail "exit code $code after SIG$signal"
  [ "$(ls -A early)" = page.ppm ] || fail "left after SIG$signal: $(ls -A early)"
  [ "$(cat early/page.ppm)" = old ] || fail "the old file is gone after SIG$signal"
  rm -r early
done

# --keep-going prints what can be printed.
"$tool" print "${small[@]}" none.bmp photo.bmp cut.bmp map.bmp -o going.png --keep-going 2>stderr
[ $? -eq 2 ] || fail "exit code of --keep-going"
[ "$(sed 's/:.*No such file.*/: missing/; s/: header: .*/: header/' stderr | tr '\n' '|')" = \
  "qnvtool: missing|qnvtool: cut.bmp: header|qnvtool: 2 of 4 files could not be used|" ] ||
  fail "messages of --keep-going: $(cat stderr)"
[ -s going-01.png ] && [ -s going-02.png ] && [ ! -e going-03.png ] || fail "pages of --keep-going"


# Standard input and output.
says 0 "" print - "${small[@]}" -o input.png --no-header <photo.bmp
says 0 "" print photo.bmp "${small[@]}" -o named.png --no-header
cmp -s input.png named.png || fail "standard input prints another page than the file"
says 2 "standard input: is empty" print - -o out.png </dev/null
# A printed page is printed again as it is, from a file, from a pipe, and under a wrong name.
again=(--paper 80x60mm --margin 0 --dpi 60 --no-header --scale pixels)
says 0 "" print photo.bmp "${small[@]}" --no-header -o first.ppm
cp input.png input.txt
says 0 "" print input.png "${again[@]}" -o second.ppm
says 0 "" print input.txt "${again[@]}" -o third.ppm
cat input.png | "$tool" print - "${again[@]}" -o fourth.ppm || fail "a PNG picture through a pipe"
for page in second third fourth; do cmp -s first.ppm $page.ppm || fail "the $page print is not the first"; done
printf 'image input.png 0 0 80 60\n' >again.fig
says 0 "" print again.fig "${again[@]}" -o fifth.ppm
cmp -s first.ppm fifth.ppm || fail "a PNG picture in a figure file is another one"
"$tool" make-picture photo - --width 90 --height 60 | cmp -s - photo.bmp || fail "make-picture to standard output"
"$tool" print photo.bmp "${small[@]}" -o - --format png --no-header | cmp -s - named.png || fail "PNG on standard output"
says 1 "-: a PNG stream holds one page, not 2" print photo.bmp map.bmp "${small[@]}" -o - --format png
if command -v script >/dev/null; then
  script -qec "'$tool' print photo.bmp -o - --paper 80x60mm --margin 5" /dev/null </dev/null >terminal
  grep -qF "standard output is a terminal" terminal || fail "binary to a terminal: $(head -c 100 terminal)"
fi

# Libraries that are none.
says 4 "none.so: no such library file" print photo.bmp -o out.png --library none.so
says 4 "text.txt: cannot be loaded: " print photo.bmp -o out.png --library text.txt
libc=$(ldd "$tool" | sed -n 's/.*=> \(.*libz[^ ]*\) .*/\1/p' | head -n 1)
[ -n "$libc" ] && says 4 "does not export QNVEnable" print photo.bmp -o out.png --library "$libc"

finish_test
