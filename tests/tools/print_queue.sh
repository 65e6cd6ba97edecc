#!/usr/bin/env bash
# The filter in a print queue: what comes out has the pixels that went in. Print servers of this test's own run on
# free ports of this machine.
#   print_queue.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
filter=$bin/qnvfilter
reader=$bin/raster_to_ppm
chmod 755 "$work" # the server runs filters as another user

PATH=$PATH:/usr/sbin
needs_programs cupsd lpadmin lp lpstat cupstestppd pdftoppm
server_bin=/usr/lib/cups
[ -x $server_bin/filter/pdftopdf ] && [ -x $server_bin/filter/gziptoany ] || { echo "a filter is not installed (scripts/setup.sh check)" >&2; exit 1; }

"$tool" make-picture photo photo.bmp --width 200 --height 150 || fail "make-picture"
printf '# Title\n\nSome text.\n' >text.txt
# make NAME OPTION...: the same pages in all formats, and NAME.ppm, their pixels
make() {
  local name=$1 format
  shift
  for format in pwg urf ras pdf; do
    "$tool" print text.txt photo.bmp "$@" -o "$name.$format" || fail "print to $name.$format"
  done
  "$tool" print text.txt photo.bmp "$@" -o "$name.png" || fail "print to PNG"
  "$reader" "$name-01.png" "$name-02.png" >"$name.ppm" || fail "reading PNG"
}
make color --paper 80x60mm --margin 5
make gray --paper 80x60mm --margin 5 --device gray
make sheet
make gray-sheet --device gray

# The filter by itself: documents of all kinds, by name and from standard input.
export PPD=$root/packaging/cups/qnvdrv10.ppd
for document in color.pwg color.urf color.ras color.pdf gray.pwg gray.urf gray.ras; do
  "$filter" 1 me title 1 "" $document >out.pwg 2>messages || fail "$document: $(cat messages)"
  "$reader" out.pwg | cmp - "${document%.*}.ppm" || fail "$document: other pixels come out"
  [ "$(tr '\n' ' ' <messages)" = "PAGE: 1 1 PAGE: 2 1 " ] || fail "$document: messages: $(cat messages)"
  "$filter" 1 me title 1 "" <$document 2>/dev/null | cmp - out.pwg || fail "$document: from standard input"
done
"$filter" 1 me title 1 "Resolution=600dpi ColorModel=Gray" color.pdf 2>/dev/null >out.pwg || fail "options"
pdftoppm -gray -r 600 color.pdf >wanted.pgm
"$reader" out.pwg >out.ppm
[ "$(head -c 12 out.ppm | sed -n 2p)" = "$(head -c 12 wanted.pgm | sed -n 2p)" ] || fail "resolution of the options"
for form in "image/urf UNIRAST" "application/vnd.cups-raster 2SaR" "image/pwg-raster RaS2"; do
  start=$(FINAL_CONTENT_TYPE=${form% *} "$filter" 1 me title 1 "" gray.pwg 2>/dev/null | head -c 7 | tr -d '\0')
  case $start in
    "${form#* }"*) ;;
    *) fail "$form begins with $start" ;;
  esac
done

refused() { # TEXT ARGUMENT...
  local text=$1
  shift
  "$filter" "$@" >/dev/null 2>messages && fail "accepted: $*"
  tail -n 1 messages | grep -qF "ERROR: $text" || fail "no \"$text\": $(cat messages)"
}
head -c 50000 color.pdf >cut.pdf
head -c 5000 color.pwg >cut.pwg
: >empty
refused "usage: qnvfilter" 1 me title 1
refused "the document is neither PDF nor PWG, Apple or CUPS raster" 1 me title 1 "" text.txt
refused "the document is empty" 1 me title 1 "" empty
refused "the document cannot be opened: none" 1 me title 1 "" none
refused "the document cannot be converted: pdftoppm finds it damaged" 1 me title 1 "" cut.pdf
refused "the document ends within page 1" 1 me title 1 "" cut.pwg
"$filter" 1 me title 1 "" color.pwg >/dev/full 2>messages && fail "a full disk"
grep -q "^ERROR: standard output: cannot be written" messages || fail "a full disk: $(cat messages)"
unset PPD
refused "Resolution=12: use 20dpi to 4800dpi" 1 me title 1 Resolution=12 color.pdf

# The description of the printer.
cupstestppd -q -W all "$root/packaging/cups/qnvdrv10.ppd" || fail "$(cupstestppd -W all "$root/packaging/cups/qnvdrv10.ppd")"

