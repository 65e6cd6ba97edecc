#!/usr/bin/env bash
# Jobs from a manifest: mistakes in it, reports, runs that are killed and resumed, shares of several machines.
#   print_manifest.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"

mkdir in out
for i in 1 2 3; do printf 'Text number %s, of one page.\n' $i >in/$i.txt; done
for ((i = 0; i < 30; ++i)); do printf 'A line of a longer text.\n\n'; done >in/long.txt
"$tool" make-picture photo in/photo.bmp --width 60 --height 40
printf 'image photo.bmp 5 5 30 -\n' >in/drawing.fig
small=(--paper 80x60mm --margin 5 --dpi 60)

run() { # CODE ARGUMENT...
  local code=$1 got
  shift
  "$tool" print "$@" >stdout 2>stderr
  got=$?
  [ "$got" -eq "$code" ] || fail "exit code $got instead of $code: $* [$(cat stderr)]"
}

# Each line is a job with its own options; those of the command line count where a line has none.
cat >jobs.jsonl <<'JOBS'
{"input": "in/1.txt", "output": "out/1.png"}
{"output": "out/2.pdf", "input": ["in/2.txt", "in/photo.bmp"], "dpi": 90, "device": "gray", "no-header": true}

{"input": "in/long.txt", "output": "out/long.png", "n-up": 2, "margin": 7.5, "pages": "1-2,4", "size": "9"}
{"input": "in/drawing.fig", "output": "out/\u0064rawing.tiff", "no-header": false, "band-rows": 16}
JOBS
run 0 --manifest jobs.jsonl "${small[@]}"
[ "$(cd out && echo *)" = "1.png 2.pdf drawing.tiff long-01.png long-02.png" ] || fail "files are $(ls out)"
same() { # FILE ARGUMENT...
  local file=$1
  shift
  "$tool" print "$@" -q -o "alone.${file##*.}" || fail "$*"
  cmp -s "alone.${file##*.}" "out/$file" || fail "$file differs from that of a run of its own"
  rm -f alone*
}
same 1.png "${small[@]}" in/1.txt
same 2.pdf "${small[@]:0:4}" --dpi 90 --device gray --no-header in/2.txt in/photo.bmp
same drawing.tiff "${small[@]}" in/drawing.fig
"$tool" print in/long.txt --paper 80x60mm --dpi 60 --margin 7.5 --n-up 2 --pages 1-2,4 --size 9 -q -o alone.png || fail "long.txt"
cmp -s alone-02.png out/long-02.png || fail "long-02.png differs"
rm -f alone*
grep -qF "4 jobs: 4 printed, 0 printed before, 0 failed, 0 not begun; 6 pages" stdout || fail "sum: $(tail -n 1 stdout)"
grep -qE '^line 4, out/long.png +2 +[0-9.]+  printed$' stdout || fail "table: $(cat stdout)"
rm -rf out/*
run 0 --manifest - "${small[@]}" <jobs.jsonl
[ "$(find out -type f | wc -l)" -eq 5 ] || fail "standard input as manifest: $(ls out)"

# Mistakes are named with their line, before anything is printed.
wrong() { # TEXT LINE
  rm -rf out/*
  printf '%s\n' '{"input": "in/1.txt", "output": "out/first.png"}' '' "$2" >wrong.jsonl
  run "${3:-1}" --manifest wrong.jsonl "${small[@]}"
  [ "$(cat stderr)" = "qnvtool: wrong.jsonl, line 3: $1" ] || fail "message $(cat stderr) for $2"
  [ -z "$(ls out)" ] || fail "printed before a mistake: $(ls out)"
}
wrong 'unknown key "outptu"; use input, output and the long names of options' '{"input": "in/2.txt", "outptu": "out/2.png"}'
wrong 'unknown key "o"; use input, output and the long names of options' '{"input": "in/2.txt", "o": "out/2.png"}'
wrong "is no JSON: at byte 29: unexpected string literal; expected '}'" '{"input": "in/2.txt" "output": "out/2.png"}'
wrong 'is no JSON: at byte 20: invalid string: missing closing quote' '{"input": "in/2.txt}'
wrong 'is no JSON: the name "input" for the second time' '{"input": "in/2.txt", "input": "in/3.txt", "output": "out/2.png"}'
wrong "is no JSON: at byte 46: unexpected '{'; expected end of input" '{"input": "in/2.txt", "output": "out/2.png"} {}'
wrong 'is no JSON: at byte 11: invalid literal' '{"input": in/2.txt, "output": "out/2.png"}'
wrong 'is no JSON object' '["in/2.txt", "out/2.png"]'
wrong 'unknown key "files"; use input, output and the long names of options' '{"files": "in/2.txt", "output": "out/2.png"}'
wrong '"input" is missing' '{"output": "out/2.png"}'
wrong '"output" is missing' '{"input": "in/2.txt"}'
wrong '"input" takes a file or an array of files' '{"input": [], "output": "out/2.png"}'
wrong '"input" takes a file or an array of files' '{"input": ["in/2.txt", 3], "output": "out/2.png"}'
wrong '"output" takes the name of a file' '{"input": "in/2.txt", "output": "-"}'
wrong 'standard input cannot be the input of a job' '{"input": "-", "output": "out/2.png"}'
wrong '--dpi 5: use a whole number from 20 to 4800' '{"input": "in/2.txt", "output": "out/2.png", "dpi": 5}'
wrong '--dpi 1e2: use a whole number from 20 to 4800' '{"input": "in/2.txt", "output": "out/2.png", "dpi": 1e2}'
wrong '"dpi" takes a text or a number' '{"input": "in/2.txt", "output": "out/2.png", "dpi": [60]}'
wrong '"flow" takes true or false' '{"input": "in/2.txt", "output": "out/2.png", "flow": "yes"}'
wrong '--n-up 3: use one of 1, 2, 4, 6, 9' '{"input": "in/2.txt", "output": "out/2.png", "n-up": 3}'
wrong '--crop excludes --fit' '{"input": "in/2.txt", "output": "out/2.png", "fit": true, "crop": true}'
for option in jobs keep-going manifest report shard each timing quiet printer out; do
  wrong "\"$option\" is no option of a single job; input and output name its files, and options of the whole run stand \
on the command line" "{\"input\": \"in/2.txt\", \"output\": \"out/2.png\", \"$option\": 1}"
done
whole() { # CODE TEXT ARGUMENT...
  rm -rf out/*
  run "$1" "${@:3}"
  [ "$(cat stderr)" = "qnvtool: $2" ] || fail "message $(cat stderr) instead of $2"
  [ -z "$(ls out)" ] || fail "printed: $(ls out)"
}
: >empty.jsonl
whole 2 "missing.jsonl: No such file or directory" --manifest missing.jsonl
whole 2 "empty.jsonl: names no jobs" --manifest empty.jsonl
whole 1 "--manifest names the files to print; the command line cannot name further ones" --manifest jobs.jsonl in/1.txt
whole 1 "--manifest names the outputs; the command line cannot give --out" --manifest jobs.jsonl -o out/x.png
whole 1 "--shard 3: use K/N, such as 1/4" --manifest jobs.jsonl --shard 3
whole 1 "--shard K/N: K 5: use a whole number from 1 to 4" --manifest jobs.jsonl --shard 5/4
printf '{"input": "in/%s", "output": "out/%s"}\n' 1.txt a.png missing.txt b.png >bad.jsonl
whole 2 "line 2, out/b.png: in/missing.txt: No such file or directory" --manifest bad.jsonl
printf '{"input": "in/%s", "output": "out/%s"}\n' 1.txt a.png 2.txt ../out/a.png >bad.jsonl
whole 1 "line 2, out/../out/a.png: out/../out/a.png: named for two different pictures" --manifest bad.jsonl
for file in in/2.txt in/photo.bmp report.jsonl; do
  printf '{"input": "in/%s", "output": "%s", "format": "pdf"}\n' 1.txt $file drawing.fig out/d.pdf 2.txt out/2.pdf >bad.jsonl
  whole 1 "line 1, $file: $file: is an input file and would be overwritten" --manifest bad.jsonl --report report.jsonl
done
printf '{"input": "in/%s", "output": "%s", "format": "pdf"}\n' 1.txt bad.jsonl >bad.jsonl
whole 1 "line 1, bad.jsonl: bad.jsonl: is an input file and would be overwritten" --manifest bad.jsonl
cp in/photo.bmp photo.report
whole 1 "--report photo.report: line 1 is none of a report; name another file" --manifest jobs.jsonl --report photo.report
cmp -s in/photo.bmp photo.report || fail "a picture was taken for a report and changed"
rm -f report.jsonl

# --keep-going and the report's line of a job that failed.
printf '{"input": "in/%s", "output": "out/%s"}\n' 1.txt a.png missing.txt b.png 2.txt c.pdf >bad.jsonl
run 2 --manifest bad.jsonl "${small[@]}" --keep-going --report report.jsonl
[ "$(cd out && echo *)" = "a.png c.pdf" ] || fail "--keep-going printed $(ls out)"
[ "$(grep -c '"result":"done"' report.jsonl)" -eq 2 ] || fail "report: $(cat report.jsonl)"
rm -rf out/* report.jsonl

# A share of the lines for each machine: together they print all, each line once.
for ((i = 1; i <= 11; ++i)); do
  printf '{"input": "in/%s", "output": "out/%s.png"}\n' "$((i % 3 + 1)).txt" $i
done >shares.jsonl
for shard in 1/4 2/4 3/4 4/4; do
  run 0 --manifest shares.jsonl "${small[@]}" --shard $shard --report "report-${shard%/*}.jsonl" -q
done
[ "$(find out -type f | wc -l)" -eq 11 ] || fail "shares: $(ls out)"
[ "$(sed 's/.*"line":\([0-9]*\),.*/\1/' report-2.jsonl | sort -n | tr '\n' ' ')" = "2 6 10 " ] || fail "share 2/4: $(cat report-2.jsonl)"
[ "$(cat report-?.jsonl | sed 's/.*"line":\([0-9]*\),.*/\1/' | sort -nu | wc -l)" -eq 11 ] || fail "lines of all shares"
run 0 --manifest shares.jsonl "${small[@]}" --shard 12/12
grep -qF "0 jobs: 0 printed" stdout || fail "a share without lines: $(cat stdout)"
# An output that another machine reads or writes is refused here.
printf '{"input": "in/1.txt", "output": "%s", "format": "pdf"}\n' out/a.pdf out/a.pdf >bad.jsonl
whole 1 "line 2, out/a.pdf: out/a.pdf: named for two different pictures" --manifest bad.jsonl --shard 1/2
rm -rf out/* report*

# Runs that are killed: no file but complete ones, and every further run prints what is not in the report, and that only.
for ((i = 1; i <= 24; ++i)); do
  printf '{"input": ["in/photo.bmp", "in/long.txt"], "output": "out/%s.%s", "dpi": %s}\n' $i \
    "$([ $((i % 3)) -eq 0 ] && echo png || echo pdf)" $((120 + i))
done >killed.jsonl
killed=(--manifest killed.jsonl "${small[@]}" -q --jobs 2)
run 0 "${killed[@]}"
mv out expected
mkdir out
kills=0
for ((attempt = 0; attempt < 40; ++attempt)); do
  "$tool" print "${killed[@]}" --report report.jsonl 2>stderr &
  child=$!
  sleep "$((attempt + 1))e-1" # longer each time, for slow machines
  if kill -KILL $child 2>kill.log; then kills=$((kills + 1)); fi
  wait $child 2>wait.log
  code=$?
  [ -z "$(find out -name '.*' -type f)" ] || fail "left behind: $(find out -name '.*')"
  for file in out/*; do
    [ ! -e "$file" ] || cmp -s "$file" "expected/${file#out/}" || fail "$file is a piece or another page"
  done
  # What the report says stays as it is: the same files, not new ones of the same bytes.
  if [ -s report.jsonl ]; then
    sed -n 's/.*"result":"done".*"output":\[\(.*\)\],"pages".*/\1/p' report.jsonl | grep -o 'out/[^"]*' | sort >done.now
    while IFS= read -r file; do
      [ -e "inode.${file#out/}" ] || stat -c %i "$file" >"inode.${file#out/}"
      [ "$(stat -c %i "$file")" = "$(cat "inode.${file#out/}")" ] || fail "$file was printed again"
    done <done.now
    [ "$(sort -u done.now | wc -l)" -eq "$(wc -l <done.now)" ] || fail "a job is in the report twice"
  fi
  [ "$code" -ne 0 ] || break
done
[ "$code" -eq 0 ] || fail "no run came to its end"
[ "$kills" -ge 1 ] || fail "no run was killed"
diff -r out expected || fail "the pages are not those of a single run"
run 0 "${killed[@]}" --report report.jsonl
[ "$(grep -c '"result":"done"' report.jsonl)" -eq 24 ] || fail "$(wc -l <report.jsonl) lines in the report"

# A last line that was cut off does not count; its job is printed again, and the report goes on in a new line.
last=$(tail -n 1 report.jsonl)
truncate -s $(($(wc -c <report.jsonl) - ${#last} / 2)) report.jsonl
"$tool" print --manifest killed.jsonl "${small[@]}" --report report.jsonl >stdout 2>stderr || fail "a report that is cut off"
grep -qF "24 jobs: 1 printed, 23 printed before" stdout || fail "cut off: $(tail -n 1 stdout)"
[ "$(cat stderr)" = "qnvtool: report.jsonl: note: line 24 is incomplete and does not count" ] || fail "note: $(cat stderr)"
[ "$(wc -l <report.jsonl)" -eq 25 ] || fail "$(wc -l <report.jsonl) lines in the report"
run 0 --manifest killed.jsonl "${small[@]}" --report report.jsonl
grep -qF "24 jobs: 0 printed, 24 printed before" stdout || fail "behind a line that is cut off: $(tail -n 1 stdout)"
printf '{"jo' >cut.report
run 0 --manifest shares.jsonl "${small[@]}" --report cut.report --shard 12/12
printf '{"joy":1}' >cut.report
run 1 --manifest shares.jsonl "${small[@]}" --report cut.report --shard 12/12

# What else makes a job be printed again: another value in its line, another input, a picture of a figure.
rm -rf out/* report.jsonl
printf '{"input": "in/drawing.fig", "output": "out/d.png"}\n{"input": "in/1.txt", "output": "out/1.png"}\n' >again.jsonl
again() { # PRINTED
  run 0 --manifest again.jsonl "${small[@]}" --report report.jsonl "${@:2}"
  grep -qF "2 jobs: $1 printed, $((2 - $1)) printed before" stdout || fail "$(tail -n 1 stdout) instead of $1 [${*:2}]"
}
again 2
again 0
sed -i 's/"input": "in/"input":   "in/; 1s/^/\n/' again.jsonl # the same jobs in other words
again 0
touch -d '2001-02-03 04:05:06' in/photo.bmp
again 1
again 2 --no-header
sed -i 's/"out\/1.png"/"out\/1.png", "line-numbers": true/' again.jsonl
again 1 --no-header
rm out/d.png
again 1 --no-header
again 0 --no-header

# Interrupted by a signal: the report has what was finished, and nothing is left behind.
rm -rf out/* report.jsonl
"$tool" print "${killed[@]}" --report report.jsonl 2>stderr &
child=$!
for ((i = 0; i < 2000; ++i)); do
  [ ! -s report.jsonl ] || break
  sleep 0.01
done
kill -TERM $child || fail "the run ended before SIGTERM"
wait $child 2>wait.log
code=$?
[ $code -eq 143 ] || fail "exit code $code after SIGTERM with $(wc -l <report.jsonl) jobs done"
for file in out/*; do
  [ ! -e "$file" ] || cmp -s "$file" "expected/${file#out/}" || fail "$file after SIGTERM"
done
run 0 "${killed[@]}" --report report.jsonl
diff -r out expected || fail "the pages after SIGTERM"
finish_test
