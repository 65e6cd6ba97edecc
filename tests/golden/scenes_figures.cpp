// Figures: fills, binary operations, span encodings; and transfers of every named operation and a few others.
#include <algorithm>

#include "golden/scene.h"
#include "output/output_call.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

std::vector<PlaneImage> PaintHatchesAndPatterns() {
  const Cleared<TestDevice> device({.width = 176, .height = 176});
  FillRectangle(device, {0, 0, 88, 176}, 0xC8F0F0);
  // Hatches: transparent, opaque, doubled.
  for (int16_t hatch = 0; hatch < 6; ++hatch) {
    for (int32_t kind = 0; kind < 3; ++kind) {
      PhysicalBrush brush = HatchBrush(device.handle(), hatch, 0x0000C0 + 0x180020u * static_cast<uint32_t>(hatch));
      if (kind == 2) brush.hatchScale[0] = brush.hatchScale[1] = 2;
      const DRAWMODE mode = MakeDrawMode({.bkMode = kind == 1 ? OPAQUE : TRANSPARENT, .background = 0xFFE0C0});
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
    FillRectangle(device, {4 + 42 * i, 108, 43 + 42 * i, 172}, brush,
                  MakeDrawMode({.background = 0x80FFFF, .text = 0x800000}));
  }
  return {BandPicture("hatches_and_patterns", device)};
}

std::vector<PlaneImage> PaintRop2Bars() {
  const Cleared<TestDevice> device({.width = 164, .height = 120});
  // Behind: color stripes from left to right, and the photograph.
  const uint32_t stripes[] = {0x000000, 0x0000FF, 0x00FF00, 0xFF0000, 0x808080, 0xFFFFFF};
  for (int32_t i = 0; i < 6; ++i) FillRectangle(device, {2, 2 + 10 * i, 162, 12 + 10 * i}, stripes[i]);
  Stretch(device, PhotoDib(24), {2, 62, 160, 44, 0, 0, kPhotoWidth, kPhotoHeight});
  // One bar for each operation, half solid, half hatched.
  for (int16_t code = 1; code <= 16; ++code) {
    const DRAWMODE mode = MakeDrawMode({.rop2 = code, .bkMode = TRANSPARENT});
    const int32_t left = 3 + 10 * (code - 1);
    FillRectangle(device, {left, 4, left + 4, 104}, SolidBrush(device.handle(), 0x20A0F0), mode);
    FillRectangle(device, {left + 4, 4, left + 8, 104}, HatchBrush(device.handle(), HS_HORIZONTAL, 0x20A0F0), mode);
  }
  for (int32_t code = 1; code <= 16; code += 3) Caption(device, 2 + 10 * (code - 1), 109, std::to_string(code));
  return {BandPicture("rop2_bars", device)};
}

// Half of a row's span through a disc of this radius, exact in whole numbers.
int HalfWidth(int radius, int row) {
  int half = 0;
  while ((half + 1) * (half + 1) + row * row <= radius * radius) ++half;
  return half;
}

std::vector<PlaneImage> PaintSpanEncodings() {
  const Cleared<TestDevice> device({.width = 192, .height = 128});
  const DRAWMODE mode = MakeDrawMode();
  const auto paint = [&](uint32_t style, uint32_t count, const std::vector<int>& words, const std::vector<int>& deltas,
                         uint32_t color) {
    const PhysicalPen pen = SolidPen(device.handle(), color);
    const std::vector<uint8_t> list = SpanListBytes(std::vector<int16_t>(words.begin(), words.end()), deltas);
    EXPECT_EQ(1u, CallOutput(device, style, count, list, {.pen = &pen, .drawMode = &mode}));
  };
  // A ladder of scanlines, and a frame of banded records.
  for (int y = 4; y < 56; y += 4) paint(OS_SCANLINES, 4, {0, y, 4, 12, 20, 20 + y / 2, 52, 60}, {}, 0x0000C0);
  paint(OS_BANDED_SPANS, 3, {2, 4, 10, 68, 124, 2, 4, 10, 50, 68, 74, 118, 124, 4, 2, 50, 56, 68, 124, 2}, {},
        0x008000);
  // A ring of row records.
  std::vector<int> ring = {4};
  for (int row = -25; row <= 25; ++row) {
    const int outer = HalfWidth(25, row), inner = HalfWidth(14, row);
    if (std::abs(row) > 13) {
      ring.insert(ring.end(), {2, 158 - outer, 159 + outer});
    } else {
      ring.insert(ring.end(), {4, 158 - outer, 158 - inner, 159 + inner, 159 + outer});
    }
  }
  paint(OS_ROW_RECORDS, 51, ring, {}, 0xC04000);
  // A disc of row spans.
  std::vector<int> disc = {66};
  for (int row = -28; row <= 28; ++row) {
    disc.insert(disc.end(), {33 - HalfWidth(28, row), 34 + HalfWidth(28, row)});
  }
  paint(OS_ROW_SPANS, 57, disc, {}, 0x00C0F0);
  // A triangle of byte deltas, and a slanted bar of nibble deltas.
  std::vector<int> triangle, bar;
  for (int row = 1; row < 52; ++row) {
    triangle.insert(triangle.end(), {row % 2 == 0 ? -1 : 0, row % 2 == 0 ? 1 : 0});
    bar.push_back(row < 26 ? 0x11 : 0xFF);
  }
  paint(OS_BYTE_DELTAS, 52, {68, 96, 97}, triangle, 0xC000C0);
  paint(OS_NIBBLE_DELTAS, 52, {68, 132, 152}, bar, 0x606060);
  return {BandPicture("span_encodings", device)};
}

constexpr uint32_t kOperations[] = {BLACKNESS,  NOTSRCERASE, NOTSRCCOPY, SRCERASE,   DSTINVERT, PATINVERT,
                                    SRCINVERT,  SRCAND,      0x00AA0029, MERGEPAINT, MERGECOPY, SRCCOPY,
                                    0x00E20746, SRCPAINT,    PATCOPY,    PATPAINT,   WHITENESS, 0x00B8074A};

// 24 x 24 pixels: a disc in red, green, blue bytes over a ramp, and a ring of one bit a pixel, set bits outside.
struct TransferSources {
  std::vector<uint8_t> colorBytes, oneBitBytes = std::vector<uint8_t>(24 * 4, 0);

  TransferSources() {
    for (int y = 0; y < 24; ++y) {
      for (int x = 0; x < 24; ++x) {
        const int distance = (x - 12) * (x - 12) + (y - 12) * (y - 12);
        const bool disc = distance < 80;
        for (const int c : {disc ? 255 : x * 10, disc ? 160 : y * 10, disc ? 0 : 128}) {
          colorBytes.push_back(static_cast<uint8_t>(c));
        }
        if (distance <= 110 && distance >= 30) continue;
        oneBitBytes[static_cast<std::size_t>(y * 4 + x / 8)] |= static_cast<uint8_t>(0x80 >> (x % 8));
      }
    }
  }
  SourceBitmap Color() const { return {0, 24, 24, 72, 1, 24, colorBytes.data()}; }
  SourceBitmap OneBit() const { return {0, 24, 24, 4, 1, 1, oneBitBytes.data()}; }
};

std::vector<PlaneImage> PaintTransfers() {
  const Cleared<TestDevice> device({.width = 250, .height = 172});
  const TransferSources sources;
  const SourceBitmap color = sources.Color(), oneBit = sources.OneBit();
  const DRAWMODE mode = MakeDrawMode({.background = 0x80E0FF, .text = 0xA00000});
  const PhysicalBrush hatch = HatchBrush(device.handle(), HS_DIAGCROSS, 0x0000FF, 0xFFFFFF);
  const PhysicalBrush solid = SolidBrush(device.handle(), 0x30B060);
  for (int32_t i = 0; i < 18; ++i) {
    const int32_t x = 4 + i % 9 * 27;
    const int32_t y = 4 + i / 9 * 84;
    // The ground: upper half a color, lower half white, a black bar at the left.
    FillRectangle(device, {x, y, x + 24, y + 80}, 0xF0D0B0);
    FillRectangle(device, {x, y + 12, x + 24, y + 24}, 0xFFFFFF);
    FillRectangle(device, {x, y + 40, x + 24, y + 52}, 0xFFFFFF);
    FillRectangle(device, {x, y, x + 5, y + 80}, 0x000000);
    const auto blit = [&](int32_t top, const SourceBitmap& source, const PhysicalBrush& brush) {
      EXPECT_EQ(1u, Transfer(device.handle(), {.at = {x, top},
                                               .source = &source,
                                               .size = {24, 24},
                                               .rop = kOperations[i],
                                               .brush = &brush,
                                               .drawMode = &mode}));
    };
    blit(y, color, hatch);
    blit(y + 28, oneBit, hatch);
    blit(y + 56, oneBit, solid);
  }
  return {BandPicture("transfers", device)};
}

}  // namespace

std::vector<PaintedScene> FigureScenes() {
  return {{"hatches_and_patterns", PaintHatchesAndPatterns},
          {"rop2_bars", PaintRop2Bars},
          {"span_encodings", PaintSpanEncodings},
          {"transfers", PaintTransfers}};
}

}  // namespace qnv::test
