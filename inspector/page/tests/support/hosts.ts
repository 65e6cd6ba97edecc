// What the tests record: figures for the tool, and a host that makes mistakes.

// Figures over figures, with operations that keep parts of what was there.
export const kOverlapping = `
rect 5 5 40 25 fill=#1f4e79
ellipse 10 8 30 20 fill=#e4572e
rect 12 10 20 12 fill=hatch:cross:#145a32:#fbe3c0
ellipse 16 12 16 12 fill=#ffffff rop2=xor
rect 18 6 8 26 fill=#ffc914 rop2=and
text 20 20 6 "Over"
rect 19 17 4 4 fill=#17bebb
`;

// The same with one figure of another color, and one moved.
export const kChanged = kOverlapping.replace('fill=#e4572e', 'fill=#2ee457').replace('rect 19 17', 'rect 20 17');

// About 50,000 calls on one page.
export function manyFigures(count: number): string {
  let seed = 5;
  const next = (from: number, to: number) => {
    seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0;
    return from + Math.floor((seed / 2 ** 32) * (to - from));
  };
  const lines: string[] = [];
  for (let i = 0; i < count; i++) {
    const place = `${next(5, 190)} ${next(5, 280)}`;
    const color = `#${next(0, 1 << 24)
      .toString(16)
      .padStart(6, '0')}`;
    if (i % 5 === 0) lines.push(`text ${place} 5 "n${i}"`);
    else if (i % 5 === 1) lines.push(`ellipse ${place} ${next(1, 9)} ${next(1, 9)} fill=${color}`);
    else lines.push(`rect ${place} ${next(1, 12)} ${next(1, 8)} fill=${color}`);
  }
  return lines.join('\n');
}

// Two devices, two pages each at most; a call without its clip, and one with a device that has ended.
export const kMistakes = `
#include <stdlib.h>
#include <string.h>
#include "qnvdrv10.h"
static void paint(DeviceHandle *device, uint32_t color) {
  const BandRect clip = {0, 0, 40, 40};
  const LogicalBrush logical = {BS_SOLID, color, 0, 0};
  DRAWMODE mode;
  PhysicalBrush brush;
  memset(&mode, 0, sizeof mode);
  mode.Rop2 = R2_COPYPEN;
  mode.bkMode = OPAQUE;
  QNVRealizeObject(device, OBJ_BRUSH, &logical, &brush, NULL);
  QNVDevBitBlt(device, 4, 4, NULL, 0, 0, 20, 10, PATCOPY, &brush, &mode, &clip);
  QNVDevBitBlt(device, 4, 4, NULL, 0, 0, 20, 10, DSTINVERT, NULL, NULL, NULL); /* no clip */
}
int main(void) {
  const BandRect band = {0, 0, 40, 20};
  const DeviceDescription color = {QNV_KIND_RASTER, 24, 72, 40, 20, 72}, gray = {QNV_KIND_RASTER, 8, 72, 40, 20, 72};
  uint8_t *first = malloc(40 * 3 * 20), *second = malloc(40 * 20);
  DeviceHandle *device = QNVEnable(&color, &band, first, NULL);
  DeviceHandle *other = QNVEnable(&gray, &band, second, NULL);
  if (device == NULL || other == NULL) return 1;
  QNVControl(device, QNV_CLEAR_BAND, NULL, NULL);
  paint(device, 0x0000FF);
  QNVControl(other, QNV_CLEAR_BAND, NULL, NULL);
  paint(other, 0x808080);
  QNVControl(device, QNV_SET_BAND_RECT, &band, NULL);
  QNVControl(device, QNV_CLEAR_BAND, NULL, NULL);
  paint(device, 0x00FF00);
  QNVDisable(other);
  QNVDisable(device);
  return 0;
}
`;
