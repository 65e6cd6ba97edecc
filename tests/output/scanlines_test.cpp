// Single-row scanlines: styles 4 and 104.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

const std::vector<uint32_t> kStyles = {OS_SCANLINES, 104};

TEST(Scanlines, Lists) {
  RunSpanCases(
      kStyles,
      {
          {.name = "one span",
           .count = 2,
           .words = {0, 2, 3, 7},
           .picture = "............."
                      "............."
                      "...####......"},
          {.name = "one pixel", .count = 2, .words = {0, 0, 10, 11}, .picture = "..........#.."},
          {.name = "empty span", .count = 2, .words = {0, 0, 10, 10}, .picture = kEmptySpanPicture},
          {.name = "reversed span", .count = 2, .words = {0, 0, 10, 4}, .picture = kEmptySpanPicture},
          {.name = "right end on the band's edge",
           .count = 2,
           .words = {0, 5, 9, 13},
           .picture = "............."
                      "............."
                      "............."
                      "............."
                      "............."
                      ".........####"},
          {.name = "wider than the band",
           .count = 2,
           .words = {0, 1, -300, 300},
           .picture = "............."
                      "#############"},
          {.name = "spans in any order, touching and overlapping",
           .count = 6,
           .words = {0, 3, 8, 10, 0, 2, 2, 3, 9, 11, 5, 5},
           .picture = "............."
                      "............."
                      "............."
                      "###.....###.."},
          {.name = "the x of the header pair is not read",
           .count = 2,
           .words = {-32768, 4, 0, 1},
           .picture = "............."
                      "............."
                      "............."
                      "............."
                      "#............"},
          {.name = "only the header", .count = 1, .words = {0, 2}, .picture = kEmptySpanPicture},
          {.name = "count 0", .count = 0, .words = {0, 2}, .picture = kEmptySpanPicture},
          {.name = "the count ends the list", .count = 2, .words = {0, 0, 1, 2, 4, 9}, .picture = ".#..........."},
          {.name = "only the low 16 bits of the count",
           .count = 0xABCD0002,
           .words = {0, 0, 1, 2},
           .picture = ".#..........."},
          {.name = "row above the band", .count = 2, .words = {0, -1, 0, 13}, .picture = kEmptySpanPicture},
          {.name = "row below the band", .count = 2, .words = {0, 6, 0, 13}, .picture = kEmptySpanPicture},
          {.name = "origin 100 and row -100",
           .count = 2,
           .words = {0, -100, 4, 6},
           .picture = "....##.......",
           .place = {.originY = 100}},
          {.name = "row above the clip",
           .count = 2,
           .words = {0, 1, 0, 13},
           .picture = kEmptySpanPicture,
           .clip = {0, 2, 13, 6}},
          {.name = "row on the clip's bottom",
           .count = 2,
           .words = {0, 4, 0, 13},
           .picture = kEmptySpanPicture,
           .clip = {0, 2, 13, 4}},
      });
}

TEST(Scanlines, ManySpansOfOneRow) {
  TestDevice device({.width = 601, .height = 2});
  const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
  const DRAWMODE mode = MakeDrawMode();
  std::vector<int16_t> words = {0, 1};
  PlaneImage expected = UntouchedBand(device);
  for (int16_t x = 0; x < 601; x = static_cast<int16_t>(x + 2)) {
    words.push_back(x);
    words.push_back(static_cast<int16_t>(x + 1));
    expected.SetColor(static_cast<uint32_t>(x), 1, kPenColor);
  }
  EXPECT_EQ(1u, CallOutput(device, OS_SCANLINES, static_cast<uint32_t>(words.size() / 2), SpanListBytes(words),
                           {.pen = &pen, .drawMode = &mode}));
  EXPECT_TRUE(SameImage(expected, BandImage(device)));
  EXPECT_TRUE(device.FencesIntact());
}

// Solid fills go four pixels at a time: every length and phase must equal single-pixel writes, and the pixel after the
// span must stay. The band starts with different bytes so that the exclusive-or shows each byte's own value.
TEST(Scanlines, EveryLengthAndPhaseOfASolidSpan) {
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    for (int16_t rop2 : {int16_t{R2_COPYPEN}, int16_t{R2_XORPEN}, int16_t{R2_NOTCOPYPEN}}) {
      for (int16_t left = 0; left < 5; ++left) {
        for (int16_t length = 0; length <= 22; ++length) {
          TestDevice device({.bitsPerPixel = depth, .width = 29, .height = 3});
          for (std::size_t i = 0; i < device.band().size(); ++i) {
            device.band().data()[i] = static_cast<uint8_t>(i * 37 + 11);
          }
          const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
          DRAWMODE mode = MakeDrawMode();
          mode.Rop2 = rop2;
          PlaneImage expected = BandImage(device);
          const uint32_t color = Physical(device, kPenColor);
          for (int16_t i = 0; i < length; ++i) {
            const uint32_t column = static_cast<uint32_t>(left + i);
            const uint32_t d = expected.Color(column, 1);
            expected.SetColor(column, 1, rop2 == R2_COPYPEN ? color : rop2 == R2_XORPEN ? d ^ color : ~color);
          }
          PaintRow(device, left, static_cast<int16_t>(left + length), 1, {.pen = &pen, .drawMode = &mode});
          EXPECT_TRUE(SameImage(expected, BandImage(device)))
              << depth << " bits, rop2 " << rop2 << ", left " << left << ", length " << length;
          EXPECT_TRUE(device.FencesIntact());
        }
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
