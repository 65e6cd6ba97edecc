// Figures: fills, binary operations, span encodings.
#include <algorithm>

#include "golden/scene.h"
#include "output/output_call.h"

namespace qnv::test {

std::vector<ScenePicture> PaintHatchesAndPatterns() {
  TestDevice device({.width = 176, .height = 176});
  device.Clear();
  FillRectangle(device, {0, 0, 88, 176}, 0xC8F0F0);
  // Hatches: transparent, opaque, doubled.
  for (int16_t hatch = 0; hatch < 6; ++hatch) {
    for (int32_t kind = 0; kind < 3; ++kind) {
      PhysicalBrush brush = HatchBrush(device.handle(), hatch, 0x0000C0 + 0x180020u * static_cast<uint32_t>(hatch));
      if (kind == 2) brush.hatchScale[0] = brush.hatchScale[1] = 2;
      DRAWMODE mode = MakeDrawMode();
      mode.bkMode = kind == 1 ? OPAQUE : TRANSPARENT;
      mode.bkColor = 0xFFE0C0;
      const int32_t left = 4 + 28 * hatch;
      const int32_t top = 4 + 34 * kind;
      FillRectangle(device, {left, top, left + 25, top + 31}, brush, mode);
    }
  }
  // Patterns: 24, 8 and 1 bits, then the one-bit one doubled.
  uint8_t colors[8 * 24];
  uint8_t grays[64];
  for (uint32_t i = 0; i < 64; ++i) {
    colors[3 * i] = static_cast<uint8_t>(i % 8 * 36);  // red
    colors[3 * i + 1] = static_cast<uint8_t>(i / 8 * 36);
    colors[3 * i + 2] = 128;
    grays[i] = static_cast<uint8_t>(i * 4);
  }
  const uint8_t arrow[16] = {0xEF, 0, 0xC7, 0, 0x83, 0, 0xEF, 0, 0xEF, 0, 0xEF, 0, 0xEF, 0, 0xFF, 0};
  const SourceBitmap bitmaps[] = {
      {0, 8, 8, 24, 1, 24, colors}, {0, 8, 8, 8, 1, 8, grays}, {0, 8, 8, 2, 1, 1, arrow}, {0, 8, 8, 2, 1, 1, arrow}};
  for (int32_t i = 0; i < 4; ++i) {
    PhysicalBrush brush = PatternBrush(device.handle(), bitmaps[i]);
    if (i == 3) brush.hatchScale[0] = brush.hatchScale[1] = 2;
    DRAWMODE mode = MakeDrawMode();
    mode.TextColor = 0x800000;
    mode.bkColor = 0x80FFFF;
    FillRectangle(device, {4 + 42 * i, 108, 43 + 42 * i, 172}, brush, mode);
  }
  return {{"hatches_and_patterns", BandPicture(device)}};
}

std::vector<ScenePicture> PaintRop2Bars() {
  TestDevice device({.width = 164, .height = 120});
  device.Clear();
  // Behind: color stripes from left to right, and the photograph.
  const uint32_t stripes[] = {0x000000, 0x0000FF, 0x00FF00, 0xFF0000, 0x808080, 0xFFFFFF};
  for (int32_t i = 0; i < 6; ++i) FillRectangle(device, {2, 2 + 10 * i, 162, 12 + 10 * i}, stripes[i]);
  Stretch(device, PhotoDib(24), {2, 62, 160, 44, 0, 0, kPhotoWidth, kPhotoHeight});
  // One bar for each operation, half solid, half hatched.
  for (int16_t code = 1; code <= 16; ++code) {
    DRAWMODE mode = MakeDrawMode();
    mode.Rop2 = code;
    mode.bkMode = TRANSPARENT;
    const int32_t left = 3 + 10 * (code - 1);
    FillRectangle(device, {left, 4, left + 4, 104}, SolidBrush(device.handle(), 0x20A0F0), mode);
    FillRectangle(device, {left + 4, 4, left + 8, 104}, HatchBrush(device.handle(), HS_HORIZONTAL, 0x20A0F0), mode);
  }
  for (int32_t code = 1; code <= 16; code += 3) Caption(device, 2 + 10 * (code - 1), 109, std::to_string(code));
  return {{"rop2_bars", BandPicture(device)}};
}

namespace {

// Half of a row's span through a disc of this radius, exact in whole numbers.
int16_t HalfWidth(int32_t radius, int32_t row) {
  int16_t half = 0;
  while ((half + 1) * (half + 1) + row * row <= radius * radius) ++half;
  return half;
}

}  // namespace

std::vector<ScenePicture> PaintSpanEncodings() {
  TestDevice device({.width = 192, .height = 128});
  device.Clear();
  const DRAWMODE mode = MakeDrawMode();
  const auto paint = [&](uint32_t style, uint32_t count, const std::vector<int16_t>& words,
                         const std::vector<int>& deltas, uint32_t color) {
    const PhysicalPen pen = SolidPen(device.handle(), color);
    EXPECT_EQ(1u, CallOutput(device, style, count, SpanListBytes(words, deltas), {.pen = &pen, .drawMode = &mode}));
  };
  // A ladder of scanlines.
  for (int16_t y = 4; y < 56; y = static_cast<int16_t>(y + 4)) {
    paint(OS_SCANLINES, 4, {0, y, 4, 12, 20, static_cast<int16_t>(20 + y / 2), 52, 60}, {}, 0x0000C0);
  }
  // A frame of banded records.
  paint(OS_BANDED_SPANS, 3, {2, 4, 10, 68, 124, 2, 4, 10, 50, 68, 74, 118, 124, 4, 2, 50, 56, 68, 124, 2}, {},
        0x008000);
  // A ring of row records.
  std::vector<int16_t> ring = {4};
  for (int32_t row = -25; row <= 25; ++row) {
    const int16_t outer = HalfWidth(25, row);
    if (std::abs(row) > 13) {
      ring.insert(ring.end(), {2, static_cast<int16_t>(158 - outer), static_cast<int16_t>(159 + outer)});
    } else {
      const int16_t inner = HalfWidth(14, row);
      ring.insert(ring.end(), {4, static_cast<int16_t>(158 - outer), static_cast<int16_t>(158 - inner),
                               static_cast<int16_t>(159 + inner), static_cast<int16_t>(159 + outer)});
    }
  }
  paint(OS_ROW_RECORDS, 51, ring, {}, 0xC04000);
  // A disc of row spans.
  std::vector<int16_t> disc = {66};
  for (int32_t row = -28; row <= 28; ++row) {
    const int16_t half = HalfWidth(28, row);
    disc.insert(disc.end(), {static_cast<int16_t>(33 - half), static_cast<int16_t>(34 + half)});
  }
  paint(OS_ROW_SPANS, 57, disc, {}, 0x00C0F0);
  // A triangle of byte deltas, and a slanted bar of nibble deltas.
  std::vector<int> triangle;
  for (int row = 1; row < 52; ++row) triangle.insert(triangle.end(), {row % 2 == 0 ? -1 : 0, row % 2 == 0 ? 1 : 0});
  paint(OS_BYTE_DELTAS, 52, {68, 96, 97}, triangle, 0xC000C0);
  std::vector<int> bar;
  for (int row = 1; row < 52; ++row) bar.push_back(row < 26 ? 0x11 : 0xFF);
  paint(OS_NIBBLE_DELTAS, 52, {68, 132, 152}, bar, 0x606060);
  return {{"span_encodings", BandPicture(device)}};
}

}  // namespace qnv::test
