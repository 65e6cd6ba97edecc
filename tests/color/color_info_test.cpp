// Logical to physical color on every device class.
#include <gtest/gtest.h>

#include <string>

#include "support/fenced_buffer.h"
#include "support/random_bytes.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

struct DeviceCase {
  const char* name;
  DeviceOptions options;
  bool gray;
};

const DeviceCase kDevices[] = {
    {"plain 24 bits", {.bitsPerPixel = 24}, false},
    {"plain 8 bits", {.bitsPerPixel = 8}, true},
    {"scaled", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 24}, false},
    {"scaled, 8 bits", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 8}, false},
    {"scaled, 16 bits", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 16}, false},
    {"scaled gray mode", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0}, true},
    {"dual-plane", {.bitsPerPixel = 24, .tagPlane = true}, false},
    {"dual-plane, 8 bits", {.bitsPerPixel = 8, .tagPlane = true}, true},
    {"dual-plane, 16 bits", {.bitsPerPixel = 16, .tagPlane = true}, false},
    {"dual-plane, 0 bits", {.bitsPerPixel = 0, .tagPlane = true}, false},
};

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
  for (const DeviceCase& d : kDevices) {
    const TestDevice device(d.options);
    for (const ColorCase& c : kColors) {
      SCOPED_TRACE(std::string(d.name) + ", " + c.name);
      const uint32_t expected = d.gray ? c.gray : c.logical;
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
    const uint32_t level = ((logical & 0xFF) * 30 + ((logical >> 8) & 0xFF) * 59 + ((logical >> 16) & 0xFF) * 11) / 100;
    ASSERT_EQ(level * 0x010101, QNVColorInfo(device.handle(), logical, nullptr)) << std::hex << logical;
  }
}

TEST(ColorInfo, StoresFourBytesOnly) {
  const TestDevice device({});
  FencedBuffer memory(8, 0xCC);
  QNVColorInfo(device.handle(), 0x11223344, reinterpret_cast<uint32_t*>(memory.data()));
  const uint8_t expected[8] = {0x44, 0x33, 0x22, 0x11, 0xCC, 0xCC, 0xCC, 0xCC};
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(expected[i], memory.data()[i]) << "byte " << i;
}

// Drawing does not pass through the gray conversion again: the band has no part in it.
TEST(ColorInfo, LeavesTheBandAlone) {
  TestDevice device({.bitsPerPixel = 8});
  const std::vector<uint8_t> before = device.BandBytes();
  QNVColorInfo(device.handle(), 0x123456, nullptr);
  EXPECT_EQ(before, device.BandBytes());
  EXPECT_TRUE(device.FencesIntact());
}

}  // namespace
}  // namespace qnv::test
