// One span per row: style 305.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

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
                               "....####....."
                               "............."},
                   {.name = "empty and reversed rows keep their place",
                    .count = 4,
                    .words = {0, /**/ 1, 2, /**/ 5, 5, /**/ 9, 3,
                              /**/ 2, 3},
                    .picture = ".#..........."
                               "............."
                               "............."
                               "..#.........."
                               "............."
                               "............."},
                   {.name = "rows above the band",
                    .count = 4,
                    .words = {-3, /**/ 0, 13, /**/ 0, 13, /**/ 0, 13, /**/ 7, 9},
                    .picture = ".......##...."
                               "............."
                               "............."
                               "............."
                               "............."
                               "............."},
                   {.name = "rows above the clip",
                    .count = 3,
                    .words = {0, /**/ 0, 13, /**/ 1, 2, /**/ 2, 3},
                    .picture = "............."
                               ".#..........."
                               "..#.........."
                               "............."
                               "............."
                               ".............",
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
                               "##..........."
                               "............."
                               "............."
                               "............."
                               ".............",
                    .clip = {0, 0, 13, 2}},
                   {.name = "the walk ends after count rows",
                    .count = 2,
                    .words = {0, /**/ 0, 1, /**/ 0, 2, /**/ 0, 3},
                    .picture = "#............"
                               "##..........."
                               "............."
                               "............."
                               "............."
                               "............."},
                   {.name = "count 0", .count = 0, .words = {0, 0, 13}, .picture = kEmptySpanPicture},
                   {.name = "the first row below the band", .count = 3, .words = {6}, .picture = kEmptySpanPicture},
               });
}

TEST(RowSpans, CountIsUnsigned) {
  TestDevice device({.width = kSpanColumns, .height = kSpanRows, .top = 30000});
  device.SetOrigin(0, 60000);
  const PhysicalPen pen = SolidPen(device.handle(), kPenColour);
  const DRAWMODE mode = MakeDrawMode();
  // The first row lies 2768 rows above the band; a count taken as signed would be negative.
  std::vector<int16_t> words = {-32768};
  for (int i = 0; i <= 0x8000; ++i) words.insert(words.end(), {0, 2});
  EXPECT_EQ(1u, CallOutput(device, OS_ROW_SPANS, 0x8001, SpanListBytes(words), {.pen = &pen, .drawMode = &mode}));
  EXPECT_TRUE(BandIs(device, {{'#', kPenColour}},
                     "##..........."
                     "##..........."
                     "##..........."
                     "##..........."
                     "##..........."
                     "##..........."));
}

}  // namespace
}  // namespace qnv::test
