#include "picture_writer.h"

#include <fmt/format.h>
#include <png.h>

#include <cerrno>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "tool_error.h"

namespace qnv::tool {
namespace {

using Pixels = PictureForm::Pixels;

[[noreturn]] void CannotWrite(const std::string& path, const std::string& why) {
  throw ToolError(ExitCode::kCannotWrite, fmt::format("{}: cannot be written: {}", path, why));
}

// A file that goes away again unless it was finished.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wb")) {
    if (file_ == nullptr) CannotWrite(path, std::strerror(errno));
  }
  ~OutputFile() {
    if (file_ == nullptr) return;
    std::fclose(file_);
    // Only what this program made: a device or a pipe stays.
    std::error_code error;
    if (std::filesystem::is_regular_file(path_, error)) std::filesystem::remove(path_, error);
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* get() const { return file_; }
  const std::string& path() const { return path_; }

  void Close() {
    std::FILE* const file = file_;
    if (std::fflush(file) != 0) CannotWrite(path_, std::strerror(errno));
    file_ = nullptr;
    if (std::fclose(file) != 0) CannotWrite(path_, std::strerror(errno));
  }

 private:
  const std::string path_;
  std::FILE* file_;
};

// One row in the order of bytes that files have: red, green, blue; or a single byte.
void ConvertRow(const PictureForm& form, const uint8_t* row, std::vector<uint8_t>& result) {
  const auto width = static_cast<std::size_t>(form.width);
  result.clear();
  switch (form.pixels) {
    case Pixels::kColour:
      for (std::size_t x = 0; x < width; ++x) result.insert(result.end(), {row[3 * x + 2], row[3 * x + 1], row[3 * x]});
      break;
    case Pixels::kGrayOf3:
      for (std::size_t x = 0; x < width; ++x) result.push_back(row[3 * x]);
      break;
    default:
      result.assign(row, row + width);
  }
}

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

class PnmWriter final : public PictureWriter {
 public:
  // Without a file the picture goes to standard output.
  PnmWriter(std::unique_ptr<OutputFile> file, const PictureForm& form) : file_(std::move(file)), form_(form) {
    const int kind = form.pixels == Pixels::kColour ? 6 : 5;
    Write(fmt::format("P{}\n{} {}\n255\n", kind, form.width, form.height));
  }

  void WriteRows(const uint8_t* first, std::size_t stride, int rows) override {
    for (int row = 0; row < rows; ++row) {
      ConvertRow(form_, first + static_cast<std::size_t>(row) * stride, row_);
      Write(row_);
    }
  }

  void Finish() override {
    if (file_ != nullptr) {
      file_->Close();
    } else if (std::fflush(stdout) != 0) {
      CannotWrite("standard output", std::strerror(errno));
    }
  }

 private:
  template <class Text>
  void Write(const Text& bytes) {
    std::FILE* const file = file_ != nullptr ? file_->get() : stdout;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size()) return;
    CannotWrite(file_ != nullptr ? file_->path() : "standard output", std::strerror(errno));
  }

  std::unique_ptr<OutputFile> file_;
  const PictureForm form_;
  std::vector<uint8_t> row_;
};

}  // namespace

std::unique_ptr<PictureWriter> CreatePictureFile(const std::string& path, const PictureForm& form) {
  const std::string extension = std::filesystem::path(path).extension().string();
  const bool pnm = extension == ".ppm" || extension == ".pgm" || extension == ".pnm";
  if (pnm && form.pixels != Pixels::kTags) {
    return std::make_unique<PnmWriter>(std::make_unique<OutputFile>(path), form);
  }
  return std::make_unique<PngWriter>(path, form);
}

std::unique_ptr<PictureWriter> WritePictureToStdout(const PictureForm& form) {
  return std::make_unique<PnmWriter>(nullptr, form);
}

std::string PathOfPage(const std::string& path, int page) {
  if (page == 1) return path;
  const std::filesystem::path whole(path);
  std::filesystem::path result = whole.parent_path() / whole.stem();
  result += fmt::format("-{}", page);
  result += whole.extension();
  return result.string();
}

}  // namespace qnv::tool
