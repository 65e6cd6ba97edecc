#include "print_job.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>

#include "band_printer.h"
#include "bmp_reader.h"
#include "figures.h"
#include "page_setup.h"
#include "progress.h"
#include "rasteriser.h"
#include "text_layout.h"
#include "tool_error.h"
#include "utf8.h"

namespace qnv::tool {
namespace {

FileType TypeOf(const std::string& path, const Bytes& file) {
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == ".bmp" || extension == ".dib") return FileType::kBmp;
  if (extension == ".fig") return FileType::kFigures;
  if (extension == ".txt" || extension == ".text" || extension == ".md") return FileType::kText;
  return LooksLikeBmp(file) ? FileType::kBmp : FileType::kText;
}

std::vector<Page> LayOut(const std::string& path, const PageSetup& setup, const PrintOptions& options) {
  const Bytes file = ReadFile(path);
  const std::string name = std::filesystem::path(path).filename().string();
  const FileType type = options.type == FileType::kAuto ? TypeOf(path, file) : options.type;
  if (type == FileType::kFigures) return LayOutFigures(file, setup, path);
  if (type == FileType::kText) {
    return LayOutText(ParseTextBlocks(DecodeTextFile(file, path), options.verbatim), setup, name);
  }
  auto dib = std::make_shared<const Dib>(ReadBmp(file, path));
  for (const std::string& remark : dib->remarks) {
    if (!options.quiet) fmt::print(stderr, "qnvtool: {}: note: {}\n", path, remark);
  }
  return {LayOutPicture(std::move(dib), options.scale, setup, name)};
}

void CheckOutputs(const PrintOptions& options) {
  const bool dual = options.device.kind == DeviceChoice::Kind::kDual;
  for (const std::string& extra : {options.tags, options.overlay}) {
    if (extra.empty()) continue;
    if (!dual) throw ToolError(ExitCode::kUsage, "--tags and --overlay need --device dual");
    if (extra == "-") throw ToolError(ExitCode::kUsage, "--tags and --overlay write files, not standard output");
    if (extra == options.out || options.tags == options.overlay) {
      throw ToolError(ExitCode::kUsage, fmt::format("{}: named for two different pictures", extra));
    }
  }
  for (const std::string& out : {options.out, options.tags, options.overlay}) {
    for (const std::string& file : options.files) {
      std::error_code error;
      if (std::filesystem::equivalent(out, file, error)) {
        throw ToolError(ExitCode::kUsage, fmt::format("{}: is an input file and would be overwritten", out));
      }
    }
  }
}

std::unique_ptr<PictureWriter> CreatePicture(const PrintParts& parts, const std::string& path,
                                             const PictureForm& form) {
  if (IsPnmName(path)) return CreatePnmFile(path, form);
  if (parts.createPng == nullptr) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: this program writes .ppm and .pgm files only", path));
  }
  return parts.createPng(path, form);
}

Rasteriser ChooseRasteriser(const std::string& library, const PrintParts& parts) {
  if (!library.empty()) return LoadRasteriser(library);
  if (parts.linked == nullptr) throw ToolError(ExitCode::kUsage, "--library is needed: no rasteriser is built in");
  return parts.linked();
}

// The pictures of one page: the page itself and what the tag plane gives.
class PageFiles {
 public:
  PageFiles(const PrintOptions& options, const PrintParts& parts, int page, int width, int height) {
    using Pixels = PictureForm::Pixels;
    using Kind = DeviceChoice::Kind;
    const Kind kind = options.device.kind;
    PictureForm form{width, height, options.device.bandDpi, Pixels::kColour};
    if (kind == Kind::kGray) form.pixels = Pixels::kGray;
    if (kind == Kind::kScaledGray) form.pixels = Pixels::kGrayOf3;
    const auto create = [&](const std::string& path) { return CreatePicture(parts, PathOfPage(path, page), form); };
    picture_ = options.out == "-" ? WritePictureToStdout(form) : create(options.out);
    if (!options.overlay.empty()) overlay_ = create(options.overlay);
    form.pixels = Pixels::kTags;
    if (!options.tags.empty()) tags_ = create(options.tags);
    width_ = static_cast<std::size_t>(width);
  }

  void Write(const BandView& band) {
    picture_->WriteRows(band.pixels, band.stride, band.rows);
    if (tags_ != nullptr) tags_->WriteRows(band.tags, band.tagStride, band.rows);
    if (overlay_ != nullptr) WriteOverlay(band);
  }

  void Finish() {
    picture_->Finish();
    if (tags_ != nullptr) tags_->Finish();
    if (overlay_ != nullptr) overlay_->Finish();
  }

 private:
  // Image areas take half of the colour that the tag legend gives them.
  void WriteOverlay(const BandView& band) {
    for (int i = 0; i < band.rows; ++i) {
      const uint8_t* const pixels = band.pixels + static_cast<std::size_t>(i) * band.stride;
      const uint8_t* const tags = band.tags + static_cast<std::size_t>(i) * band.tagStride;
      tinted_.assign(pixels, pixels + width_ * 3);
      for (std::size_t x = 0; x < width_; ++x) {
        if (tags[x] != QNV_TAG_IMAGE) continue;
        for (std::size_t byte = 0; byte < 3; ++byte) {
          uint8_t& value = tinted_[x * 3 + byte];
          value = static_cast<uint8_t>((value + (kTagImage >> 8 * byte & 0xFF) + 1) / 2);
        }
      }
      overlay_->WriteRows(tinted_.data(), tinted_.size(), 1);
    }
  }

  std::size_t width_ = 0;
  std::unique_ptr<PictureWriter> picture_;
  std::unique_ptr<PictureWriter> tags_;
  std::unique_ptr<PictureWriter> overlay_;
  std::vector<uint8_t> tinted_;
};

}  // namespace

void Print(const PrintOptions& options, const PrintParts& parts) {
  CheckOutputs(options);
  const Rasteriser rasteriser = ChooseRasteriser(options.library, parts);
  FontShelf fonts = parts.openFonts(options);
  const PageSetup setup{MakeSheet(options.paper, options.device.pageDpi, options.marginMm), &fonts, options.points,
                        options.header};
  std::vector<Page> pages;
  for (const std::string& file : options.files) {
    for (Page& page : LayOut(file, setup, options)) pages.push_back(std::move(page));
  }

  BandPrinter printer(rasteriser, options.device, setup.sheet.width, setup.sheet.height, options.bandRows);
  Progress progress(!options.quiet);
  const double bands = static_cast<double>(printer.bands()) * static_cast<double>(pages.size());
  double done = 0;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    PageFiles files(options, parts, static_cast<int>(i + 1), printer.width(), printer.height());
    printer.Print(pages[i], [&](const BandView& band) {
      files.Write(band);
      progress.Show(++done / bands, fmt::format("page {} of {}", i + 1, pages.size()));
    });
    files.Finish();
  }
}

}  // namespace qnv::tool
