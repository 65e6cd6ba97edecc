// What cuts text: clip rectangle, band, ETO_CLIPPED, and the limits that hold without a clip rectangle.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

constexpr uint32_t kColumns = 13;
constexpr uint32_t kRows = 6;
constexpr const char* kNothing = ".............";

struct ClipCase {
  const char* name = "";
  std::string text = "a";
  int32_t x = 0;
  int32_t y = 0;
  BandRect clip = kEverywhere;
  int32_t bandLeft = 0;
  int32_t bandTop = 0;
  int32_t originX = 0;
  int32_t originY = 0;
  const char* picture = kNothing;
};

const ClipCase kCases[] = {
    {.name = "inside",
     .x = 4,
     .y = 1,
     .picture = "............."
                "....TTT......"
                "....TBT......"
                "....TBT......"
                "....TTT......"},
    {.name = "band cuts the left and top",
     .x = -1,
     .y = -2,
     .picture = "BT..........."
                "TT..........."},
    {.name = "band cuts the right and bottom",
     .x = 11,
     .y = 4,
     .picture = "............."
                "............."
                "............."
                "............."
                "...........TT"
                "...........TB"},
    {.name = "right of the band", .x = 13, .y = 1},
    {.name = "below the band", .x = 0, .y = 6},
    {.name = "above the band", .x = 0, .y = -4},
    {.name = "left of the band", .x = -3, .y = 0},
    {.name = "clip cuts all sides of a wide glyph",
     .text = "c",
     .x = 1,
     .y = 1,
     .clip = {3, 2, 10, 4},
     .picture = "............."
                "............."
                "...TBBBBTT..."
                "...BTTTTBB..."},
    {.name = "clip starts in the second column of glyph bytes",
     .text = "c",
     .x = 1,
     .y = 1,
     .clip = {10, 0, 13, 6},
     .picture = "............."
                "..........T.."
                "..........B.."
                "..........B.."
                "..........T.."},
    {.name = "clip starts on the second column's edge",
     .text = "c",
     .x = 1,
     .y = 1,
     .clip = {9, 3, 11, 5},
     .picture = "............."
                "............."
                "............."
                ".........BB.."
                ".........TT.."},
    {.name = "empty clip clips everything", .x = 4, .y = 1, .clip = {5, 2, 5, 4}},
    {.name = "clip of four zeros clips everything", .x = 0, .y = 0, .clip = {0, 0, 0, 0}},
    {.name = "upside-down clip clips everything", .x = 0, .y = 0, .clip = {0, 6, 13, 0}},
    {.name = "clip outside the band clips everything", .x = 0, .y = 0, .clip = {20, 0, 30, 6}},
    {.name = "the origin moves text and clip",
     .x = 1,
     .y = -4,
     .clip = {2, -4, 9, -2},
     .originX = 3,
     .originY = 5,
     .picture = "............."
                ".....TT......"
                ".....BT......"},
    {.name = "band elsewhere on the page",
     .x = 99,
     .y = 198,
     .bandLeft = 100,
     .bandTop = 200,
     .picture = "BT..........."
                "TT..........."},
    {.name = "several characters across the clip's edges",
     .text = "aaaa",
     .x = 0,
     .y = 0,
     .clip = {2, 0, 11, 1},
     .picture = "..TTTTTTTTT.."},
    // A character is passed over when it ends left of device column 0, even where the band reaches further left.
    {.name = "left of column 0 although the band holds it", .x = -8, .y = 1, .bandLeft = -10},
    {.name = "one column short of column 0", .x = -4, .y = 1, .bandLeft = -10},
    {.name = "ending exactly at column 0",
     .x = -3,
     .y = 1,
     .bandLeft = -10,
     .picture = "............."
                ".......TTT..."
                ".......TBT..."
                ".......TBT..."
                ".......TTT..."},
    {.name = "passed-over characters still move the pen",
     .text = "abbbbb",
     .x = -7,
     .y = 0,
     .bandLeft = -10,
     .picture = ".........TT.."
                ".........TT.."
                ".........BB.."
                ".........TT.."},
    // Rows have no such rule.
    {.name = "ending above row 0 in a band that reaches up",
     .x = 0,
     .y = -6,
     .bandTop = -7,
     .picture = "............."
                "TTT.........."
                "TBT.........."
                "TBT.........."
                "TTT.........."},
    {.name = "rows end at 32767",
     .x = 0,
     .y = 32765,
     .bandTop = 32763,
     .picture = "............."
                "............."
                "TTT.........."
                "TBT.........."},
    {.name = "columns end at 32767",
     .x = 32765,
     .y = 0,
     .bandLeft = 32760,
     .picture = ".....TT......"
                ".....TB......"
                ".....TB......"
                ".....TT......"},
    {.name = "text that starts past 32767 is not painted", .x = 32768, .y = 0, .bandLeft = 32760},
};

TEST(TextClipping, Cases) {
  for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      const Font font = SmallFont({.table = table}).Build();
      for (const ClipCase& c : kCases) {
        TestDevice device(
            {.bitsPerPixel = depth, .width = kColumns, .height = kRows, .left = c.bandLeft, .top = c.bandTop});
        device.SetOrigin(c.originX, c.originY);
        DRAWMODE mode = TextMode(OPAQUE);
        const BandRect clip = c.clip;
        DrawTextAt(device, c.x, c.y, c.text, font, mode, {.clip = &clip});
        EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name << ", " << depth << " bits";
        EXPECT_EQ(0, std::memcmp(&clip, &c.clip, sizeof clip)) << c.name << ": the clip rectangle was written";
      }
    }
  }
}

