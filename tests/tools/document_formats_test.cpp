// Files that hold all pages of a job, read back by the libraries that other programs read them with.
#include <cups/raster.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "qnvtool/layout/text_lines.h"
#include "qnvtool/output/documents.h"
#include "qnvtool/output/pdf_text.h"
#include "synthetic_font.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::PictureForm;
using tool::PictureFormat;
using Pixels = PictureForm::Pixels;
using PixelBytes = std::vector<uint8_t>;

std::string DocumentFile(const std::string& name) { return testing::TempDir() + "/" + name; }

// A page of noise with some equal rows, in the form of the device, with padding at the end of rows.
struct NoisePage {
  PictureForm form;
  std::size_t bytesOfPixel = 0;
  std::size_t stride = 0;
  PixelBytes rows;

  NoisePage(int width, int height, int dpi, Pixels pixels) : form{width, height, dpi, pixels} {
    bytesOfPixel = pixels == Pixels::kColor || pixels == Pixels::kGrayOf3 ? 3 : 1;
    stride = static_cast<std::size_t>(width) * bytesOfPixel + 5;
    rows.resize(stride * static_cast<std::size_t>(height));
    uint32_t random = 7;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (i % (stride * 4) == 0) random = 7;
      random = random * 1664525 + 1013904223;
      rows[i] = static_cast<uint8_t>(pixels == Pixels::kTags ? (random >> 24) % 4 : random >> 24);
    }
    if (pixels != Pixels::kGrayOf3) return;
    for (std::size_t i = 0; i + 2 < rows.size(); i += 3) rows[i + 1] = rows[i + 2] = rows[i];
    stride = static_cast<std::size_t>(width) * 3;
  }

  // Red, green, blue, or one byte a pixel.
  PixelBytes Expected() const {
    PixelBytes result;
    PixelBytes row;
    for (int y = 0; y < form.height; ++y) {
      tool::ConvertRow(form, rows.data() + static_cast<std::size_t>(y) * stride, row);
      result.insert(result.end(), row.begin(), row.end());
    }
    return result;
  }
};

std::vector<NoisePage> SomePages() {
  return {{40, 30, 600, Pixels::kColor},
          {2481, 300, 300, Pixels::kColor},
          {33, 2, 150, Pixels::kGray},
          {1000, 3100, 1200, Pixels::kGrayOf3},
          {17, 9, 97, Pixels::kTags}};
}

// `unitsOfBand`: how many pieces are encoded at a time.
void WriteDocument(PictureFormat format, const std::string& path, const std::vector<NoisePage>& pages,
                   int unitsOfBand) {
  const auto document = tool::CreateDocument(format, path, static_cast<int>(pages.size()));
  for (const NoisePage& page : pages) {
    const auto picture = document->StartPage(page.form, {});
    const auto encoder = tool::CreateEncoder(format, page.form);
    const int bandRows = std::min(page.form.height, encoder->unit() * unitsOfBand);
    for (int y = 0; y < page.form.height; y += bandRows) {
      picture->Write(encoder->Encode({page.rows.data() + static_cast<std::size_t>(y) * page.stride, page.stride, y,
                                      std::min(bandRows, page.form.height - y)}));
    }
    picture->Finish();
  }
  document->Finish();
}

