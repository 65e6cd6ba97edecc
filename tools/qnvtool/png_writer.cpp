#include "png_writer.h"

#include <png.h>

#include <cerrno>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>

#include "output_file.h"

namespace qnv::tool {
namespace {

using Pixels = PictureForm::Pixels;

class PngWriter final : public PictureWriter {
 public:
  PngWriter(const std::string& path, const PictureForm& form) : file_(path), form_(form) {
    png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
    if (info_ == nullptr || !WriteHeader()) {
      png_destroy_write_struct(&png_, &info_);
      Fail();
    }
  }
  ~PngWriter() override { png_destroy_write_struct(&png_, &info_); }

  void WriteRows(const uint8_t* first, std::size_t stride, int rows) override {
    for (int row = 0; row < rows; ++row) {
      ConvertRow(form_, first + static_cast<std::size_t>(row) * stride, row_);
      if (!WriteRow()) Fail();
    }
  }

  void Finish() override {
    if (!WriteEnd()) Fail();
    file_.Close();
  }

 private:
  // libpng leaves its functions by longjmp; the functions below hold nothing that would need a destructor.
  static void OnError(png_structp png, png_const_charp text) {
    auto* const self = static_cast<PngWriter*>(png_get_error_ptr(png));
    std::snprintf(self->error_, sizeof self->error_, "%s", text);
    png_longjmp(png, 1);
  }
  static void OnWarning(png_structp, png_const_charp) {}

  bool WriteHeader() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    const int type = form_.pixels == Pixels::kColour ? PNG_COLOR_TYPE_RGB
                     : form_.pixels == Pixels::kTags ? PNG_COLOR_TYPE_PALETTE
                                                     : PNG_COLOR_TYPE_GRAY;
    png_init_io(png_, file_.get());
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(form_.width), static_cast<png_uint_32>(form_.height), 8, type,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const auto perMetre = static_cast<png_uint_32>(std::lround(form_.dpi / 0.0254));
    png_set_pHYs(png_, info_, perMetre, perMetre, PNG_RESOLUTION_METER);
    if (form_.pixels == Pixels::kTags) SetPalette();
    png_set_compression_level(png_, 4);  // pages are large and mostly white: more effort gains little
    png_write_info(png_, info_);
    return true;
  }

  // Index = tag value. Values that no device writes are black.
  void SetPalette() {
    png_color palette[256] = {};
    const auto set = [&](int index, uint32_t rgb) {
      palette[index] = {static_cast<png_byte>(rgb >> 16), static_cast<png_byte>(rgb >> 8), static_cast<png_byte>(rgb)};
    };
    set(0, kTagTextCell);
    set(1, kTagGraphics);
    set(3, kTagImage);
    png_set_PLTE(png_, info_, palette, 256);
  }

  bool WriteRow() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_write_row(png_, row_.data());
    return true;
  }

  bool WriteEnd() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_write_end(png_, info_);
    return true;
  }

  [[noreturn]] void Fail() const {
    const bool disk = std::ferror(file_.get()) != 0 && errno != 0;
    CannotWrite(file_.path(), disk ? std::strerror(errno) : error_[0] != '\0' ? error_ : "no memory");
  }

  OutputFile file_;
  const PictureForm form_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  std::vector<uint8_t> row_;
  char error_[128] = {};
};

}  // namespace

std::unique_ptr<PictureWriter> CreatePngFile(const std::string& path, const PictureForm& form) {
  return std::make_unique<PngWriter>(path, form);
}

}  // namespace qnv::tool
