// The resolution-mapping device: where a page coordinate lands, and which page rows and columns have a place at all.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/plane_image.h"
#include "support/test_device.h"
#include "support/text.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

struct Resolutions {
  uint16_t a;
  uint16_t b;
};

std::string NameOf(const Resolutions& r) { return std::to_string(r.a) + " to " + std::to_string(r.b); }

struct RoundedCase {
  Resolutions resolutions;
  std::vector<std::array<int32_t, 2>> pageToBand;
};

// An exact half goes away from zero.
const RoundedCase kRounded[] = {
    {{360, 360}, {{0, 0}, {17, 17}, {-9, -9}}},
    {{720, 360}, {{0, 0}, {1, 1}, {2, 1}, {3, 2}, {18, 9}, {19, 10}, {20, 10}, {21, 11}}},
    {{720, 360}, {{-1, -1}, {-2, -1}, {-3, -2}, {-4, -2}}},
    {{2, 1}, {{19, 10}, {-1, -1}}},
    {{600, 400}, {{1, 1}, {2, 1}, {3, 2}, {4, 3}, {5, 3}, {-1, -1}, {-2, -1}, {-4, -3}}},
    {{7, 5}, {{1, 1}, {2, 1}, {5, 4}, {6, 4}}},
    {{360, 720}, {{10, 20}, {-3, -6}}},
    {{360, 1440}, {{5, 20}}},
    {{400, 600}, {{1, 2}, {3, 5}, {-1, -2}, {-3, -5}}},
    // The ends of the 16-bit resolutions.
    {{65535, 1}, {{32767, 0}, {32768, 1}}},
    {{65535, 65535}, {{21, 21}}},
    {{1, 20}, {{1, 20}, {-1, -20}}},
};

TEST(ScaledCoordinates, PixelsAreRoundedToTheNearest) {
  const DRAWMODE mode = MakeDrawMode();
  for (const RoundedCase& c : kRounded) {
    for (const auto& [page, band] : c.pageToBand) {
      SCOPED_TRACE(Text(NameOf(c.resolutions), ", page ", page));
      ScaledDevice device({.width = 45,
                           .height = 45,
                           .resolutionA = c.resolutions.a,
                           .resolutionB = c.resolutions.b,
                           .left = -22,
                           .top = -22});
      PlaneImage expected = BandImage(device);
      QNVPixel(device.handle(), page, page, 0x010203, &mode, &kEverywhere);
      expected.Set(band + 22, band + 22, {1, 2, 3});
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

struct KeptCase {
  Resolutions resolutions;
  std::vector<int32_t> band;  // of page 0, 1, 2 ...; -1 where the page row or column has no place
};

const KeptCase kKept[] = {
    {{360, 360}, {0, 1, 2, 3, 4, 5, 6, 7}},
    {{720, 360}, {0, -1, 1, -1, 2, -1, 3, -1, 4, -1}},
    {{2, 1}, {0, -1, 1, -1, 2, -1, 3, -1}},
    {{3, 1}, {0, -1, -1, 1, -1, -1, 2, -1, -1, 3}},
    {{600, 400}, {0, 1, -1, 2, 3, -1, 4, 5, -1, 6}},
    {{3, 2}, {0, 1, -1, 2, 3, -1, 4, 5, -1, 6}},
    {{7, 5}, {0, 1, -1, 2, 3, -1, 4, 5, 6, -1, 7, 8, -1, 9}},
    {{360, 720}, {0, 2, 4, 6, 8}},
    {{360, 1440}, {0, 4, 8, 12}},
    {{400, 600}, {0, 2, 3, 5, 6, 8, 9}},
    {{1, 3}, {0, 3, 6, 9}},
    {{1, 1}, {0, 1, 2, 3, 4}},
};

// A transfer of one page pixel paints one band pixel or none.
TEST(ScaledCoordinates, TransfersKeepOrDropWholeRowsAndColumns) {
  for (const KeptCase& c : kKept) {
    const int32_t count = static_cast<int32_t>(c.band.size());
    for (int32_t y = 0; y < count; ++y) {
      for (int32_t x = 0; x < count; ++x) {
        SCOPED_TRACE(Text(NameOf(c.resolutions), ", page (", x, ", ", y, ")"));
        ScaledDevice device(
            {.width = 16, .height = 16, .resolutionA = c.resolutions.a, .resolutionB = c.resolutions.b});
        PlaneImage expected = BandImage(device);
        const int32_t column = c.band[static_cast<std::size_t>(x)];
        const int32_t row = c.band[static_cast<std::size_t>(y)];
        if (column >= 0 && row >= 0) expected.Set(column, row, {0, 0, 0});
        EXPECT_EQ(1u, Transfer(device.handle(), {.at = {x, y}, .size = {1, 1}, .rop = BLACKNESS}));
        EXPECT_TRUE(BandShows(device, expected));
      }
    }
  }
}

// Eight page columns and rows belong to a band of five at 600 to 400; the last kept one would round to a sixth. It is
// dropped, also where the band is smaller than its buffer, which goes on there.
TEST(ScaledCoordinates, NothingLandsOnePastTheBand) {
  for (uint32_t buffer : {5u, 12u}) {
    for (int32_t extent : {8, 100}) {
      SCOPED_TRACE(Text("buffer ", buffer, ", extent ", extent));
      ScaledDevice device({.width = buffer, .height = buffer, .resolutionA = 600, .resolutionB = 400});
      const BandRect band{0, 0, 5, 5};
      QNVControl(device.handle(), QNV_SET_BAND_RECT, &band, nullptr);
      PlaneImage expected = BandImage(device);
      expected.Fill(band, {0, 0, 0});
      EXPECT_EQ(1u, Transfer(device.handle(), {.size = {extent, extent}, .rop = BLACKNESS}));
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

}  // namespace
}  // namespace qnv::test
