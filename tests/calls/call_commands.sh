#!/usr/bin/env bash
# The commands over call files, and the recorder, as a user calls them: results, messages and exit codes.
#   call_commands.sh QNVTOOL FOLDER-OF-BUILT-FILES
. "$(dirname "${BASH_SOURCE[0]}")/../support/shell_test.sh"
include=$root/include

# A whole page of the example host, recorded: the host's picture is not changed, the calls replay, and the rendered page
# is that picture.
"$bin/example_host" plain.bmp || fail "example_host"
expect 0 "host.qnv: 830 calls, 1 devices," "" record --hash --check -o host.qnv -- "$bin/example_host" host.bmp
grep -qF "0 mistakes" stdout || fail "the example host makes mistakes: $(cat stdout)"
cmp -s plain.bmp host.bmp || fail "the recorder changed the picture"
expect 0 "830 calls," "" replay host.qnv
grep -qF "441 checksums compared, 0 differences" stdout || fail "replay: $(cat stdout)"
expect 0 "0 mistakes" "" check host.qnv
expect 0 "830 calls, no difference" "" replay host.qnv --against "$bin/libqnvdrv10.so"
expect 0 "830 calls compared, 0 differences" "" diff host.qnv host.qnv
expect 0 "device 1: kind 1, 24 bits, 600 x 96 at 72/72 dpi; 829 calls, 9 painted bands" "" info host.qnv
expect 0 "830 calls; best of 2 runs:" "" time host.qnv --runs 2
expect 0 "0 QNVEnable(description=kind 1, 24 bits, 600 x 96 at 72/72 dpi, bandRect=(0, 0, 600, 96)" "" \
  dump host.qnv --count 1
expect 0 '{"call":1,"function":"QNVControl","thread":1,"device":1,"code":"QNV_SET_BAND_RECT","data":"(0, 0, 600, 96)"' "" \
  dump host.qnv --json --from 1 --count 1
expect 0 "QNV_CLEAR_BAND" "" dump host.qnv --call control
[ "$(grep -c . stdout)" -eq "$(grep -c QNVControl stdout)" ] || fail "dump --call shows other calls"
expect 0 "" "" render host.qnv -o host.ppm
# The BMP file holds the same rows, blue first.
if ! python3 - host.ppm host.bmp <<'EOF'
import sys
ppm, bmp = open(sys.argv[1], 'rb').read(), open(sys.argv[2], 'rb').read()
assert int.from_bytes(bmp[22:26], 'little', signed=True) == -840
assert ppm.startswith(b'P6\n600 840\n255\n'), ppm[:20]
pixels = ppm[-600 * 840 * 3:]
offset = int.from_bytes(bmp[10:14], 'little')
for y in range(840):
    row = bmp[offset + y * 1800:offset + (y + 1) * 1800]
    rgb = bytearray(1800)
    rgb[0::3], rgb[1::3], rgb[2::3] = row[2::3], row[1::3], row[0::3]
    assert rgb == pixels[y * 1800:(y + 1) * 1800], y
EOF
then
  fail "the rendered page is not the picture of the host"
fi

# Pages of the tool itself, on every device: they replay, have no mistakes, and render to what was printed.
printf 'rect 10 10 60 40 fill=hatch:cross:#102030 line=#ff0000:2\nellipse 30 30 50 20 fill=#00a0c0\n' >page.fig
printf 'text 20 120 14 "Calls on file"\nimage map.bmp 20 130 60 -\n' >>page.fig
"$tool" make-picture map map.bmp --width 100 --height 70 || fail "make-picture"
for device in color gray dual scaled:200/100 scaled:300/200 scaled-gray:200/100; do
  dpi=()
  case $device in *:*) ;; *) dpi=(--dpi 100) ;; esac
  tags=()
  [ "$device" != dual ] || tags=(--tags tags.pgm)
  QNVREC_FILE=page.qnv QNVREC_HASH=call QNVREC_LIBRARY=$bin/libqnvdrv10.so \
    "$tool" print page.fig -q --jobs 1 --device "$device" "${dpi[@]}" "${tags[@]}" --band-rows 64 -o printed.ppm \
    --library "$bin/libqnvrec.so" || fail "print on $device"
  expect 0 " 0 differences" "" replay page.qnv
  expect 0 " 0 mistakes" "" check page.qnv
  expect 0 "" "" render page.qnv -o rendered.ppm
  case $device in
    scaled*) ;; # the tool paints rows beside the page there, which it does not print
    *) cmp -s printed.ppm rendered.ppm || fail "the rendered page differs from the printed one on $device" ;;
  esac
  if [ "$device" = dual ]; then
    expect 0 "" "" render page.qnv -o rendered.ppm --tags rendered.pgm
    cmp -s tags.pgm rendered.pgm || fail "the rendered tags differ"
  else
    expect 1 "" "device 1 has no tag plane" render page.qnv -o rendered.ppm --tags rendered.pgm
  fi
