// Devices that have to paint the same bytes: one scene is played on both, call by call, and a failure names the first
// call after which they differ.
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace qnv::test
