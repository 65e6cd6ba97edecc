// The resolution-mapping device at ratios near their limits: its work follows the band's pixels and the source's rows,
// never a coordinate, and what it paints is what the slow model paints.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>

#include "image/dib_builder.h"
#include "random/random.h"
#include "robustness/modelled_device.h"
#include "robustness/thread_clock.h"
#include "text/font_builder.h"

namespace qnv::test {
namespace {

constexpr BandRect kWholePage{0, 0, INT32_MAX, INT32_MAX};

struct Ratio {
  uint16_t a, b;
};

constexpr Ratio kRatios[] = {{65535, 1}, {65535, 2}, {65535, 65534}, {65534, 65535}, {65535, 65535}, {1, 65535},
                             {40000, 3}, {3, 40000}, {256, 1},       {1, 256},       {2, 65535},     {1000, 999}};

// A coordinate near a multiple of the page pixels of an inch, or of a band pixel.
int32_t NearAnEdge(Random& random, const Ratio& ratio, int32_t inches) {
  const int32_t step = random.Percent(50) ? ratio.a : std::max(ratio.a / ratio.b, 1);
  return random.Range(0, inches) * step + random.Range(-3, 3);
}

// A band of 13 x 7 near the page's corner, in color or gray.
DeviceOptions BandSomewhere(Random& random, const Ratio& ratio) {
  return {.kind = QNV_KIND_SCALED,
          .bitsPerPixel = static_cast<uint16_t>(random.Percent(25) ? 0 : 24),
          .width = 13,
          .height = 7,
          .resolutionA = ratio.a,
          .resolutionB = ratio.b,
          .left = random.Range(-3, 3),
          .top = random.Range(-3, 3)};
}

TEST(MappingRatios, TransfersAndImagesAsTheModelPaintsThem) {
  Random random(20261);
  int changed = 0;  // devices on which something is to be seen
  const std::vector<uint8_t> pixels = [&] {
    std::vector<uint8_t> bytes(3 * 300 * 40);
    random.Fill(bytes.data(), bytes.size());
    return bytes;
  }();
  for (int round = 0; round < 40; ++round) {
    for (const Ratio& ratio : kRatios) {
      ModelledDevice device(BandSomewhere(random, ratio));
      ASSERT_NE(nullptr, device.model);
      const DRAWMODE mode = MakeDrawMode();
      const PhysicalBrush brush = SolidBrush(device.handle(), 0x00305070);
      for (int call = 0; call < 12; ++call) {
        const int32_t x = NearAnEdge(random, ratio, 3), y = NearAnEdge(random, ratio, 3);
        const int32_t width = random.Range(1, random.Percent(20) ? 2500 : 300), height = random.Range(1, 40);
        const uint32_t rops[] = {SRCCOPY, SRCINVERT, PATCOPY, DSTINVERT, WHITENESS, MERGECOPY};
        const uint32_t rop = rops[random.Range(0, 5)];
        if (random.Percent(60)) {
          const SourceBitmap source{0, 300, 40, 900, 1, 24, pixels.data()};
          QNVDevBitBlt(device.handle(), x, y, &source, 0, 0, width, height, rop, &brush, &mode, &kWholePage);
          device.model->BitBlt({x, y, &source, 0, 0, width, height, rop, &brush, &mode, &kWholePage});
        } else {
          const std::vector<uint8_t> info = DibInfo(300, 40, {});
          QNVStretchDIBits(device.handle(), 0, x, y, width, height, 0, 0, 300, 40, pixels.data(), info.data(), nullptr,
                           rop, &brush, &mode, &kWholePage);
          device.model->StretchDIBits(
              {0, x, y, width, height, 0, 0, 300, 40, pixels.data(), info.data(), rop, &brush, &mode, &kWholePage});
        }
        ASSERT_EQ(device.model->band().bytes(), device.BandBytes())
            << ratio.a << " to " << ratio.b << ", round " << round << ", call " << call;
        ASSERT_TRUE(device.FencesIntact());
      }
      changed += device.BandBytes() != device.before ? 1 : 0;
    }
  }
  EXPECT_GT(changed, 200);
}

// One glyph, 'a', of random bits.
Font RandomFont(Random& random, int16_t width, int16_t height) {
  std::string picture(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), '.');
  for (char& bit : picture) bit = random.Percent(3) ? '#' : '.';
  return FontBuilder({.height = height, .variablePitch = false, .fixedWidth = width})
      .Glyph('a', width, picture)
      .Build();
}

TEST(MappingRatios, TextAsTheModelPaintsIt) {
  Random random(417);
  int changed = 0;
  const std::string letters(12, 'a');
  for (int round = 0; round < 30; ++round) {
    const Font font =
        RandomFont(random, static_cast<int16_t>(random.Range(1, 200)),
                   static_cast<int16_t>(random.Percent(20) ? random.Range(500, 2000) : random.Range(1, 90)));
    for (const Ratio& ratio : kRatios) {
      ModelledDevice device(BandSomewhere(random, ratio));
      ASSERT_NE(nullptr, device.model);
      for (int call = 0; call < 6; ++call) {
        // Glyphs end at 32,767 and begin at most a width left of 0.
        const int32_t step = std::max(ratio.a / std::max<int32_t>(ratio.b, 1), 1);
        const int32_t x = random.Range(0, std::min(13, 32000 / step)) * step - random.Range(0, 200);
        const int32_t y = random.Range(0, std::min(7, 32000 / step)) * step - random.Range(0, 100);
        DRAWMODE mode = TextMode(random.Percent(50) ? TRANSPARENT : OPAQUE);
        mode.CharacterExtra = static_cast<int16_t>(random.Range(-20, 20) * std::min(step, 1000));
        DRAWMODE modelMode = mode;
        const BandRect clip{random.Range(-70000, 5), random.Range(-70000, 5), random.Range(5, 70000),
                            random.Range(5, 70000)};
        const int32_t count = random.Range(1, 12);
        QNVDevExtTextOut(device.handle(), x, y, &clip, letters.data(), count, font.base(), font.offset(), &mode,
                         nullptr, nullptr, nullptr, 0);
        device.model->ExtTextOut(
            {x, y, &clip, letters.data(), count, font.base(), font.offset(), &modelMode, nullptr, nullptr, 0});
        ASSERT_EQ(device.model->band().bytes(), device.BandBytes())
            << ratio.a << " to " << ratio.b << ", round " << round << ", call " << call;
        ASSERT_TRUE(device.FencesIntact());
      }
      changed += device.BandBytes() != device.before ? 1 : 0;
    }
  }
  EXPECT_GT(changed, 150);
}

// Glyphs of which a band row shows many rows at once, and a row more columns than fit into a byte: their rows are
// merged before they are painted, eight columns at a time. Every number of columns is in it, whole bytes and others.
TEST(MappingRatios, MergedGlyphsOfAnyWidth) {
  Random random(85);
  const uint8_t letter = 'a';
  int changed = 0;
  for (int16_t width = 10; width <= 420; width = static_cast<int16_t>(width + 10)) {
    const Font font = RandomFont(random, width, 90);
    for (int16_t bkMode : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
      const DeviceOptions options{
          .kind = QNV_KIND_SCALED, .width = 50, .height = 3, .resolutionA = 200, .resolutionB = 10};
      ModelledDevice device(options);
      ASSERT_NE(nullptr, device.model);
      DRAWMODE mode = TextMode(bkMode), modelMode = mode;
      const int32_t x = random.Range(0, 60), y = -random.Range(0, 30);
      QNVDevExtTextOut(device.handle(), x, y, &kWholePage, &letter, 1, font.base(), font.offset(), &mode, nullptr,
                       nullptr, nullptr, 0);
      device.model->ExtTextOut(
          {x, y, &kWholePage, &letter, 1, font.base(), font.offset(), &modelMode, nullptr, nullptr, 0});
      ASSERT_EQ(device.model->band().bytes(), device.BandBytes()) << width << " columns, mode " << bkMode;
      ASSERT_TRUE(device.FencesIntact());
      changed += device.BandBytes() != device.before ? 1 : 0;
    }
  }
  EXPECT_GT(changed, 70);
}

// 32,767 characters whose glyph has millions of pixels, nearly all of them on the same few of the band.
TEST(MappingRatios, TextFollowsTheBand) {
  constexpr int16_t kSide = 4000;
  const Font font = [] {
    Random random(3);
    return RandomFont(random, kSide, kSide);
  }();
  const std::vector<uint8_t> letters(32767, 'a');
  for (const Ratio& ratio : {Ratio{65535, 1}, Ratio{65535, 65534}, Ratio{1, 65535}, Ratio{40000, 3}}) {
    for (int16_t bkMode : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
      TestDevice device(
          {.kind = QNV_KIND_SCALED, .width = 7, .height = 3, .resolutionA = ratio.a, .resolutionB = ratio.b});
      DRAWMODE mode = TextMode(bkMode);
      mode.CharacterExtra = -kSide;
      const double before = ThreadSeconds();
      QNVDevExtTextOut(device.handle(), 0, 0, &kWholePage, letters.data(), 32767, font.base(), font.offset(), &mode,
                       nullptr, nullptr, nullptr, 0);
      EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds) << ratio.a << " to " << ratio.b << ", mode " << bkMode;
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

// Images of many source rows, each of which is enlarged to thousands of page columns and kept in none or in one.
TEST(MappingRatios, ImageRowsFollowTheBand) {
  constexpr int32_t kRows = 32767;
  const std::vector<uint8_t> bits(std::size_t{4} * kRows, 0x5A);
  const std::vector<uint8_t> info = DibInfo(1, kRows, {.bitCount = 1}, {0x00102030, 0x00FFFFFF});
  const DRAWMODE mode = MakeDrawMode();
  for (const Ratio& ratio : {Ratio{65535, 1}, Ratio{65535, 3}, Ratio{65535, 65534}}) {
    for (uint32_t rop : {uint32_t{SRCCOPY}, uint32_t{SRCINVERT}, uint32_t{SRCPAINT}, uint32_t{ROP_MINIMUM}}) {
      TestDevice device(
          {.kind = QNV_KIND_SCALED, .width = 3, .height = 3, .resolutionA = ratio.a, .resolutionB = ratio.b});
      const double before = ThreadSeconds();
      for (int32_t height : {65535, 40000, -65535}) {
        QNVStretchDIBits(device.handle(), 0, 0, height < 0 ? 65535 : 0, 65535, height, 0, 0, 1, kRows, bits.data(),
                         info.data(), nullptr, rop, nullptr, &mode, &kWholePage);
      }
      EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds / 4) << ratio.a << " to " << ratio.b << ", rop " << rop;
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

// Transfers over pages of 131 million columns and rows.
TEST(MappingRatios, WorkFollowsTheBand) {
  constexpr uint32_t kPixels = 2000;
  const std::vector<uint8_t> bits(32000 * 3 * 2, 0x40);
  const std::vector<uint8_t> info = DibInfo(32000, 2, {});
  const DRAWMODE mode = MakeDrawMode();
  for (int32_t left : {0, -1000, 30000}) {
    TestDevice device({.kind = QNV_KIND_SCALED,
                       .width = kPixels,
                       .height = 200,
                       .resolutionA = 65535,
                       .resolutionB = 1,
                       .left = left,
                       .top = left});
    const PhysicalBrush brush = SolidBrush(device.handle(), 0x00305070);
    const BandRect everywhere{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    const SourceBitmap source{0, 32000, 2, 0, 1, 24, bits.data()};
    for (uint32_t rop : {uint32_t{WHITENESS}, uint32_t{PATINVERT}, uint32_t{SRCCOPY}, uint32_t{SRCINVERT}}) {
      for (int32_t start : {0, INT32_MIN / 2, INT32_MIN}) {
        const double before = ThreadSeconds();
        const int32_t x = left == 30000 ? 30000 * 65535 : start;
        QNVDevBitBlt(device.handle(), x, x, &source, 0, 0, INT32_MAX, INT32_MAX, rop, &brush, &mode, &everywhere);
        QNVStretchDIBits(device.handle(), 0, x, x, INT32_MAX, INT32_MAX, 0, 0, 32000, 2, bits.data(), info.data(),
                         nullptr, rop, &brush, &mode, &everywhere);
        EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds) << "band at " << left << ", rop " << std::hex << rop;
      }
    }
    EXPECT_TRUE(device.FencesIntact());
  }
}

}  // namespace
}  // namespace qnv::test