done

# A part of a file is shown as it is in the whole; only the blocks that hold it are read.
"$tool" dump host.qnv >dump.txt || fail "dump"
expect 0 "" "" dump host.qnv --from 400 --count 30
sed -n 401,430p dump.txt | cmp - stdout || fail "dump of a part"
expect 0 "" "" dump host.qnv --from 600 --call ExtText --count 2
awk 'NR > 600 && /ExtText/ && ++n <= 2' dump.txt | cmp - stdout || fail "dump of chosen calls of a part"
expect 0 "" "" dump host.qnv --from 830
[ ! -s stdout ] || fail "dump beyond the last call"

# A part of the calls: a range, and what changes a rectangle, whose pixels are then the same as on the whole page.
expect 0 "range.qnv: " "" trim host.qnv -o range.qnv --from 400 --count 30 --hash
expect 0 " 0 differences" "" replay range.qnv
expect 0 "rect.qnv: " "" trim host.qnv -o rect.qnv --rect 100,100,200,260
expect 0 " 0 differences" "" replay rect.qnv
expect 0 "" "" render rect.qnv -o rect.ppm
"$tool" info rect.qnv | grep -q '^trimmed: [1-9][0-9]* of 830 calls$' || fail "info of a trimmed file"
if ! python3 - host.ppm rect.ppm range.qnv <<'EOF'
import sys
a, b = (open(name, 'rb').read()[-600 * 840 * 3:] for name in sys.argv[1:3])
rows = range(100, 260)
assert all(a[(y * 600 + 100) * 3:(y * 600 + 200) * 3] == b[(y * 600 + 100) * 3:(y * 600 + 200) * 3] for y in rows)
assert a != b
assert any(a[(y * 600 + 100) * 3:(y * 600 + 200) * 3] != b'\xff' * 300 for y in rows)
EOF
then
  fail "the rectangle of the trimmed page differs, or the rest does not"
fi
# A file whose blocks are stored is written again, compressed.
QNVREC_FILE=stored.qnv QNVREC_COMPRESS=0 QNVREC_LIBRARY=$bin/libqnvdrv10.so LD_PRELOAD=$bin/libqnvrec.so \
  "$bin/example_host" stored.bmp || fail "record without compression"
expect 0 "830 calls, 432 of them drawing calls, of 830" "" trim stored.qnv -o compressed.qnv
expect 0 "830 calls compared, 0 differences" "" diff stored.qnv compressed.qnv
expect 0 " 0 differences" "" replay compressed.qnv
[ "$(stat -c %s compressed.qnv)" -lt $(($(stat -c %s stored.qnv) / 3)) ] || fail "trim does not compress"
# What may paint there holds what does, and leaves out most of the rest.
"$tool" dump rect.qnv | grep -vE 'QNV(Enable|Disable|Control|RealizeObject|GetDeviceInfo|ColorInfo)\(' |
  sed 's/^[0-9]* //; s/ \[.*//; s/=font [0-9]*/=font/' | sort >painted
expect 0 "" "" dump host.qnv --rect 100,100,200,260
sed 's/^[0-9]* //; s/ \[.*//; s/=font [0-9]*/=font/' stdout | sort >reached
[ "$(wc -l <painted)" -eq 13 ] && [ "$(wc -l <reached)" -eq 15 ] || fail "$(wc -l painted reached)"
[ -z "$(comm -23 painted reached)" ] || fail "calls that paint there are missing: $(comm -23 painted reached)"
expect 0 "" "" dump host.qnv --rect 100,100,101,101
grep -c . stdout | grep -qx 1 && grep -qF "code=QNV_CLEAR_BAND" stdout || fail "calls at one pixel: $(cat stdout)"
expect 1 "" "--rect: LEFT,TOP,RIGHT,BOTTOM is expected, not a" dump host.qnv --rect a
expect 0 "" "" time host.qnv --runs 1 --slowest 830
grep -qE '^ +94 +[0-9]+ +57600 +[0-9]+\.[0-9]{3}  QNVControl$' stdout || fail "time of a pixel: $(grep ' 94 ' stdout)"
grep -qE '^ +0 +[0-9]+ +0 +-  QNVEnable$' stdout || fail "time of a call without pixels: $(grep ' 0 ' stdout)"
expect 1 "" "--rect: LEFT,TOP,RIGHT,BOTTOM is expected, not 1,2,3" trim host.qnv -o x.qnv --rect 1,2,3
expect 1 "" "the libraries do not differ" trim host.qnv -o x.qnv --until-differs

