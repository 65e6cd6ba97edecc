// The opaque rectangle: ETO_OPAQUE fills it with the background color before the text is painted.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

constexpr uint32_t kColumns = 13;
constexpr uint32_t kRows = 6;

struct OpaqueCase {
  const char* name = "";
  std::string text = "a";
  int32_t count = 1;
  int32_t x = 4;
  int32_t y = 1;
  bool withClip = true;
  BandRect clip = kEverywhere;
  BandRect rect{};
  uint32_t options = ETO_OPAQUE;
  int16_t bkMode = TRANSPARENT;
  int32_t originX = 0;
  int32_t originY = 0;
  const char* picture = "";
};

const char* const kTextAlone =
    "............."
    "....TTT......"
    "....T.T......"
    "....T.T......"
    "....TTT......";

const char* const kNothing = ".............";

const OpaqueCase kCases[] = {
    {.name = "below transparent text",
     .rect = {3, 0, 9, 3},
     .picture = "...OOOOOO...."
                "...OTTTOO...."
                "...OTOTOO...."
                "....T.T......"
                "....TTT......"},
    {.name = "below opaque text",
     .rect = {3, 0, 9, 3},
     .bkMode = OPAQUE,
     .picture = "...OOOOOO...."
                "...OTTTOO...."
                "...OTBTOO...."
                "....TBT......"
                "....TTT......"},
    {.name = "without the option nothing is filled", .rect = {3, 0, 9, 3}, .options = 0, .picture = kTextAlone},
    {.name = "the fill is cut to the clip",
     .clip = {5, 0, 8, 6},
     .rect = {3, 0, 9, 3},
     .picture = ".....OOO....."
                ".....TTO....."
                ".....OTO....."
                "......T......"
                ".....TT......"},
    {.name = "clipped: the text is cut to it as well",
     .rect = {3, 0, 6, 3},
     .options = ETO_OPAQUE | ETO_CLIPPED,
     .picture = "...OOO......."
                "...OTT......."
                "...OTO......."},
    {.name = "clipped without a clip rectangle",
     .withClip = false,
     .rect = {3, 0, 6, 3},
     .options = ETO_OPAQUE | ETO_CLIPPED,
     .picture = "...OOO......."
                "...OTT......."
                "...OTO......."},
    {.name = "clipped, with a clip rectangle: both cut both",
     .clip = {5, 1, 13, 6},
     .rect = {3, 0, 9, 3},
     .options = ETO_OPAQUE | ETO_CLIPPED,
     .picture = "............."
                ".....TTOO...."
                ".....OTOO...."},
    {.name = "a rectangle outside the clip fills nothing",
     .clip = {0, 0, 3, 6},
     .rect = {3, 0, 9, 3},
     .picture = kNothing},
    {.name = "larger than the band",
     .rect = {-100, -100, 100, 100},
     .picture = "OOOOOOOOOOOOO"
                "OOOOTTTOOOOOO"
                "OOOOTOTOOOOOO"
                "OOOOTOTOOOOOO"
                "OOOOTTTOOOOOO"
                "OOOOOOOOOOOOO"},
    {.name = "an empty rectangle", .rect = {3, 2, 3, 5}, .picture = kTextAlone},
    {.name = "an upside-down rectangle", .rect = {9, 3, 3, 0}, .picture = kTextAlone},
    {.name = "the origin moves it",
     .x = 1,
     .y = 3,
     .rect = {0, 2, 6, 5},
     .originX = 3,
     .originY = -2,
     .picture = "...OOOOOO...."
                "...OTTTOO...."
                "...OTOTOO...."
                "....T.T......"
                "....TTT......"},
    // What lies left of or above 0 in the caller's coordinates is not filled, wherever the origin puts it.
    {.name = "the part left of the caller's 0 is not filled",
     .x = 0,
     .y = 1,
     .rect = {-3, 0, 4, 3},
     .originX = 4,
     .picture = "....OOOO....."
                "....TTTO....."
                "....TOTO....."
                "....T.T......"
                "....TTT......"},
    {.name = "the part above the caller's 0 is not filled",
     .x = 4,
     .y = 0,
     .rect = {3, -1, 9, 2},
     .originY = 1,
     .picture = "............."
                "...OTTTOO...."
                "...OTOTOO...."
                "....T.T......"
                "....TTT......"},
    {.name = "wholly left of the caller's 0",
     .x = 0,
     .y = 1,
     .rect = {-3, 0, 0, 3},
     .originX = 4,
     .picture = kTextAlone},
    {.name = "a measuring call fills too",
     .count = -1,
     .rect = {3, 0, 9, 3},
     .picture = "...OOOOOO...."
                "...OOOOOO...."
                "...OOOOOO...."},
    {.name = "so does a call with no character",
     .count = 0,
     .rect = {3, 0, 9, 3},
     .picture = "...OOOOOO...."
                "...OOOOOO...."
                "...OOOOOO...."},
};

