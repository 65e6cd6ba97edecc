// Banded span records: styles 5 and 105. One list of spans serves every row of its record.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

const std::vector<uint32_t> kStyles = {OS_BANDED_SPANS, 105};

TEST(BandedSpans, Lists) {
  RunSpanCases(kStyles,
               {
                   {.name = "one record of two spans",
                    .count = 1,
                    .words = {4, 1, 4, 1, 3, 8, 11, 4},
                    .picture = "............."
                               ".##.....###.."
                               ".##.....###.."
                               ".##.....###.."},
                   {.name = "two records",
                    .count = 2,
                    .words = {2, 0, 1, 0, 2, 2, /**/ 4, 4, 6, 3, 4, 12, 13, 4},
                    .picture = "##..........."
                               "............."
                               "............."
                               "............."
                               "...#........#"
                               "...#........#"},
                   {.name = "records may overlap and run upwards",
                    .count = 2,
                    .words = {2, 3, 5, 2, 4, 2, /**/ 2, 2, 4, 3, 6, 2},
                    .picture = "............."
                               "............."
                               "...###......."
                               "..####......."
                               "..##........."},
                   {.name = "a record above the band is stepped over whole",
                    .count = 2,
                    .words = {4, -9, 0, 0, 5, 6, 9, 4, /**/ 2, 0, 1, 5, 7, 2},
                    .picture = ".....##......"},
                   {.name = "a record below the band does not end the list",
                    .count = 2,
                    .words = {2, 6, 9, 0, 5, 2, /**/ 2, 5, 9, 5, 7, 2},
                    .picture = "............."
                               "............."
                               "............."
                               "............."
                               "............."
                               ".....##......"},
                   {.name = "rows enter from above and leave below",
                    .count = 1,
                    .words = {2, -100, 100, 6, 7, 2},
                    .picture = "......#......"
                               "......#......"
                               "......#......"
                               "......#......"
                               "......#......"
                               "......#......"},
                   {.name = "no rows", .count = 1, .words = {2, 3, 3, 0, 13, 2}, .picture = kEmptySpanPicture},
                   {.name = "bottom above top", .count = 1, .words = {2, 4, 2, 0, 13, 2}, .picture = kEmptySpanPicture},
                   {.name = "a record without spans",
                    .count = 2,
                    .words = {0, 0, 6, 0, /**/ 2, 0, 1, 3, 4, 2},
                    .picture = "...#........."},
                   {.name = "empty and reversed spans paint nothing",
                    .count = 1,
                    .words = {6, 0, 2, 3, 3, 9, 5, 7, 8, 6},
                    .picture = ".......#....."
                               ".......#....."},
                   {.name = "an odd n takes the repeated n as the last right end",
                    .count = 1,
                    .words = {3, 0, 1, 0, 1, 2, 3},
                    .picture = "#.#.........."},
                   {.name = "the step is n + 4 words after an odd n too",
                    .count = 2,
                    .words = {1, 0, 1, 0, 1, /**/ 2, 2, 3, 4, 5, 2},
                    .picture = "#............"
                               "............."
                               "....#........"},
                   {.name = "count 0", .count = 0, .words = {2, 0, 6, 0, 13, 2}, .picture = kEmptySpanPicture},
                   {.name = "only the low 16 bits of the count",
                    .count = 0x70000000,
                    .words = {2, 0, 6, 0, 13, 2},
                    .picture = kEmptySpanPicture},
                   {.name = "clip cuts rows and spans",
                    .count = 1,
                    .words = {4, 0, 6, 0, 5, 7, 13, 4},
                    .picture = "............."
                               "............."
                               "...##..##...."
                               "...##..##....",
                    .clip = {3, 2, 9, 4}},
               });
}

// Records of more than 1024 bytes of spans, even and odd, one after the other and followed by a short one: the work
// area for the clipped spans must be large enough every time.
TEST(BandedSpans, LongRecords) {
  struct Case {
    const char* name;
    std::vector<int16_t> sizes;  // n of each record
  };
  const Case cases[] = {
      {"exactly 1024 bytes", {256}},
      {"the first odd n above 255", {257}},
      {"long, longer, short", {600, 900, 2}},
      {"longer first", {1201, 601, 257}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TestDevice device({.bitsPerPixel = 8, .width = 1300, .height = static_cast<uint32_t>(2 * c.sizes.size())});
    const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
    const DRAWMODE mode = MakeDrawMode();
    PlaneImage expected = UntouchedBand(device);
    std::vector<int16_t> words;
    int16_t top = 0;
    for (int16_t n : c.sizes) {
      words.insert(words.end(), {n, top, static_cast<int16_t>(top + 2)});
      for (int16_t i = 0; i < n; ++i) words.push_back(i);
      words.push_back(n);
      // Pairs (0, 1), (2, 3) ...: every even column below n; the pair of an odd n ends at n itself.
      for (int16_t i = 0; i < n; i = static_cast<int16_t>(i + 2)) {
        for (int16_t row = top; row < top + 2; ++row) {
          expected.SetColor(static_cast<uint32_t>(i), static_cast<uint32_t>(row), GrayOf(kPenColor));
        }
      }
      top = static_cast<int16_t>(top + 2);
    }
    EXPECT_EQ(1u, CallOutput(device, OS_BANDED_SPANS, static_cast<uint32_t>(c.sizes.size()), SpanListBytes(words),
                             {.pen = &pen, .drawMode = &mode}));
    EXPECT_TRUE(SameImage(expected, BandImage(device)));
    EXPECT_TRUE(device.FencesIntact());
  }
}

TEST(BandedSpans, CountIsUnsigned) {
  TestDevice device({.width = kSpanColumns, .height = kSpanRows});
  const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
  const DRAWMODE mode = MakeDrawMode();
  // 0x8001 records, all but the last one without spans.
  std::vector<int16_t> words;
  for (int i = 0; i < 0x8000; ++i) words.insert(words.end(), {0, 0, 0, 0});
  words.insert(words.end(), {2, 0, 1, 0, 1, 2});
  EXPECT_EQ(1u, CallOutput(device, OS_BANDED_SPANS, 0x8001, SpanListBytes(words), {.pen = &pen, .drawMode = &mode}));
  EXPECT_TRUE(BandIs(device, {{'#', kPenColor}}, "#............"));
}

}  // namespace
}  // namespace qnv::test
