// Realising brushes: header, hatch cells, pattern cells, and which bytes of the record stay untouched.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>

#include "support/device_classes.h"
#include "support/plane_image.h"
#include "support/random_bytes.h"

namespace qnv::test {
namespace {

constexpr uint8_t kStale = 0xEE;

// Realises into a record that is filled with kStale and ends where its memory ends.
struct Realised {
  uint32_t result = 0;
  PhysicalBrush brush{};
};

Realised Realise(const TestDevice& device, const LogicalBrush& logical) {
  const LogicalBrush before = logical;
  FencedBuffer memory(sizeof(PhysicalBrush), kStale);
  Realised realised;
  realised.result = QNVRealizeObject(device.handle(), OBJ_BRUSH, &logical, memory.data(), nullptr);
  std::memcpy(&realised.brush, memory.data(), sizeof realised.brush);
  EXPECT_TRUE(memory.FencesIntact());
  EXPECT_EQ(0, std::memcmp(&before, &logical, sizeof logical)) << "the logical brush was written";
  return realised;
}

void ExpectHeader(const PhysicalBrush& brush, uint16_t style, uint16_t hatch, uint16_t depth, uint32_t color) {
  EXPECT_EQ(style, uint16_t{brush.style});
  EXPECT_EQ(hatch, uint16_t{brush.hatch});
  EXPECT_EQ(depth, uint16_t{brush.patternDepth});
  EXPECT_EQ(color, uint32_t{brush.colour});
}

void ExpectCells(const PhysicalBrush& brush, const std::array<uint32_t, 64>& expected) {
  for (std::size_t i = 0; i < 64; ++i) {
    ASSERT_EQ(expected[i], uint32_t{brush.cells[i]}) << "cell " << i % 8 << " of row " << i / 8;
  }
}

std::array<uint32_t, 64> StaleCells() {
  std::array<uint32_t, 64> cells;
  cells.fill(0xEEEEEEEE);
  return cells;
}

TEST(Brushes, StylesAndResults) {
  struct Case {
    uint16_t style;
    uint32_t result;
  };
  constexpr Case kStyles[] = {{BS_SOLID, 0x8002}, {BS_HOLLOW, 0x8000}, {4, 0}, {5, 0}, {0x0100, 0}, {0xFFFF, 0}};
  for (const DeviceOptions& options : AllDescriptions()) {
    const TestDevice device(options);
    for (const Case& c : kStyles) {
      SCOPED_TRACE(Text(Describe(options), ", style ", c.style));
      const Realised realised = Realise(device, {c.style, 0x000000FF, -2, 0x00ABCDEF});
      EXPECT_EQ(c.result, realised.result);
      // Even of an unknown style the twelve bytes of the header are there.
      ExpectHeader(realised.brush, c.style, 0xFFFE, 0, IsGrayDevice(device) ? 0x004C4C4C : 0x000000FF);
      EXPECT_EQ(1, realised.brush.hatchScale[0]);
      EXPECT_EQ(1, realised.brush.hatchScale[1]);
      ExpectCells(realised.brush, StaleCells());
    }
  }
}

TEST(Brushes, ColorKeepsItsTopByteOnColorDevices) {
  const TestDevice device({.bitsPerPixel = 24});
  EXPECT_EQ(0x7F112233u, uint32_t{Realise(device, {BS_SOLID, 0x7F112233, 0, 0}).brush.colour});
  const TestDevice gray({.bitsPerPixel = 8});
  EXPECT_EQ(0x00252525u, uint32_t{Realise(gray, {BS_SOLID, 0x7F112233, 0, 0}).brush.colour});
}

// One row of eight bits for each style, leftmost pixel first: 0 is a line pixel, 1 a gap.
struct HatchCase {
  const char* name;
  int16_t hatch;
  std::array<uint8_t, 8> rows;
};

constexpr HatchCase kHatches[] = {
    {"HS_HORIZONTAL", HS_HORIZONTAL, {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
    {"HS_VERTICAL", HS_VERTICAL, {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F}},
    {"HS_FDIAGONAL", HS_FDIAGONAL, {0x7F, 0xBF, 0xDF, 0xEF, 0xF7, 0xFB, 0xFD, 0xFE}},
    {"HS_BDIAGONAL", HS_BDIAGONAL, {0xFE, 0xFD, 0xFB, 0xF7, 0xEF, 0xDF, 0xBF, 0x7F}},
    {"HS_CROSS", HS_CROSS, {0x00, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F}},
    // Its last row has one pixel at the right end, where symmetry would ask for another.
    {"HS_DIAGCROSS", HS_DIAGCROSS, {0x7D, 0xBB, 0xD7, 0xEF, 0xD7, 0xBB, 0x7D, 0xFE}},
};

TEST(Brushes, HatchCells) {
  for (const DeviceOptions& options : AllDescriptions()) {
    const TestDevice device(options);
    for (const HatchCase& h : kHatches) {
      SCOPED_TRACE(Text(Describe(options), ", ", h.name));
      // The gaps' color is taken as it is, top byte and all, on gray devices too.
      const uint32_t gap = 0x12AB34CD;
      const Realised realised = Realise(device, {BS_HATCHED, 0x000000FF, h.hatch, gap});
      EXPECT_EQ(0x8000u, realised.result);
      const uint32_t color = IsGrayDevice(device) ? 0x004C4C4Cu : 0x000000FFu;
      ExpectHeader(realised.brush, BS_HATCHED, static_cast<uint16_t>(h.hatch), 0, color);
      std::array<uint32_t, 64> expected;
      for (std::size_t i = 0; i < 64; ++i) {
        expected[i] = (h.rows[i / 8] >> (7 - i % 8) & 1) != 0 ? gap : color | 0xFF000000u;
      }
      ExpectCells(realised.brush, expected);
    }
  }
}

TEST(Brushes, HatchIndexOutsideTheTableLeavesTheCells) {
  const TestDevice device({});
  for (int16_t hatch : {int16_t{6}, int16_t{7}, int16_t{-1}, int16_t{256}, int16_t{32767}, int16_t{-32768}}) {
    SCOPED_TRACE(hatch);
    const Realised realised = Realise(device, {BS_HATCHED, 0x00010203, hatch, 0x00FFFFFF});
    EXPECT_EQ(0x8000u, realised.result);
    ExpectHeader(realised.brush, BS_HATCHED, static_cast<uint16_t>(hatch), 0, 0x00010203);
    ExpectCells(realised.brush, StaleCells());
  }
}

TEST(Brushes, HatchScaleFollowsTheResolution) {
  struct Case {
    uint16_t resolutionA;
    uint8_t scale;
  };
  constexpr Case kScales[] = {{0, 1},    {1, 1},    {360, 1},  {719, 1},  {720, 2},   {721, 2},
                              {1439, 2}, {1440, 3}, {2159, 3}, {2160, 4}, {65535, 92}};
  for (const DeviceOptions& options : AllDescriptions()) {
    for (const Case& c : kScales) {
      SCOPED_TRACE(Text(Describe(options), ", resolution ", c.resolutionA));
      const bool scaled = options.kind == QNV_KIND_SCALED;
      if (scaled && c.resolutionA == 0) continue;  // no such device
      DeviceOptions resolved = options;
      resolved.resolutionA = c.resolutionA;
      const TestDevice device(resolved);
      const PhysicalBrush brush = Realise(device, {BS_HATCHED, 0, HS_CROSS, 0}).brush;
      EXPECT_EQ(scaled ? 1 : c.scale, brush.hatchScale[0]);
      EXPECT_EQ(scaled ? 1 : c.scale, brush.hatchScale[1]);
    }
  }
}

// The first eight pixels of eight rows of `bitsPixel`, `widthBytes` apart; the memory ends after the last of them.
struct PatternBitmap {
  PatternBitmap(uint8_t bitsPixel, uint16_t widthBytes, uint64_t seed, uint8_t planes = 1)
      : memory(std::size_t{widthBytes} * 7 + (bitsPixel == 24  ? 24u
                                              : bitsPixel == 8 ? 8u
                                                               : 1u),
               0),
        record{0, 32, 32, widthBytes, planes, bitsPixel, memory.data()} {
    FillWithNoise(&memory, seed);
  }
  const uint8_t* Row(std::size_t row) const { return memory.data() + row * record.bmWidthBytes; }
  LogicalBrush Logical() const { return {BS_PATTERN, reinterpret_cast<uintptr_t>(&record), 3, 0x00ABCDEF}; }

  FencedBuffer memory;
  SourceBitmap record;
};

// The address of the bitmap is what stands in the color field, and goes the way of a color.
uint32_t ColorOfAddress(const TestDevice& device, const PatternBitmap& bitmap) {
  return QNVColorInfo(device.handle(), static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&bitmap.record)), nullptr);
}

// Every depth but 24 and 8 is read as one bit, and its address is no color: a set bit is a white background cell.
TEST(Brushes, PatternCells) {
  struct Case {
    uint8_t bits;
    uint16_t widthBytes;
    uint8_t planes;
  };
  constexpr Case kCases[] = {{24, 24, 1},   {24, 96, 1}, {24, 25, 1}, {24, 40000, 1}, {8, 8, 1},  {8, 32, 1},
                             {8, 65535, 1}, {1, 4, 1},   {4, 4, 1},   {16, 4, 1},     {32, 4, 1}, {0, 4, 1},
                             {1, 4, 3},     {4, 4, 3},   {16, 4, 3},  {32, 4, 3},     {0, 4, 3}};
  for (const DeviceOptions& options : AllDescriptions()) {
    for (const Case& c : kCases) {
      SCOPED_TRACE(
          Text(Describe(options), ", ", c.bits, "-bit rows ", c.widthBytes, " bytes apart, planes ", c.planes));
      const TestDevice device(options);
      const PatternBitmap bitmap(c.bits, c.widthBytes, c.widthBytes + c.bits, c.planes);
      const Realised realised = Realise(device, bitmap.Logical());
      const bool oneBit = c.bits != 24 && c.bits != 8;
      EXPECT_EQ(0x8000u, realised.result);
      ExpectHeader(realised.brush, BS_PATTERN, 3, oneBit ? 1 : c.bits, oneBit ? 0 : ColorOfAddress(device, bitmap));
      std::array<uint32_t, 64> expected;
      for (std::size_t i = 0; i < 64; ++i) {
        const uint8_t* row = bitmap.Row(i / 8);
        const std::size_t x = i % 8;
        const uint32_t color = c.bits == 24
                                   ? uint32_t{row[3 * x + 2]} << 16 | uint32_t{row[3 * x + 1]} << 8 | row[3 * x]
                                   : row[oneBit ? 0 : x] * 0x010101u;
        const bool set = (row[0] >> (7 - x) & 1) != 0;
        expected[i] = !oneBit ? 0xFF000000u | color : set ? 0x00FFFFFFu : 0xFF000000u;
      }
      ExpectCells(realised.brush, expected);
    }
  }
}

TEST(Brushes, NullBitmapIsRefused) {
  for (const DeviceOptions& options : AllDescriptions()) {
    SCOPED_TRACE(Describe(options));
    const TestDevice device(options);
    const Realised realised = Realise(device, {BS_PATTERN, 0, 0, 0});
    EXPECT_EQ(0u, realised.result);
    ExpectCells(realised.brush, StaleCells());
  }
}

}  // namespace
}  // namespace qnv::test