# A library with a defect: spans of one color are not painted. Every other function is that of the real one.
cat >defect.c <<'EOF'
#define _GNU_SOURCE
#include <dlfcn.h>
#include "qnvdrv10.h"
uint32_t QNVOutput(DeviceHandle *handle, uint32_t style, uint32_t count, const int16_t *points, const PhysicalPen *pen,
                   const PhysicalBrush *brush, const DRAWMODE *drawMode, const BandRect *clip) {
  uint32_t (*real)(DeviceHandle *, uint32_t, uint32_t, const int16_t *, const PhysicalPen *, const PhysicalBrush *,
                   const DRAWMODE *, const BandRect *);
  *(void **)&real = dlsym(RTLD_NEXT, "QNVOutput");
  if (brush != 0 && brush->style == BS_SOLID && brush->colour == 0xC0A000) return 1;
  return real(handle, style, count, points, pen, brush, drawMode, clip);
}
EOF
"${CC:-cc}" -shared -fPIC -I"$include" defect.c -o defect.so -Wl,--no-as-needed -L"$bin" -lqnvdrv10 -Wl,-rpath,"$bin" || fail "defect.c"
"$tool" print page.fig -q --paper 100x150mm --dpi 100 -o defect.ppm --library defect.so || fail "print with a defect"
QNVREC_FILE=page.qnv QNVREC_LIBRARY=$bin/libqnvdrv10.so \
  "$tool" print page.fig -q --paper 100x150mm --dpi 100 -o whole.ppm --library "$bin/libqnvrec.so" || fail "print"
expect 5 "the bands differ" "and defect.so differ at call" replay page.qnv --against defect.so --pictures differs
[ -s differs-a.png ] && [ -s differs-b.png ] || fail "no pictures of the difference"
cmp -s differs-a.png differs-b.png && fail "the pictures of the difference are equal"
expect 5 "the band before the call has the checksum" "does not do what was recorded" replay page.qnv --library defect.so
expect 0 "few.qnv: " "" trim page.qnv -o few.qnv --until-differs --against defect.so
grep -qF "1 of them drawing calls" stdout || fail "more than one call shows the difference: $(cat stdout)"
expect 0 "brush=solid 0xC0A000" "" dump few.qnv --call output --color 0xC0A000
expect 5 "the bands differ" "differ at call" replay few.qnv --against defect.so

# The same calls as a program, which shows the defect as well, and so does the whole page of the host.
expect 0 "" "" to-c few.qnv -o few.c
"${CC:-cc}" -std=c99 -Wall -Wextra -Werror -I"$include" few.c -o few -L"$bin" -lqnvdrv10 -Wl,-rpath,"$bin" || fail "few.c"
mkdir right wrong page-bands
(cd right && ../few >../stdout) || fail "few: $(cat stdout)"
(cd wrong && LD_PRELOAD=../defect.so ../few >../stdout) || fail "few with a defect: $(cat stdout)"
[ "$(ls right)" = "$(ls wrong)" ] && [ -n "$(ls right)" ] || fail "the programs write different bands"
diff -rq right wrong >stdout && fail "the program does not show the defect"
expect 0 "" "" to-c host.qnv -o page.c
"${CC:-cc}" -std=c99 -Wall -Wextra -Werror -I"$include" page.c -o page -L"$bin" -lqnvdrv10 -Wl,-rpath,"$bin" || fail "page.c"
(cd page-bands && ../page >../stdout) || fail "page: $(cat stdout)"
# Its last band is the end of the page: 72 rows of the 96 in memory.
if ! python3 - host.ppm page-bands/band-1-829.pnm <<'EOF'
import sys
page, band = (open(name, 'rb').read() for name in sys.argv[1:3])
assert band.startswith(b'P6\n600 96\n255\n')
assert page[-72 * 1800:] == band[-96 * 1800:][:72 * 1800]
EOF
then
  fail "the program paints another page"
fi

# Without a file nothing is recorded and nothing is different.
QNVREC_LIBRARY=$bin/libqnvdrv10.so LD_PRELOAD=$bin/libqnvrec.so "$bin/example_host" off.bmp || fail "recorder off"
cmp -s plain.bmp off.bmp || fail "the recorder changed the picture while off"
# The .ini file beside the recorder is named after it.
mkdir ini && cp "$bin/libqnvrec.so" ini/libqnvdrv10.so && cp "$bin/libqnvdrv10.so" ini/libqnvdrv10_real.so
printf '; recorder\nfile = ini/%%p.qnv\r\nhash=call\n' >ini/libqnvdrv10.ini
LD_LIBRARY_PATH=$work/ini LD_PRELOAD=$work/ini/libqnvdrv10.so "$bin/example_host" ini.bmp || fail "host with .ini"
expect 0 "830 calls compared, 0 differences" "" diff ini/[0-9]*.qnv host.qnv
# A recorder without a library says so.
QNVREC_LIBRARY=/nowhere.so LD_PRELOAD=$bin/libqnvrec.so "$bin/example_host" none.bmp 2>stderr
[ $? -eq 3 ] || fail "the host did not notice the missing library"
grep -qF "qnvrec: no library to record: " stderr || fail "no word of the missing library: $(cat stderr)"
QNVREC_FILE=/nowhere/x.qnv QNVREC_LIBRARY=$bin/libqnvdrv10.so LD_PRELOAD=$bin/libqnvrec.so \
  "$bin/example_host" none.bmp 2>stderr || fail "a file that cannot be written stops the host"
