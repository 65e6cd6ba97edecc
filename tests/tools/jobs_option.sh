#!/usr/bin/env bash
# Threads do not change what is written, are ended by signals, and report what goes wrong.
#   jobs_option.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"

"$tool" make-picture photo photo.bmp --width 700 --height 500 || fail "make-picture photo"
"$tool" make-picture map map.bmp --width 500 --height 900 || fail "make-picture map"
"$tool" print photo.bmp --paper 60x50mm --margin 0 --no-header --dpi 200 -q -o photo.png || fail "photo.png"
for ((i = 0; i < 60; ++i)); do
  printf '## Part %d\n\nWords of a paragraph, enough of them for several lines of the page, number %d.\n\n' $i $i
done >text.txt
printf 'ellipse 5 5 30 20 fill=hatch:cross:#102030\nimage map.bmp 5 30 30 -\n' >drawing.fig
head -c 40000 photo.png >damaged.png

# Text, pictures that are read row by row and such as are decoded, figures; all formats and devices.
inputs=(photo.bmp text.txt photo.png drawing.fig map.bmp damaged.png)
count_files() { find . -name 'out*' | wc -l; }
compare() { # OUT ARGUMENT...
  local out=$1 threads reference='' sum
  shift
  for threads in 1 2 3 8; do
    rm -f out*
    "$tool" print "${inputs[@]}" --dpi 150 --paper a5 -q --jobs "$threads" -o "$out" "$@" || fail "--jobs $threads $out $*"
    [ "$(count_files)" -ge 1 ] || fail "--jobs $threads $out: no files"
    sum=$(find . -name 'out*' -print0 | sort -z | xargs -0 sha256sum)
    [ -n "$reference" ] || reference=$sum
    [ "$sum" = "$reference" ] || fail "--jobs $threads gives other bytes: $out $*"
  done
}
compare out.png --device dual --tags out-tags.png --overlay out-overlay.png
compare out.png --band-rows 31 --copies 2 --pages 1,3-
compare out.pgm --device gray --n-up 4
compare out.pdf --device color --orientation auto
compare out.tiff --device scaled:150/100
compare out.pwg --device scaled-gray:150/110 --band-rows 0
compare out.urf
compare out.ras --device gray

# The notes of all threads come once.
rm -f out*
"$tool" print damaged.png damaged.png text.txt --copies 3 --jobs 8 --dpi 60 -o out.pdf 2>stderr || fail "damaged.png"
[ "$(grep -c 'damaged.png: note:' stderr)" -eq 1 ] || fail "notes: $(cat stderr)"

# A thread's error is the error of the program.
rm -f out*
"$tool" print photo.bmp text.txt --jobs 8 -q -o /dev/full --format ppm 2>stderr
code=$?
[ "$code" -eq 3 ] || fail "exit code $code for a full disk: $(cat stderr)"
grep -qi 'no space' stderr || fail "no reason for a full disk: $(cat stderr)"
"$tool" print text.txt --jobs 0 -o out.png 2>stderr && fail "--jobs 0 is taken"
grep -qF -- '--jobs 0: use a whole number from 1 to 256' stderr || fail "--jobs 0: $(cat stderr)"

# Signals end all threads, and leave the old file as it was.
for signal in INT TERM HUP; do
  for out in out.pdf out.png; do
    rm -f out*
    echo old >"$out"
    env --default-signal=INT "$tool" print text.txt photo.bmp text.txt --dpi 1200 --copies 50 --jobs 4 -q -o "$out" \
      2>stderr &
    child=$!
    sleep 0.4
    kill -s $signal $child || fail "the program ended before SIG$signal: $(cat stderr)"
    start=$(date +%s%N)
    wait $child 2>wait.log
    code=$?
    took=$((($(date +%s%N) - start) / 1000000))
    [ "$code" -eq $((128 + $(kill -l $signal))) ] || fail "exit code $code after SIG$signal"
    [ "$took" -lt 5000 ] || fail "$took ms from SIG$signal to the end"
    [ "$(cat "$out")" = old ] || fail "$out was changed by a run that ended by SIG$signal"
    [ -z "$(find . -name '.*.part')" ] || fail "left behind after SIG$signal: $(ls -A)"
  done
done

finish_test
