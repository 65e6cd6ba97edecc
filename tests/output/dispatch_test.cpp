// Styles, results and the order in which a call is looked at.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

constexpr uint32_t kKnownStyles[] = {4, 5, 104, 105, 205, 305, 405, 505};
constexpr uint32_t kMarkers[] = {80, 81};
constexpr uint32_t kUnknownStyles[] = {0,   1,   2,   3,   6,   7,   8,   79,  82,   103,   106,  204,
                                       206, 304, 306, 404, 406, 504, 506, 605, 1000, 32767, 65535};
constexpr uint32_t kUnknownResult = 0xFFFF;  // -1 in 16 bits

// A list that every encoding can read: banded record of row 0, columns 0 and 1.
const std::vector<uint8_t>& SmallList() {
  static const std::vector<uint8_t> list = SpanListBytes({2, 0, 1, 0, 2, 2, 0, 0});
  return list;
}

const DeviceOptions kPlainDevices[] = {
    {.bitsPerPixel = 24, .width = 6, .height = 2},
    {.bitsPerPixel = 8, .width = 6, .height = 2},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 24, .width = 6, .height = 2},
};

TEST(OutputDispatch, UnknownStyles) {
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x010203};
  const DRAWMODE mode = MakeDrawMode();
  for (const DeviceOptions& options : kPlainDevices) {
    for (uint32_t style : kUnknownStyles) {
      TestDevice device(options);
      EXPECT_EQ(kUnknownResult, CallOutput(device, style, 1, SmallList(), {.pen = &pen, .drawMode = &mode})) << style;
      EXPECT_TRUE(BandUntouched(device)) << style;
    }
  }
}

TEST(OutputDispatch, Markers) {
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x010203};
  const DRAWMODE mode = MakeDrawMode();
  for (const DeviceOptions& options : kPlainDevices) {
    for (uint32_t style : kMarkers) {
      TestDevice device(options);
      EXPECT_EQ(1u, CallOutput(device, style, 1, SmallList(), {.pen = &pen, .drawMode = &mode})) << style;
      EXPECT_EQ(1u, QNVOutput(device.handle(), style, 0, nullptr, nullptr, nullptr, &mode, &kEverywhere) & 0xFFFF);
      EXPECT_TRUE(BandUntouched(device)) << style;
    }
  }
}

TEST(OutputDispatch, OnlyTheLowSixteenBitsOfTheStyle) {
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x010203};
  const DRAWMODE mode = MakeDrawMode();
  TestDevice device({.width = 6, .height = 2});
  const OutputSetup setup{.pen = &pen, .drawMode = &mode};
  EXPECT_EQ(1u, CallOutput(device, 0x00010000 + 305, 1, SpanListBytes({0, 1, 3}), setup));
  EXPECT_EQ(1u, CallOutput(device, 0xFFFF0000 + 5, 1, SpanListBytes({2, 1, 2, 4, 6, 2}), setup));
  EXPECT_EQ(1u, CallOutput(device, 0x80000000 + 81, 1, SmallList(), setup));
  EXPECT_EQ(kUnknownResult, CallOutput(device, 0x00040000, 1, SmallList(), setup));
  EXPECT_TRUE(BandIs(device, {{'#', 0x010203}},
                     ".##..."
                     "....##"));
}

TEST(OutputDispatch, NullPoints) {
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x010203};
  const DRAWMODE mode = MakeDrawMode();
  for (const DeviceOptions& options : kPlainDevices) {
    for (uint32_t style : kKnownStyles) {
      TestDevice device(options);
      EXPECT_EQ(1u, QNVOutput(device.handle(), style, 3, nullptr, &pen, nullptr, &mode, &kEverywhere) & 0xFFFF)
          << style;
      EXPECT_TRUE(BandUntouched(device)) << style;
    }
    TestDevice device(options);
    EXPECT_EQ(kUnknownResult, QNVOutput(device.handle(), 6, 3, nullptr, &pen, nullptr, &mode, &kEverywhere) & 0xFFFF);
  }
}

// A fill that paints nothing is found before the style is looked at.
TEST(OutputDispatch, HollowFillComesBeforeTheStyle) {
  PhysicalBrush hollow{};
  hollow.style = BS_HOLLOW;
  const DRAWMODE mode = MakeDrawMode();
  for (const DeviceOptions& options : kPlainDevices) {
    for (uint32_t style : {6u, 80u, 81u, 4u, 405u, 505u, 65535u}) {
      TestDevice device(options);
      EXPECT_EQ(1u, CallOutput(device, style, 2, SmallList(), {.brush = &hollow, .drawMode = &mode})) << style;
      EXPECT_TRUE(BandUntouched(device)) << style;
    }
  }
}

// Unknown styles and markers have prepared the fill all the same: a call without a draw mode then paints with it.
TEST(OutputDispatch, EveryCallPreparesTheFill) {
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x010203};
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = R2_NOTCOPYPEN;
  for (const DeviceOptions& options : kPlainDevices) {
    for (uint32_t style : {6u, 80u, 81u}) {
      TestDevice device(options);
      CallOutput(device, style, 2, SmallList(), {.pen = &pen, .drawMode = &mode});
      EXPECT_EQ(1u, PaintRow(device, 1, 3, 1, {}));
      EXPECT_TRUE(BandIs(device, {{'#', 0xFEFDFC}},
                         "......"
                         ".##..."))
          << "style " << style << ", kind " << options.kind << ", " << options.bitsPerPixel << " bits";
    }
  }
}

TEST(OutputDispatch, InputRecordsAreOnlyRead) {
  TestDevice device({.width = 6, .height = 2});
  const PhysicalPen pen = SolidPen(device.handle(), 0x010203);
  const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, 0x0000FF);
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalPen penBefore = pen;
  const PhysicalBrush brushBefore = brush;
  const DRAWMODE modeBefore = mode;
  const BandRect clip{0, 0, 6, 2};
  device.SetOrigin(1, 1);
  EXPECT_EQ(1u, PaintRow(device, 0, 4, 0, {.pen = &pen, .brush = &brush, .drawMode = &mode, .clip = clip}));
  EXPECT_EQ(0, std::memcmp(&pen, &penBefore, sizeof pen));
  EXPECT_EQ(0, std::memcmp(&brush, &brushBefore, sizeof brush));
  EXPECT_EQ(0, std::memcmp(&mode, &modeBefore, sizeof mode));
  EXPECT_EQ(0, clip.left + clip.top);
}

TEST(OutputDispatch, NoBandBufferPaintsNothing) {
  const DeviceDescription description{QNV_KIND_RASTER, 24, 360, 64, 32, 360};
  const BandRect bandRect{0, 0, 64, 32};
  DeviceHandle* handle = QNVEnable(&description, &bandRect, nullptr, nullptr);
  ASSERT_NE(nullptr, handle);
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x010203};
  const DRAWMODE mode = MakeDrawMode();
  const std::vector<uint8_t> bytes = SpanListBytes({2, 0, 1, 0, 2, 2, 0, 0});
  const FencedInput list(bytes);
  for (uint32_t style : kKnownStyles) {
    EXPECT_EQ(
        1u, QNVOutput(handle, style, 1, static_cast<const int16_t*>(list.data()), &pen, nullptr, &mode, &kEverywhere) &
                0xFFFF)
        << style;
  }
  QNVDisable(handle);
}

}  // namespace
}  // namespace qnv::test
