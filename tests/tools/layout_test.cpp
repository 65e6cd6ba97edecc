// Paper, devices, the placing of text and images on pages, and pictures cut into strips for the bands.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "bmp_file.h"
#include "picture_inputs.h"
#include "qnvtool/layout/picture_layout.h"
#include "qnvtool/layout/text_layout.h"
#include "qnvtool/layout/text_lines.h"
#include "qnvtool/paint/device_choice.h"
#include "qnvtool/paint/kept_rows.h"
#include "qnvtool/paint/picture_strips.h"
#include "synthetic_font.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::Page;
using tool::Picture;
using tool::PictureScale;
using tool::TextBlock;
using tool::TextLine;

TEST(Paper, NamesAndSizes) {
  EXPECT_EQ(tool::ParsePaper("A4").heightMm, 297);
  EXPECT_DOUBLE_EQ(tool::ParsePaper("letter").widthMm, 215.9);
  EXPECT_EQ(tool::ParsePaper("100x62.5mm").heightMm, 62.5);
  for (const char* bad :
       {"", "a55", "100x100", "100x100mmm", "x100mm", "100xmm", "1x100mm", "100x9999mm", "nanxnanmm"}) {
    EXPECT_NE(UsageErrorOf([&] { tool::ParsePaper(bad); }), "") << bad;
  }
}

TEST(Paper, SheetsInPixels) {
  const tool::Sheet sheet = tool::MakeSheet({210, 297}, 300, 25.4);
  EXPECT_EQ(sheet.width, 2480);
  EXPECT_EQ(sheet.height, 3508);
  EXPECT_EQ(sheet.content, (tool::Rect{300, 300, 2180, 3208}));
  EXPECT_NE(UsageErrorOf([] { tool::MakeSheet({210, 297}, 300, 105); }), "");
  EXPECT_NE(UsageErrorOf([] { tool::MakeSheet({210, 297}, 4800, 0); }), "");
}

TEST(DeviceChoice, Parsed) {
  EXPECT_EQ(tool::ParseDevice("color", 0).pageDpi, 300);
  EXPECT_EQ(tool::ParseDevice("gray", 600).bandDpi, 600);
  const tool::DeviceChoice scaled = tool::ParseDevice("scaled-gray:600/400", 600);
  EXPECT_EQ(scaled.kind, tool::DeviceChoice::Kind::kScaledGray);
  EXPECT_EQ(scaled.pageDpi, 600);
  EXPECT_EQ(scaled.bandDpi, 400);
  for (const char* bad : {"", "colr", "scaled", "scaled:", "scaled:600", "scaled:600/", "scaled:/400",
                          "scaled:600/400x", "scaled:5/400", "scaled:600/99999", "scaled:-600/400", "dual:1/2"}) {
    EXPECT_NE(UsageErrorOf([&] { tool::ParseDevice(bad, 0); }), "") << bad;
  }
  EXPECT_NE(UsageErrorOf([] { tool::ParseDevice("scaled:600/400", 400); }), "");
  EXPECT_NE(UsageErrorOf([] { tool::ParseDevice("color", 5); }), "");
}

TEST(PictureScale, Parsed) {
  EXPECT_EQ(tool::ParseScale("pixels").mode, PictureScale::Mode::kPixels);
  EXPECT_EQ(tool::ParseScale("0.5").factor, 0.5);
  for (const char* bad : {"", "x", "0", "-1", "nan", "inf", "2x", "2000"}) {
    EXPECT_NE(UsageErrorOf([&] { tool::ParseScale(bad); }), "") << bad;
  }
}

class Layout : public testing::Test {
 protected:
  static tool::PicturePtr Image(int width, int height, uint32_t xPerMetre, uint32_t yPerMetre) {
    BmpFile file{.width = width, .height = height, .xPixelsPerMetre = xPerMetre, .yPixelsPerMetre = yPerMetre};
    file.pixels.resize(file.stride() * static_cast<std::size_t>(height));
    return OpenPicture(file.Bytes());
  }

  tool::Rect PlaceOf(tool::PicturePtr picture, const PictureScale& scale) {
    const Page page =
        tool::LayOutPicture(std::move(picture), {scale, {}}, setup_, "x.bmp", 1, [](const std::string&) {});
    return std::get<Picture>(page.items.back()).place;
  }

  // Of the one-byte characters.
  static int WidthOf(const tool::TextRun& run, tool::Font& font) {
    int width = 0;
    for (const char c : run.latin) width += font.Advance(static_cast<uint8_t>(c)) / tool::kPixel;
    return width;
  }

  tool::FontShelf fonts_ = SyntheticShelf(100);
  tool::PageSetup setup_{.sheet = {100, 600, 800, {50, 50, 550, 750}}, .fonts = &fonts_, .points = 10, .header = false};
};

