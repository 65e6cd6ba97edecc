#include "picture_writer.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "output_file.h"
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace qnv::tool {
namespace {

using Pixels = PictureForm::Pixels;

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
    default: result.assign(row, row + width);
  }
}

bool IsPnmName(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension().string();
  return extension == ".ppm" || extension == ".pgm" || extension == ".pnm";
}

std::unique_ptr<PictureWriter> CreatePnmFile(const std::string& path, const PictureForm& form) {
  return std::make_unique<PnmWriter>(std::make_unique<OutputFile>(path), form);
}

std::unique_ptr<PictureWriter> WritePictureToStdout(const PictureForm& form) {
#ifdef _WIN32
  _setmode(_fileno(stdout), _O_BINARY);
#endif
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
