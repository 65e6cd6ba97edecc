#!/usr/bin/env bash
# The formats that hold all pages of a job: other programs accept the files, and show the pixels of the PPM files.
#   document_formats.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
needs_programs pdftoppm pdftotext qpdf tiffinfo tiffcmp pngcheck

"$tool" make-picture photo photo.bmp --width 300 --height 200 || fail "make-picture"
printf '# A heading\n\nJustified words in a line that is long enough to be broken, with Gr\xc3\xb6\xc3\x9fe, 5 \xe2\x82\xac and \xce\xb1\xce\xb2\xce\xb3.\n' >text.txt
printf '    listing here\n' >>text.txt
files=(text.txt photo.bmp)

# PDF: pages pixel by pixel, at resolutions and sizes of all kinds; the words; the structure.
while read -r dpi page; do
  # shellcheck disable=SC2086
  "$tool" print "${files[@]}" $page -o page.ppm && "$tool" print "${files[@]}" $page -o all.pdf || fail "print $page"
  gray=
  case $page in *gray*) gray=-gray ;; esac
  # shellcheck disable=SC2086
  pdftoppm $gray -r "$dpi" all.pdf shown || fail "pdftoppm: $page"
  for number in 1 2; do
    cmp page-0$number.ppm "$(echo shown-$number.p?m)" || fail "page $number of the PDF file: $page"
  done
  qpdf --check all.pdf >check 2>&1 || fail "qpdf: $page: $(cat check)"
  rm -f shown-* page-*
done <<'PAGES'
300 --dpi 300 --paper a4
97 --dpi 97 --paper 100x151mm
600 --dpi 600 --paper 60x50mm --margin 5
150 --dpi 150 --paper letter --device gray
150 --paper a4 --device scaled:200/150
PAGES
"$tool" print "${files[@]}" --dpi 200 -o all.pdf || fail "PDF"
pdftotext all.pdf words.txt
for words in "A heading" "Justified words in a line that is long enough to be broken, with" "Größe, 5 € and αβγ." \
  "listing here" "photo.bmp"; do
  tr '\n' ' ' <words.txt | grep -qF "$words" || fail "not found in the PDF file: $words; in it: $(cat words.txt)"
done
# Where a word is: the boxes in points must be those of the picture, whose margin is 20 mm = 56.7 points.
pdftotext -bbox all.pdf boxes || fail "pdftotext -bbox"
left=$(sed -n 's/.*xMin="\([0-9.]*\)".*>Justified<.*/\1/p' boxes)
awk -v left="$left" 'BEGIN { exit !(left > 56.5 && left < 57.1) }' || fail "Justified begins at $left points"
right=$(sed -n 's/.*xMax="\([0-9.]*\)".*/\1/p' boxes | sort -n | tail -n 1)
awk -v right="$right" 'BEGIN { exit !(right > 530 && right < 539) }' || fail "the longest line ends at $right points"
[ "$("$tool" print "${files[@]}" --dpi 200 -o - --format pdf | cksum)" = "$(cksum <all.pdf)" ] || fail "PDF to stdout"

# TIFF, PNG.
"$tool" print "${files[@]}" --dpi 100 -o all.tiff && "$tool" print "${files[@]}" --dpi 100 -o again.tif || fail "TIFF"
tiffinfo all.tiff >info 2>&1 || fail "tiffinfo: $(cat info)"
[ "$(grep -c 'Resolution: 100, 100 pixels/inch' info)" -eq 2 ] || fail "resolution in the TIFF file: $(cat info)"
tiffcmp all.tiff again.tif >/dev/null || fail "tiffcmp"
"$tool" print "${files[@]}" --dpi 100 -o - --format tiff >stdout.tiff && cmp all.tiff stdout.tiff || fail "TIFF to stdout"
"$tool" print "${files[@]}" --dpi 100 -o all.png || fail "PNG"
pngcheck all-01.png all-02.png >check || fail "pngcheck: $(cat check)"

# One file holds all pages under its own name; tag planes and overlays too.
rm -f all*
for ending in tiff pdf pwg urf ras; do
  "$tool" print "${files[@]}" --dpi 60 --device dual -o "all.$ending" --tags "tags.$ending" --overlay "over.$ending" ||
    fail "$ending with tags"
  [ "$(echo all* tags* over*)" = "all.$ending tags.$ending over.$ending" ] || fail "files of $ending: $(echo ./*)"
  rm -f all* tags* over*
done
"$tool" print "${files[@]}" --dpi 60 -o named --format pdf && [ "$(head -c 5 named)" = %PDF- ] || fail "--format pdf"

# Nothing of an interrupted run stays; no input is replaced.
"$tool" print "${files[@]}" --dpi 60 -o keep.pdf
before=$(cksum keep.pdf)
for signal in INT TERM KILL; do
  env --default-signal=INT "$tool" print photo.bmp photo.bmp photo.bmp --dpi 1200 --band-rows 4 -q -o keep.pdf &
  pid=$!
  sleep 0.3
  kill -$signal $pid 2>/dev/null || fail "ended before SIG$signal"
  wait $pid 2>/dev/null
  [ "$(cksum keep.pdf)" = "$before" ] || fail "keep.pdf changed after SIG$signal"
  [ "$(find . -name '*.part')" = "" ] || fail "left after SIG$signal"
done
cp photo.bmp photo.pdf
"$tool" print text.txt photo.pdf -o photo.pdf 2>stderr && fail "an input was replaced"
grep -qF "photo.pdf: is an input file" stderr || fail "message: $(cat stderr)"

# --timing: one line with all phases.
"$tool" print text.txt --dpi 60 -o timed.png --timing 2>stderr || fail "--timing"
grep -qE '^qnvtool: reading [0-9.]+ ms, layout [0-9.]+ ms, rasterising [0-9.]+ ms, encoding [0-9.]+ ms, writing [0-9.]+ ms, .*together [0-9.]+ ms, elapsed [0-9.]+ ms$' stderr ||
  fail "--timing: $(cat stderr)"

finish_test