TEST_F(Layout, ImagesFit) {
  EXPECT_EQ(PlaceOf(Image(20, 10, 0, 0), {}), (tool::Rect{50, 275, 550, 525}));
  EXPECT_EQ(PlaceOf(Image(10, 70, 0, 0), {}), (tool::Rect{250, 50, 350, 750}));
  // Pixels that are not square keep their shape.
  EXPECT_EQ(PlaceOf(Image(20, 5, 2000, 1000), {}), (tool::Rect{50, 275, 550, 525}));
}

TEST_F(Layout, ImagesAtTheirOwnSize) {
  const PictureScale own{PictureScale::Mode::kFactor, 1};
  EXPECT_EQ(PlaceOf(Image(300, 150, 11811, 11811), own).width(), 100);  // 300 dpi on a page of 100
  EXPECT_EQ(PlaceOf(Image(72, 36, 0, 0), own).width(), 100);            // 72 dpi where the file says nothing
  EXPECT_EQ(PlaceOf(Image(30, 10, 0, 0), {PictureScale::Mode::kPixels, 1}), (tool::Rect{285, 395, 315, 405}));
  EXPECT_NE(UsageErrorOf([&] { PlaceOf(Image(30, 10, 1, 1), {PictureScale::Mode::kFactor, 100}); }), "");
}

TEST_F(Layout, TextStaysInsideTheBody) {
  std::u32string text;
  for (int i = 0; i < 2000; ++i) text += i % 9 == 0 ? U"longerword " : U"word ";
  const auto font = fonts_.Get(tool::FontRole::kBody, 10);
  const auto pages = tool::LayOutText({{TextBlock::Kind::kParagraph, 0, 0, text}}, setup_, "x");
  ASSERT_GT(pages.size(), 1u);
  std::size_t words = 0;
  for (const Page& page : pages) {
    ASSERT_FALSE(page.items.empty());
    int before = 0;
    for (const auto& item : page.items) {
      const auto& line = std::get<TextLine>(item);
      EXPECT_EQ(line.left, 50);
      EXPECT_GE(line.baseline - font->ascent(), 50);
      EXPECT_LE(line.baseline - font->ascent() + font->lineHeight(), 750);
      EXPECT_GT(line.baseline, before);
      before = line.baseline;
      const int width = line.breakExtra + WidthOf(line.runs.at(0), *font);
      EXPECT_LE(width, 500);
      if (line.breakCount != 0) {
        EXPECT_EQ(width, 500);
      }
      words += 1 + static_cast<std::size_t>(std::count(line.runs[0].latin.begin(), line.runs[0].latin.end(), ' '));
    }
  }
  EXPECT_EQ(words, 2000u);
}

TEST_F(Layout, LongListingLinesAreCutWithoutLoss) {
  std::u32string text;
  for (char32_t i = 0; i < 300; ++i) text += U'!' + i % 90;
  std::u32string shown;
  for (const Page& page : tool::LayOutText({{TextBlock::Kind::kVerbatim, 0, 0, text}}, setup_, "x")) {
    for (const auto& item : page.items) {
      for (const char c : std::get<TextLine>(item).runs.at(0).latin) shown += static_cast<uint8_t>(c);
    }
  }
  EXPECT_EQ(shown, text);
}

TEST_F(Layout, HeadingsTakeTextAlong) {
  std::vector<TextBlock> blocks;
  for (int i = 0; i < 60; ++i) {
    blocks.push_back({TextBlock::Kind::kHeading, 2, 0, U"Heading"});
    blocks.push_back({TextBlock::Kind::kParagraph, 0, 0, U"body"});
  }
  const auto pages = tool::LayOutText(blocks, setup_, "x");
  ASSERT_GT(pages.size(), 2u);
  for (const Page& page : pages) {
    EXPECT_EQ(std::get<TextLine>(page.items.front()).runs.at(0).latin, "Heading");
    EXPECT_EQ(std::get<TextLine>(page.items.back()).runs.at(0).latin, "body");
  }
}

TEST_F(Layout, FormFeedsGivePagesButNoneThatIsEmptyAtTheEnds) {
  struct Case {
    const char* name;
    const char32_t* text;
    std::size_t pages;
  };
  const Case cases[] = {
      {"nothing", U"", 1},         {"only feeds", U"\f\f", 1},    {"between", U"a\fb", 2},
      {"at the start", U"\fa", 1}, {"at the end", U"a\n\f\n", 1}, {"an empty page between", U"a\f\fb", 3},
  };
  for (const Case& c : cases) {
    for (const bool verbatim : {false, true}) {
      EXPECT_EQ(tool::LayOutText(tool::ParseTextBlocks(c.text, verbatim), setup_, "x").size(), c.pages) << c.name;
    }
  }
}