struct ClippedCase {
  const char* name;
  bool withClip;
  BandRect clip;
  BandRect opaqueRect;
  uint32_t options;
  const char* picture;
};

// ETO_CLIPPED cuts text to the opaque rectangle too, in caller coordinates as the clip rectangle.
TEST(TextClipping, ClippedToTheOpaqueRectangle) {
  const ClippedCase cases[] = {
      {"alone",
       false,
       {},
       {4, 2, 6, 5},
       ETO_CLIPPED,
       "............."
       "............."
       "....TB......."
       "....TB......."
       "....TT......."},
      {"with a clip rectangle: what both hold",
       true,
       {5, 0, 13, 4},
       {0, 2, 7, 6},
       ETO_CLIPPED,
       "............."
       "............."
       ".....BT......"
       ".....BT......"},
      {"with a clip rectangle that it misses", true, {0, 0, 4, 6}, {4, 0, 13, 6}, ETO_CLIPPED, kNothing},
      {"an empty rectangle clips everything", false, {}, {4, 2, 4, 5}, ETO_CLIPPED, kNothing},
      {"not asked for",
       true,
       {0, 0, 13, 6},
       {4, 2, 6, 5},
       0,
       "............."
       "....TTT......"
       "....TBT......"
       "....TBT......"
       "....TTT......"},
      {"other options do nothing",
       true,
       {0, 0, 13, 6},
       {4, 2, 6, 5},
       0xFFF9,
       "............."
       "....TTT......"
       "....TBT......"
       "....TBT......"
       "....TTT......"},
  };
  const Font font = SmallFont().Build();
  for (const ClippedCase& c : cases) {
    for (bool origin : {false, true}) {
      TestDevice device({.width = kColumns, .height = kRows, .left = origin ? 20 : 0, .top = origin ? -9 : 0});
      if (origin) device.SetOrigin(20, -9);
      DRAWMODE mode = TextMode(OPAQUE);
      const int32_t advance =
          DrawTextAt(device, 4, 1, "a", font, mode,
                     {.clip = c.withClip ? &c.clip : nullptr, .opaqueRect = &c.opaqueRect, .options = c.options});
      EXPECT_EQ(3, advance) << c.name;
      EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name << (origin ? ", origin" : "");
    }
  }
}

struct LimitCase {
  const char* name;
  uint32_t width, height;
  int32_t x, y;
  int32_t firstColumn, firstRow, endColumn, endRow;  // what is painted, in device coordinates
  int32_t bandLeft = 0;
  int32_t bandTop = 0;
};

// Without a clip rectangle text stays in columns 0 .. height - 2 and rows 0 .. width - 2 of the page: the description's
// width and height change places there, and their last column and row are left out.
TEST(TextClipping, LimitsWithoutAClipRectangle) {
  const LimitCase cases[] = {
      {"rows of a tall device", 100, 300, 5, 97, 5, 97, 15, 99},
      {"columns of a tall device are free", 100, 300, 95, 10, 95, 10, 100, 14},
      {"columns of a wide device", 300, 100, 95, 10, 95, 10, 99, 14},
      {"rows of a wide device are free", 300, 100, 10, 97, 10, 97, 20, 100},
      {"columns past the limit", 300, 100, 99, 10, 0, 0, 0, 0},
      {"rows past the limit", 100, 300, 10, 99, 0, 0, 0, 0},
      {"no column left of 0", 100, 60, -4, 0, 0, 0, 6, 4, -30, 0},
      {"no row above 0", 60, 100, 0, -2, 0, 0, 10, 2, 0, -30},
      {"a band below the limit", 100, 300, 0, 150, 0, 0, 0, 0, 0, 120},
  };
  const Font font = FontBuilder({.height = 4, .firstChar = 'a', .lastChar = 'a'})
                        .Glyph('a', 10, "########################################")
                        .Build();
  for (const LimitCase& c : cases) {
    for (bool sameResolution : {true, false}) {
      // The limits are the description's own numbers, not the sizes scaled to resolution B.
      TestDevice device({.width = c.width,
                         .height = c.height,
                         .resolutionA = 360,
                         .resolutionB = static_cast<uint16_t>(sameResolution ? 360 : 720),
                         .left = c.bandLeft,
                         .top = c.bandTop});
      DRAWMODE mode = TextMode();
      PlaneImage expected = UntouchedBand(device);
      for (int32_t y = c.firstRow; y < c.endRow; ++y) {
        for (int32_t x = c.firstColumn; x < c.endColumn; ++x) {
          expected.SetColor(static_cast<uint32_t>(x - c.bandLeft), static_cast<uint32_t>(y - c.bandTop), kTextColor);
        }
      }
      EXPECT_EQ(10, DrawTextAt(device, c.x, c.y, "a", font, mode, {.clip = nullptr})) << c.name;
      EXPECT_TRUE(SameImage(expected, BandImage(device))) << c.name;
      EXPECT_TRUE(device.FencesIntact()) << c.name;
    }
  }
}

}  // namespace
}  // namespace qnv::test
