// Edge deltas in nibbles: style 505. The low nibble moves the left edge, the high nibble the right one.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

TEST(NibbleDeltas, Lists) {
  RunSpanCases({OS_NIBBLE_DELTAS},
               {
                   {.name = "a wedge",
                    .count = 4,
                    .words = {1, 4, 6},
                    .deltas = {0x1F, 0x2F, 0x03},
                    .picture = "............."
                               "....##......."
                               "...####......"
                               "..#######...."
                               ".....####...."
                               "............."},
                   {.name = "count 1 reads no delta",
                    .count = 1,
                    .words = {2, 0, 3},
                    .picture = "............."
                               "............."
                               "###.........."
                               "............."
                               "............."
                               "............."},
                   {.name = "count 0 still paints exactly the first row",
                    .count = 0,
                    .words = {2, 0, 3},
                    .deltas = {0x11, 0x11},
                    .picture = "............."
                               "............."
                               "###.........."
                               "............."
                               "............."
                               "............."},
                   {.name = "rows above the band are walked",
                    .count = 5,
                    .words = {-3, 0, 1},
                    .deltas = {0x11, 0x11, 0x31, 0x01},
                    .picture = "...###......."
                               "....##......."
                               "............."
                               "............."
                               "............."
                               "............."},
                   {.name = "rows above the clip are walked",
                    .count = 4,
                    .words = {0, 0, 1},
                    .deltas = {0x22, 0x22, 0x32},
                    .picture = "............."
                               "............."
                               "....#........"
                               "......##....."
                               "............."
                               ".............",
                    .clip = {0, 2, 13, 6}},
                   {.name = "the walk ends at the band's bottom",
                    .count = 60,
                    .words = {4, 0, 1},
                    .deltas = {0x11, 0x11},
                    .picture = "............."
                               "............."
                               "............."
                               "............."
                               "#............"
                               ".#..........."},
                   {.name = "the walk ends at the clip's bottom",
                    .count = 60,
                    .words = {1, 0, 1},
                    .deltas = {0x11, 0x11},
                    .picture = "............."
                               "#............"
                               ".#..........."
                               "............."
                               "............."
                               ".............",
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
                    .deltas = {0x21},
                    .picture = "#............"
                               ".##.........."
                               "............."
                               "............."
                               "............."
                               "............."},
               });
}

// All 256 bytes: both nibbles are two's complement, -8..7.
TEST(NibbleDeltas, EveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const int low = byte & 15;
    const int high = byte >> 4;
    const int left = 20 + (low < 8 ? low : low - 16);
    const int right = 40 + (high < 8 ? high : high - 16);
    TestDevice device({.bitsPerPixel = 8, .width = 61, .height = 2});
    const PhysicalPen pen = SolidPen(device.handle(), kPenColour);
    const DRAWMODE mode = MakeDrawMode();
    PicturePlane expected = UntouchedBand(device);
    for (int x = 20; x < 40; ++x) expected.Put(static_cast<uint32_t>(x), 0, GrayOf(kPenColour));
    for (int x = left; x < right; ++x) expected.Put(static_cast<uint32_t>(x), 1, GrayOf(kPenColour));
    EXPECT_EQ(1u, CallOutput(device, OS_NIBBLE_DELTAS, 2, SpanListBytes({0, 20, 40}, {byte}),
                             {.pen = &pen, .drawMode = &mode}));
    EXPECT_TRUE(SamePlane(expected, CurrentBand(device))) << "delta byte " << byte;
  }
}

}  // namespace
}  // namespace qnv::test