TEST_F(Layout, HeadersHoldNameNumberAndRule) {
  setup_.header = true;
  const auto pages = tool::LayOutText(tool::ParseTextBlocks(U"a\fb", false), setup_, "na\xC3\xAFve \xE2\x82\xAC.txt");
  ASSERT_EQ(pages.size(), 2u);
  const auto& name = std::get<TextLine>(pages[1].items.at(0));
  EXPECT_EQ(name.text, U"na\u00EFve \u20AC.txt");
  EXPECT_EQ(name.runs.at(0).latin, "na\xEFve ");
  EXPECT_EQ(name.runs.at(1).codes.size(), 1u);
  EXPECT_EQ(std::get<TextLine>(pages[1].items.at(1)).runs.at(0).latin, "2");
  const auto& rule = std::get<tool::Figure>(pages[1].items.at(2));
  EXPECT_EQ(rule.region.rows.at(0), (tool::SpanRow{{50, 550}}));
  EXPECT_LT(rule.region.bottom(), tool::BodyOf(setup_).top);
}

TEST_F(Layout, LongNamesAreCutInHeaders) {
  setup_.header = true;
  const auto name = std::get<TextLine>(tool::LayOutText({}, setup_, std::string(500, 'n')).at(0).items.at(0));
  const auto font = fonts_.Get(tool::FontRole::kHeading, 8);
  int width = 0;
  for (const auto& run : name.runs) width += WidthOf(run, *font);
  EXPECT_LT(width, 500);
  EXPECT_EQ(name.runs.back().codes.size(), 1u);  // an ellipsis
}

using tool::CutAtKeptRows;
using tool::CutIntoStrips;
using tool::Strip;

TEST(PictureStrips, ExactScalesStayWhole) {
  EXPECT_EQ(CutIntoStrips(500, 10, 500), (std::vector<Strip>{{0, 500, 10, 500}}));
  EXPECT_EQ(CutIntoStrips(500, 10, 1500), (std::vector<Strip>{{0, 500, 10, 1500}}));
  EXPECT_EQ(CutIntoStrips(1000, 0, 500), (std::vector<Strip>{{0, 1000, 0, 500}}));
  EXPECT_EQ(CutIntoStrips(127, 3, 600), (std::vector<Strip>{{0, 127, 3, 600}}));
}

TEST(PictureStrips, StripsCoverThePictureWithoutGaps) {
  for (const int sourceRows : {1, 2, 64, 100, 127, 128, 600, 1001, 32767}) {
    for (const int rows : {1, 7, 97, 600, 601, 2480, 32767}) {
      int page = 11;
      int source = 0;
      for (const Strip& strip : CutIntoStrips(sourceRows, 11, rows)) {
        ASSERT_EQ(strip.top, page);
        ASSERT_GE(strip.sourceTop, source);
        ASSERT_GT(strip.rows, 0);
        ASSERT_GT(strip.sourceRows, 0);
        // Each strip shows what belongs there, to the nearest page row.
        const double exact = 11 + static_cast<double>(strip.sourceTop) * rows / sourceRows;
        ASSERT_LE(std::abs(exact - strip.top), 0.5 + 127.0 * rows / sourceRows * (strip.sourceTop > source));
        page += strip.rows;
        source = strip.sourceTop + strip.sourceRows;
      }
      EXPECT_EQ(page, 11 + rows) << sourceRows << ' ' << rows;
      EXPECT_LE(source, sourceRows);
    }
  }
}

TEST(PictureStrips, EnlargedRowsStartAtKeptRows) {
  const tool::KeptRows kept(720, 360);
  const auto isKept = [&](int row) { return kept.Has(row); };
  const auto strips = CutAtKeptRows(40, 5, 125, isKept);
  EXPECT_GT(strips.size(), 30u);
  int covered = 0;
  for (const Strip& strip : strips) {
    EXPECT_EQ(strip.sourceRows, 1);
    EXPECT_TRUE(isKept(strip.top)) << strip.top;
    for (int i = 0; i < strip.rows; ++i) covered += isKept(strip.top + i) ? 1 : 0;
  }
  EXPECT_EQ(covered, 62);  // the even rows from 6 to 128
}

TEST(PictureStrips, ReducedPicturesNeedNoKeptRows) {
  const auto strips = CutAtKeptRows(600, 5, 311, [](int) { return false; });
  for (const Strip& strip : strips) EXPECT_LE(strip.rows, strip.sourceRows);
  EXPECT_FALSE(strips.empty());
}

TEST(KeptRows, EveryBandRowHasItsPageRow) {
  constexpr std::pair<int, int> kRatios[] = {{720, 360}, {600, 400}, {300, 299}, {200, 200}};
  for (const auto& [page, band] : kRatios) {
    const tool::KeptRows kept(page, band);
    int count = 0;
    for (int row = 0; row < page; ++row) count += kept.Has(row) ? 1 : 0;
    EXPECT_EQ(count, band);
    EXPECT_TRUE(kept.Has(0));
    EXPECT_TRUE(kept.Has(page));
    EXPECT_FALSE(kept.Has(-page));
  }
  const tool::KeptRows dense(180, 360);
  for (int row = 0; row < 180; ++row) EXPECT_TRUE(dense.Has(row));
  EXPECT_FALSE(tool::KeptRows(720, 360).Has(5));
}

}  // namespace
}  // namespace qnv::test
