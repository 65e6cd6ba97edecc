// Realising pens: the same on every device class but for the color.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/device_classes.h"
#include "support/plane_image.h"

namespace qnv::test {
namespace {

TEST(Pens, StylesWidthsAndColor) {
  for (const DeviceOptions& options : AllDescriptions()) {
    const TestDevice device(options);
    for (int style :
         {PS_SOLID, PS_DASH, PS_DOT, PS_DASHDOT, PS_DASHDOTDOT, PS_NULL, PS_INSIDEFRAME, 7, 0x0105, 0xFFFF}) {
      SCOPED_TRACE(Describe(options) + ", style " + std::to_string(style));
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

TEST(Pens, RecordSizeWhenThereIsNoOutput) {
  for (const DeviceOptions& options : AllDescriptions()) {
    SCOPED_TRACE(Describe(options));
    const TestDevice device(options);
    const LogicalPen logical{PS_DASH, 1, 1, 0};
    EXPECT_EQ(10u, QNVRealizeObject(device.handle(), OBJ_PEN, &logical, nullptr, nullptr));
    EXPECT_EQ(10u, QNVRealizeObject(device.handle(), OBJ_PEN, nullptr, nullptr, nullptr));
    EXPECT_EQ(10u, QNVRealizeObject(device.handle(), 0x70001, &logical, nullptr, nullptr));
  }
}

TEST(Pens, KindCountsOnItsLowHalf) {
  const TestDevice device({});
  const LogicalPen logical{PS_SOLID, 1, 2, 0x00112233};
  PhysicalPen pen{};
  EXPECT_EQ(0x8000u, QNVRealizeObject(device.handle(), 0xFFFF0001, &logical, &pen, nullptr));
  EXPECT_EQ(0x00112233u, uint32_t{pen.colour});
}

TEST(Pens, NullInputIsRefused) {
  for (const DeviceOptions& options : AllDescriptions()) {
    SCOPED_TRACE(Describe(options));
    const TestDevice device(options);
    PhysicalPen pen;
    std::memset(&pen, 0xEE, sizeof pen);
    const PhysicalPen before = pen;
    EXPECT_EQ(0u, QNVRealizeObject(device.handle(), OBJ_PEN, nullptr, &pen, nullptr));
    EXPECT_EQ(0, std::memcmp(&before, &pen, sizeof pen));
  }
}

// Fonts, bitmaps and whatever else a host may ask for.
TEST(Pens, OtherKindsAreUnknown) {
  for (const DeviceOptions& options : AllDescriptions()) {
    const TestDevice device(options);
    for (uint32_t kind : {0u, 3u, 4u, 5u, 6u, 0xFFu, 0x0100u, 0x0201u, 0x10000u, 0x20003u, 0xFFFFFFFFu}) {
      SCOPED_TRACE(Describe(options) + ", kind " + std::to_string(kind));
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
