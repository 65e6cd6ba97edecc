// Realising pens, and what holds for pens and brushes alike.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/device_classes.h"
#include "support/plane_image.h"

namespace qnv::test {
namespace {

TEST(Pens, StylesWidthsAndColor) {
  for (const DeviceOptions& options : AllDescriptions()) {
    const TestDevice device(options);
    for (int style :
         {PS_SOLID, PS_DASH, PS_DOT, PS_DASHDOT, PS_DASHDOTDOT, PS_NULL, PS_INSIDEFRAME, 7, 0x0105, 0xFFFF}) {
      SCOPED_TRACE(Text(Describe(options), ", style ", style));
      const LogicalPen logical{static_cast<uint16_t>(style), 7, -9, 0x000000FF};
      const LogicalPen before = logical;
      FencedBuffer memory(sizeof(PhysicalPen), 0xEE);
      EXPECT_EQ(0x8000u, QNVRealizeObject(device.handle(), OBJ_PEN, &logical, memory.data(), nullptr));
      PhysicalPen pen;
      std::memcpy(&pen, memory.data(), sizeof pen);
      EXPECT_EQ(style == PS_NULL ? PS_NULL : PS_SOLID, uint16_t{pen.style});
      EXPECT_EQ(7, int16_t{pen.widthX});
      EXPECT_EQ(-9, int16_t{pen.widthY});
      EXPECT_EQ(IsGrayDevice(device) ? 0x004C4C4Cu : 0x000000FFu, uint32_t{pen.colour});
      EXPECT_TRUE(memory.FencesIntact());
      EXPECT_EQ(0, std::memcmp(&before, &logical, sizeof logical));
    }
  }
}

struct ObjectKind {
  const char* name;
  uint32_t kind;
  uint32_t size;
  uint32_t result;
};

constexpr ObjectKind kObjectKinds[] = {{"pen", OBJ_PEN, 10, 0x8000}, {"brush", OBJ_BRUSH, 268, 0x8002}};

// The record's size when there is no output, nothing when there is no input; the kind counts on its low half.
TEST(Objects, SizesAndNullArguments) {
  for (const DeviceOptions& options : AllDescriptions()) {
    for (const ObjectKind& k : kObjectKinds) {
      for (uint32_t upper : {0u, 0x50000u, 0xFFFF0000u}) {
        SCOPED_TRACE(Text(k.name, ", ", Describe(options)));
        const TestDevice device(options);
        const uint8_t logical[sizeof(LogicalBrush)] = {};  // of a solid black brush or pen
        std::vector<uint8_t> output(k.size, 0xEE);
        const std::vector<uint8_t> before = output;
        EXPECT_EQ(k.size, QNVRealizeObject(device.handle(), upper | k.kind, logical, nullptr, nullptr));
        EXPECT_EQ(k.size, QNVRealizeObject(device.handle(), upper | k.kind, nullptr, nullptr, nullptr));
        EXPECT_EQ(0u, QNVRealizeObject(device.handle(), upper | k.kind, nullptr, output.data(), nullptr));
        EXPECT_EQ(before, output);
        EXPECT_EQ(k.result, QNVRealizeObject(device.handle(), upper | k.kind, logical, output.data(), nullptr));
        EXPECT_NE(before, output);
      }
    }
  }
}

// Fonts, bitmaps and whatever else a host may ask for.
TEST(Objects, OtherKindsAreUnknown) {
  for (const DeviceOptions& options : AllDescriptions()) {
    const TestDevice device(options);
    for (uint32_t kind : {0u, 3u, 4u, 5u, 6u, 0xFFu, 0x0100u, 0x0201u, 0x10000u, 0x20003u, 0xFFFFFFFFu}) {
      SCOPED_TRACE(Text(Describe(options), ", kind ", kind));
      const LogicalBrush logical{BS_SOLID, 0, 0, 0};
      PhysicalBrush output;
      std::memset(&output, 0xEE, sizeof output);
      const PhysicalBrush before = output;
      EXPECT_EQ(0u, QNVRealizeObject(device.handle(), kind, &logical, &output, nullptr));
      EXPECT_EQ(0u, QNVRealizeObject(device.handle(), kind, &logical, nullptr, nullptr));
      EXPECT_EQ(0, std::memcmp(&before, &output, sizeof output));
    }
  }
}

}  // namespace
}  // namespace qnv::test
