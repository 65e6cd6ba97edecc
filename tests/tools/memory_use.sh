#!/usr/bin/env bash
# Large files print in little memory: each under a limit that is far below its size.
#   memory_use.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
export TMPDIR=$work # of the program's temporary files, too

le32() { # NUMBER...: as four bytes each
  local number
  for number; do
    # shellcheck disable=SC2059
    printf "$(printf '\\%03o' $((number & 255)) $((number >> 8 & 255)) $((number >> 16 & 255)) $((number >> 24 & 255)))"
  done
}

# bmp_header WIDTH HEIGHT BITS COMPRESSION COLORS: file header, bitmap header and a table of grays
bmp_header() {
  local i
  printf 'BM'
  le32 0 0 $((54 + 4 * $5)) 40 "$1" "$2" $((1 | $3 << 16)) "$4" 0 2835 2835 "$5" 0
  for ((i = 0; i < $5; ++i)); do le32 $((i * 0x010101)); done
}

# The address sanitizer reserves memory of its own, far more than the limits.
limited=true
[ "$(ldd "$tool" | grep -c libasan)" -eq 0 ] || limited=false

# The limit counts what the program allocates, stacks included, but no code and no files. Each thread has a stack.
prints_in() { # MB OUT ARGUMENT...
  local limit=$1 out=$2
  shift 2
  (
    ! $limited || ulimit -d $((limit * 1024)) || exit 1
    "$tool" print "$@" -q --no-header --jobs 2 -o "$out"
  )
}

# 14000 x 14286 pixels of 24 bits, 600 MB. Nearly all of it is a hole that reads as black; the top left pixel is white.
bmp_header 14000 14286 24 0 0 >hole.bmp
truncate -s $((54 + 42000 * 14286)) hole.bmp
printf '\377\377\377' | dd of=hole.bmp bs=1 seek=$((54 + 42000 * 14285)) conv=notrunc 2>dd.log || cat dd.log
page=(--paper 100x102mm --margin 0 --dpi 100)
prints_in 40 hole.ppm "${page[@]}" hole.bmp || fail "600 MB of rows"
[ "$(tail -c +16 hole.ppm | head -c $((393 * 3 * 300)) | tr -d '\0' | wc -c)" -le 9 ] || fail "the page is not black"
[ "$(wc -c <hole.ppm)" -ge $((393 * 400 * 3)) ] || fail "the page is incomplete: $(wc -c <hole.ppm) bytes"

# The same picture through a pipe comes from a temporary file.
bmp_header 4000 4762 24 0 0 >small.bmp
truncate -s $((54 + 12000 * 4762)) small.bmp
cat small.bmp | prints_in 40 piped.ppm "${page[@]}" - || fail "60 MB through a pipe"
prints_in 40 small.ppm "${page[@]}" small.bmp || fail "60 MB of rows"
cmp -s piped.ppm small.ppm || fail "a pipe prints another page than the file"
[ -z "$(find . -name 'qnvtool-*')" ] || fail "temporary files were left behind"

# Run-length codes: 60 MB of literals, 20000 x 3000 pixels of which every row is the same ramp.
{
  for ((i = 0; i < 78; ++i)); do
    printf '\000\376'
    # shellcheck disable=SC2059
    printf "$(printf '\\%03o' $(seq 1 254))"
  done
  printf '\000\274'
  # shellcheck disable=SC2059
  printf "$(printf '\\%03o' $(seq 1 188))"
  printf '\000\000'
} >row
cat row row row row row row row row row row >ten
cat ten ten ten ten ten ten ten ten ten ten >hundred
{
  bmp_header 20000 3000 8 1 256
  for ((i = 0; i < 30; ++i)); do cat hundred; done
  printf '\000\001'
} >codes.bmp
[ "$(wc -c <codes.bmp)" -ge 60000000 ] || fail "the run-length file has $(wc -c <codes.bmp) bytes"
prints_in 40 codes.ppm --paper 100x15mm --margin 0 --dpi 254 --device gray codes.bmp || fail "60 MB of run-length codes"
# A page row shows every twentieth pixel of the ramp; all rows are alike.
rows=$(od -An -v -tu1 -w1000 -j "$(($(wc -c <codes.ppm) - 150000))" codes.ppm | sort -u)
[ "$(wc -l <<<"$rows")" -eq 1 ] || fail "rows of the ramp differ"
[ "$(tr -s ' ' '\n' <<<"$rows" | sort -u | wc -l)" -ge 100 ] || fail "the ramp is not there"

# A picture that is decoded at once: 200 MB of pixels in a PNG file of few kilobytes.
if prints_in 100 decoded.png --paper 1800x1850mm --margin 0 --dpi 115 small.bmp; then
  prints_in 40 again.ppm "${page[@]}" decoded.png || fail "200 MB of decoded rows"
  [ "$(wc -c <again.ppm)" -eq "$(wc -c <hole.ppm)" ] || fail "the decoded page is incomplete"
else
  fail "a page of 200 MB"
fi

# A text of many pages, which are laid out twice and never kept.
line="A line of a text that fills several thousand pages and is not kept in memory while they are printed."
for ((i = 0; i < 2500; ++i)); do printf '%s\n\n' "$line"; done >text.txt
for ((i = 0; i < 6; ++i)); do cat text.txt; done >long.txt
prints_in 20 - --paper 60x60mm --margin 5 --dpi 40 --device gray --format ppm long.txt >long.ppm || fail "a long text"
pages=$(($(wc -c <long.ppm) / (94 * 94 + 13)))
[ "$pages" -ge 7000 ] || fail "$pages pages of a long text"

# Several large files at a time, two of them at once.
for i in 1 2 3 4; do ln -s hole.bmp hole-$i.bmp; done
prints_in 60 '{name}-each.ppm' "${page[@]}" --each hole-?.bmp || fail "600 MB of rows, four times"
for i in 1 2 3 4; do cmp -s hole.ppm hole-$i-each.ppm || fail "the picture printed among others is another one: $i"; done

# The limits do limit.
$limited && prints_in 2 none.ppm "${page[@]}" hole.bmp 2>/dev/null && fail "a page was printed in 2 MB: the limit does nothing"

finish_test
