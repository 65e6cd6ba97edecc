// Prints a job: checks the options, lays out all files, then paints page after page.
#include "qnvtool/job/print_job.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <set>
#include <utility>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/progress.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/job/document.h"
#include "qnvtool/layout/page_setup.h"
#include "qnvtool/output/output_names.h"
#include "qnvtool/paint/band_printer.h"
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {
namespace {

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

// The pages of all files, one after the other. Those of a short job are kept from the first pass.
class JobPages {
 public:
  explicit JobPages(DocumentOpener& opener) : opener_(opener) {}

  // Counts the pages of a file. Throws ToolError.
  void Add(const std::string& file) {
    const std::unique_ptr<Document> document = opener_.Open(file);
    Source source{file, 0, {}};
    Page page;
    while (document->Next(page)) {
      ThrowIfInterrupted();
      if (source.count++ == static_cast<int>(source.kept.size()) && kept_ < kMaxKept) {
        source.kept.push_back(std::move(page));
        ++kept_;
      }
    }
    if (source.count != static_cast<int>(source.kept.size())) {
      kept_ -= source.kept.size();
      source.kept.clear();
    }
    count_ += source.count;
    sources_.push_back(std::move(source));
  }

  int count() const { return count_; }

  // The next page; false behind the last. Throws ToolError.
  bool Next(Page& page) {
    for (; at_ < sources_.size(); ++at_, done_ = 0) {
      Source& source = sources_[at_];
      if (done_ == source.count) continue;
      if (source.count == static_cast<int>(source.kept.size())) {
        page = std::move(source.kept[static_cast<std::size_t>(done_++)]);
        return true;
      }
      if (done_ == 0) document_ = opener_.Open(source.file);
      if (!document_->Next(page)) {
        throw ToolError(ExitCode::kBadInput, fmt::format("{}: became shorter while it was printed", source.file));
      }
      if (++done_ == source.count) document_ = nullptr;
      return true;
    }
    return false;
  }

 private:
  static constexpr std::size_t kMaxKept = 64;

  struct Source {
    std::string file;
    int count = 0;
    std::vector<Page> kept;  // all or none
  };

  DocumentOpener& opener_;
  std::vector<Source> sources_;
  std::size_t kept_ = 0;
  int count_ = 0;
  std::size_t at_ = 0;  // source
  int done_ = 0;        // pages of it
  std::unique_ptr<Document> document_;
};

}  // namespace

void Print(const PrintOptions& options, const PrintParts& parts) {
  const Formats formats = CheckOutputs(options, parts);
  CheckEncoding(options.text);
  const Rasteriser rasteriser = ChooseRasteriser(options.library, parts);
  FontShelf fonts = parts.openFonts(options);
  const PageSetup setup{MakeSheet(options.paper, options.device.pageDpi, options.marginMm), &fonts, options.points,
                        options.header};
  std::set<std::string> noted;
  DocumentOpener opener(options, parts.decoders, setup, [&](const std::string& name, const std::string& remark) {
    const std::string line = fmt::format("qnvtool: {}: note: {}\n", name, remark);
    if (!options.quiet && noted.insert(line).second) std::fputs(line.c_str(), stderr);
  });
  const InterruptionGuard guard;
  JobPages pages(opener);
  std::size_t unusable = 0;
  for (const std::string& file : options.files) {
    try {
      pages.Add(file);
    } catch (const ToolError& error) {
      if (!options.keepGoing || error.code() != ExitCode::kBadInput) throw;
      fmt::print(stderr, "qnvtool: {}\n", error.what());
      ++unusable;
    }
  }
  std::vector<std::string> inputs = InputsOf(options);
  inputs.insert(inputs.end(), opener.references().begin(), opener.references().end());
  const int pageCount = pages.count();
  if (options.out == "-" && formats.picture == PictureFormat::kPng && pageCount > 1) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("-: a PNG stream holds one page, not {}; use --format ppm", pageCount));
  }
  const std::vector<PageNames> names =
      NamePages({options.out, options.tags, options.overlay}, std::max(pageCount, 1), inputs);

  BandPrinter printer(rasteriser, options.device, setup.sheet.width, setup.sheet.height, options.bandRows);
  Progress progress(!options.quiet);
  const double bands = static_cast<double>(printer.bands()) * pageCount;
  double done = 0;
  Page page;
  for (std::size_t i = 0; pages.Next(page); ++i) {
    PageFiles files(options.device, parts, formats, names[i], printer.width(), printer.height());
    printer.Print(page, [&](const BandView& band) {
      files.Write(band);
      progress.Show(++done / bands, fmt::format("page {} of {}", i + 1, pageCount));
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