std::string ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(DocumentFormats, Tiff) {
  const std::string path = DocumentFile("pages.tiff");
  const std::vector<NoisePage> pages = SomePages();
  WriteDocument(PictureFormat::kTiff, path, pages, 37);
  TIFF* const tiff = TIFFOpen(path.c_str(), "r");
  ASSERT_NE(tiff, nullptr);
  EXPECT_EQ(TIFFNumberOfDirectories(tiff), pages.size());
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const PictureForm& form = pages[i].form;
    ASSERT_EQ(TIFFSetDirectory(tiff, static_cast<uint16_t>(i)), 1);
    const auto number = [&](uint32_t tag) {
      uint32_t value = 0;
      EXPECT_EQ(TIFFGetField(tiff, tag, &value), 1) << tag;
      return value;
    };
    const auto shortNumber = [&](uint32_t tag) {
      uint16_t value = 0;
      EXPECT_EQ(TIFFGetFieldDefaulted(tiff, tag, &value), 1) << tag;
      return int{value};
    };
    EXPECT_EQ(number(TIFFTAG_IMAGEWIDTH), static_cast<uint32_t>(form.width));
    EXPECT_EQ(number(TIFFTAG_IMAGELENGTH), static_cast<uint32_t>(form.height));
    EXPECT_EQ(shortNumber(TIFFTAG_RESOLUTIONUNIT), RESUNIT_INCH);
    EXPECT_EQ(shortNumber(TIFFTAG_COMPRESSION), COMPRESSION_ADOBE_DEFLATE);
    EXPECT_EQ(shortNumber(TIFFTAG_SAMPLESPERPIXEL), form.pixels == Pixels::kColor ? 3 : 1);
    EXPECT_EQ(shortNumber(TIFFTAG_PHOTOMETRIC), form.pixels == Pixels::kColor  ? PHOTOMETRIC_RGB
                                                : form.pixels == Pixels::kTags ? PHOTOMETRIC_PALETTE
                                                                               : PHOTOMETRIC_MINISBLACK);
    for (const uint32_t tag : {uint32_t{TIFFTAG_XRESOLUTION}, uint32_t{TIFFTAG_YRESOLUTION}}) {
      float dpi = 0;
      EXPECT_EQ(TIFFGetField(tiff, tag, &dpi), 1);
      EXPECT_EQ(dpi, static_cast<float>(form.dpi));
    }
    uint16_t page = 0, count = 0;
    EXPECT_EQ(TIFFGetField(tiff, TIFFTAG_PAGENUMBER, &page, &count), 1);
    EXPECT_EQ(page, i);
    EXPECT_EQ(count, pages.size());
    PixelBytes read(pages[i].Expected().size());
    const std::size_t rowSize = read.size() / static_cast<std::size_t>(form.height);
    ASSERT_EQ(TIFFScanlineSize(tiff), static_cast<tmsize_t>(rowSize));
    for (uint32_t y = 0; y < static_cast<uint32_t>(form.height); ++y) {
      ASSERT_EQ(TIFFReadScanline(tiff, read.data() + y * rowSize, y), 1) << "page " << i << " row " << y;
    }
    EXPECT_TRUE(read == pages[i].Expected()) << "page " << i;
  }
  // The colors of the tag legend.
  uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
  ASSERT_EQ(TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue), 1);
  const uint32_t legend[] = {tool::kTagTextCell, tool::kTagGraphics, 0, tool::kTagImage};
  for (std::size_t tag = 0; tag < 4; ++tag) {
    const int color = red[tag] >> 8 << 16 | green[tag] >> 8 << 8 | blue[tag] >> 8;
    EXPECT_EQ(static_cast<uint32_t>(color), legend[tag]) << tag;
  }
  TIFFClose(tiff);
}

TEST(DocumentFormats, RasterStreams) {
  const std::vector<NoisePage> pages = SomePages();
  for (const PictureFormat format : {PictureFormat::kPwg, PictureFormat::kUrf, PictureFormat::kCups}) {
    const std::string path = DocumentFile("pages.ras");
    WriteDocument(format, path, pages, 41);
    const std::string start = format == PictureFormat::kPwg   ? "RaS2"
                              : format == PictureFormat::kUrf ? std::string("UNIRAST\0\0\0\0\5", 12)
                                                              : "2SaR";
    EXPECT_EQ(ContentOf(path).substr(0, start.size()), start);
    const int file = open(path.c_str(), O_RDONLY);
    ASSERT_GE(file, 0);
    cups_raster_t* const raster = cupsRasterOpen(file, CUPS_RASTER_READ);
    ASSERT_NE(raster, nullptr);
    for (const NoisePage& page : pages) {
      SCOPED_TRACE(testing::Message() << start << ", " << page.form.width << " pixels wide");
      const bool color = page.form.pixels == Pixels::kColor;
      cups_page_header2_t header;
      ASSERT_NE(cupsRasterReadHeader2(raster, &header), 0u);
      EXPECT_EQ(header.cupsWidth, static_cast<unsigned>(page.form.width));
      EXPECT_EQ(header.cupsHeight, static_cast<unsigned>(page.form.height));
      EXPECT_EQ(header.HWResolution[0], static_cast<unsigned>(page.form.dpi));
      EXPECT_EQ(header.HWResolution[1], static_cast<unsigned>(page.form.dpi));
      EXPECT_EQ(header.cupsBitsPerColor, 8u);
      EXPECT_EQ(header.cupsBitsPerPixel, color ? 24u : 8u);
      EXPECT_EQ(header.cupsNumColors, color ? 3u : 1u);
      EXPECT_EQ(header.cupsColorSpace, color ? CUPS_CSPACE_SRGB : CUPS_CSPACE_SW);
      EXPECT_EQ(header.cupsColorOrder, CUPS_ORDER_CHUNKED);
      EXPECT_EQ(header.cupsBytesPerLine, header.cupsWidth * (color ? 3 : 1));
      // Points, to the point.
      EXPECT_NEAR(header.PageSize[0], page.form.width * 72.0 / page.form.dpi, 1);
      EXPECT_NEAR(header.PageSize[1], page.form.height * 72.0 / page.form.dpi, 1);
      if (format == PictureFormat::kPwg) {
        EXPECT_EQ(header.cupsInteger[CUPS_RASTER_PWG_TotalPageCount], pages.size());
      }
      PixelBytes read(std::size_t{header.cupsBytesPerLine} * header.cupsHeight);
      for (unsigned y = 0; y < header.cupsHeight; ++y) {
        ASSERT_EQ(cupsRasterReadPixels(raster, read.data() + std::size_t{y} * header.cupsBytesPerLine,
                                       header.cupsBytesPerLine),
                  header.cupsBytesPerLine);
      }
      EXPECT_TRUE(read == page.Expected());
    }
    cups_page_header2_t header;
    EXPECT_EQ(cupsRasterReadHeader2(raster, &header), 0u) << "a page too many";
    cupsRasterClose(raster);
    close(file);
  }
}