grep -qF "qnvrec: cannot write /nowhere/x.qnv; nothing is recorded" stderr || fail "cannot write: $(cat stderr)"

# A host may be told of its mistakes while it runs.
cat >asks.c <<'EOF'
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "qnvrec.h"

static void told(const QNVFinding *finding, void *context) {
  printf("%u %d call %d %s %s %s, %zu %zu\n", finding->mistake, finding->size == sizeof *finding, (int)finding->call,
         finding->function, finding->argument, (const char *)context, strlen(finding->wrong), strlen(finding->advice));
}

int main(void) {
  static unsigned char band[30 * 10];
  DeviceDescription description = {QNV_KIND_RASTER, 24, 300, 10, 10, 300};
  BandRect rect = {0, 0, 10, 10};
  DeviceHandle *device = QNVEnable(&description, &rect, band, 0);
  QNVRecOnFindingFunction on_finding = (QNVRecOnFindingFunction)dlsym(RTLD_DEFAULT, "QNVRecOnFinding");
  if (on_finding == 0) return puts("not recorded") < 0;
  printf("checked: %u\n", on_finding(told, (void *)"first"));
  QNVDevBitBlt(device, 0, 0, 0, 0, 0, 9, 9, 0x00000042, 0, 0, 0);
  on_finding(told, (void *)"second");
  QNVDisable(device);
  QNVControl(device, QNV_CLEAR_BAND, 0, 0);
  on_finding(0, 0);
  QNVControl(device, QNV_CLEAR_BAND, 0, 0);
  return 0;
}
EOF
"${CC:-cc}" -I"$include" asks.c -o asks -L"$bin" -lqnvdrv10 -Wl,-rpath,"$bin" || fail "asks.c"
[ "$(./asks)" = "not recorded" ] || fail "a host without the recorder finds its function"
expect 0 "checked: 0" "" record -o asks.qnv -- ./asks
grep -q "call [0-9]" stdout && fail "findings without checks: $(cat stdout)"
QNVREC_FILE=asks.qnv QNVREC_CHECK=1 QNVREC_LIBRARY=$bin/libqnvdrv10.so LD_PRELOAD=$bin/libqnvrec.so ./asks >stdout 2>stderr
expected='checked: 1
2 1 call 1 QNVDevBitBlt clip first, 54 67
1 1 call 3 QNVControl handle second, 78 103'
[ "$(cat stdout)" = "$expected" ] || fail "the host is told: $(cat stdout)"
expect 5 "5 calls, 3 mistakes" "the host makes mistakes" check asks.qnv

# A host that ends without a word: with --flush every call before is there.
expect 2 "" "made no calls that could be recorded" record -o nothing.qnv -- true
head -c 6000 host.qnv >cut.qnv
head -c 20 host.qnv >header.qnv
expect 0 "0 differences" "header.qnv: at byte 20: the file ends inside its header; the 0 calls before it are used" \
  replay header.qnv
expect 0 "" "cut.qnv: at byte 6000: the file ends inside the block at 24" info cut.qnv
printf 'QNVCALLS\2\0\0\0\10\1\0\0........' >newer.qnv
for command in replay info dump check time; do
  expect 2 "" "newer.qnv: at byte 8: version 2 is newer than 1" "$command" newer.qnv
  expect 2 "" "plain.bmp: at byte 0: this is no call file" "$command" plain.bmp
  expect 2 "" "none.qnv: at byte 0: the file cannot be opened" "$command" none.qnv
done
expect 2 "" "this is no call file" diff host.qnv plain.bmp
expect 2 "" "this is no call file" render plain.bmp -o x.png
expect 1 "" "host.qnv has 1 devices" render host.qnv -o x.png --device 2
expect 2 "" "device 1 painted no page 2" render host.qnv -o x.png --page 2
expect 4 "" "no such library file" replay host.qnv --library nowhere.so
expect 5 "call 0: QNVEnable and QNVGetDeviceInfo" "host.qnv and page.qnv differ" diff host.qnv page.qnv

finish_test