TEST(OpaqueRect, Cases) {
  const Font font = SmallFont().Build();
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    for (const OpaqueCase& c : kCases) {
      TestDevice device({.bitsPerPixel = depth, .width = kColumns, .height = kRows});
      device.SetOrigin(c.originX, c.originY);
      DRAWMODE mode = TextMode(c.bkMode);
      const BandRect clip = c.clip;
      const BandRect rect = c.rect;
      const int32_t result =
          QNVDevExtTextOut(device.handle(), c.x, c.y, c.withClip ? &clip : nullptr, c.text.data(), c.count, font.base(),
                           font.offset(), &mode, nullptr, nullptr, &rect, c.options);
      EXPECT_EQ(c.count > 0 ? 3 : Extent(4, c.count < 0 ? 3 : 0), result) << c.name;
      // The fill goes through a brush, so on a gray band its color is the gray level; the text's is one byte of it.
      PictureInks inks = TextInks();
      inks.push_back({'O', Physical(device, kBackColor)});
      EXPECT_TRUE(BandIs(device, inks, c.picture)) << c.name << ", " << depth << " bits";
      EXPECT_EQ(0, std::memcmp(&rect, &c.rect, sizeof rect)) << c.name << ": the rectangle was written";
      EXPECT_EQ(0, std::memcmp(&clip, &c.clip, sizeof clip)) << c.name << ": the clip rectangle was written";
    }
  }
}

// The fill also runs when charWidths say that there is nothing to draw.
TEST(OpaqueRect, NoCharactersWithWidths) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 6, .height = 2});
  DRAWMODE mode = TextMode();
  const BandRect rect{1, 0, 3, 1};
  const int16_t widths[1] = {5};
  EXPECT_EQ(
      0, DrawTextAt(device, 0, 0, "", font, mode, {.charWidths = widths, .opaqueRect = &rect, .options = ETO_OPAQUE}));
  EXPECT_TRUE(BandIs(device, {{'O', kBackColor}}, ".OO..."));
}

// The option without a rectangle does nothing.
TEST(OpaqueRect, NoRectangle) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = kColumns, .height = kRows});
  DRAWMODE mode = TextMode();
  EXPECT_EQ(3, DrawTextAt(device, 4, 1, "a", font, mode, {.options = ETO_OPAQUE | ETO_CLIPPED}));
  EXPECT_TRUE(BandIs(device, TextInks(), kTextAlone));
}

// The fill is a transfer: it prepares the device's fill pattern, which a figure without a draw mode then uses.
TEST(OpaqueRect, LeavesItsColorAsTheFillPattern) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 6, .height = 2});
  DRAWMODE mode = TextMode();
  const BandRect rect{0, 0, 1, 1};
  DrawTextAt(device, 0, 0, "", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
  const int16_t points[4] = {0, 1, 2, 5};
  EXPECT_EQ(1u, QNVOutput(device.handle(), OS_SCANLINES, 2, points, nullptr, nullptr, nullptr, &kEverywhere) & 0xFFFF);
  EXPECT_TRUE(BandIs(device, {{'O', kBackColor}},
                     "O....."
                     "..OOO."));
}

}  // namespace
}  // namespace qnv::test
