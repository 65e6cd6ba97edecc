// Prints a job: checks the options, lays out all files, then paints page after page.
#include "qnvtool/job/print_job.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/progress.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/base/utf8.h"
#include "qnvtool/input/bmp_reader.h"
#include "qnvtool/layout/figures.h"
#include "qnvtool/layout/page_setup.h"
#include "qnvtool/layout/text_layout.h"
#include "qnvtool/output/output_names.h"
#include "qnvtool/paint/band_printer.h"
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {
namespace {

// The type of a file by its extension, or else by its first bytes.
FileType TypeOf(const std::string& path, const Bytes& file) {
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == ".bmp" || extension == ".dib") return FileType::kBmp;
  if (extension == ".fig") return FileType::kFigures;
  if (extension == ".txt" || extension == ".text" || extension == ".md") return FileType::kText;
  return LooksLikeBmp(file) ? FileType::kBmp : FileType::kText;
}

// Lays a file out. Adds the files that it refers to to `inputs`.
std::vector<Page> LayOut(const std::string& argument, const PageSetup& setup, const PrintOptions& options,
                         std::vector<std::string>& inputs) {
  const Bytes file = ReadFile(argument);
  const std::string path = DisplayName(argument);
  const std::string name = std::filesystem::path(path).filename().string();
  const FileType type = options.type == FileType::kAuto ? TypeOf(path, file) : options.type;
  if (type == FileType::kFigures) {
    std::vector<Page> pages = LayOutFigures(file, setup, path);
    for (const Page& page : pages) {
      for (const auto& item : page.items) {
        if (const auto* const picture = std::get_if<Picture>(&item)) inputs.push_back(picture->name);
      }
    }
    return pages;
  }
  if (type == FileType::kText) {
    return LayOutText(ParseTextBlocks(DecodeTextFile(file, path), options.verbatim), setup, name);
  }
  auto dib = std::make_shared<const Dib>(ReadBmp(file, path));
  for (const std::string& remark : dib->remarks) {
    if (!options.quiet) fmt::print(stderr, "qnvtool: {}: note: {}\n", path, remark);
  }
  return {LayOutPicture(std::move(dib), options.scale, setup, name)};
}

// The formats of the pictures.
struct Formats {
  PictureFormat picture = PictureFormat::kPng;
  PictureFormat tags = PictureFormat::kPng;
  PictureFormat overlay = PictureFormat::kPng;
};

// Whether a file is to be a PGM file, which is gray.
bool NamesPgm(const std::string& path, const std::string& format) {
  if (!format.empty()) return format == "pgm";
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension == ".pgm";
}

// Chooses the formats. Throws ToolError (usage) when options do not fit together.
Formats CheckOutputs(const PrintOptions& options, const PrintParts& parts) {
  const auto check = [&](const std::string& path, bool gray) {
    const PictureFormat format = FormatOf(path, options.format);
    if (format == PictureFormat::kPng && parts.createPng == nullptr) {
      throw ToolError(ExitCode::kUsage, fmt::format("{}: this program writes .ppm and .pgm files only", path));
    }
    if (!gray && NamesPgm(path, options.format)) {
      throw ToolError(ExitCode::kUsage, fmt::format("{}: PGM files are gray, the picture has colors; use .ppm", path));
    }
    return format;
  };
  Formats formats;
  formats.picture = check(options.out, options.device.isGray());
  for (const std::string& extra : {options.tags, options.overlay}) {
    if (extra.empty()) continue;
    if (options.device.kind != DeviceChoice::Kind::kDual) {
      throw ToolError(ExitCode::kUsage, "--tags and --overlay need --device dual");
    }
    if (extra == "-") throw ToolError(ExitCode::kUsage, "--tags and --overlay write files, not standard output");
  }
  if (!options.tags.empty()) formats.tags = check(options.tags, true);
  if (!options.overlay.empty()) formats.overlay = check(options.overlay, false);
  return formats;
}

// The files that the job reads, as far as the options name them.
std::vector<std::string> InputsOf(const PrintOptions& options) {
  std::vector<std::string> inputs = options.files;
  std::error_code error;
  for (const std::string& font : {options.bodyFont, options.headingFont, options.listingFont}) {
    if (std::filesystem::exists(font, error)) inputs.push_back(font);  // else a name for fontconfig
  }
  if (!options.library.empty()) inputs.push_back(options.library);
  return inputs;
}

std::unique_ptr<PictureWriter> CreatePicture(const PrintParts& parts, const std::string& path, PictureFormat format,
                                             const PictureForm& form) {
  return format == PictureFormat::kPnm ? CreatePnmFile(path, form) : parts.createPng(path, form);
}

Rasteriser ChooseRasteriser(const std::string& library, const PrintParts& parts) {
  if (!library.empty()) return LoadRasteriser(library);
  if (parts.linked == nullptr) throw ToolError(ExitCode::kUsage, "--library is needed: no rasteriser is built in");
  return parts.linked();
}

// The pictures of one page: the page itself, its tag plane, and the overlay of both.
class PageFiles {
 public:
  PageFiles(const DeviceChoice& device, const PrintParts& parts, const Formats& formats, const PageNames& names,
            int width, int height) {
    using Pixels = PictureForm::Pixels;
    using Kind = DeviceChoice::Kind;
    PictureForm form{width, height, device.bandDpi, Pixels::kColor};
    if (device.kind == Kind::kGray) form.pixels = Pixels::kGray;
    if (device.kind == Kind::kScaledGray) form.pixels = Pixels::kGrayOf3;
    picture_ = CreatePicture(parts, names.picture, formats.picture, form);
    if (!names.overlay.empty()) overlay_ = CreatePicture(parts, names.overlay, formats.overlay, form);
    form.pixels = Pixels::kTags;
    if (!names.tags.empty()) tags_ = CreatePicture(parts, names.tags, formats.tags, form);
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
  // Mixes the pixels of images with the color that images have in the tag legend.
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
  const Formats formats = CheckOutputs(options, parts);
  const Rasteriser rasteriser = ChooseRasteriser(options.library, parts);
  FontShelf fonts = parts.openFonts(options);
  const PageSetup setup{MakeSheet(options.paper, options.device.pageDpi, options.marginMm), &fonts, options.points,
                        options.header};
  std::vector<std::string> inputs = InputsOf(options);
  std::vector<Page> pages;
  std::size_t unusable = 0;
  for (const std::string& file : options.files) {
    try {
      for (Page& page : LayOut(file, setup, options, inputs)) pages.push_back(std::move(page));
    } catch (const ToolError& error) {
      if (!options.keepGoing || error.code() != ExitCode::kBadInput) throw;
      fmt::print(stderr, "qnvtool: {}\n", error.what());
      ++unusable;
    }
  }
  const auto pageCount = static_cast<int>(pages.size());
  if (options.out == "-" && formats.picture == PictureFormat::kPng && pageCount > 1) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("-: a PNG stream holds one page, not {}; use --format ppm", pageCount));
  }
  const std::vector<PageNames> names =
      NamePages({options.out, options.tags, options.overlay}, std::max(pageCount, 1), inputs);

  BandPrinter printer(rasteriser, options.device, setup.sheet.width, setup.sheet.height, options.bandRows);
  Progress progress(!options.quiet);
  const InterruptionGuard guard;
  const double bands = static_cast<double>(printer.bands()) * static_cast<double>(pages.size());
  double done = 0;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    PageFiles files(options.device, parts, formats, names[i], printer.width(), printer.height());
    printer.Print(pages[i], [&](const BandView& band) {
      files.Write(band);
      progress.Show(++done / bands, fmt::format("page {} of {}", i + 1, pages.size()));
      ThrowIfInterrupted();
    });
    files.Finish();
  }
  if (unusable != 0) {
    throw ToolError(ExitCode::kBadInput,
                    fmt::format("{} of {} files could not be used", unusable, options.files.size()));
  }
}

}  // namespace qnv::tool
