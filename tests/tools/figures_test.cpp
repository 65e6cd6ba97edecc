// Figure files as pages, and what is said of mistakes in them.
#include "qnvtool/layout/figures.h"

#include <gtest/gtest.h>

#include <string>

#include "qnvdrv10.h"
#include "qnvtool/cli/sample_pictures.h"
#include "qnvtool/output/bmp_writer.h"
#include "synthetic_font.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::Figure;
using tool::Fill;
using tool::Page;
using tool::Picture;
using tool::TextLine;

class Figures : public testing::Test {
 protected:
  std::vector<Page> LayOut(const std::string& text, const std::string& path = "x.fig") {
    const auto openImage = [](const std::string& file) {
      return tool::OpenPictures(tool::OpenInput(file), {}, {})->Open(0);
    };
    return tool::LayOutFigures({text.begin(), text.end()}, setup_, path, openImage);
  }

  std::string FigureErrorOf(const std::string& text) {
    return InputErrorOf([&] { LayOut(text); });
  }

  // 254 dots per inch: ten pixels a millimetre.
  tool::FontShelf fonts_ = SyntheticShelf(254);
  tool::PageSetup setup_{.sheet = {254, 1000, 800, {0, 0, 1000, 800}}, .fonts = &fonts_};
};

template <class Item>
const Item& ItemAt(const Page& page, std::size_t i) {
  return std::get<Item>(page.items.at(i));
}

TEST_F(Figures, MillimetresBecomePixels) {
  const auto pages = LayOut("# a comment\n\nrect 1 2 3.5 4 fill=#804020\r\n");
  ASSERT_EQ(pages.size(), 1u);
  const auto& figure = ItemAt<Figure>(pages[0], 0);
  EXPECT_EQ(figure.region.top, 20);
  EXPECT_EQ(figure.region.bottom(), 60);
  EXPECT_EQ(figure.region.rows[0], (tool::SpanRow{{10, 45}}));
  EXPECT_EQ(figure.fill.color, 0x204080u);
  EXPECT_EQ(figure.rop2, R2_COPYPEN);
}

TEST_F(Figures, FillsAndLines) {
  const auto page = LayOut(
                        "rect 1 1 5 5 fill=hatch:cross:#010203\n"
                        "rect 1 1 5 5 fill=hatch:diagcross:#010203:#040506 rop2=xor\n"
                        "ellipse 1 1 5 5 fill=bits:0123456789ABCDEF:#010203:#040506\n"
                        "polygon 1,1 9,1 5,9 fill=weave:#010203:#040506 line=#ffffff:0.5\n"
                        "path 1,1 9,1\n"
                        "rect 1 1 5 5\n")
                        .front();
  ASSERT_EQ(page.items.size(), 7u);
  EXPECT_EQ(ItemAt<Figure>(page, 0).fill.hatch, HS_CROSS);
  EXPECT_FALSE(ItemAt<Figure>(page, 0).fill.opaque);
  EXPECT_TRUE(ItemAt<Figure>(page, 1).fill.opaque);
  EXPECT_EQ(ItemAt<Figure>(page, 1).fill.background, 0x060504u);
  EXPECT_EQ(ItemAt<Figure>(page, 1).rop2, R2_XORPEN);
  EXPECT_EQ(ItemAt<Figure>(page, 2).fill.bits, (std::array<uint8_t, 8>{1, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}));
  EXPECT_EQ(ItemAt<Figure>(page, 3).fill.kind, Fill::Kind::kWeave);
  EXPECT_EQ(ItemAt<Figure>(page, 4).fill.kind, Fill::Kind::kPen);
  EXPECT_EQ(ItemAt<Figure>(page, 4).fill.color, 0xFFFFFFu);
  EXPECT_EQ(ItemAt<Figure>(page, 5).region.rows.size(), 2u);  // 0.2 mm
  EXPECT_EQ(ItemAt<Figure>(page, 6).fill.kind, Fill::Kind::kSolid);
}

TEST_F(Figures, NeitherFillNorLineIsBlack) {
  const auto page = LayOut(
                        "rect 1 1 5 5\n"
                        "ellipse 1 1 5 5\n"
                        "polygon 1,1 5,1 5,5\n"
                        "path 1,10 5,10\n")
                        .at(0);
  ASSERT_EQ(page.items.size(), 4u);
  for (std::size_t i = 0; i < 3; ++i) {
    const auto& figure = ItemAt<Figure>(page, i);
    EXPECT_EQ(figure.fill.kind, Fill::Kind::kSolid);
    EXPECT_EQ(figure.fill.color, 0u);
  }
  const auto& path = ItemAt<Figure>(page, 3);
  EXPECT_EQ(path.fill.kind, Fill::Kind::kPen);
  EXPECT_EQ(path.fill.color, 0u);
  EXPECT_EQ(path.region.rows.size(), 2u);  // 0.2 mm
}

TEST_F(Figures, AByteOrderMarkIsLeftOut) {
  EXPECT_EQ(LayOut("\xEF\xBB\xBFrect 1 1 5 5\n").at(0).items.size(), 1u);
  EXPECT_EQ(LayOut("\xEF\xBB\xBF# comment\n").at(0).items.size(), 0u);
  EXPECT_EQ(FigureErrorOf("rect 1 1 5 5\n\xEF\xBB\xBFrect 1 1 5 5\n").rfind("x.fig:2: ", 0), 0u);
}

