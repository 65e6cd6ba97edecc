#!/usr/bin/env bash
# Many files in one run: --each.
#   many_files.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"

small=(--paper 80x60mm --margin 5 --dpi 60)

# run CODE ARGUMENT...: the exit code; stdout and stderr are kept.
run() {
  local code=$1 got
  shift
  "$tool" print "${small[@]}" "$@" >stdout 2>stderr
  got=$?
  [ "$got" -eq "$code" ] || fail "exit code $got instead of $code: $* [$(cat stderr)]"
}
# refuse CODE TEXT ARGUMENT...: one line with TEXT, and no new file.
refuse() {
  local code=$1 text=$2 before
  shift 2
  before=$(find . -type f | sort | xargs sha256sum)
  run "$code" "$@"
  grep -qF -- "$text" stderr || fail "no \"$text\" in: $(cat stderr) [$*]"
  [ "$(wc -l <stderr)" -eq 1 ] || fail "$(wc -l <stderr) lines on standard error: $*"
  [ "$(find . -type f | sort | xargs sha256sum | grep -v '  \./std')" = "$(grep -v '  \./std' <<<"$before")" ] ||
    fail "files were changed: $*"
}

mkdir in
for i in 01 02 03 04 05; do printf 'Text number %s.\n' $i >in/text-$i.txt; done
for ((i = 0; i < 40; ++i)); do printf 'A line of a longer text.\n\n'; done >in/long.txt
"$tool" make-picture photo in/photo.bmp --width 60 --height 40
touch stdout stderr

