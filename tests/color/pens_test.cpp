// Realising pens: the same on every device class but for the color.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/fenced_buffer.h"
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
    {"scaled gray mode", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0}, true},
    {"dual-plane", {.bitsPerPixel = 24, .tagPlane = true}, false},
    {"dual-plane, 8 bits", {.bitsPerPixel = 8, .tagPlane = true}, true},
};

struct StyleCase {
  const char* name;
  uint16_t logical;
  uint16_t physical;
};

constexpr StyleCase kStyles[] = {
    {"PS_SOLID", PS_SOLID, PS_SOLID},
    {"PS_DASH", PS_DASH, PS_SOLID},
    {"PS_DOT", PS_DOT, PS_SOLID},
    {"PS_DASHDOT", PS_DASHDOT, PS_SOLID},
    {"PS_DASHDOTDOT", PS_DASHDOTDOT, PS_SOLID},
    {"PS_NULL", PS_NULL, PS_NULL},
    {"PS_INSIDEFRAME", PS_INSIDEFRAME, PS_SOLID},
    {"7", 7, PS_SOLID},
    {"0x0105", 0x0105, PS_SOLID},
    {"0xFFFF", 0xFFFF, PS_SOLID},
};

TEST(Pens, StylesWidthsAndColor) {
  for (const DeviceCase& d : kDevices) {
    const TestDevice device(d.options);
    for (const StyleCase& s : kStyles) {
      SCOPED_TRACE(std::string(d.name) + ", " + s.name);
      const LogicalPen logical{s.logical, 7, -9, 0x000000FF};
      const LogicalPen before = logical;
      FencedBuffer memory(sizeof(PhysicalPen), 0xEE);
      EXPECT_EQ(0x8000u, QNVRealizeObject(device.handle(), OBJ_PEN, &logical, memory.data(), nullptr));
      PhysicalPen pen;
      std::memcpy(&pen, memory.data(), sizeof pen);
      EXPECT_EQ(s.physical, uint16_t{pen.style});
      EXPECT_EQ(7, int16_t{pen.widthX});
      EXPECT_EQ(-9, int16_t{pen.widthY});
      EXPECT_EQ(d.gray ? 0x004C4C4Cu : 0x000000FFu, uint32_t{pen.colour});
      EXPECT_TRUE(memory.FencesIntact());
      EXPECT_EQ(0, std::memcmp(&before, &logical, sizeof logical));
    }
  }
}

TEST(Pens, RecordSizeWhenThereIsNoOutput) {
  for (const DeviceCase& d : kDevices) {
    SCOPED_TRACE(d.name);
    const TestDevice device(d.options);
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
  for (const DeviceCase& d : kDevices) {
    SCOPED_TRACE(d.name);
    const TestDevice device(d.options);
    PhysicalPen pen;
    std::memset(&pen, 0xEE, sizeof pen);
    const PhysicalPen before = pen;
    EXPECT_EQ(0u, QNVRealizeObject(device.handle(), OBJ_PEN, nullptr, &pen, nullptr));
    EXPECT_EQ(0, std::memcmp(&before, &pen, sizeof pen));
  }
}

// Fonts, bitmaps and whatever else a host may ask for.
TEST(Pens, OtherKindsAreUnknown) {
  for (const DeviceCase& d : kDevices) {
    const TestDevice device(d.options);
    for (uint32_t kind : {0u, 3u, 4u, 5u, 6u, 0xFFu, 0x0100u, 0x0201u, 0x10000u, 0x20003u, 0xFFFFFFFFu}) {
      SCOPED_TRACE(std::string(d.name) + ", kind " + std::to_string(kind));
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
