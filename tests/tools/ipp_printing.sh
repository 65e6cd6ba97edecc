#!/usr/bin/env bash
# Sends jobs to printers of the printing system's own test program, and compares what they got with pictures.
#   ipp_printing.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
reader=$bin/raster_to_ppm
needs_programs dbus-daemon ippeveprinter ipptool
export TMPDIR=$work/temporary
mkdir temporary

# The printers want a message bus, though they announce themselves nowhere.
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$work/bus
dbus-daemon --session --nofork --nopidfile --address="$DBUS_SYSTEM_BUS_ADDRESS" >/dev/null 2>&1 &
started+=($!)
for _ in $(seq 100); do [ -S bus ] && break; sleep 0.05; done

# printer NAME ARGUMENT...: starts a printer on a free port; its address is in $address then.
next_port=$((20000 + $$ % 20000))
printer() {
  local name=$1 pid
  shift
  while :; do
    next_port=$((next_port + 1))
    (: </dev/tcp/127.0.0.1/$next_port) 2>/dev/null && continue # somebody listens there
    mkdir -p "spool-$name"
    ippeveprinter -r off -n localhost -p $next_port -k -d "$work/spool-$name" -vv "$@" "$name" >"$name.log" 2>&1 &
    pid=$!
    for _ in $(seq 200); do
      if (: </dev/tcp/127.0.0.1/$next_port) 2>/dev/null; then
        kill -0 $pid 2>/dev/null || break
        started+=($pid)
        address=ipp://localhost:$next_port/ipp/print
        return
      fi
      kill -0 $pid 2>/dev/null || break
      sleep 0.05
    done
    [ $((next_port % 20)) -eq 0 ] && { echo "no printer starts: $(cat "$name.log")" >&2; exit 1; }
  done
}

# job_attribute ADDRESS ID NAME: what the printer says of a job
job_attribute() {
  cat >get-job.test <<'TEST'
{
  OPERATION Get-Job-Attributes
  GROUP operation-attributes-tag
  ATTR charset attributes-charset utf-8
  ATTR language attributes-natural-language en
  ATTR uri printer-uri $uri
  ATTR integer job-id $id
  ATTR name requesting-user-name $user
  STATUS successful-ok
}
TEST
  ipptool -tv -d id="$2" "$1" get-job.test | sed -n "s/^ *$3 ([^)]*) = //p" | tail -n 1
}

expect_equal() { [ "$2" = "$3" ] || fail "$1: \"$2\" instead of \"$3\""; }

# refused TEXT ARGUMENT...: exit code 1 or 3, the last line of standard error holds TEXT.
refused() {
  local text=$1
  shift
  timeout 60 "$tool" print "$@" >/dev/null 2>stderr
  local code=$?
  [ $code -eq 1 ] || [ $code -eq 3 ] || fail "exit code $code: $*"
  tail -n 1 stderr | grep -qF -- "$text" || fail "no \"$text\" in: $(cat stderr)"
}

"$tool" make-picture photo photo.bmp --width 200 --height 150 || fail "make-picture"
printf '# Title\n\nSome text.\n' >text.txt
files=(text.txt photo.bmp)

# A command that ends at once, so that jobs take no time.
printf '#!/bin/sh\nexit 0\n' >works && printf '#!/bin/sh\necho "ERROR: out of toner" >&2\nexit 1\n' >breaks
printf '#!/bin/sh\nexec sleep 30\n' >slow
chmod +x works breaks slow

# A color printer: PWG raster by its own choice, what is asked for otherwise.
printer color -s 10,10 -f image/pwg-raster,image/urf,application/pdf -c "$work/works"
"$tool" print "${files[@]}" --printer "$address" 2>stderr || fail "printing: $(cat stderr)"
grep -qF "printer color: image/pwg-raster at 600 dpi, color, na_letter_8.5x11in" stderr || fail "notes: $(cat stderr)"
grep -qF "job 1 is printed" stderr || fail "notes: $(cat stderr)"
"$tool" print "${files[@]}" --dpi 600 --paper letter -o page.png || fail "PNG"
"$reader" page-01.png page-02.png >wanted.ppm || fail "reading PNG"
"$reader" spool-color/1-*.pwg >got.ppm || fail "reading the spool file"
cmp wanted.ppm got.ppm || fail "the printer got other pixels"
expect_equal "job state" "$(job_attribute "$address" 1 job-state)" completed
expect_equal "job name" "$(job_attribute "$address" 1 job-name)" text.txt
expect_equal "paper" "$(job_attribute "$address" 1 media)" na_letter_8.5x11in
expect_equal "color" "$(job_attribute "$address" 1 print-color-mode)" color
expect_equal "resolution" "$(job_attribute "$address" 1 printer-resolution)" 600dpi

