// Scenes that have to come out the same: on two devices, played call by call, so that a failure names the first call
// after which they differ; and as a page painted at once or band by band.
#include <gtest/gtest.h>

#include <vector>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/scene.h"
#include "support/tag_plane.h"
#include "support/test_device.h"
#include "support/text.h"

namespace qnv::test {
namespace {

// Bands of every padding, at several places of the page.
DeviceOptions SceneBand(uint64_t seed, int resolution) {
  return {.width = 41 + static_cast<uint32_t>(seed % 4),
          .height = 23,
          .resolutionA = static_cast<uint16_t>(resolution),
          .resolutionB = static_cast<uint16_t>(resolution),
          .left = static_cast<int32_t>(seed % 3) * 9,
          .top = static_cast<int32_t>(seed % 2) * 11};
}

// Results and bands are equal after every call.
void ExpectSameScene(const Scene& scene, const TestDevice& expected, const TestDevice& got) {
  for (std::size_t step = 0; step < scene.size(); ++step) {
    SCOPED_TRACE(Text("call ", step, ": ", scene.Name(step)));
    ASSERT_EQ(scene.Play(step, expected.handle()), scene.Play(step, got.handle()));
    ASSERT_TRUE(SameImage(BandImage(expected), BandImage(got)));
  }
  EXPECT_TRUE(expected.FencesIntact());
  EXPECT_TRUE(got.FencesIntact());
}

// The color plane of a dual-plane device is what a plain 24-bit device paints, whatever happens to the tags. Kept out
// are calls without a draw mode: without one the tags of a span cannot be decided.
TEST(DualPlaneColor, EqualsAPlainDevice) {
  for (bool mixed : {false, true}) {
    for (uint64_t seed = 100; seed < 200; ++seed) {
      SCOPED_TRACE(Text("seed ", seed, mixed ? ", mixed tags" : ""));
      DeviceOptions options = SceneBand(seed, seed % 2 == 0 ? 360 : 720);
      options.left -= 9;
      options.top -= 5;
      TestDevice plain(options);
      options.tagPlane = true;
      TestDevice dual(options);
      dual.Clear();
      if (mixed) MakeTagsMixed(&dual, seed);
      FillWithNoise(&plain.band(), seed);
      FillWithNoise(&dual.band(), seed);
      const Scene scene(seed, {.left = options.left, .top = options.top, .nullDrawModes = false});
      ExpectSameScene(scene, plain, dual);
      if (HasFatalFailure()) return;
    }
  }
}

// Whatever is drawn after a clear, tags hold what they can hold: 1 or 3, and 0 only below text.
TEST(DualPlaneColor, TagsHoldKnownValues) {
  for (uint64_t seed = 200; seed < 240; ++seed) {
    SCOPED_TRACE(seed);
    DualPlaneDevice dual({.width = 41, .height = 23});
    dual.Clear();
    const Scene scene(seed, {.nullDrawModes = false});
    for (std::size_t step = 0; step < scene.size(); ++step) scene.Play(step, dual.handle());
    for (uint8_t tag : dual.TagBytes()) {
      ASSERT_TRUE(tag == 0 || tag == QNV_TAG_GRAPHICS || tag == QNV_TAG_IMAGE) << int{tag};
    }
    EXPECT_TRUE(dual.FencesIntact());
  }
}

// A resolution-mapping device with nothing to map is a plain 24-bit device. Only extended codes of images are kept
// out: it has none.
TEST(OneToOneResolution, PaintsWhatAPlainDevicePaints) {
  for (uint16_t resolution : {uint16_t{360}, uint16_t{1}, uint16_t{7}, uint16_t{719}}) {
    for (uint64_t seed = 0; seed < 40; ++seed) {
      SCOPED_TRACE(Text("resolution ", resolution, ", seed ", seed));
      DeviceOptions options = SceneBand(seed, resolution);
      TestDevice plain(options);
      options.kind = QNV_KIND_SCALED;
      TestDevice scaled(options);
      FillWithNoise(&plain.band(), seed);
      FillWithNoise(&scaled.band(), seed);
      const Scene scene(seed, {.left = options.left, .top = options.top, .extendedCodes = false});
      ExpectSameScene(scene, plain, scaled);
      if (HasFatalFailure()) return;
    }
  }
}

// A page painted band by band is the page painted at once, as far as the calls allow it: transfers count the cells of
// their pattern from the band's corner, and the source mapping of a stretched image starts at the part of it that the
// band shows, so both stay out here.
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
