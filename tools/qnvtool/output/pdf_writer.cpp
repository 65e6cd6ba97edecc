// Writes PDF files from front to back: each page is one picture, compressed as in PNG files, and invisible text.
#include <fmt/core.h>
#include <zlib.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "qnvtool/base/output_file.h"
#include "qnvtool/output/documents.h"
#include "qnvtool/output/pdf_text.h"
#include "qnvtool/output/row_deflate.h"

namespace qnv::tool {
namespace {

// Numbers of the objects that every file has.
constexpr int kCatalog = 1;
constexpr int kPages = 2;
constexpr int kFonts = 3;  // the dictionary of all fonts, which all pages refer to

class PdfDocument final : public PageDocument {
 public:
  explicit PdfDocument(const std::string& path) : file_(path) {
    // The bytes of the comment show programs that the file is binary.
    Write("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
  }

  std::unique_ptr<PictureWriter> StartPage(const PictureForm& form, const std::vector<PageWord>& words) override;

  void Finish() override {
    std::string kids;
    for (const int page : pages_) kids += fmt::format("{} 0 R ", page);
    WriteObject(kCatalog, fmt::format("<< /Type /Catalog /Pages {} 0 R >>", kPages));
    WriteObject(kPages, fmt::format("<< /Type /Pages /Count {} /Kids [ {}] >>", pages_.size(), kids));
    WriteFonts();
    const std::size_t table = position_;
    Write(fmt::format("xref\n0 {}\n0000000000 65535 f \n", offsets_.size()));
    for (std::size_t i = 1; i < offsets_.size(); ++i) Write(fmt::format("{:010} 00000 n \n", offsets_[i]));
    Write(
        fmt::format("trailer\n<< /Size {} /Root {} 0 R >>\nstartxref\n{}\n%%EOF\n", offsets_.size(), kCatalog, table));
    file_.Close();
  }

 private:
  friend class PdfPicture;

  void Write(const void* bytes, std::size_t size) {
    file_.Write(bytes, size);
    position_ += size;
  }
  void Write(const std::string& text) { Write(text.data(), text.size()); }

  // A number for an object that is yet to be written.
  int NewObject() {
    offsets_.push_back(0);
    return static_cast<int>(offsets_.size()) - 1;
  }

  void BeginObject(int number) {
    offsets_[static_cast<std::size_t>(number)] = position_;
    Write(fmt::format("{} 0 obj\n", number));
  }

  void WriteObject(int number, const std::string& content) {
    BeginObject(number);
    Write(content + "\nendobj\n");
  }

  void WriteStream(int number, const std::string& content) {
    uLongf size = compressBound(static_cast<uLong>(content.size()));
    std::string packed(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(content.data()),
                  static_cast<uLong>(content.size()), Z_DEFAULT_COMPRESSION) != Z_OK) {
      CannotWrite(file_.path(), "no memory");
    }
    packed.resize(size);
    WriteObject(number, fmt::format("<< /Length {} /Filter /FlateDecode >>\nstream\n{}\nendstream", size, packed));
  }

  // All codes of a font have the same empty glyph.
  void WriteFonts() {
    std::string names;
    for (std::size_t font = 0; font < text_.fonts(); ++font) {
      const int object = NewObject();
      const int glyph = NewObject();
      const int map = NewObject();
      const std::size_t codes = text_.CodesOf(font);
      std::string widths;
      std::string glyphs;
      for (std::size_t code = 0; code < codes; ++code) {
        widths += fmt::format("{} ", kPdfCharacterWidth);
        glyphs += "/g ";
      }
      WriteObject(object,
                  fmt::format("<< /Type /Font /Subtype /Type3 /FontBBox [0 {} {} {}] /FontMatrix [.001 0 0 .001 0 0]\n"
                              "/Resources << >> /CharProcs << /g {} 0 R >>\n"
                              "/Encoding << /Type /Encoding /Differences [0 {}] >>\n"
                              "/FirstChar 0 /LastChar {} /Widths [{}] /ToUnicode {} 0 R >>",
                              -kPdfDescent, kPdfCharacterWidth, kPdfAscent, glyph, glyphs, codes - 1, widths, map));
      const std::string nothing = fmt::format("{} 0 0 0 0 0 d1", kPdfCharacterWidth);
      WriteObject(glyph, fmt::format("<< /Length {} >>\nstream\n{}\nendstream", nothing.size(), nothing));
      WriteStream(map, text_.CharacterMap(font));
      names += fmt::format("/{} {} 0 R ", PdfFontName(font), object);
    }
    WriteObject(kFonts, fmt::format("<< {}>>", names));
  }