// A4 is known by its name.
TEST(DocumentFormats, RasterNamesThePaper) {
  const std::string path = DocumentFile("a4.pwg");
  WriteDocument(PictureFormat::kPwg, path, {{1240, 1754, 150, Pixels::kGray}}, 1754);
  EXPECT_NE(ContentOf(path).find("iso_a4_210x297mm"), std::string::npos);
}

TEST(DocumentFormats, DoNotDependOnTheBands) {
  const std::vector<NoisePage> pages = SomePages();
  for (const PictureFormat format :
       {PictureFormat::kTiff, PictureFormat::kPdf, PictureFormat::kPwg, PictureFormat::kUrf, PictureFormat::kCups}) {
    WriteDocument(format, DocumentFile("one"), pages, 1);
    WriteDocument(format, DocumentFile("many"), pages, 10000);
    EXPECT_TRUE(ContentOf(DocumentFile("one")) == ContentOf(DocumentFile("many"))) << static_cast<int>(format);
  }
}

TEST(DocumentFormats, CompleteOrNotThere) {
  const std::vector<NoisePage> pages = {{40, 30, 600, Pixels::kColor}};
  for (const PictureFormat format :
       {PictureFormat::kTiff, PictureFormat::kPdf, PictureFormat::kPwg, PictureFormat::kUrf, PictureFormat::kCups}) {
    const std::string path = DocumentFile("unfinished");
    std::ofstream(path) << "old";
    {
      const auto document = tool::CreateDocument(format, path, 1);
      const auto picture = document->StartPage(pages[0].form, {});
      picture->Write(
          tool::CreateEncoder(format, pages[0].form)->Encode({pages[0].rows.data(), pages[0].stride, 0, 30}));
      picture->Finish();
    }
    EXPECT_EQ(ContentOf(path), "old") << static_cast<int>(format);
    for (const char* const bad : {"/no such folder/x", "/dev/full"}) {
      const std::string message = ErrorOf(tool::ExitCode::kCannotWrite, [&] { WriteDocument(format, bad, pages, 30); });
      EXPECT_EQ(message.rfind(std::string(bad) + ": cannot be written", 0), 0u) << message;
    }
  }
}

TEST(DocumentFormats, InvisibleText) {
  tool::PdfText text;
  EXPECT_EQ(text.Draw({}, 100, 1), "");
  // Two characters of 20 units each are 20 units wide at half the size; 30 are wanted. Half a point a pixel.
  const std::string drawn = text.Draw({{U"aba", 10, 80, 60, 15, 5}}, 100, 0.5);
  EXPECT_EQ(drawn, "BT 3 Tr\n200.00 Tz 1 0 0 1 5.000 10.000 Tm /T0 10.000 Tf <000100> Tj\nET\n");
  EXPECT_EQ(text.fonts(), 1u);
  EXPECT_EQ(text.CodesOf(0), 2u);
  // Characters that are read from the right stand from the left, as they do in the picture.
  const std::string turned = text.Draw({{U"ab", 10, 80, 20, 15, 5, true}}, 100, 1);
  EXPECT_EQ(turned, "BT 3 Tr\n100.00 Tz 1 0 0 1 10.000 20.000 Tm /T0 20.000 Tf <0100> Tj\nET\n");
  // A second font begins behind 256 characters; a word may need both.
  std::u32string many;
  for (char32_t c = 0x400; c < 0x400 + 254; ++c) many.push_back(c);
  many += U"\U0001D11Ea";
  const std::string more = text.Draw({{many, 0, 0, 10, 15, 5}}, 100, 1);
  EXPECT_NE(more.find("FF> Tj /T1 20.000 Tf <00> Tj /T0 20.000 Tf <00> Tj\n"), std::string::npos) << more;
  EXPECT_EQ(text.fonts(), 2u);
  EXPECT_EQ(text.CodesOf(0), 256u);
  EXPECT_EQ(text.CodesOf(1), 1u);
  EXPECT_NE(text.CharacterMap(0).find("100 beginbfchar\n<00> <0061>\n<01> <0062>\n<02> <0400>\n"), std::string::npos);
  EXPECT_NE(text.CharacterMap(1).find("1 beginbfchar\n<00> <D834DD1E>\nendbfchar"), std::string::npos);
}

}  // namespace
}  // namespace qnv::test
