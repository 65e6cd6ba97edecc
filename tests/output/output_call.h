// Span lists as a host lays them out, the call that paints them, and what they have to leave.
#pragma once

#include <cstdint>
#include <vector>

#include "support/device_classes.h"
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

inline constexpr uint32_t kPenColor = 0x00204080;

// The same with a pen of kPenColor that copies.
inline uint32_t PaintList(const TestDevice& device, uint32_t style, uint32_t count, const std::vector<int16_t>& words,
                          const std::vector<int>& deltas = {}, const BandRect& clip = kEverywhere) {
  const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
  const DRAWMODE mode = MakeDrawMode();
  return CallOutput(device, style, count, SpanListBytes(words, deltas), {.pen = &pen, .drawMode = &mode, .clip = clip});
}

// Nothing but these rectangles of columns and rows has the pen's color.
inline testing::AssertionResult PenPainted(const TestDevice& device, const std::vector<BandRect>& painted) {
  PlaneImage expected = UntouchedBand(device);
  for (const BandRect& rect : painted) {
    for (int32_t row = rect.top; row < rect.bottom; ++row) {
      for (int32_t column = rect.left; column < rect.right; ++column) {
        expected.SetColor(column, row, Physical(device, kPenColor));
      }
    }
  }
  return BandShows(device, expected);
}

// 13 columns leave padding behind the rows of both depths.
inline constexpr DeviceOptions kSpanBand{.width = 13, .height = 6};

// One list and what it paints on kSpanBand.
struct SpanCase {
  const char* name = "";
  uint32_t count = 0;
  std::vector<int16_t> words{};
  std::vector<BandRect> painted{};  // columns and rows
  BandRect clip = kEverywhere;
  BandPlace place{};
  std::vector<int> deltas{};
};

// Every case under every style given, on both depths.
inline void RunSpanCases(const std::vector<uint32_t>& styles, const std::vector<SpanCase>& cases) {
  for (uint16_t depth : kBandDepths) {
    for (uint32_t style : styles) {
      for (const SpanCase& c : cases) {
        SCOPED_TRACE(Text(c.name, ", style ", style, ", ", depth, " bits"));
        PlacedDevice device(WithDepth(kSpanBand, QNV_KIND_RASTER, depth), c.place);
        EXPECT_EQ(1u, PaintList(device, style, c.count, c.words, c.deltas, c.clip));
        EXPECT_TRUE(PenPainted(device, c.painted));
      }
    }
  }
}

}  // namespace qnv::test
