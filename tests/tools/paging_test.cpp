// Which pages are printed, on which paper, and how many of them on one sheet.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qnvtool/layout/imposition.h"
#include "qnvtool/layout/page_ranges.h"
#include "qnvtool/layout/paper_names.h"
#include "qnvtool/layout/picture_layout.h"
#include "tools/tool_errors.h"

namespace qnv::test {
namespace {

using tool::Imposition;
using tool::PageRanges;
using tool::Paper;
using tool::Rect;

std::string Pages(const std::string& ranges, int count) {
  const PageRanges pages(ranges);
  std::string chosen;
  for (int page = 1; page <= count; ++page) chosen += pages.Contains(page) ? std::to_string(page) + " " : "";
  return chosen;
}

TEST(PageRanges, Parsed) {
  EXPECT_EQ(Pages("2-4,8", 9), "2 3 4 8 ");
  EXPECT_EQ(Pages("8,2-4,3", 9), "2 3 4 8 ");  // in the order of the document, each once
  EXPECT_EQ(Pages("-2", 4), "1 2 ");
  EXPECT_EQ(Pages("3-", 5), "3 4 5 ");
  EXPECT_EQ(Pages("7", 5), "");
  EXPECT_TRUE(PageRanges().Contains(1000));
  for (const char* bad :
       {"", ",", "1,", ",1", "0", "0-3", "-", "3-2", "-0", "a", "1-b", "1 ", "+1", "1--2", "1-2-3", "99999999999"}) {
    EXPECT_NE(UsageErrorOf([&] { PageRanges{bad}; }), "") << bad;
  }
}

TEST(PageRanges, EndBehindTheLastPage) {
  EXPECT_FALSE(PageRanges("2-4,8").EndsBefore(8));
  EXPECT_TRUE(PageRanges("2-4,8").EndsBefore(9));
  EXPECT_FALSE(PageRanges("3-").EndsBefore(100000));
  EXPECT_FALSE(PageRanges().EndsBefore(100000));
}

void ExpectPaper(const char* text, double width, double height) {
  const Paper paper = tool::ParsePaper(text);
  EXPECT_NEAR(paper.widthMm, width, 1e-9) << text;
  EXPECT_NEAR(paper.heightMm, height, 1e-9) << text;
}

TEST(PaperNames, InAllTheirForms) {
  for (const char* a4 : {"a4", "A4", "iso_a4", "iso_a4_210x297mm", "ISO_A4_210x297MM", "210x297mm"}) {
    ExpectPaper(a4, 210, 297);
  }
  for (const char* letter : {"Letter", "na_letter", "na_letter_8.5x11in", "8.5x11in"})
    ExpectPaper(letter, 215.9, 279.4);
  ExpectPaper("b5", 176, 250);  // of ISO
  ExpectPaper("jis_b5", 182, 257);
  ExpectPaper("tabloid", 279.4, 431.8);
  ExpectPaper("hagaki", 100, 148);
  ExpectPaper("4x6", 101.6, 152.4);
  ExpectPaper("custom_label_62.5x29mm", 62.5, 29);
  ExpectPaper("100x62.5mm", 100, 62.5);
}

TEST(PaperNames, AllSizesAreReadable) {
  std::size_t count = 0;
  std::string rest = tool::KnownPaperNames();
  while (!rest.empty()) {
    const std::string name = rest.substr(0, rest.find(' '));
    rest.erase(0, name.size() + 1);
    const std::optional<Paper> paper = tool::PaperOfName(name);
    ASSERT_TRUE(paper) << name;
    EXPECT_GE(paper->widthMm, 20) << name;
    EXPECT_LE(paper->heightMm, 3000) << name;
    ++count;
  }
  EXPECT_GE(count, 170u);
}

TEST(PaperNames, Refused) {
  for (const char* bad :
       {"", "a11", "iso_", "iso_letter", "iso_a4_210x298mm", "100x100", "100x100cm", "100x100mmm", "x100mm", "100xmm",
        "4x100mm", "100x3001mm", "nanxnanmm", "infxinfmm", "-5x100mm", "custom_100x200"}) {
    EXPECT_NE(UsageErrorOf([&] { tool::ParsePaper(bad); }), "") << bad;
  }
}

TEST(Imposition, OnePageIsTheSheet) {
  const Imposition one({210, 297}, 300, 20, 1);
  EXPECT_EQ(one.count(), 1);
  EXPECT_EQ(one.width(), 2480);
  EXPECT_EQ(one.height(), 3508);
  EXPECT_EQ(one.pageSheet().width, 2480);
  EXPECT_EQ(one.pageSheet().content, (Rect{236, 236, 2244, 3272}));
}

// Pages of 100 x 200 mm at 254 dpi: 1000 x 2000 pixels.
TEST(Imposition, CellsOfASheet) {
  const struct {
    int count;
    int width, height;          // of the sheet
    int pageWidth, pageHeight;  // as laid out
    std::vector<Rect> cells;    // where the corner of the first and the last page goes
  } kCases[] = {
      {2, 2000, 1000, 500, 1000, {{250, 0, 0, 0}, {1250, 0, 0, 0}}},
      {4, 1000, 2000, 500, 1000, {{0, 0, 0, 0}, {500, 1000, 0, 0}}},
      {6, 2000, 1000, 248, 496, {{209, 2, 0, 0}, {1543, 502, 0, 0}}},
      {9, 1000, 2000, 331, 661, {{1, 3, 0, 0}, {668, 1336, 0, 0}}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.count);
    const Imposition imposition({100, 200}, 254, 0, c.count);
    EXPECT_EQ(imposition.count(), c.count);
    EXPECT_EQ(imposition.width(), c.width);
    EXPECT_EQ(imposition.height(), c.height);
    EXPECT_EQ(imposition.pageSheet().width, c.pageWidth);
    EXPECT_EQ(imposition.pageSheet().height, c.pageHeight);
    for (const int index : {0, c.count - 1}) {
      tool::Page page, sheet;
      tool::TextLine text;
      text.left = 7;
      text.baseline = 9;
      page.items.emplace_back(text);
      tool::Figure figure;
      figure.region = tool::RectRegion(1, 2, 4, 3);
      page.items.emplace_back(figure);
      tool::Picture image;
      image.place = {1, 2, 3, 4};
      image.clip = {0, 1, 9, 9};
      page.items.emplace_back(image);
      imposition.Place(std::move(page), index, sheet);
      const Rect& cell = c.cells[index == 0 ? 0 : 1];
      EXPECT_EQ(sheet.width, c.width);
      EXPECT_EQ(sheet.height, c.height);
      const auto& line = std::get<tool::TextLine>(sheet.items.at(0));
      EXPECT_EQ(line.left, cell.left + 7);
      EXPECT_EQ(line.baseline, cell.top + 9);
      const auto& region = std::get<tool::Figure>(sheet.items.at(1)).region;
      EXPECT_EQ(region.top, cell.top + 2);
      EXPECT_EQ(region.rows, (std::vector<tool::SpanRow>{{{cell.left + 1, cell.left + 4}}}));
      const auto& picture = std::get<tool::Picture>(sheet.items.at(2));
      EXPECT_EQ(picture.place, (Rect{cell.left + 1, cell.top + 2, cell.left + 3, cell.top + 4}));
      EXPECT_EQ(picture.clip, (Rect{cell.left, cell.top + 1, cell.left + 9, cell.top + 9}));
    }
  }
}

TEST(Imposition, PaperOnItsSide) {
  const Imposition two({200, 100}, 254, 0, 2);  // the sheet stands, with one page above the other
  EXPECT_EQ(two.width(), 1000);
  EXPECT_EQ(two.height(), 2000);
  tool::Page page, sheet;
  page.items.emplace_back(tool::TextLine{});
  two.Place(std::move(page), 1, sheet);
  EXPECT_EQ(std::get<tool::TextLine>(sheet.items.at(0)).left, 0);
  EXPECT_EQ(std::get<tool::TextLine>(sheet.items.at(0)).baseline, 1250);
}

TEST(Alignment, Parsed) {
  const struct {
    const char* text;
    double x, y;
  } kCases[] = {{"center", 0.5, 0.5}, {"left", 0, 0.5},      {"right", 1, 0.5},
                {"top", 0.5, 0},      {"bottom", 0.5, 1},    {"top-left", 0, 0},
                {"top-right", 1, 0},  {"bottom-left", 0, 1}, {"bottom-right", 1, 1}};
  for (const auto& c : kCases) {
    const tool::Alignment alignment = tool::ParseAlignment(c.text);
    EXPECT_EQ(alignment.x, c.x) << c.text;
    EXPECT_EQ(alignment.y, c.y) << c.text;
  }
  for (const char* bad : {"", "middle", "left-top", "top-", "-left", "top-top", "left-left", "center-left"}) {
    EXPECT_NE(UsageErrorOf([&] { tool::ParseAlignment(bad); }), "") << bad;
  }
}

}  // namespace
}  // namespace qnv::test
