// Span lists as a host lays them out, and the call that paints them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/plane_image.h"

namespace qnv::test {

// Words, then bytes for the delta encodings, padded to whole words, in little-endian order.
inline std::vector<uint8_t> SpanListBytes(const std::vector<int16_t>& words, const std::vector<int>& deltas = {}) {
  std::vector<uint8_t> bytes;
  for (int16_t word : words) {
    bytes.push_back(static_cast<uint8_t>(word));
    bytes.push_back(static_cast<uint8_t>(static_cast<uint16_t>(word) >> 8));
  }
  for (int delta : deltas) bytes.push_back(static_cast<uint8_t>(delta));
  if (bytes.size() % 2 != 0) bytes.push_back(0);
  return bytes;
}

struct OutputSetup {
  const PhysicalPen* pen = nullptr;
  const PhysicalBrush* brush = nullptr;
  const DRAWMODE* drawMode = nullptr;
  BandRect clip = kEverywhere;
};

// The call on a list that ends where its memory ends; gives the 16-bit result.
inline uint32_t CallOutput(const TestDevice& device, uint32_t style, uint32_t count, const std::vector<uint8_t>& list,
                           const OutputSetup& setup) {
  const FencedInput input(list);
  const uint32_t result = QNVOutput(device.handle(), style, count, static_cast<const int16_t*>(input.data()), setup.pen,
                                    setup.brush, setup.drawMode, &setup.clip);
  EXPECT_TRUE(input.Unchanged()) << "the span list was written";
  return result & 0xFFFF;
}

// A horizontal run of one row, the simplest figure.
inline uint32_t PaintRow(const TestDevice& device, int16_t left, int16_t right, int16_t row, const OutputSetup& setup) {
  return CallOutput(device, OS_SCANLINES, 2, SpanListBytes({0, row, left, right}), setup);
}

// The rectangle [left, right) x [top, bottom) through one banded record.
inline uint32_t PaintRectangle(const TestDevice& device, int16_t left, int16_t top, int16_t right, int16_t bottom,
                               const OutputSetup& setup) {
  return CallOutput(device, OS_BANDED_SPANS, 1, SpanListBytes({2, top, bottom, left, right, 2}), setup);
}

struct BandPlace {
  int32_t left = 0;
  int32_t top = 0;
  int32_t originX = 0;
  int32_t originY = 0;
};

// One list and the picture it leaves on a band of kSpanColumns x kSpanRows; '#' is the pen.
struct SpanCase {
  const char* name = "";
  uint32_t count = 0;
  std::vector<int16_t> words{};
  std::vector<int> deltas{};
  const char* picture = "";
  BandRect clip = kEverywhere;
  BandPlace place{};
};

// 13 columns leave padding behind the rows of both depths.
inline constexpr uint32_t kSpanColumns = 13;
inline constexpr uint32_t kSpanRows = 6;
inline constexpr const char* kEmptySpanPicture = ".............";

inline constexpr uint32_t kPenColor = 0x00204080;

// Every case under every style given, on both depths.
inline void RunSpanCases(const std::vector<uint32_t>& styles, const std::vector<SpanCase>& cases) {
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    for (uint32_t style : styles) {
      for (const SpanCase& c : cases) {
        SCOPED_TRACE(std::string(c.name) + ", style " + std::to_string(style) + ", " + std::to_string(depth) + " bits");
        TestDevice device({.bitsPerPixel = depth,
                           .width = kSpanColumns,
                           .height = kSpanRows,
                           .left = c.place.left,
                           .top = c.place.top});
        device.SetOrigin(c.place.originX, c.place.originY);
        const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
        const DRAWMODE mode = MakeDrawMode();
        const OutputSetup setup{.pen = &pen, .drawMode = &mode, .clip = c.clip};
        EXPECT_EQ(1u, CallOutput(device, style, c.count, SpanListBytes(c.words, c.deltas), setup));
        EXPECT_TRUE(BandIs(device, {{'#', Physical(device, kPenColor)}}, c.picture));
      }
    }
  }
}

}  // namespace qnv::test
