// The row buffers of images: never sized by a coordinate, and what lies behind the columns that a row can hold.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "image/dib_builder.h"
#include "robustness/thread_clock.h"

namespace qnv::test {
namespace {

constexpr uint32_t kRops[] = {SRCCOPY, SRCINVERT, ROP_MINIMUM};

Dib RowOf100() {
  std::vector<uint8_t> bits;
  AppendDibRow(bits, std::vector<uint32_t>(100, 0x604020), 24);
  return Dib(DibInfo(100, 1, {}), bits);
}

// Bands that are described but have no memory: their columns times three do not fit 32 bits, or their edges' difference
// not even a signed number.
TEST(RowBuffers, WideBandsWithoutMemory) {
  const Dib dib = RowOf100();
  const DRAWMODE mode = MakeDrawMode();
  const BandRect bands[] = {{0, 0, 1431655766, 1},
                            {-2000000000, 0, 2000000000, 1},
                            {-INT32_MAX - 1, -INT32_MAX - 1, INT32_MAX, INT32_MAX},
                            {0, 0, INT32_MAX, INT32_MAX}};
  for (const BandRect& band : bands) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      for (uint32_t rop : kRops) {
        const DeviceDescription description{QNV_KIND_RASTER, depth, 360, 1000, 1, 360};
        DeviceHandle* handle = QNVEnable(&description, &band, nullptr, nullptr);
        ASSERT_NE(nullptr, handle);
        const double before = ThreadSeconds();
        const int32_t left = band.left, top = band.top;
        const int32_t width = left < 0 ? INT32_MAX : band.right;
        const uint32_t result = QNVStretchDIBits(handle, 0, left, top, width, 1, 0, 0, 100, 1, dib.bits(), dib.info(),
                                                 nullptr, rop, nullptr, &mode, &band);
        EXPECT_LE(result & 0xFFFF, 1u);
        if (left == 0) {
          EXPECT_EQ(1u, result & 0xFFFF) << width << " columns, rop " << std::hex << rop;
        }
        EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds);
        QNVDisable(handle);
      }
    }
  }
}

// A band of 21,846 columns whose page is 1,431,677,610 wide.
TEST(RowBuffers, PagesFarWiderThanTheirBand) {
  const Dib dib = RowOf100();
  for (uint32_t rop : kRops) {
    TestDevice device({.kind = QNV_KIND_SCALED, .width = 21846, .height = 1, .resolutionA = 65535, .resolutionB = 1});
    const double before = ThreadSeconds();
    constexpr BandRect kPage{0, 0, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::max()};
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 1431677610, 65535, 0, 0, 100, 1}, {.rop = rop, .clip = kPage}));
    EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds);
    EXPECT_TRUE(device.FencesIntact());
  }
}

// 70,000 columns: the picture's own are counted with 16 bits, the others of the cleared row are black where rows are
// copied page by page or merged.
TEST(RowBuffers, ColumnsBehindThoseThatARowHolds) {
  constexpr uint32_t kWidth = 70000;
  constexpr uint32_t kHeld = kWidth - 65536;
  const Dib dib = RowOf100();
  struct Case {
    const char* name;
    uint16_t kind, depth;
    uint32_t rop;
    uint8_t first, behind;
  };
  const Case cases[] = {
      {"copied page by page", QNV_KIND_SCALED, 24, SRCCOPY, 0x20, 0x00},
      {"merged", QNV_KIND_RASTER, 24, ROP_MINIMUM, 0x20, 0x00},
      {"merged, gray", QNV_KIND_RASTER, 8, ROP_MINIMUM, (0x60 * 30 + 0x40 * 59 + 0x20 * 11) / 100, 0x00},
      {"copied", QNV_KIND_RASTER, 24, SRCCOPY, 0x20, 0xCC},
  };
  for (const Case& c : cases) {
    TestDevice device({.kind = c.kind, .bitsPerPixel = c.depth, .width = kWidth, .height = 2});
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, kWidth, 1, 0, 0, 100, 1}, {.rop = c.rop})) << c.name;
    for (uint32_t x = 0; x < kWidth; ++x) {
      const uint8_t expected = x < kHeld ? c.first : c.behind;
      ASSERT_EQ(expected, device.Pixel(x, 0)[0]) << c.name << ", column " << x;
      ASSERT_EQ(0xCC, device.Pixel(x, 1)[0]) << c.name << ", below column " << x;
    }
    EXPECT_TRUE(device.FencesIntact()) << c.name;
  }
}

// Right of the last column that a bitmap can have, an operation still paints what does not come from the source.
TEST(RowBuffers, PicturesRightOfTheWidestBitmap) {
  const Dib dib = RowOf100();
  TestDevice device({.width = 40000, .height = 1});
  EXPECT_EQ(1u, Stretch(device, dib, {39000, 0, 100, 1, 0, 0, 100, 1}, {.rop = WHITENESS}));
  EXPECT_EQ(1u, Stretch(device, dib, {39200, 0, 100, 1, 0, 0, 100, 1}, {.rop = SRCINVERT}));
  for (uint32_t x = 38990; x < 39310; ++x) {
    EXPECT_EQ(x >= 39000 && x < 39100 ? 0xFF : 0xCC, device.Pixel(x, 0)[0]) << x;
  }
  EXPECT_TRUE(device.FencesIntact());
}

}  // namespace
}  // namespace qnv::test
