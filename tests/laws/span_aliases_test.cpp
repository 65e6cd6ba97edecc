// Span encoding 104 is 4 and 105 is 5, on every device, for every list.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/tag_plane.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

struct DeviceCase {
  const char* name;
  DeviceOptions options;
};

const DeviceCase kDevices[] = {
    {"24 bits", {.width = 45, .height = 21, .left = 3, .top = 5}},
    {"8 bits", {.bitsPerPixel = 8, .width = 45, .height = 21, .left = 3, .top = 5}},
    {"scaled", {.kind = QNV_KIND_SCALED, .width = 45, .height = 21, .resolutionA = 600, .resolutionB = 400}},
    {"gray mode", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0, .width = 45, .height = 21, .resolutionA = 300}},
    {"dual-plane", {.width = 45, .height = 21, .left = 3, .top = 5, .tagPlane = true}},
};

int16_t Coordinate(RandomBytes* random) { return static_cast<int16_t>(static_cast<int>(random->Below(70)) - 12); }

// Records of spans for either encoding; both count as many elements as the list holds.
struct SpanList {
  std::vector<int16_t> points;
  uint32_t count;
};

SpanList Scanlines(RandomBytes* random) {
  const uint32_t pairs = 1 + random->Below(6);
  SpanList list{{Coordinate(random), Coordinate(random)}, pairs};
  for (uint32_t i = 1; i < pairs; ++i) {
    list.points.push_back(Coordinate(random));
    list.points.push_back(Coordinate(random));
  }
  return list;
}

SpanList BandedSpans(RandomBytes* random) {
  SpanList list{{}, 1 + random->Below(4)};
  for (uint32_t i = 0; i < list.count; ++i) {
    const int16_t values = static_cast<int16_t>(2 * random->Below(4));
    const int16_t top = Coordinate(random);
    list.points.insert(list.points.end(),
                       {values, top, static_cast<int16_t>(top + static_cast<int>(random->Below(9)))});
    for (int16_t v = 0; v < values; ++v) list.points.push_back(Coordinate(random));
    list.points.push_back(values);
  }
  return list;
}

void CheckAlias(uint32_t style, uint32_t alias, SpanList (*make)(RandomBytes*)) {
  for (const DeviceCase& d : kDevices) {
    TestDevice first(d.options);
    TestDevice second(d.options);
    if (d.options.tagPlane) {
      MakeTagsMixed(&first, 1);
      MakeTagsMixed(&second, 1);
    }
    RandomBytes random(style);
    for (uint32_t n = 0; n < 600; ++n) {
      SCOPED_TRACE(std::string(d.name) + ", case " + std::to_string(n));
      const SpanList list = make(&random);
      const PhysicalBrush brush =
          n % 3 == 0 ? SolidBrush(first.handle(), random.Next() & 0xFFFFFF)
                     : HatchBrush(first.handle(), static_cast<int16_t>(n % 6), random.Next() & 0xFFFFFF);
      const PhysicalPen pen = SolidPen(first.handle(), random.Next() & 0xFFFFFF);
      DRAWMODE mode = MakeDrawMode();
      mode.Rop2 = static_cast<int16_t>(1 + random.Below(16));
      mode.bkMode = static_cast<int16_t>(1 + random.Below(2));
      const BandRect clip{Coordinate(&random), Coordinate(&random), 30, 18};
      const PhysicalPen* usedPen = n % 4 == 0 ? &pen : nullptr;
      const uint32_t upper = n % 2 == 0 ? 0u : 0x00050000u;  // no part of a style
      EXPECT_EQ(
          1u, QNVOutput(first.handle(), style, list.count, list.points.data(), usedPen, &brush, &mode, &clip) & 0xFFFF);
      EXPECT_EQ(
          1u, QNVOutput(second.handle(), alias | upper, list.count, list.points.data(), usedPen, &brush, &mode, &clip) &
                  0xFFFF);
      ASSERT_TRUE(SameImage(BandImage(first), BandImage(second)));
      if (d.options.tagPlane) {
        ASSERT_TRUE(SameImage(TagImage(first), TagImage(second)));
      }
    }
  }
}

TEST(SpanAliases, HundredAndFourIsFour) { CheckAlias(4, 104, Scanlines); }
TEST(SpanAliases, HundredAndFiveIsFive) { CheckAlias(5, 105, BandedSpans); }

}  // namespace
}  // namespace qnv::test