  OutputFile file_;
  std::size_t position_ = 0;
  std::vector<std::size_t> offsets_ = {0, 0, 0, 0};  // of the objects, by number
  std::vector<int> pages_;
  PdfText text_;
};

std::string ColorSpaceOf(PictureForm::Pixels pixels) {
  if (pixels == PictureForm::Pixels::kColor) return "/DeviceRGB";
  if (pixels != PictureForm::Pixels::kTags) return "/DeviceGray";
  return fmt::format("[ /Indexed /DeviceRGB 3 <{:06X}{:06X}000000{:06X}> ]", kTagTextCell, kTagGraphics, kTagImage);
}

// The picture of a page, whose stream goes to the file as it is made. Its length follows in an object of its own.
class PdfPicture final : public PictureWriter {
 public:
  PdfPicture(PdfDocument& document, int object, const PictureForm& form)
      : document_(document), lengthObject_(document.NewObject()) {
    document_.BeginObject(object);
    document_.Write(fmt::format(
        "<< /Type /XObject /Subtype /Image /Width {} /Height {} /BitsPerComponent 8 /ColorSpace {}\n"
        "/Filter /FlateDecode /DecodeParms << /Predictor 15 /Colors {} /Columns {} >> /Length {} 0 R >>\nstream\n",
        form.width, form.height, ColorSpaceOf(form.pixels), form.pixels == PictureForm::Pixels::kColor ? 3 : 1,
        form.width, lengthObject_));
    begin_ = document_.position_;
    data_.emplace([this](const std::vector<uint8_t>& piece) { document_.Write(piece.data(), piece.size()); });
  }

  void Write(const EncodedRows& rows) override { data_->Write(rows); }

  void Finish() override {
    data_->Finish();
    const std::size_t length = document_.position_ - begin_;
    document_.Write("\nendstream\nendobj\n");
    document_.WriteObject(lengthObject_, fmt::format("{}", length));
  }

 private:
  PdfDocument& document_;
  const int lengthObject_;
  std::size_t begin_ = 0;
  std::optional<ZlibStream> data_;
};

std::unique_ptr<PictureWriter> PdfDocument::StartPage(const PictureForm& form, const std::vector<PageWord>& words) {
  const int page = NewObject();
  const int contents = NewObject();
  const int picture = NewObject();
  pages_.push_back(page);
  const double scale = 72.0 / form.dpi;
  // A trifle less than the picture has: programs round the number of pixels up, and would show a row too many.
  constexpr double kTrifle = 0.0005;
  const auto points = [&](int pixels) { return pixels * scale - kTrifle; };
  const double width = points(form.width);
  const double height = points(form.height);
  WriteObject(page, fmt::format("<< /Type /Page /Parent {} 0 R /MediaBox [0 0 {:.4f} {:.4f}]\n"
                                "/Contents {} 0 R /Resources << /XObject << /P {} 0 R >> /Font {} 0 R >> >>",
                                kPages, width, height, contents, picture, kFonts));
  WriteStream(contents, fmt::format("q {:.4f} 0 0 {:.4f} 0 0 cm /P Do Q\n", width, height) +
                            text_.Draw(words, form.height, scale));
  return std::make_unique<PdfPicture>(*this, picture, form);
}

}  // namespace

std::unique_ptr<PageDocument> CreatePdfFile(const std::string& path) { return std::make_unique<PdfDocument>(path); }

}  // namespace qnv::tool
