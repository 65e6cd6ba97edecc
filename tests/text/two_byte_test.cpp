// Two-byte fonts: the code is the table index, widths come from the table, nothing is spread.
#include <gtest/gtest.h>

#include "text/text_cells.h"

namespace qnv::test {
namespace {

constexpr const char* kGlyph300 =
    "#.......#"
    ".#######.";

// Indices 0, 5 and 300; the record's first and last character must not matter.
FontBuilder WideFont(FontShape shape = {}) {
  shape.height = 2;
  shape.twoByte = true;
  shape.firstChar = 100;
  shape.lastChar = 101;
  shape.breakChar = 5;
  return FontBuilder(shape)
      .Glyph(0, 1,
             "#"
             "#")
      .Glyph(5, 3,
             "#.#"
             ".#.")
      .Glyph(300, 9, kGlyph300);
}

TEST(TwoByteText, CodesAreIndices) {
  struct Case {
    const char* name;
    FontShape shape;
  };
  const Case cases[] = {
      {"plain", {}},
      {"pitch is not consulted", {.variablePitch = false, .fixedWidth = 50}},
      {"with the short-table bit too the table is long", {.typeBits = 0x200}},
      {"record inside the block", {.offset = 513}},
  };
  for (const Case& c : cases) {
    const Font font = WideFont(c.shape).Build();
    TestDevice device({.width = 16, .height = 2});
    DRAWMODE mode = TextMode(OPAQUE);
    EXPECT_EQ(13, TwoByteText(device, 1, 0, {5, 300, 0}, 3, font, mode)) << c.name;
    EXPECT_TRUE(BandIs(device, TextInks(),
                       ".TBTTBBBBBBBTT.."
                       ".BTBBTTTTTTTBT.."))
        << c.name;
  }
}

// Neither justification nor CharacterExtra has a part. Text that cannot be seen gives the same results.
TEST(TwoByteText, NothingIsSpread) {
  const Font font = WideFont().Build();
  TestDevice device({.width = 16, .height = 2});
  DRAWMODE mode = TextMode(TRANSPARENT, {9, 1, 1, 7});
  const DRAWMODE before = mode;
  EXPECT_EQ(7, TwoByteText(device, 0, 2, {5, 5, 0}, 3, font, mode));
  EXPECT_TRUE(BandUntouched(device));
  EXPECT_EQ(7, TwoByteText(device, 0, 0, {5, 5, 0}, 3, font, mode));
  EXPECT_TRUE(BandIs(device, TextInks(),
                     "T.TT.TT........."
                     ".T..T.T........."));
  EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode));
}

TEST(TwoByteText, MeasuringClearsTheError) {
  const Font font = WideFont().Build();
  TestDevice device({.width = 16, .height = 2});
  DRAWMODE mode = TextMode(OPAQUE, {9, 1, 55, 7});
  DRAWMODE expected = mode;
  expected.BreakErr = 0;
  EXPECT_EQ(Extent(2, 13), TwoByteText(device, 0, 0, {5, 300, 0}, -3, font, mode));
  EXPECT_EQ(0, std::memcmp(&expected, &mode, sizeof mode));
  mode.BreakErr = 55;
  EXPECT_EQ(Extent(2, 0), TwoByteText(device, 0, 0, {}, 0, font, mode));
  EXPECT_EQ(0, mode.BreakErr) << "a call without characters measures too";
  EXPECT_TRUE(BandUntouched(device));
}

// The leftward test looks at the first of the given widths, and at 0 when there are none, not at the glyph's own.
TEST(TwoByteText, LeftwardTest) {
  struct Case {
    const char* name;
    int32_t x;
    std::vector<uint16_t> codes;
    std::vector<int16_t> widths;  // empty: none given
    const char* picture;          // 20 x 2, the band's first column is -12
  };
  const Case cases[] = {
      {"without widths: column -1 is left", -1, {5}, {}, ""},
      {"without widths: column 0 is not", 0, {5}, {}, "............T.T..... .............T......"},
      {"a large first width paints far left", -10, {5}, {10}, "..T.T............... ...T................"},
      {"one less does not", -10, {5}, {9}, ""},
      {"the first width serves every character", -9, {5, 5}, {4, 30}, ""},
      {"a small first width drops what the glyph still shows", -1, {300}, {0}, ""},
      {"a large first width and small ones", -9, {5, 5, 5}, {9, 0, 0}, "...T.T......T.T..... ....T........T......"},
  };
  const Font font = WideFont().Build();
  for (const Case& c : cases) {
    TestDevice device({.width = 20, .height = 2, .left = -12});
    DRAWMODE mode = TextMode();
    TwoByteText(device, c.x, 0, c.codes, static_cast<int32_t>(c.codes.size()), font, mode,
                {.charWidths = c.widths.empty() ? nullptr : c.widths.data()});
    EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name;
  }
}

// With widths the positions are theirs, two bytes of the string a character.
TEST(TwoByteText, WithWidths) {
  const Font font = WideFont().Build();
  TestDevice device({.width = 16, .height = 2});
  DRAWMODE mode = TextMode();
  const int16_t widths[3] = {4, 10, 99};
  EXPECT_EQ(1 + 4 + 10, TwoByteText(device, 1, 2, {5, 300, 0}, 3, font, mode, {.charWidths = widths})) << "unseen";
  EXPECT_EQ(1 + 4 + 10, TwoByteText(device, 1, 0, {5, 300, 0}, 3, font, mode, {.charWidths = widths}));
  EXPECT_TRUE(BandIs(device, TextInks(),
                     ".T.T.T.......T.T"
                     "..T...TTTTTTT..T"));
  EXPECT_EQ(Extent(2, 1) + 4 + 10, TwoByteText(device, 1, 0, {5, 300, 0}, -3, font, mode, {.charWidths = widths}));
}

TEST(TwoByteText, CutAtEveryColumn) {
  const Font font = WideFont().Build();
  for (int left = 0; left <= 9; ++left) {
    TestDevice device({.bitsPerPixel = 8, .width = 9, .height = 2});
    DRAWMODE mode = TextMode(OPAQUE);
    const BandRect clip{left, 0, 9, 2};
    TwoByteText(device, 0, 0, {300}, 1, font, mode, {.clip = &clip});
    PlaneImage expected = UntouchedBand(device);
    PutCell(&expected, kGlyph300, 9, 0, 0, clip);
    EXPECT_TRUE(BandShows(device, expected)) << left;
  }
}

}  // namespace
}  // namespace qnv::test
