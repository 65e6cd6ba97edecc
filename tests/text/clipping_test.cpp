// What cuts text: clip rectangle, band, and the limits that hold without a clip rectangle.
#include <gtest/gtest.h>

#include "text/text_cells.h"

namespace qnv::test {
namespace {

struct ClipCase {
  const char* name;
  const char* text;
  int32_t x, y;
  BandRect shown;  // columns and rows of the band in which the text is to be seen
  BandRect clip = kEverywhere;
  BandCorner band{};
  DrawingOrigin origin{};
};

// On a band of 13 x 6.
const ClipCase kClipCases[] = {
    {"inside", "a", 4, 1, {4, 1, 7, 5}},
    {"the band cuts the left and top", "a", -1, -2, {0, 0, 2, 2}},
    {"the band cuts the right and bottom", "a", 11, 4, {11, 4, 13, 6}},
    {"right of the band", "a", 13, 1, kNowhere},
    {"below the band", "a", 0, 6, kNowhere},
    {"above the band", "a", 0, -4, kNowhere},
    {"left of the band", "a", -3, 0, kNowhere},
    {"the clip cuts all sides of a wide glyph", "c", 1, 1, {3, 2, 10, 4}, {3, 2, 10, 4}},
    {"the clip starts in the second column of glyph bytes", "c", 1, 1, {10, 1, 11, 5}, {10, 0, 13, 6}},
    {"the clip starts on the second column's edge", "c", 1, 1, {9, 3, 11, 5}, {9, 3, 11, 5}},
    {"several characters across the clip's edges", "aaaa", 0, 0, {2, 0, 11, 1}, {2, 0, 11, 1}},
    {"an empty clip clips everything", "a", 4, 1, kNowhere, {5, 2, 5, 4}},
    {"a clip of four zeros clips everything", "a", 0, 0, kNowhere, {0, 0, 0, 0}},
    {"an upside-down clip clips everything", "a", 0, 0, kNowhere, {0, 6, 13, 0}},
    {"a clip outside the band clips everything", "a", 0, 0, kNowhere, {20, 0, 30, 6}},
    {"the origin moves text and clip", "a", 1, -4, {5, 1, 7, 3}, {2, -4, 9, -2}, {0, 0}, {3, 5}},
    {"band elsewhere on the page", "a", 99, 198, {0, 0, 2, 2}, kEverywhere, {100, 200}},
    // A character is passed over when it ends left of device column 0, even where the band reaches further left.
    {"left of column 0 although the band holds it", "a", -8, 1, kNowhere, kEverywhere, {-10, 0}},
    {"one column short of column 0", "a", -4, 1, kNowhere, kEverywhere, {-10, 0}},
    {"ending exactly at column 0", "a", -3, 1, {7, 1, 10, 5}, kEverywhere, {-10, 0}},
    {"passed-over characters still move the pen", "abbbbb", -7, 0, {9, 0, 11, 4}, kEverywhere, {-10, 0}},
    // Rows have no such rule.
    {"ending above row 0 in a band that reaches up", "a", 0, -6, {0, 1, 3, 5}, kEverywhere, {0, -7}},
    {"rows end at 32767", "a", 0, 32765, {0, 2, 3, 4}, kEverywhere, {0, 32763}},
    {"columns end at 32767", "a", 32765, 0, {5, 0, 7, 4}, kEverywhere, {32760, 0}},
    {"text that starts past 32767 is not painted", "a", 32768, 0, kNowhere, kEverywhere, {32760, 0}},
};

TEST(TextClipping, Cases) {
  for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
    const Font font = SmallFont({.table = table}).Build();
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      for (const ClipCase& c : kClipCases) {
        TestDevice device({.bitsPerPixel = depth, .width = 13, .height = 6, .left = c.band.left, .top = c.band.top});
        device.SetOrigin(c.origin.x, c.origin.y);
        DRAWMODE mode = TextMode(OPAQUE);
        const BandRect clip = c.clip;
        DrawTextAt(device, c.x, c.y, c.text, font, mode, {.clip = &clip});
        PlaneImage expected = UntouchedBand(device);
        PutText(&expected, c.text, c.x + c.origin.x - c.band.left, c.y + c.origin.y - c.band.top, c.shown);
        EXPECT_TRUE(BandShows(device, expected)) << c.name << ", " << depth << " bits";
        EXPECT_EQ(0, std::memcmp(&clip, &c.clip, sizeof clip)) << c.name << ": the clip rectangle was written";
      }
    }
  }
}

// The pixels themselves, without the cells of the cases.
TEST(TextClipping, PictureWrittenOut) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 13, .height = 6});
  DRAWMODE mode = TextMode(OPAQUE);
  const BandRect clip{1, 1, 11, 5};
  DrawTextAt(device, 0, 1, "ac", font, mode, {.clip = &clip});
  EXPECT_TRUE(BandIs(device, TextInks(),
                     "............."
                     ".TTTBBBBBBB.."
                     ".BTBTTBBBBT.."
                     ".BTBBBTTTTB.."
                     ".TTBBBBBBBB.."));
}

// Without a clip rectangle text stays in columns 0 .. height - 2 and rows 0 .. width - 2 of the page: the description's
// width and height change places there, and their last column and row are left out.
TEST(TextClipping, LimitsWithoutAClipRectangle) {
  struct Case {
    const char* name;
    uint32_t width, height;
    int32_t x, y;
    BandRect shown;  // on the page
    int32_t bandLeft = 0;
    int32_t bandTop = 0;
  };
  const Case cases[] = {
      {"rows of a tall device", 100, 300, 5, 97, {5, 97, 15, 99}},
      {"columns of a tall device are free", 100, 300, 95, 10, {95, 10, 100, 14}},
      {"columns of a wide device", 300, 100, 95, 10, {95, 10, 99, 14}},
      {"rows of a wide device are free", 300, 100, 10, 97, {10, 97, 20, 100}},
      {"columns past the limit", 300, 100, 99, 10, kNowhere},
      {"rows past the limit", 100, 300, 10, 99, kNowhere},
      {"no column left of 0", 100, 60, -4, 0, {0, 0, 6, 4}, -30, 0},
      {"no row above 0", 60, 100, 0, -2, {0, 0, 10, 2}, 0, -30},
      {"a band below the limit", 100, 300, 0, 150, kNowhere, 0, 120},
  };
  const Font font =
      FontBuilder({.height = 4, .firstChar = 'a', .lastChar = 'a'}).Glyph('a', 10, std::string(40, '#')).Build();
  for (const Case& c : cases) {
    for (uint16_t resolutionB : {uint16_t{360}, uint16_t{720}}) {
      // The limits are the description's own numbers, not the sizes scaled to resolution B.
      TestDevice device({.width = c.width,
                         .height = c.height,
                         .resolutionA = 360,
                         .resolutionB = resolutionB,
                         .left = c.bandLeft,
                         .top = c.bandTop});
      DRAWMODE mode = TextMode();
      EXPECT_EQ(10, DrawTextAt(device, c.x, c.y, "a", font, mode, {.clip = nullptr})) << c.name;
      PlaneImage expected = UntouchedBand(device);
      PutRect(
          &expected,
          {c.shown.left - c.bandLeft, c.shown.top - c.bandTop, c.shown.right - c.bandLeft, c.shown.bottom - c.bandTop},
          kTextColor);
      EXPECT_TRUE(BandShows(device, expected)) << c.name;
    }
  }
}

}  // namespace
}  // namespace qnv::test
