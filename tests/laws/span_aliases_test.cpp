// Span encoding 104 is 4 and 105 is 5, on every device, for every list.
#include <gtest/gtest.h>

#include <vector>

#include "laws/twin_devices.h"

namespace qnv::test {
namespace {

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
  for (const DeviceOptions& options : LawDevices()) {
    TwinDevices twins(options);
    twins.FillWith(1);
    RandomBytes random(style);
    for (uint32_t n = 0; n < 600; ++n) {
      SCOPED_TRACE(Text(Describe(options), ", case ", n));
      const SpanList list = make(&random);
      DeviceHandle* handle = twins.first.handle();
      const PhysicalBrush brush = n % 3 == 0
                                      ? SolidBrush(handle, random.Next() & 0xFFFFFF)
                                      : HatchBrush(handle, static_cast<int16_t>(n % 6), random.Next() & 0xFFFFFF);
      const PhysicalPen pen = SolidPen(handle, random.Next() & 0xFFFFFF);
      const int rop2 = static_cast<int>(1 + random.Below(16));
      const DRAWMODE mode = MakeDrawMode({.rop2 = rop2, .bkMode = static_cast<int>(1 + random.Below(2))});
      const BandRect clip{Coordinate(&random), Coordinate(&random), 30, 18};
      const auto paint = [&](const TestDevice& device, uint32_t code) {
        return QNVOutput(device.handle(), code, list.count, list.points.data(), n % 4 == 0 ? &pen : nullptr, &brush,
                         &mode, &clip) &
               0xFFFF;
      };
      const uint32_t upper = n % 2 == 0 ? 0u : 0x00050000u;  // no part of a style
      EXPECT_EQ(1u, paint(twins.first, style));
      EXPECT_EQ(1u, paint(twins.second, alias | upper));
      ASSERT_TRUE(twins.AreEqual());
    }
  }
}

TEST(SpanAliases, HundredAndFourIsFour) { CheckAlias(4, 104, Scanlines); }
TEST(SpanAliases, HundredAndFiveIsFive) { CheckAlias(5, 105, BandedSpans); }

}  // namespace
}  // namespace qnv::test