# Each file has its own output, with the bytes of a run of its own, whatever the number of threads.
for threads in 1 2 8; do
  rm -rf out
  run 0 --each in/*.txt in/photo.bmp -o out/ --format png --jobs $threads
  [ "$(find out -type f | wc -l)" -eq 13 ] || fail "--jobs $threads: files are $(ls out)"
  for i in 01 02 03 04 05; do
    run 0 in/text-$i.txt -o alone.png -q
    cmp -s alone.png out/text-$i.png || fail "--jobs $threads: out/text-$i.png is another page"
  done
  run 0 in/long.txt -o alone.png -q
  for page in alone-*.png; do
    cmp -s "$page" "out/long${page#alone}" || fail "--jobs $threads: out/long${page#alone} is another page"
  done
  [ "$(find . -name "alone-*.png" | wc -l)" -eq 7 ] || fail "pages of the long text: $(ls alone-*.png)"
  rm -f alone*
done

# The table: a line for each file in the order of the command line, and the sum.
run 0 --each in/text-02.txt in/long.txt in/photo.bmp -o out/ --format pdf
sed -E 's/[0-9]+\.[0-9]{2}/S/g; s/ +/ /g' stdout >table
printf '%s\n' 'job pages seconds result' 'in/text-02.txt 1 S printed' 'in/long.txt 7 S printed' \
  'in/photo.bmp 1 S printed' '3 jobs: 3 printed, 0 printed before, 0 failed, 0 not begun; 9 pages in S s' >expected
cmp -s table expected || fail "the table is $(cat stdout)"
[ ! -s stderr ] || fail "messages: $(cat stderr)"
run 0 --each in/text-02.txt -o out/ --format pdf -q
[ ! -s stdout ] || fail "a table with --quiet"

# Patterns.
run 0 --each in/text-01.txt in/photo.bmp -o '{folder}/{number}-{file}.pdf'
{ [ -s in/1-text-01.txt.pdf ] && [ -s in/2-photo.bmp.pdf ]; } || fail "patterns: $(ls in)"
rm -f in/*.pdf
run 0 --each in/text-01.txt in/photo.bmp --device dual -o 'out/{name}.ppm' --tags 'out/{name}-tags.pgm'
{ [ -s out/text-01-tags.pgm ] && [ -s out/photo-tags.pgm ]; } || fail "pattern of --tags: $(ls out)"
refuse 1 "unknown {nam}; use {name}, {file}, {folder} or {number}" --each in/*.txt -o 'out/{nam}.png'
refuse 1 "unknown {name.png; use" --each in/*.txt -o 'out/{name.png'
refuse 1 "is the same for all files" --each in/*.txt -o out.png
refuse 1 "is the same for all files" --each in/*.txt --device dual -o 'out/{name}.png' --tags tags.png
refuse 1 "choose the format of its files with --format" --each in/*.txt -o out/
refuse 1 "--each writes files, not standard output" --each in/text-01.txt -o -
refuse 1 "standard input has no name" --each - in/text-01.txt -o 'out/{name}.png'

# No output may be an input or another output, whatever the pages are called, and nothing is written then.
rm -rf out && mkdir out
cp in/text-01.txt out/text-01.txt
refuse 1 "in/text-01.txt: is an input file and would be overwritten" --each in/text-01.txt --format png -o '{folder}/{file}'
refuse 1 "out/text-01.pdf: named for two different pictures" --each in/text-01.txt out/text-01.txt -o 'out/{name}.pdf'
cp in/photo.bmp out/long-02.png
refuse 1 "out/long-02.png: is an input file" --each in/long.txt out/long-02.png -o 'out/{name}.png'
cp in/photo.bmp long-02
refuse 1 "out/long-02.ppm: named for two different pictures" --each in/long.txt long-02 -o 'out/{name}.ppm'
ln -s ../in/photo.bmp out/link.png
refuse 1 "out/link.png: is an input file" --each in/photo.bmp -o out/link.png
ln in/text-01.txt out/hard.pdf
refuse 1 "is an input file" --each in/text-01.txt --format pdf -o out/hard.pdf

# A file that cannot be used: nothing is printed, or with --keep-going all others are.
rm -rf out
printf '\0\1\2' >in/binary.txt
: >in/empty.txt
refuse 2 "in/binary.txt" --each in/text-01.txt in/binary.txt in/text-02.txt -o out/ --format png
[ ! -e out ] || fail "the folder was made"
run 2 --each in/text-01.txt in/binary.txt in/missing.txt in/text-02.txt in/empty.txt -o out/ --format png --keep-going
[ "$(ls out)" = "$(printf 'text-01.png\ntext-02.png')" ] || fail "--keep-going printed $(ls out)"
for file in binary missing empty; do
  [ "$(grep -c "^qnvtool: in/$file.txt" stderr)" -eq 1 ] || fail "in/$file.txt is not named once: $(cat stderr)"
done
[ "$(tail -n 1 stderr)" = "qnvtool: 3 of 5 jobs were not printed" ] || fail "last line: $(tail -n 1 stderr)"
grep -qE '^in/missing.txt +- +- +in/missing.txt: No such file or directory$' stdout || fail "table: $(cat stdout)"
grep -qF '5 jobs: 2 printed, 0 printed before, 3 failed, 0 not begun; 2 pages' stdout || fail "sum: $(tail -n 1 stdout)"

# A result that cannot be written.
run 3 --each in/text-01.txt in/text-02.txt -o 'missing/{name}.png' --keep-going
[ "$(grep -c 'No such file or directory' stderr)" -eq 2 ] || fail "no folder: $(cat stderr)"
run 3 --each in/text-0?.txt -o 'missing/{name}.png' --jobs 1
grep -qF '5 jobs: 0 printed, 0 printed before, 1 failed, 4 not begun' stdout || fail "the run went on: $(cat stdout)"

# What does not fit together.
refuse 1 "--report needs --manifest or --each" in/text-01.txt -o out.png --report report
refuse 1 "--shard needs --manifest" --each in/text-01.txt -o 'out/{name}.png' --shard 1/2
refuse 1 "--printer takes one job" --each in/text-01.txt --printer ipp://localhost:1/ipp/print

# A report, and what is printed again.
printed() { # EXPECTED ARGUMENT...
  local expected=$1
  shift
  run 0 --each in/text-01.txt in/text-02.txt in/photo.bmp -o out/ --format pdf --report report.jsonl "$@"
  grep -qF "3 jobs: $expected printed, $((3 - expected)) printed before" stdout || fail "$(tail -n 1 stdout) [$expected $*]"
}
printed 3
printed 0
printed 0 --jobs 3 --timing
printed 3 --size 12
printed 0 --size 12
printed 3
echo more >>in/text-01.txt
printed 1
rm out/photo.pdf
printed 1
echo more >>out/text-02.pdf
printed 1
printed 0
[ "$(wc -l <report.jsonl)" -eq 12 ] || fail "$(wc -l <report.jsonl) lines in the report"
finish_test
