// Logical to physical color on every device class.
#include <gtest/gtest.h>

#include "support/device_classes.h"
#include "support/plane_image.h"
#include "support/random_bytes.h"

namespace qnv::test {
namespace {

struct ColorCase {
  const char* name;
  uint32_t logical;
  uint32_t gray;
};

constexpr ColorCase kColors[] = {
    {"black", 0x00000000, 0x00000000},
    {"white", 0x00FFFFFF, 0x00FFFFFF},
    {"red", 0x000000FF, 0x004C4C4C},
    {"green", 0x0000FF00, 0x00969696},
    {"blue", 0x00FF0000, 0x001C1C1C},
    {"yellow", 0x0000FFFF, 0x00E2E2E2},   // (7650 + 15045) / 100 = 226
    {"cyan", 0x00FFFF00, 0x00B2B2B2},     // (15045 + 2805) / 100 = 178
    {"magenta", 0x00FF00FF, 0x00686868},  // (7650 + 2805) / 100 = 104
    {"one of each", 0x00010101, 0x00010101},
    {"just below one", 0x00010001, 0x00000000},          // (30 + 11) / 100
    {"truncated, not rounded", 0x00000006, 0x00010101},  // 180 / 100
    {"a gray stays", 0x00808080, 0x00808080},
    {"white with a top byte", 0xFFFFFFFF, 0x00FFFFFF},
    {"black with a top byte", 0x01000000, 0x00000000},
    {"red with a top byte", 0x800000FF, 0x004C4C4C},
};

TEST(ColorInfo, EveryDeviceClass) {
  for (const DeviceOptions& options : AllDescriptions()) {
    const TestDevice device(options);
    for (const ColorCase& c : kColors) {
      SCOPED_TRACE(Text(Describe(options), ", ", c.name));
      const uint32_t expected = IsGrayDevice(device) ? c.gray : c.logical;
      uint32_t stored = 0xDEADBEEF;
      EXPECT_EQ(expected, QNVColorInfo(device.handle(), c.logical, &stored));
      EXPECT_EQ(expected, stored);
      EXPECT_EQ(expected, QNVColorInfo(device.handle(), c.logical, nullptr)) << "with nowhere to store it";
    }
  }
}

TEST(ColorInfo, GrayOfManyColors) {
  const TestDevice device({.bitsPerPixel = 8});
  RandomBytes random(21);
  for (int i = 0; i < 2000; ++i) {
    const uint32_t logical = random.Next();
    ASSERT_EQ(GrayOf(logical), QNVColorInfo(device.handle(), logical, nullptr)) << std::hex << logical;
  }
}

TEST(ColorInfo, StoresFourBytesOnly) {
  const TestDevice device({});
  FencedBuffer memory(8, 0xCC);
  QNVColorInfo(device.handle(), 0x11223344, reinterpret_cast<uint32_t*>(memory.data()));
  EXPECT_TRUE(BandUntouched(device)) << "the band has no part in it";
  const uint8_t expected[8] = {0x44, 0x33, 0x22, 0x11, 0xCC, 0xCC, 0xCC, 0xCC};
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(expected[i], memory.data()[i]) << "byte " << i;
}

}  // namespace
}  // namespace qnv::test
