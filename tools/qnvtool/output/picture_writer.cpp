// Writes PPM and PGM files, and chooses the format of a file.
#include "qnvtool/output/picture_writer.h"

#include <fmt/core.h>

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <map>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/output_file.h"
#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

// A binary PNM file: a header in text, then the rows.
class PnmWriter final : public PictureWriter {
 public:
  PnmWriter(const std::string& path, const PictureForm& form) : file_(path) {
    const int kind = form.pixels == PictureForm::Pixels::kColor ? 6 : 5;
    const std::string header = fmt::format("P{}\n{} {}\n255\n", kind, form.width, form.height);
    file_.Write(header.data(), header.size());
  }

  void Write(const EncodedRows& rows) override {
    for (const EncodedPiece& piece : rows) file_.Write(piece.bytes.data(), piece.bytes.size());
  }

  void Finish() override { file_.Close(); }

 private:
  OutputFile file_;
};

}  // namespace

std::size_t FileRowSize(const PictureForm& form) {
  return static_cast<std::size_t>(form.width) * (form.pixels == PictureForm::Pixels::kColor ? 3 : 1);
}

std::size_t DeviceRowSize(const PictureForm& form) {
  return FileRowSize(form) * (form.pixels == PictureForm::Pixels::kGrayOf3 ? 3 : 1);
}

void ConvertRow(const PictureForm& form, const uint8_t* row, std::vector<uint8_t>& result) {
  const auto width = static_cast<std::size_t>(form.width);
  switch (form.pixels) {
    case PictureForm::Pixels::kColor:
      result.resize(width * 3);
      for (std::size_t i = 0; i < width * 3; i += 3) {
        result[i] = row[i + 2];
        result[i + 1] = row[i + 1];
        result[i + 2] = row[i];
      }
      break;
    case PictureForm::Pixels::kGrayOf3:
      result.resize(width);
      for (std::size_t x = 0; x < width; ++x) result[x] = row[3 * x];
      break;
    default: result.assign(row, row + width);
  }
}

PictureFormat FormatOf(const std::string& path, const std::string& name) {
  std::string wanted = name;
  if (wanted.empty()) {
    if (path == "-") return PictureFormat::kPnm;
    const std::string extension = FileNameOf(PathOf(path).extension());
    for (const char c : extension.substr(extension.empty() ? 0 : 1)) {
      wanted += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
  }
  static const std::map<std::string, PictureFormat> formats = {
      {"png", PictureFormat::kPng},   {"ppm", PictureFormat::kPnm},  {"pgm", PictureFormat::kPnm},
      {"pnm", PictureFormat::kPnm},   {"tif", PictureFormat::kTiff}, {"tiff", PictureFormat::kTiff},
      {"pdf", PictureFormat::kPdf},   {"pwg", PictureFormat::kPwg},  {"urf", PictureFormat::kUrf},
      {"cups", PictureFormat::kCups}, {"ras", PictureFormat::kCups},
  };
  const auto found = formats.find(wanted);
  if (found != formats.end() && (wanted != "cups" || !name.empty())) return found->second;
  throw ToolError(ExitCode::kUsage,
                  fmt::format("{}: the name says no format that can be written; end it in .png, .ppm, .pgm, .tiff, "
                              ".pdf, .pwg, .urf or .ras, or use --format",
                              path));
}

std::unique_ptr<PictureWriter> CreatePnmFile(const std::string& path, const PictureForm& form) {
  return std::make_unique<PnmWriter>(path, form);
}

}  // namespace qnv::tool
