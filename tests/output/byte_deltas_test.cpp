// Edge deltas in bytes: style 405.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

TEST(ByteDeltas, Lists) {
  RunSpanCases({OS_BYTE_DELTAS},
               {
                   {.name = "a wedge",
                    .count = 4,
                    .words = {1, 4, 6},
                    .deltas = {-1, 1, -1, 2, 3, 0},
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
                    .deltas = {1, 1, 1, 1},
                    .picture = "............."
                               "............."
                               "###.........."
                               "............."
                               "............."
                               "............."},
                   {.name = "the edges cross and come back",
                    .count = 4,
                    .words = {0, 4, 6},
                    .deltas = {3, -3, -1, 1, -4, 4},
                    .picture = "....##......."
                               "............."
                               "............."
                               "..######....."
                               "............."
                               "............."},
                   {.name = "whole range of a delta",
                    .count = 3,
                    .words = {0, 0, 1},
                    .deltas = {-128, 127, 127, -128},
                    .picture = "#............"
                               "#############"
                               "............."
                               "............."
                               "............."
                               "............."},
                   {.name = "rows above the band are walked",
                    .count = 5,
                    .words = {-3, 0, 1},
                    .deltas = {1, 1, 1, 1, 1, 3, 1, 0},
                    .picture = "...###......."
                               "....##......."
                               "............."
                               "............."
                               "............."
                               "............."},
                   {.name = "rows above the clip are walked",
                    .count = 4,
                    .words = {0, 0, 1},
                    .deltas = {2, 2, 2, 2, 2, 3},
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
                    .deltas = {1, 1, 1, 1},
                    .picture = "............."
                               "............."
                               "............."
                               "............."
                               "#............"
                               ".#..........."},
                   {.name = "the walk ends at the clip's bottom",
                    .count = 60,
                    .words = {1, 0, 1},
                    .deltas = {1, 1, 1, 1},
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
                    .deltas = {1, 2},
                    .picture = "#............"
                               ".##.........."
                               "............."
                               "............."
                               "............."
                               "............."},
                   {.name = "origin",
                    .count = 2,
                    .words = {-7, -9, -8},
                    .deltas = {0, 2},
                    .picture = "............."
                               ".#..........."
                               ".###........."
                               "............."
                               "............."
                               ".............",
                    .place = {.originX = 10, .originY = 8}},
               });
}

// Edges are kept in 32 bits: one that passes 32767 goes on to the right.
TEST(ByteDeltas, EdgesPassSixteenBits) {
  TestDevice device({.width = kSpanColumns, .height = kSpanRows, .left = 32760});
  const PhysicalPen pen = SolidPen(device.handle(), kPenColour);
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(1u, CallOutput(device, OS_BYTE_DELTAS, 3, SpanListBytes({0, 32766, 32767}, {1, 2, 2, 2}),
                           {.pen = &pen, .drawMode = &mode}));
  EXPECT_TRUE(BandIs(device, {{'#', kPenColour}},
                     "......#......"
                     ".......##...."
                     ".........##.."
                     "............."
                     "............."
                     "............."));
}

}  // namespace
}  // namespace qnv::test