"$tool" print "${files[@]}" --printer "$address" --format urf --device gray --paper a4 -q 2>stderr || fail "URF"
[ ! -s stderr ] || fail "--quiet says: $(cat stderr)"
"$tool" print "${files[@]}" --dpi 600 --paper a4 --device gray -o page.png || fail "PNG"
"$reader" page-01.png page-02.png >wanted.ppm && "$reader" spool-color/2-*.urf >got.ppm || fail "reading URF"
cmp wanted.ppm got.ppm || fail "the printer got other pixels in URF"
expect_equal "color of gray pages" "$(job_attribute "$address" 2 print-color-mode)" monochrome

"$tool" print "${files[@]}" --printer "$address" --format pdf --dpi 100 --paper a4 -q || fail "PDF"
"$tool" print "${files[@]}" --dpi 100 -o same.pdf --paper a4 && cmp same.pdf spool-color/3-*.pdf || fail "another PDF"
"$tool" print "${files[@]}" --printer "$address" --dpi 300 --device scaled:200/300 -q --no-wait 2>stderr &&
  fail "--dpi that contradicts the device"
"$tool" print "${files[@]}" --printer "$address" --device scaled:200/300 -q --no-wait || fail "scaled device"
"$tool" print "${files[@]}" --paper letter --device scaled:200/300 -o page.png || fail "PNG"
"$reader" page-01.png page-02.png >wanted.ppm && "$reader" spool-color/4-*.pwg >got.ppm || fail "reading"
cmp wanted.ppm got.ppm || fail "the printer got other pixels from the scaled device"

# What cannot be printed, before anything is sent.
refused "--format png: only pwg, urf and pdf" text.txt --printer "$address" --format png
refused "--dpi 400: not a resolution of the printer in pwg documents; it has 300, 600" text.txt --printer "$address" --dpi 400
refused "has no paper of 50 x 60 mm" text.txt --printer "$address" --paper 50x60mm
refused "use ipp://HOST[:PORT]/PATH" text.txt --printer http://localhost/
refused "--out excludes --printer" text.txt --printer "$address" -o out.png
refused "--out is required, or --printer" text.txt
refused "client-error-not-found" text.txt --printer "${address%/print}/none"
refused "cannot be reached" text.txt --printer ipp://localhost:1/ipp/print
refused "cannot be reached" text.txt --printer ipp://host.invalid/ipp/print
[ "$(find spool-color -type f ! -name '*.prn' | wc -l)" -eq 4 ] || fail "something was sent: $(ls spool-color)"

# A gray printer without PWG raster.
printer gray -f image/urf -c "$work/works"
"$tool" print text.txt --printer "$address" 2>stderr || fail "gray printer: $(cat stderr)"
grep -qF "image/urf at 600 dpi, gray" stderr || fail "gray printer: $(cat stderr)"
refused "takes no color in urf documents; use --device gray" text.txt --printer "$address" --device color
refused "--format pdf: not taken; it takes" text.txt --printer "$address" --format pdf

# A printer that takes nothing of this, and one that breaks off.
printer jpeg -f image/jpeg
refused "takes neither PWG raster nor Apple raster nor PDF" text.txt --printer "$address"
printer broken -f image/pwg-raster -c "$work/breaks"
refused "job 1 was aborted: " text.txt --printer "$address"

# Ctrl-C cancels the job.
printer slow -f image/pwg-raster -c "$work/slow"
env --default-signal=INT "$tool" print text.txt --printer "$address" 2>stderr &
pid=$!
for _ in $(seq 200); do grep -q "job 1 is sent" stderr && break; sleep 0.05; done
sleep 0.5
kill -INT $pid
wait $pid 2>/dev/null
expect_equal "exit code after Ctrl-C" $? 130
state=$(job_attribute "$address" 1 job-state)
reasons=$(job_attribute "$address" 1 job-state-reasons)
case $state:$reasons in
  canceled:* | *:*processing-to-stop-point* | *:*job-canceled-by-user*) ;;
  *) fail "the job is $state ($reasons) after Ctrl-C" ;;
esac

[ -z "$(ls -A temporary)" ] || fail "temporary files are left: $(ls -A temporary)"

finish_test
