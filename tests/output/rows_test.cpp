// Spans row by row: one span for each row, or a list of spans for each.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

// ---- One span per row: style 305.

TEST(RowSpans, Lists) {
  RunSpanCases({OS_ROW_SPANS},
               {
                   {.name = "a small disc",
                    .count = 4,
                    .words = {1, /**/ 4, 8, /**/ 3, 9, /**/ 3, 9, /**/ 4, 8},
                    .picture = "............."
                               "....####....."
                               "...######...."
                               "...######...."
                               "....####....."},
                   {.name = "empty and reversed rows keep their place",
                    .count = 4,
                    .words = {0, /**/ 1, 2, /**/ 5, 5, /**/ 9, 3,
                              /**/ 2, 3},
                    .picture = ".#..........."
                               "............."
                               "............."
                               "..#.........."},
                   {.name = "rows above the band",
                    .count = 4,
                    .words = {-3, /**/ 0, 13, /**/ 0, 13, /**/ 0, 13, /**/ 7, 9},
                    .picture = ".......##...."},
                   {.name = "rows above the clip",
                    .count = 3,
                    .words = {0, /**/ 0, 13, /**/ 1, 2, /**/ 2, 3},
                    .picture = "............."
                               ".#..........."
                               "..#..........",
                    .clip = {0, 1, 13, 6}},
                   {.name = "the walk ends at the band's bottom",
                    .count = 9,
                    .words = {4, /**/ 0, 2, /**/ 11, 14},
                    .picture = "............."
                               "............."
                               "............."
                               "............."
                               "##..........."
                               "...........##"},
                   {.name = "the walk ends at the clip's bottom",
                    .count = 9,
                    .words = {1, /**/ 0, 2},
                    .picture = "............."
                               "##...........",
                    .clip = {0, 0, 13, 2}},
                   {.name = "the walk ends after count rows",
                    .count = 2,
                    .words = {0, /**/ 0, 1, /**/ 0, 2, /**/ 0, 3},
                    .picture = "#............"
                               "##..........."},
                   {.name = "count 0", .count = 0, .words = {0, 0, 13}, .picture = kEmptySpanPicture},
                   {.name = "the first row below the band", .count = 3, .words = {6}, .picture = kEmptySpanPicture},
               });
}

TEST(RowSpans, CountIsUnsigned) {
  TestDevice device({.width = kSpanColumns, .height = kSpanRows, .top = 30000});
  device.SetOrigin(0, 60000);
  const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
  const DRAWMODE mode = MakeDrawMode();
  // The first row lies 2768 rows above the band; a count taken as signed would be negative.
  std::vector<int16_t> words = {-32768};
  for (int i = 0; i <= 0x8000; ++i) words.insert(words.end(), {0, 2});
  EXPECT_EQ(1u, CallOutput(device, OS_ROW_SPANS, 0x8001, SpanListBytes(words), {.pen = &pen, .drawMode = &mode}));
  EXPECT_TRUE(BandIs(device, {{'#', kPenColor}},
                     "##..........."
                     "##..........."
                     "##..........."
                     "##..........."
                     "##..........."
                     "##..........."));
}

// ---- Row records: style 205. Each row brings its own list of spans.

TEST(RowRecords, Lists) {
  RunSpanCases({OS_ROW_RECORDS},
               {
                   {.name = "rows of one, two and no spans",
                    .count = 4,
                    .words = {1, /**/ 2, 1, 4, /**/ 4, 0, 2, 6, 9, /**/ 0,
                              /**/ 2, 11, 13},
                    .picture = "............."
                               ".###........."
                               "##....###...."
                               "............."
                               "...........##"},
                   {.name = "rows above the band are stepped over by their length",
                    .count = 4,
                    .words = {-2, /**/ 4, 0, 1, 2, 3, /**/ 0, /**/ 2, 5, 7, /**/ 2, 6, 8},
                    .picture = ".....##......"
                               "......##....."},
                   {.name = "rows above the clip are stepped over by their length",
                    .count = 4,
                    .words = {0, /**/ 4, 0, 1, 2, 3, /**/ 2, 9, 11, /**/ 2, 5, 7, /**/ 2, 6, 8},
                    .picture = "............."
                               "............."
                               ".....##......"
                               "......##.....",
                    .clip = {0, 2, 13, 6}},
                   {.name = "the walk ends at the band's bottom",
                    .count = 4,
                    .words = {5, /**/ 2, 3, 5},
                    .picture = "............."
                               "............."
                               "............."
                               "............."
                               "............."
                               "...##........"},
                   {.name = "the walk ends at the clip's bottom",
                    .count = 4,
                    .words = {1, /**/ 2, 3, 5, /**/ 2, 4, 6},
                    .picture = "............."
                               "...##........"
                               "....##.......",
                    .clip = {0, 0, 13, 3}},
                   {.name = "the first row below the band", .count = 2, .words = {6}, .picture = kEmptySpanPicture},
                   {.name = "the walk ends after count records",
                    .count = 1,
                    .words = {0, /**/ 2, 0, 2, /**/ 2, 5, 6},
                    .picture = "##..........."},
                   {.name = "count 0", .count = 0, .words = {0, 2, 0, 13}, .picture = kEmptySpanPicture},
                   {.name = "only the low 16 bits of the count",
                    .count = 0x10001,
                    .words = {0, /**/ 2, 0, 2},
                    .picture = "##..........."},
                   {.name = "an odd n takes the next row's n as the last right end",
                    .count = 2,
                    .words = {0, /**/ 3, 0, 1, 3, /**/ 6, 0, 1, 2, 3, 4, 5},
                    .picture = "#..###......."
                               "#.#.#........"},
                   {.name = "n of -1 steps by no word: every later row meets the same n",
                    .count = 3,
                    .words = {0, -1, 2, 0, 5, 2, 0, 5},
                    .picture = kEmptySpanPicture},
                   {.name = "origin shifts rows and columns",
                    .count = 2,
                    .words = {-101, /**/ 2, -20, -17, /**/ 2, -19, -16},
                    .picture = "............."
                               "............."
                               "............."
                               "###.........."
                               ".###.........",
                    .place = {.originX = 20, .originY = 104}},
               });
}

}  // namespace
}  // namespace qnv::test