# The programs of the servers: the filter among those of the system.
mkdir -p programs/filter
for folder in "$server_bin"/*/; do
  name=$(basename "$folder")
  [ "$name" = filter ] || ln -s "$folder" "programs/$name"
done
ln -s $server_bin/filter/* programs/filter/
cp "$filter" programs/filter/qnvfilter
port=$((20000 + $$ % 20000))

# start_server NAME: starts a server; $CUPS_SERVER and $port are its own then, and $errors is its log.
start_server() {
  local folder=$work/$1
  mkdir -p "$folder"/{root,state,cache,spool/tmp,log}
  port=$((port + 1))
  while (: </dev/tcp/127.0.0.1/$port) 2>/dev/null; do port=$((port + 1)); done
  cat >"$folder/cupsd.conf" <<CONF
Listen localhost:$port
Browsing No
WebInterface No
DefaultAuthType None
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
    Allow all
  </Limit>
</Policy>
CONF
  # Builds with sanitizers cannot look for leaks as the user that the server runs filters as.
  cat >"$folder/cups-files.conf" <<CONF
SetEnv ASAN_OPTIONS detect_leaks=0
ServerRoot $folder/root
StateDir $folder/state
CacheDir $folder/cache
RequestRoot $folder/spool
TempDir $folder/spool/tmp
ServerBin $work/programs
ErrorLog $folder/log/errors
AccessLog $folder/log/accesses
PageLog $folder/log/pages
FileDevice Yes
CONF
  errors=$folder/log/errors
  cupsd -f -c "$folder/cupsd.conf" -s "$folder/cups-files.conf" >"$folder/output" 2>&1 &
  started+=($!)
  export CUPS_SERVER=localhost:$port
  for _ in $(seq 200); do
    lpstat -r 2>/dev/null | grep -q "is running" && return
    kill -0 "${started[-1]}" 2>/dev/null || break
    sleep 0.05
  done
  echo "cupsd does not run: $(cat "$folder/output" "$errors")" >&2
  exit 1
}

start_server host
for queue in one two; do
  : >$queue.out
  chmod 666 $queue.out
  lpadmin -p $queue -E -v "file://$work/$queue.out" -P "$root/packaging/cups/qnvdrv10.ppd" \
    -o printer-error-policy=abort-job 2>/dev/null ||
    fail "lpadmin -p $queue"
done

# printed ARGUMENT...: prints a document and waits for the end of the job
printed() {
  local job
  job=$(lp "$@" 2>messages | sed 's/request id is \([^ ]*\).*/\1/')
  [ -n "$job" ] || { fail "lp $*: $(cat messages)"; return; }
  for _ in $(seq 600); do
    lpstat -W completed -o 2>/dev/null | grep -q "^$job " || { sleep 0.1; continue; }
    grep -q "\[Job ${job##*-}\] Job stopped due to filter errors" "$errors" && break
    return
  done
  fail "job $job does not end or fails: $(lpstat -p) $(grep -F "[Job ${job##*-}]" "$errors" | grep -v envp | tail -n 20)"
}

printed -d one sheet.pwg
"$reader" one.out | cmp - sheet.ppm || fail "the queue changes a raster"
printed -d one -n 2 sheet.pwg
"$reader" one.out | cmp - <(cat sheet.ppm sheet.ppm) || fail "two copies of a raster"
printed -d one gray-sheet.pwg
"$reader" one.out | cmp - gray-sheet.ppm || fail "the queue changes a gray raster"
# The server's own filter puts PDF pages on the paper of the queue, and repeats them, before the pixels are made.
printed -d one -n 2 sheet.pdf
CONTENT_TYPE=application/pdf PPD=$root/packaging/cups/qnvdrv10.ppd $server_bin/filter/pdftopdf 1 me title 2 "" \
  sheet.pdf >placed.pdf 2>/dev/null || fail "pdftopdf"
pdftoppm -r 300 placed.pdf placed
[ "$(echo placed-?.ppm)" = "placed-1.ppm placed-2.ppm placed-3.ppm placed-4.ppm" ] || fail "pages: $(echo placed-*)"
[ "$(head -c 12 placed-1.ppm | sed -n 2p)" = "2480 3508" ] || fail "A4 in pixels: $(head -c 12 placed-1.ppm)"
cat placed-?.ppm >wanted.ppm
"$reader" one.out | cmp - wanted.ppm || fail "the queue changes a PDF document"

# The tool prints to the queue as to any printer.
"$tool" print text.txt photo.bmp --printer "ipp://localhost:$port/printers/two" 2>messages || fail "$(cat messages)"
grep -qF "printer two: image/pwg-raster at 300 dpi, color, iso_a4_210x297mm" messages || fail "$(cat messages)"
"$reader" two.out | cmp - sheet.ppm || fail "other pixels through the queue"

# A class hands jobs to the queue that is free.
make_class() { # CLASS QUEUE QUEUE
  lpadmin -p "$2" -c "$1" && lpadmin -p "$3" -c "$1" && cupsenable "$1" && cupsaccept "$1" || fail "class $1"
}
# class_prints CLASS DISABLED: the job goes to the other queue, whose device gets the pixels
class_prints() {
  cupsdisable "$2" || fail "cupsdisable $2"
  : >one.out
  : >two.out
  printed -d "$1" sheet.pwg
  [ ! -s one.out ] || fail "a job of the class $1 went to the disabled queue"
  "$reader" two.out | cmp - sheet.ppm || fail "other pixels through the class $1"
}
make_class both one two
class_prints both one
cupsenable one || fail "cupsenable"

# The same with queues of another server, whose filters do the work.
host=ipp://localhost:$port/printers
start_server front
lpadmin -p host1 -E -v "$host/one" -m raw 2>/dev/null && lpadmin -p host2 -E -v "$host/two" -m raw 2>/dev/null ||
  fail "queues of another server"
make_class farm host1 host2
class_prints farm host1

finish_test
