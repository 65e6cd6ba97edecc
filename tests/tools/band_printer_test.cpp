// Pages painted band by band.
#include "qnvtool/paint/band_printer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "bmp_file.h"
#include "picture_inputs.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/cli/sample_pictures.h"
#include "qnvtool/layout/text_layout.h"
#include "qnvtool/paint/band_pipeline.h"
#include "synthetic_font.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::BandPrinter;
using tool::DeviceChoice;
using tool::Figure;
using tool::Fill;
using tool::Page;
using tool::PageSetup;
using tool::Picture;

struct Printed {
  int width = 0;
  int height = 0;
  int bytesPerPixel = 3;
  std::vector<uint8_t> pixels;  // without row padding
  std::vector<uint8_t> tags;
  bool operator==(const Printed&) const = default;

  const uint8_t* At(int x, int y) const {
    return pixels.data() +
           (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
               static_cast<std::size_t>(bytesPerPixel);
  }
};

// Adds the rows of a band.
void Append(const tool::BandView& band, Printed& result) {
  const auto append = [](std::vector<uint8_t>& rows, const uint8_t* first, std::size_t stride, int row, int bytes) {
    first += static_cast<std::size_t>(row) * stride;
    rows.insert(rows.end(), first, first + bytes);
  };
  for (int i = 0; i < band.rows; ++i) {
    append(result.pixels, band.pixels, band.stride, i, result.width * result.bytesPerPixel);
    if (band.tags != nullptr) append(result.tags, band.tags, band.tagStride, i, result.width);
  }
}

Printed PrintPage(const Page& page, const DeviceChoice& device, int bandRows) {
  BandPrinter printer(tool::LinkedRasteriser(), device, page.width, page.height, bandRows);
  Printed result{printer.width(), printer.height(), device.bandBytesPerPixel(), {}, {}};
  int next = 0;
  printer.Print(page, [&](const tool::BandView& band) {
    EXPECT_EQ(band.top, next);
    next += band.rows;
    Append(band, result);
  });
  EXPECT_EQ(next, result.height);
  return result;
}

tool::PicturePtr Image(uint16_t bits, int32_t width, int32_t height, uint32_t compression = BI_RGB) {
  return OpenPicture(NoiseBmp(bits, width, height, compression).Bytes());
}

Picture Placed(tool::PicturePtr file, tool::Rect place, uint32_t rop = SRCCOPY, tool::Rect clip = {0, 0, 230, 300}) {
  return {.file = std::move(file), .name = "image", .place = place, .clip = clip, .rop = rop};
}

// A page with nothing but a picture.
Page PicturePage(int width, int height, tool::PicturePtr file, tool::Rect place) {
  return {.width = width, .height = height, .items = {Placed(std::move(file), place, SRCCOPY, {0, 0, width, height})}};
}

Figure Filled(tool::SpanRegion region, const Fill& fill, int16_t rop2 = R2_COPYPEN) {
  return {.region = std::move(region), .fill = fill, .rop2 = rop2};
}

// Everything that a document can hold, much of it overlapping.
Page FullPage(const DeviceChoice& device, tool::FontShelf& fonts) {
  const PageSetup setup{
      .sheet = {device.pageDpi, 230, 300, {10, 8, 220, 292}}, .fonts = &fonts, .points = 9.0 * 72 / device.pageDpi};
  const auto blocks = tool::ParseTextBlocks(
      U"# Heading\n\nA paragraph that is justified, \u201Cwith quotes\u201D \u2014 and \u03B1\u03B2\u03B3 in it, over "
      U"several lines of text, to see every gap.\n\n- an item \u20AC 5\n\n    listing  here\n",
      false);
  Page page = tool::LayOutText(blocks, setup, "name").front();

  using Kind = Fill::Kind;
  const Fill hatch{.kind = Kind::kHatch, .color = 0x2010C0, .hatch = HS_DIAGCROSS};
  const Fill gaps{
      .kind = Kind::kHatch, .color = 0x2010C0, .background = 0x30F0F0, .opaque = true, .hatch = HS_BDIAGONAL};
  const Fill bits{.kind = Kind::kBits,
                  .color = 0x006000,
                  .background = 0xC0FFC0,
                  .bits = {0x18, 0x3C, 0x7E, 0xFF, 0xF0, 0x0F, 0xAA, 0x55}};
  const Fill weave{.kind = Kind::kWeave, .color = 0xFF8000, .background = 0x0080FF};
  const Fill solid{.color = 0x804020};
  const auto ring = tool::Subtract(tool::EllipseRegion(100, 90, 190, 160), tool::EllipseRegion(115, 105, 175, 145));
  auto& items = page.items;
  items.emplace_back(Filled(tool::RectRegion(12, 100, 90, 150), hatch));
  items.emplace_back(Filled(tool::EllipseRegion(40, 110, 130, 190), gaps));
  items.emplace_back(Filled(ring, bits));
  items.emplace_back(Filled(tool::PolygonRegion({{150, 150}, {225, 170}, {160, 215}, {180, 180}}), weave));
  items.emplace_back(Filled(tool::EllipseRegion(60, 130, 180, 175), solid, R2_XORPEN));
  items.emplace_back(Filled(tool::RectRegion(100, 160, 140, 200), solid, R2_MASKPEN));
  items.emplace_back(Placed(Image(24, 31, 23), {15, 200, 15 + 77, 200 + 61}));
  items.emplace_back(Placed(Image(8, 64, 100), {100, 205, 100 + 50, 205 + 33}));
  items.emplace_back(Placed(Image(1, 40, -22), {160, 200, 160 + 40, 200 + 22}));
  items.emplace_back(Placed(Image(4, 33, 19, BI_RLE4), {20, 240, 20 + 95, 240 + 57}, SRCAND));
  items.emplace_back(Placed(Image(16, 29, 150), {120, 230, 120 + 35, 230 + 61}, SRCINVERT));
  items.emplace_back(Placed(Image(8, 37, 20, BI_RLE8), {170, 226, 170 + 90, 226 + 100}));  // hangs out of the page
  items.emplace_back(Filled(tool::StrokeRegion({{5, 295}, {225, 205}}, 3, false), solid));
  if (!device.isScaled()) items.emplace_back(Placed(Image(32, 20, 14), {70, 120, 70 + 60, 120 + 60}, ROP_MINIMUM));
  return page;
}

// The resolution-mapping device has its resolutions in its name.
DeviceChoice Device(const std::string& name, int dpi = 100) {
  return tool::ParseDevice(name, name.starts_with("scaled") ? 0 : dpi);
}

TEST(BandPrinter, ThePictureDoesNotDependOnTheBands) {
  std::vector<DeviceChoice> devices = {Device("color", 720)};
  for (const char* name :
       {"color", "gray", "dual", "scaled:200/100", "scaled:150/100", "scaled:100/150", "scaled:100/200",
        "scaled:100/100", "scaled:120/77", "scaled-gray:200/100", "scaled-gray:90/60"}) {
    devices.push_back(Device(name));
  }
  for (const DeviceChoice& device : devices) {
    tool::FontShelf fonts = SyntheticShelf(device.pageDpi);
    const Page page = FullPage(device, fonts);
    const Printed whole = PrintPage(page, device, 0);
    EXPECT_GT(std::count_if(whole.pixels.begin(), whole.pixels.end(), [](uint8_t byte) { return byte != 0xFF; }), 5000)
        << device.name;
    for (const int bandRows : {1, 7, 64}) {
      const Printed banded = PrintPage(page, device, bandRows);
      EXPECT_TRUE(banded == whole) << device.name << " in bands of " << bandRows << " rows";
    }
  }
}

// Keeps the rows of a band, and those above it.
struct KeptBand {
  Printed rows;
  Printed above;
};

KeptBand Keep(const tool::PaintedBand& band, const DeviceChoice& device, int rowsAbove) {
  KeptBand kept;
  kept.rows = kept.above = {band.width, band.height, device.bandBytesPerPixel(), {}, {}};
  Append(band.view, kept.rows);
  tool::BandView above = band.view;
  above.rows = std::min(rowsAbove, band.view.top);
  above.pixels -= above.stride * static_cast<std::size_t>(above.rows);
  if (above.tags != nullptr) above.tags -= above.tagStride * static_cast<std::size_t>(above.rows);
  Append(above, kept.above);
  return kept;
}

// Whether `part` is the end of `whole`.
bool Ends(const std::vector<uint8_t>& whole, const std::vector<uint8_t>& part) {
  return part.size() <= whole.size() && std::equal(part.rbegin(), part.rend(), whole.rbegin());
}

// Pages of several sizes, with the same picture on two of them, on several threads.
TEST(BandPipeline, ThePicturesDoNotDependOnTheThreads) {
  for (const char* name : {"color", "gray", "dual", "scaled:120/77"}) {
    const DeviceChoice device = Device(name);
    tool::FontShelf fonts = SyntheticShelf(device.pageDpi);
    const Page full = FullPage(device, fonts);
    const tool::PicturePtr image = Image(24, 50, 70);
    const std::vector<Page> pages = {full, PicturePage(130, 170, image, {10, 20, 110, 160}), full,
                                     PicturePage(230, 300, image, {0, 0, 230, 300}),
                                     Page{.width = 90, .height = 40, .items = {}}};
    std::vector<Printed> expected;
    for (const Page& page : pages) expected.push_back(PrintPage(page, device, 0));
    // Bands of the height that is wanted, of several of those parts, and of whole pages.
    const struct {
      int bandRows;
      int unit;
      int rowsAbove;
    } cases[] = {{7, 1, 0},   {64, 1, 0},    {0, 1, 0},  {7, 32, 5},
                 {64, 16, 3}, {64, 16, 100}, {0, 16, 4}, {tool::kAutomaticBandRows, 64, 5}};
    for (const int threads : {1, 2, 3, 8}) {
      for (const auto& c : cases) {
        std::vector<Printed> printed;
        bool isAboveRight = true;
        tool::Workers workers(threads);
        const tool::Rasteriser rasteriser = tool::LinkedRasteriser();
        tool::BandPipeline pipeline(
            workers, rasteriser, device, c.bandRows, [&](const Page&, const tool::PictureSize&) -> tool::PageWork {
              return {c.unit, c.rowsAbove, [&](const tool::PaintedBand& band) {
                        EXPECT_EQ(band.view.top % c.unit, 0);
                        const KeptBand kept = Keep(band, device, c.rowsAbove);
                        return [&, band, kept] {
                          if (band.index == 0)
                            printed.push_back({band.width, band.height, device.bandBytesPerPixel(), {}, {}});
                          Printed& page = printed.back();
                          isAboveRight =
                              isAboveRight && Ends(page.pixels, kept.above.pixels) && Ends(page.tags, kept.above.tags);
                          page.pixels.insert(page.pixels.end(), kept.rows.pixels.begin(), kept.rows.pixels.end());
                          page.tags.insert(page.tags.end(), kept.rows.tags.begin(), kept.rows.tags.end());
                        };
                      }};
            });
        for (const Page& page : pages) pipeline.Print(page);
        pipeline.Finish();
        EXPECT_TRUE(printed == expected) << name << ": bands of " << c.bandRows << " rows by " << threads << " threads";
        EXPECT_TRUE(isAboveRight) << name << ": bands of " << c.bandRows << " rows by " << threads << " threads";
      }
    }
  }
}

// What the work or a band throws ends the work of all threads, and the caller gets it.
TEST(BandPipeline, FailuresReachTheCaller) {
  const DeviceChoice device = Device("color");
  const tool::Rasteriser rasteriser = tool::LinkedRasteriser();
  const Page pictures = PicturePage(200, 800, Image(24, 50, 70), {10, 20, 110, 760});
  const Page empty{.width = 200, .height = 800, .items = {}};
  for (const Page& page : {pictures, empty}) {
    for (const int threads : {1, 2, 8}) {
      tool::Workers workers(threads);
      int bands = 0;
      const auto messageOf = [&](const tool::Rasteriser& one, auto work) {
        bands = 0;
        try {
          tool::BandPipeline pipeline(workers, one, device, 16, [&](const Page&, const tool::PictureSize&) {
            return tool::PageWork{1, 0, work};
          });
          for (int i = 0; i < 3; ++i) pipeline.Print(page);
          pipeline.Finish();
        } catch (const tool::ToolError& error) {
          return std::string(error.what());
        }
        return std::string("nothing was thrown");
      };
      const auto count = [&](const tool::PaintedBand&) {
        return [&] {
          if (++bands == 9) throw tool::ToolError(tool::ExitCode::kCannotWrite, "full");
        };
      };
      EXPECT_EQ(messageOf(rasteriser, count), "full");
      EXPECT_EQ(bands, 9);
      const auto failAt = [&](const tool::PaintedBand& band) {
        if (band.index == 5) throw tool::ToolError(tool::ExitCode::kCannotWrite, "no memory");
        return [&] { ++bands; };
      };
      EXPECT_EQ(messageOf(rasteriser, failAt), "no memory");
      EXPECT_EQ(bands, 5);
      tool::Rasteriser refusing = rasteriser;
      refusing.control = [](DeviceHandle*, uint32_t, const void*, void*) { return uint32_t{0}; };
      EXPECT_EQ(messageOf(refusing, count).rfind("the library refuses escape", 0), 0u);
      EXPECT_EQ(bands, 0);
    }
  }
}

TEST(BandPrinter, ImagesOfAnyScaleDoNotDependOnTheBands) {
  const DeviceChoice device = Device("gray");
  for (int i = 0; i < 40; ++i) {
    const int32_t rows = 90 + i * 53 % 911;
    const int height = 60 + i * 37 % 700;
    const Page page = PicturePage(20, 800, Image(8, 5, i % 2 == 0 ? rows : -rows), {3, 11, 15, 11 + height});
    const Printed whole = PrintPage(page, device, 0);
    for (const int bandRows : {1, 3, 50}) {
      EXPECT_TRUE(PrintPage(page, device, bandRows) == whole) << rows << " rows over " << height << " by " << bandRows;
    }
  }
}

// Row y of the page shows the source row under its middle.
TEST(BandPrinter, ImagesComeOutWhereTheyBelong) {
  const DeviceChoice device = Device("color");
  const BmpFile file = NoiseBmp(24, 9, 40);
  const Printed printed =
      PrintPage(PicturePage(120, 110, OpenPicture(file.Bytes()), {10, 5, 10 + 90, 5 + 100}), device, 16);
  for (int y = 0; y < 100; ++y) {
    for (int x = 0; x < 90; ++x) {
      const std::size_t stored = static_cast<std::size_t>(39 - y * 40 / 100);
      const uint8_t* const source = file.pixels.data() + stored * file.stride() + static_cast<std::size_t>(x / 10) * 3;
      ASSERT_EQ(std::memcmp(printed.At(10 + x, 5 + y), source, 3), 0) << x << ',' << y;
    }
  }
  EXPECT_EQ(printed.At(9, 50)[0], 0xFF);
  EXPECT_EQ(printed.At(100, 50)[0], 0xFF);
}

// A picture of many strips shows no seams: every page row has the source row under its middle, or the one beside it.
TEST(BandPrinter, StripsStandInOrder) {
  const DeviceChoice device = Device("color");
  for (const int32_t rows : {600, -600}) {
    BmpFile file{.width = 1, .height = rows};
    for (int row = 0; row < 600; ++row) {
      file.pixels.insert(file.pixels.end(), {static_cast<uint8_t>(row), static_cast<uint8_t>(row >> 8), 0, 0});
    }
    const Printed printed = PrintPage(PicturePage(8, 720, OpenPicture(file.Bytes()), {2, 3, 6, 3 + 701}), device, 64);
    for (int y = 0; y < 701; ++y) {
      const uint8_t* const pixel = printed.At(4, 3 + y);
      const int stored = pixel[0] | pixel[1] << 8;
      const int expected = static_cast<int>((y + 0.5) * 600 / 701);
      ASSERT_NEAR(rows < 0 ? stored : 599 - stored, expected, 1) << y;
    }
  }
}

// Logical color of a pixel; on a gray device its level three times.
tool::Color ColorAt(const Printed& printed, int x, int y) {
  const uint8_t* const p = printed.At(x, y);
  if (printed.bytesPerPixel == 1) return p[0] * 0x010101u;
  return static_cast<tool::Color>(p[2] | p[1] << 8 | p[0] << 16);
}

tool::Color Gray(tool::Color color) {
  return ((color & 0xFF) * 30 + (color >> 8 & 0xFF) * 59 + (color >> 16) * 11) / 100 * 0x010101;
}

TEST(BandPrinter, FillsHaveTheirColors) {
  constexpr tool::Color kFront = 0x302010;
  constexpr tool::Color kBack = 0x80C0F0;
  using Kind = Fill::Kind;
  const struct {
    Fill fill;
    int x, y;
    tool::Color expected;
  } cases[] = {
      {{.kind = Kind::kPen}, 5, 7, kFront},
      {{.kind = Kind::kSolid}, 5, 7, kFront},
      {{.kind = Kind::kHatch, .hatch = HS_VERTICAL}, 8, 3, kFront},
      {{.kind = Kind::kHatch, .hatch = HS_VERTICAL}, 9, 3, tool::kWhite},
      {{.kind = Kind::kHatch, .opaque = true, .hatch = HS_VERTICAL}, 9, 3, kBack},
      {{.kind = Kind::kBits, .bits = {0xFF, 0x80}}, 3, 0, kBack},
      {{.kind = Kind::kBits, .bits = {0xFF, 0x80}}, 0, 1, kBack},
      {{.kind = Kind::kBits, .bits = {0xFF, 0x80}}, 1, 1, kFront},
      {{.kind = Kind::kBits, .bits = {0xFF, 0x80}}, 8, 2, kFront},
      {{.kind = Kind::kWeave}, 5, 3, kFront},
      {{.kind = Kind::kWeave}, 9, 3, kBack},
      {{.kind = Kind::kWeave}, 7, 3, 0x587080},  // half of each
      {{.kind = Kind::kWeave}, 7, 8, tool::kWhite},
  };
  for (const char* name : {"color", "gray", "dual", "scaled:100/100", "scaled-gray:100/100"}) {
    const DeviceChoice device = Device(name);
    for (const auto& c : cases) {
      Fill fill = c.fill;
      fill.color = kFront;
      fill.background = kBack;
      const Page page{.width = 16, .height = 16, .items = {Filled(tool::RectRegion(0, 0, 16, 8), fill)}};
      EXPECT_EQ(ColorAt(PrintPage(page, device, 3), c.x, c.y), device.isGray() ? Gray(c.expected) : c.expected)
          << name << ", fill " << static_cast<int>(fill.kind) << " at " << c.x << ',' << c.y;
    }
  }
}

TEST(BandPrinter, DualIsColorWithTags) {
  const DeviceChoice dual = Device("dual");
  tool::FontShelf fonts = SyntheticShelf(dual.pageDpi);
  const Page page = FullPage(dual, fonts);
  Printed printed = PrintPage(page, dual, 50);
  ASSERT_EQ(printed.tags.size(), 230u * 300u);
  const auto tag = [&](int x, int y) { return printed.tags[static_cast<std::size_t>(y * 230 + x)]; };
  EXPECT_EQ(tag(0, 0), QNV_TAG_GRAPHICS);
  EXPECT_EQ(tag(20, 210), QNV_TAG_IMAGE);
  EXPECT_EQ(tag(115, 250), QNV_TAG_GRAPHICS);  // the line over the images
  printed.tags.clear();
  EXPECT_TRUE(printed == PrintPage(page, Device("color"), 50));
}

// Justified lines end at the right edge to the pixel, runs of the two-byte font included.
TEST(BandPrinter, JustifiedLinesFillTheLine) {
  const DeviceChoice device = Device("gray");
  tool::FontShelf fonts = SyntheticShelf(100);
  const PageSetup setup{.sheet = {100, 230, 600, {10, 10, 217, 590}}, .fonts = &fonts, .points = 6, .header = false};
  std::u32string text;
  for (int i = 0; i < 15; ++i) text += U"\u03B1\u03B2 mixed\u2019s a words ";
  const Page page = tool::LayOutText({{tool::TextBlock::Kind::kParagraph, 0, 0, text}}, setup, "x").front();
  const auto font = fonts.Get(tool::FontRole::kBody, 6);
  const Printed printed = PrintPage(page, device, 0);
  int justified = 0;
  for (const auto& item : page.items) {
    const auto& line = std::get<tool::TextLine>(item);
    if (line.breakCount == 0) continue;
    ++justified;
    int last = -1;
    for (int y = line.baseline - font->ascent(); y < line.baseline; ++y) {
      for (int x = 0; x < printed.width; ++x) last = *printed.At(x, y) == 0 ? std::max(last, x) : last;
    }
    // The line's last cell ends at the edge; its glyph says how far before that its ink does.
    const tool::TextRun& run = line.runs.back();
    const auto code = static_cast<char32_t>(line.text.back());
    EXPECT_EQ(run.codes.empty(), tool::PlainFont::IsLatin(code));
    const tool::Glyph glyph = SyntheticFont(8).Load(code);
    const int inkEnd = std::max(glyph.left, 0) + glyph.columns;
    EXPECT_EQ(last, 217 - 1 - (tool::CellWidth(glyph) - inkEnd)) << "baseline " << line.baseline;
  }
  EXPECT_GE(justified, 5);
}

TEST(BandPrinter, PagesTooLargeAreRefused) {
  const auto refused = [](const DeviceChoice& device, int width, int height) {
    return UsageErrorOf([&] { BandPrinter(tool::LinkedRasteriser(), device, width, height, 16); }) != "";
  };
  EXPECT_FALSE(refused(Device("color"), 21844, 100));
  EXPECT_TRUE(refused(Device("color"), 21845, 100));  // rows of 65536 bytes
  EXPECT_FALSE(refused(Device("gray"), 32767, 32767));
  EXPECT_TRUE(refused(Device("scaled:100/200"), 100, 20000));
}

}  // namespace
}  // namespace qnv::test
