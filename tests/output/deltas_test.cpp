// Edge deltas, in bytes (style 405) and in nibbles (style 505): both encode the same steps of the left and right edge.
#include <gtest/gtest.h>

#include <algorithm>

#include "output/output_call.h"

namespace qnv::test {
namespace {

// What the edges move by from one row to the next.
struct Step {
  int left;
  int right;
};

std::vector<int> InBytes(const std::vector<Step>& steps) {
  std::vector<int> bytes;
  for (const Step& step : steps) bytes.insert(bytes.end(), {step.left, step.right});
  return bytes;
}

// The low nibble moves the left edge, the high nibble the right one.
std::vector<int> InNibbles(const std::vector<Step>& steps) {
  std::vector<int> bytes;
  for (const Step& step : steps) bytes.push_back((step.left & 15) | (step.right & 15) << 4);
  return bytes;
}

bool FitsNibbles(const Step& step) { return step.left >= -8 && step.left < 8 && step.right >= -8 && step.right < 8; }

struct DeltaCase {
  const char* name;
  uint32_t count;
  std::vector<int16_t> words;  // first row, left and right edge
  std::vector<Step> steps;
  std::vector<BandRect> painted;  // columns and rows of kSpanBand
  BandRect clip = kEverywhere;
  BandPlace place{};
};

const std::vector<DeltaCase> kDeltaCases = {
    {"count 1 reads no delta", 1, {2, 0, 3}, {}, {{0, 2, 3, 3}}},
    {"count 0 still paints exactly the first row", 0, {2, 0, 3}, {{1, 1}, {1, 1}}, {{0, 2, 3, 3}}},
    {"the edges cross and come back", 4, {0, 4, 6}, {{3, -3}, {-1, 1}, {-4, 4}}, {{4, 0, 6, 1}, {2, 3, 8, 4}}},
    {"whole range of a delta", 3, {0, 0, 1}, {{-128, 127}, {127, -128}}, {{0, 0, 1, 1}, {0, 1, 13, 2}}},
    {"rows above the band are walked", 5, {-3, 0, 1}, {{1, 1}, {1, 1}, {1, 3}, {1, 0}}, {{3, 0, 6, 1}, {4, 1, 6, 2}}},
    {"rows above the clip are walked",
     4,
     {0, 0, 1},
     {{2, 2}, {2, 2}, {2, 3}},
     {{4, 2, 5, 3}, {6, 3, 8, 4}},
     {0, 2, 13, 6}},
    {"the walk ends at the band's bottom", 60, {4, 0, 1}, {{1, 1}, {1, 1}}, {{0, 4, 1, 5}, {1, 5, 2, 6}}},
    {"the walk ends at the clip's bottom",
     60,
     {1, 0, 1},
     {{1, 1}, {1, 1}},
     {{0, 1, 1, 2}, {1, 2, 2, 3}},
     {0, 0, 13, 3}},
    {"first row below the band", 0, {6, 0, 13}, {}, {}},
    {"first row below the clip", 3, {3, 0, 13}, {}, {}, {0, 0, 13, 3}},
    {"only the low 16 bits of the count", 0x20002, {0, 0, 1}, {{1, 2}}, {{0, 0, 1, 1}, {1, 1, 3, 2}}},
    {"origin", 2, {-7, -9, -8}, {{0, 2}}, {{1, 1, 2, 2}, {1, 2, 4, 3}}, kEverywhere, {.originX = 10, .originY = 8}},
};

TEST(Deltas, Lists) {
  std::vector<SpanCase> inBytes;
  std::vector<SpanCase> inNibbles;
  for (const DeltaCase& c : kDeltaCases) {
    SpanCase span{c.name, c.count, c.words, c.painted, c.clip, c.place, InBytes(c.steps)};
    inBytes.push_back(span);
    span.deltas = InNibbles(c.steps);
    if (std::all_of(c.steps.begin(), c.steps.end(), FitsNibbles)) inNibbles.push_back(span);
  }
  RunSpanCases({OS_BYTE_DELTAS}, inBytes);
  ASSERT_EQ(inBytes.size() - 1, inNibbles.size());
  RunSpanCases({OS_NIBBLE_DELTAS}, inNibbles);
}

TEST(Deltas, AWedge) {
  const std::vector<Step> steps = {{-1, 1}, {-1, 2}, {3, 0}};
  for (uint32_t style : {OS_BYTE_DELTAS, OS_NIBBLE_DELTAS}) {
    TestDevice device(kSpanBand);
    EXPECT_EQ(1u, PaintList(device, style, 4, {1, 4, 6}, style == OS_BYTE_DELTAS ? InBytes(steps) : InNibbles(steps)));
    EXPECT_TRUE(BandIs(device, {{'#', kPenColor}},
                       "............."
                       "....##......."
                       "...####......"
                       "..#######...."
                       ".....####...."));
  }
}

// Edges are kept in 32 bits: one that passes 32767 goes on to the right.
TEST(Deltas, EdgesPassSixteenBits) {
  const std::vector<Step> steps = {{1, 2}, {2, 2}};
  for (uint32_t style : {OS_BYTE_DELTAS, OS_NIBBLE_DELTAS}) {
    SCOPED_TRACE(style);
    PlacedDevice device(kSpanBand, {.left = 32760});
    const std::vector<int> deltas = style == OS_BYTE_DELTAS ? InBytes(steps) : InNibbles(steps);
    EXPECT_EQ(1u, PaintList(device, style, 3, {0, 32766, 32767}, deltas));
    EXPECT_TRUE(PenPainted(device, {{6, 0, 7, 1}, {7, 1, 9, 2}, {9, 2, 11, 3}}));
  }
}

// All 256 bytes of the style 505: both nibbles are two's complement, -8..7.
TEST(Deltas, EveryNibblePair) {
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const int low = byte & 15;
    const int high = byte >> 4;
    const int left = 20 + (low < 8 ? low : low - 16);
    const int right = 40 + (high < 8 ? high : high - 16);
    TestDevice device({.bitsPerPixel = 8, .width = 61, .height = 2});
    EXPECT_EQ(1u, PaintList(device, OS_NIBBLE_DELTAS, 2, {0, 20, 40}, {byte}));
    EXPECT_TRUE(PenPainted(device, {{20, 0, 40, 1}, {left, 1, right, 2}}));
  }
}

}  // namespace
}  // namespace qnv::test