TEST_F(Figures, QuotesHoldBlanksAndQuotes) {
  const auto texts = [&](const std::string& word) {
    std::string latin;
    const auto pages = LayOut("text 1 2 9 " + word + "\n");
    for (const auto& run : ItemAt<TextLine>(pages.at(0), 0).runs) latin += run.latin;
    return latin;
  };
  EXPECT_EQ(texts("\"a \"\"b\"\"\""), "a \"b\"");
  EXPECT_EQ(texts("\"\"\"\""), "\"");
  EXPECT_EQ(texts("a\"b"), "a\"b");
  EXPECT_EQ(texts("\"fill=x\""), "fill=x");
}

TEST_F(Figures, TextBreaksAndJustifies) {
  const auto page =
      LayOut(
          "text 5 10 9 \"one line\"\n"
          "text 5 20 9 font=heading color=#ff0000 width=45 \"several lines of text that do not fit into sixty mm\"\n")
          .front();
  ASSERT_GT(page.items.size(), 3u);
  EXPECT_EQ(ItemAt<TextLine>(page, 0).runs.at(0).latin, "one line");
  EXPECT_EQ(ItemAt<TextLine>(page, 0).baseline, 100);
  EXPECT_EQ(ItemAt<TextLine>(page, 1).color, 0x0000FFu);
  EXPECT_GT(ItemAt<TextLine>(page, 1).breakCount, 0);
  EXPECT_GT(ItemAt<TextLine>(page, 2).baseline, ItemAt<TextLine>(page, 1).baseline);
}

TEST_F(Figures, ImagesLieBesideTheFile) {
  const std::string folder = testing::TempDir();
  tool::WriteFile(folder + "/figures_test.bmp", tool::MakeSampleMap(60, 40));
  const auto page = LayOut("image figures_test.bmp 1 2 30 - rop=and\n", folder + "/x.fig").front();
  const auto& picture = ItemAt<Picture>(page, 0);
  EXPECT_EQ(picture.place, (tool::Rect{10, 20, 310, 220}));
  EXPECT_EQ(picture.rop, uint32_t{SRCAND});
  setup_.sheet = {600, 1000, 800, {0, 0, 1000, 800}};
  const auto tooWide = [&] { LayOut("image figures_test.bmp 1 2 1500 -\n", folder + "/x.fig"); };
  EXPECT_NE(InputErrorOf(tooWide).find("too many pixels"), std::string::npos);
}

TEST_F(Figures, PagesBegin) {
  const auto pages = LayOut("rect 1 1 1 1\npage\nrect 1 1 1 1\nrect 2 2 1 1\n");
  ASSERT_EQ(pages.size(), 2u);
  EXPECT_EQ(pages[0].items.size(), 1u);
  EXPECT_EQ(pages[1].items.size(), 2u);
}

TEST_F(Figures, MistakesAreNamed) {
  struct Case {
    const char* text;
    const char* part;
  };
  const Case cases[] = {
      {"circle 1 2 3", "\"circle\" is no instruction"},
      {"rect 1 2 3", "rect: takes 4 values, not 3"},
      {"rect 1 2 3 x", "H: \"x\" is no number"},
      {"rect 1 2 3 nan", "H: \"nan\" is no number"},
      {"rect 1 2 3 1e9", "H: \"1e9\" is no number"},
      {"rect 1 2 3 4 color=#000000", "rect: has no option \"color\""},
      {"rect 1 2 3 4 fill=red", "\"red\" is no color"},
      {"rect 1 2 3 4 fill=#12345g", "no hexadecimal number"},
      {"rect 1 2 3 4 fill=hatch:dots:#000000", "\"dots\" is no kind of hatch"},
      {"rect 1 2 3 4 fill=bits:12:#000000:#ffffff", "fill: \"bits:12:#000000:#ffffff\" is none of"},
      {"rect 1 2 3 4 line=#000000", "line: \"#000000\" is no #rrggbb:WIDTH"},
      {"rect 1 2 3 4 line=#000000:0", "line: \"#000000:0\" is no #rrggbb:WIDTH"},
      {"rect 1 2 3 4 rop2=blend", "rop2: \"blend\" is no operation"},
      {"polygon 1,1 2,2", "polygon: needs 3 points"},
      {"polygon 1,1 2,2 3", "\"3\" is no point X,Y"},
      {"path 1,1 2,2 fill=#000000", "path: has no option \"fill\""},
      {"image missing.bmp 1 2 3 4", "image: missing.bmp: No such file"},
      {"image \"a \"\"b\"\".bmp\" 1 2 3 4", "image: a \"b\".bmp: No such file"},
      {"text 1 2 9 \"open", "a quote is not closed"},
      {"text 1 2 9 \"open\"\"", "a quote is not closed"},
      {"text 1 2 900 \"x\"", "text: 900 points"},
      {"text 1 2 9 font=big \"x\"", "font: is none of"},
      {"text 1 2 9", "text: takes 4 values, not 3"},
      {"page 2", "page: takes 0 values, not 1"},
  };
  for (const Case& c : cases) {
    const std::string message = FigureErrorOf(std::string("\n") + c.text + "\n");
    EXPECT_NE(message.find(c.part), std::string::npos) << c.text << " gave " << message;
    EXPECT_EQ(message.rfind("x.fig:2: ", 0), 0u) << message;
  }
  EXPECT_NE(FigureErrorOf(std::string("rect\0", 5)).find("zero byte"), std::string::npos);
}

}  // namespace
}  // namespace qnv::test
