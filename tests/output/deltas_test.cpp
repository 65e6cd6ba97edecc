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

struct DeltaCase {
  const char* name = "";
  uint32_t count = 0;
  std::vector<int16_t> words{};  // first row, left and right edge
  std::vector<Step> steps{};
  const char* picture = kEmptySpanPicture;
  BandRect clip = kEverywhere;
  BandPlace place{};
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

TEST(Deltas, Lists) {
  const std::vector<DeltaCase> cases = {
      {.name = "a wedge",
       .count = 4,
       .words = {1, 4, 6},
       .steps = {{-1, 1}, {-1, 2}, {3, 0}},
       .picture = "............."
                  "....##......."
                  "...####......"
                  "..#######...."
                  ".....####...."},
      {.name = "count 1 reads no delta",
       .count = 1,
       .words = {2, 0, 3},
       .picture = "............."
                  "............."
                  "###.........."},
      {.name = "count 0 still paints exactly the first row",
       .count = 0,
       .words = {2, 0, 3},
       .steps = {{1, 1}, {1, 1}},
       .picture = "............."
                  "............."
                  "###.........."},
      {.name = "the edges cross and come back",
       .count = 4,
       .words = {0, 4, 6},
       .steps = {{3, -3}, {-1, 1}, {-4, 4}},
       .picture = "....##......."
                  "............."
                  "............."
                  "..######....."},
      {.name = "whole range of a delta",
       .count = 3,
       .words = {0, 0, 1},
       .steps = {{-128, 127}, {127, -128}},
       .picture = "#............"
                  "#############"},
      {.name = "rows above the band are walked",
       .count = 5,
       .words = {-3, 0, 1},
       .steps = {{1, 1}, {1, 1}, {1, 3}, {1, 0}},
       .picture = "...###......."
                  "....##......."},
      {.name = "rows above the clip are walked",
       .count = 4,
       .words = {0, 0, 1},
       .steps = {{2, 2}, {2, 2}, {2, 3}},
       .picture = "............."
                  "............."
                  "....#........"
                  "......##.....",
       .clip = {0, 2, 13, 6}},
      {.name = "the walk ends at the band's bottom",
       .count = 60,
       .words = {4, 0, 1},
       .steps = {{1, 1}, {1, 1}},
       .picture = "............."
                  "............."
                  "............."
                  "............."
                  "#............"
                  ".#..........."},
      {.name = "the walk ends at the clip's bottom",
       .count = 60,
       .words = {1, 0, 1},
       .steps = {{1, 1}, {1, 1}},
       .picture = "............."
                  "#............"
                  ".#...........",
       .clip = {0, 0, 13, 3}},
      {.name = "first row below the band", .count = 0, .words = {6, 0, 13}, .picture = kEmptySpanPicture},
      {.name = "first row below the clip",
       .count = 3,
       .words = {3, 0, 13},
       .picture = kEmptySpanPicture,
       .clip = {0, 0, 13, 3}},
      {.name = "only the low 16 bits of the count",
       .count = 0x20002,
       .words = {0, 0, 1},
       .steps = {{1, 2}},
       .picture = "#............"
                  ".##.........."},
      {.name = "origin",
       .count = 2,
       .words = {-7, -9, -8},
       .steps = {{0, 2}},
       .picture = "............."
                  ".#..........."
                  ".###.........",
       .place = {.originX = 10, .originY = 8}},
  };
  std::vector<SpanCase> inBytes;
  std::vector<SpanCase> inNibbles;
  for (const DeltaCase& c : cases) {
    SpanCase span{c.name, c.count, c.words, InBytes(c.steps), c.picture, c.clip, c.place};
    inBytes.push_back(span);
    span.deltas = InNibbles(c.steps);
    if (std::all_of(c.steps.begin(), c.steps.end(), FitsNibbles)) inNibbles.push_back(span);
  }
  RunSpanCases({OS_BYTE_DELTAS}, inBytes);
  ASSERT_EQ(inBytes.size() - 1, inNibbles.size());
  RunSpanCases({OS_NIBBLE_DELTAS}, inNibbles);
}

// Edges are kept in 32 bits: one that passes 32767 goes on to the right.
TEST(Deltas, EdgesPassSixteenBits) {
  const std::vector<Step> steps = {{1, 2}, {2, 2}};
  for (uint32_t style : {OS_BYTE_DELTAS, OS_NIBBLE_DELTAS}) {
    SCOPED_TRACE(style);
    TestDevice device({.width = kSpanColumns, .height = kSpanRows, .left = 32760});
    const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
    const DRAWMODE mode = MakeDrawMode();
    const std::vector<int> deltas = style == OS_BYTE_DELTAS ? InBytes(steps) : InNibbles(steps);
    EXPECT_EQ(1u,
              CallOutput(device, style, 3, SpanListBytes({0, 32766, 32767}, deltas), {.pen = &pen, .drawMode = &mode}));
    EXPECT_TRUE(BandIs(device, {{'#', kPenColor}},
                       "......#......"
                       ".......##...."
                       ".........##.."));
  }
}

// All 256 bytes of the style 505: both nibbles are two's complement, -8..7.
TEST(Deltas, EveryNibblePair) {
  for (int byte = 0; byte < 256; ++byte) {
    const int low = byte & 15;
    const int high = byte >> 4;
    const int left = 20 + (low < 8 ? low : low - 16);
    const int right = 40 + (high < 8 ? high : high - 16);
    TestDevice device({.bitsPerPixel = 8, .width = 61, .height = 2});
    const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
    const DRAWMODE mode = MakeDrawMode();
    PlaneImage expected = UntouchedBand(device);
    for (int x = 20; x < 40; ++x) expected.SetColor(static_cast<uint32_t>(x), 0, GrayOf(kPenColor));
    for (int x = left; x < right; ++x) expected.SetColor(static_cast<uint32_t>(x), 1, GrayOf(kPenColor));
    EXPECT_EQ(1u, CallOutput(device, OS_NIBBLE_DELTAS, 2, SpanListBytes({0, 20, 40}, {byte}),
                             {.pen = &pen, .drawMode = &mode}));
    EXPECT_TRUE(SameImage(expected, BandImage(device))) << "delta byte " << byte;
  }
}

}  // namespace
}  // namespace qnv::test
