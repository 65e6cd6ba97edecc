// A page painted band by band is the page painted at once, as far as the calls allow it: transfers count the cells of
// their pattern from the band's corner, and the source mapping of a stretched image starts at the part of it that the
// band shows, so both stay out here.
#include <gtest/gtest.h>

#include <vector>

#include "support/plane_image.h"
#include "support/scene.h"
#include "support/test_device.h"
#include "support/text.h"

namespace qnv::test {
namespace {

struct PageCase {
  const char* name;
  uint16_t bitsPerPixel;
  uint32_t bandRows;
};

constexpr uint32_t kColumns = 48;
constexpr uint32_t kRows = 33;

constexpr PageCase kPages[] = {
    {"24 bits, bands of one row", 24, 1}, {"24 bits, bands of seven rows", 24, 7}, {"24 bits, two bands", 24, 20},
    {"8 bits, bands of one row", 8, 1},   {"8 bits, bands of eleven rows", 8, 11},
};

// The rows of the page, one band after the other, each band cleared before it is painted.
std::vector<uint8_t> PaintPage(const Scene& scene, uint16_t bitsPerPixel, uint32_t bandRows) {
  TestDevice device({.bitsPerPixel = bitsPerPixel, .width = kColumns, .height = kRows});
  std::vector<uint8_t> page;
  for (uint32_t top = 0; top < kRows; top += bandRows) {
    const uint32_t rows = std::min(bandRows, kRows - top);
    const BandRect band{0, static_cast<int32_t>(top), kColumns, static_cast<int32_t>(top + rows)};
    device.SetOrigin(0, 0);
    QNVControl(device.handle(), QNV_SET_BAND_RECT, &band, nullptr);
    device.Clear();
    for (std::size_t step = 0; step < scene.size(); ++step) scene.Play(step, device.handle());
    const std::vector<uint8_t> bytes = device.BandBytes();
    page.insert(page.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(rows * device.stride()));
    EXPECT_TRUE(device.FencesIntact());
  }
  return page;
}

TEST(Bands, PageInBandsEqualsPageAtOnce) {
  for (const PageCase& c : kPages) {
    for (uint64_t seed = 300; seed < 340; ++seed) {
      SCOPED_TRACE(Text(c.name, ", seed ", seed));
      const Scene scene(seed, {.width = kColumns,
                               .height = kRows,
                               .gray = c.bitsPerPixel == 8,
                               .nullDrawModes = false,
                               .cellTransfers = false,
                               .stretchedImages = false});
      const uint32_t bytesPerPixel = c.bitsPerPixel / 8u;
      const auto image = [&](uint32_t rows) {
        return PlaneImage("page", kColumns, kRows, kColumns * bytesPerPixel, static_cast<int>(bytesPerPixel),
                          PaintPage(scene, c.bitsPerPixel, rows));
      };
      ASSERT_TRUE(SameImage(image(kRows), image(c.bandRows)));
    }
  }
}

}  // namespace
}  // namespace qnv::test
