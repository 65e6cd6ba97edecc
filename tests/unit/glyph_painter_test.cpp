// Glyphs on the resolution-mapping device, against a painter that maps every pixel by itself.
#include "text/glyph_painter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "support/fenced_buffer.h"
#include "unit/resolutions.h"

namespace qnv {
namespace {

using test::FencedBuffer;

constexpr uint32_t kText = 0x030201, kBackground = 0x0C0B0A;

struct Glyph {
  FencedBuffer bits;
  PlacedGlyph placed;

  Glyph(std::mt19937& random, int32_t x, int32_t y, int32_t width, int32_t height)
      : bits(static_cast<std::size_t>((width + 7) / 8 * height), 0), placed{bits.data(), x, y, width, height} {
    for (std::size_t i = 0; i < bits.size(); ++i) bits.data()[i] = static_cast<uint8_t>(random());
  }
  bool At(int32_t column, int32_t row) const {
    return (placed.bits[column / 8 * placed.height + row] >> (7 - column % 8) & 1) != 0;
  }
};

void PaintNaively(const BandView& band, const CoordinateMap& map, bool transparent, const Rect& limits,
                  const Glyph& glyph) {
  for (int32_t row = 0; row < glyph.placed.height; ++row) {
    for (int32_t column = 0; column < glyph.placed.width; ++column) {
      const int32_t x = glyph.placed.x + column, y = glyph.placed.y + row;
      int32_t bandColumn;
      if (!Contains(limits, x, y) || !map.TableColumn(x, &bandColumn)) continue;
      const int32_t bandRow = map.MapToBand(y);
      const bool set = glyph.At(column, row);
      if (!Contains(band.rect, bandColumn, bandRow) || (transparent && !set)) continue;
      std::memcpy(band.At(bandColumn, bandRow), set ? &kText : &kBackground, 3);
    }
  }
}

void Compare(std::mt19937& random, const CoordinateMap& map, bool transparent) {
  const auto below = [&](uint32_t end) { return static_cast<int32_t>(random() % end); };
  constexpr int32_t kColumns = 90, kRows = 70;
  const std::size_t stride = 3 * kColumns + 2;
  const int32_t left = below(300) - 20, top = below(300) - 20;
  FencedBuffer expected(stride * kRows, 0x5A), painted(stride * kRows, 0x5A);
  BandView band{expected.data(), static_cast<uint32_t>(stride), Rect{left, top, left + kColumns, top + kRows}, 3};
  const int32_t x = map.MapToPage(left) + below(400) - 200, y = map.MapToPage(top) + below(400) - 200;
  const Glyph glyph(random, x, y, 1 + below(below(4) == 0 ? 300 : 40), 1 + below(below(4) == 0 ? 400 : 60));
  Rect limits{x - 5 + below(10), y - 5 + below(10), 0, 0};
  limits.right = x + glyph.placed.width + 5 - below(10);
  limits.bottom = y + glyph.placed.height + 5 - below(10);
  PaintNaively(band, map, transparent, limits, glyph);
  band.bits = painted.data();
  const BitPainter painter(KernelsFor(DetectCpuLevel()), kText, kBackground, transparent, 3);
  PaintGlyph(band, KeptMapping{&map}, painter, limits, glyph.placed);
  ASSERT_EQ(0, std::memcmp(expected.data(), painted.data(), painted.size()))
      << glyph.placed.width << " x " << glyph.placed.height << " at " << x << ", " << y << ", band at " << left << ", "
      << top;
  ASSERT_TRUE(painted.FencesIntact());
}

TEST(KeptGlyphs, EveryPixelWhereItMapsTo) {
  for (const test::Resolutions& resolutions : test::kResolutions) {
    const test::BuiltMap map(resolutions);
    std::mt19937 random(resolutions.a);
    for (int turn = 0; turn < 300; ++turn) {
      Compare(random, map, turn % 2 != 0);
      if (HasFatalFailure()) FAIL() << resolutions << ", turn " << turn;
    }
  }
}

}  // namespace
}  // namespace qnv
