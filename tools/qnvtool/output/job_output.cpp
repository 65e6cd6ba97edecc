// Chooses the formats of a job's files, and passes each band on to those of the page.
#include "qnvtool/output/job_output.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

// Whether a file is to be a PGM file, which is gray.
bool NamesPgm(const std::string& path, const std::string& format) {
  if (!format.empty()) return format == "pgm";
  std::string extension = FileNameOf(PathOf(path).extension());
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension == ".pgm";
}

// The names of the formats that a program writes: "PPM, PGM, PNG".
std::string WrittenFormats(const OutputParts& parts) {
  std::string names = "PPM, PGM";
  for (const auto& [format, name] : {std::pair{PictureFormat::kPng, "PNG"}, std::pair{PictureFormat::kTiff, "TIFF"},
                                     std::pair{PictureFormat::kPdf, "PDF"}}) {
    if (parts.CanWrite(format)) names += fmt::format(", {}", name);
  }
  return names;
}

}  // namespace

bool OutputParts::CanWrite(PictureFormat format) const {
  if (format == PictureFormat::kPnm) return true;
  if (format == PictureFormat::kPng) return createPng != nullptr;
  return createDocument != nullptr &&
         (documents.empty() || std::find(documents.begin(), documents.end(), format) != documents.end());
}

JobOutput::JobOutput(const PageNames& wanted, const std::string& format, const DeviceChoice& device,
                     const OutputParts& parts, int compression, Workers& workers)
    : device_(device), parts_(parts), compression_(compression), workers_(workers) {
  Choose(picture_, wanted.picture, format, device.isGray());
  for (const std::string& extra : {wanted.tags, wanted.overlay}) {
    if (extra.empty()) continue;
    if (device.kind != DeviceChoice::Kind::kDual) {
      throw ToolError(ExitCode::kUsage, "--tags and --overlay need --device dual");
    }
    if (extra == "-") throw ToolError(ExitCode::kUsage, "--tags and --overlay write files, not standard output");
  }
  if (!wanted.tags.empty()) Choose(tags_, wanted.tags, format, true);
  if (!wanted.overlay.empty()) Choose(overlay_, wanted.overlay, format, false);
  bool hasLevels = false;
  for (const Kind* const kind : {&picture_, &tags_, &overlay_}) {
    hasLevels = hasLevels || (!kind->wanted.empty() && HasCompressionLevels(kind->format));
  }
  if (compression != kDefaultCompression && !hasLevels) {
    throw ToolError(ExitCode::kUsage, picture_.format == PictureFormat::kPnm
                                          ? "--compression: PPM and PGM files are not compressed; PNG, TIFF and PDF are"
                                          : "--compression: raster files have one way of compression, without levels; "
                                            "PNG, TIFF and PDF files have them");
  }
}

JobOutput::~JobOutput() = default;

void JobOutput::Choose(Kind& kind, const std::string& path, const std::string& format, bool gray) const {
  kind.wanted = path;
  kind.format = FormatOf(path, format);
  if (!parts_.CanWrite(kind.format)) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("{}: this build does not write that format, only {}", path, WrittenFormats(parts_)));
  }
  if (!gray && NamesPgm(path, format)) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: PGM files are gray, the picture has colors; use .ppm", path));
  }
}

void JobOutput::Name(int pages) {
  if (picture_.wanted == "-" && picture_.format == PictureFormat::kPng && pages > 1) {
    throw ToolError(ExitCode::kUsage, fmt::format("-: a PNG stream holds one page, not {}; use --format ppm", pages));
  }
  names_ = AllPageNames({picture_.wanted, tags_.wanted, overlay_.wanted}, std::max(pages, 1),
                        {HoldsAllPages(picture_.format), HoldsAllPages(tags_.format), HoldsAllPages(overlay_.format)});
}

void JobOutput::Start(Kind& kind, const std::string& path, const PictureForm& form,
                      const std::vector<PageWord>& words) const {
  if (path.empty()) return;
  if (kind.format == PictureFormat::kPnm) {
    kind.picture = CreatePnmFile(path, form);
  } else if (kind.format == PictureFormat::kPng) {
    kind.picture = parts_.createPng(workers_, path, form);
  } else {
    if (kind.document == nullptr) {
      kind.document = parts_.createDocument(kind.format, path, static_cast<int>(names_.size()), workers_);
    }
    kind.picture = kind.document->StartPage(form, words);
  }
}

void JobOutput::StartPage(const Page& page, int width, int height) {
  const PhaseTimer timer(Phase::kEncoding);
  using Pixels = PictureForm::Pixels;
  const PageNames& names = names_.at(next_++);
  PictureForm form{width, height, device_.bandDpi, Pixels::kColor, compression_};
  if (device_.kind == DeviceChoice::Kind::kGray) form.pixels = Pixels::kGray;
  if (device_.kind == DeviceChoice::Kind::kScaledGray) form.pixels = Pixels::kGrayOf3;
  std::vector<PageWord> words;
  if (picture_.format == PictureFormat::kPdf) {
    words = WordsOf(page);
    for (PageWord& word : words) {
      for (int* const value : {&word.left, &word.baseline, &word.width, &word.ascent, &word.descent}) {
        *value = ScaleRounded(*value, device_.bandDpi, device_.pageDpi);
      }
    }
  }
  Start(picture_, names.picture, form, words);
  Start(overlay_, names.overlay, form, {});
  form.pixels = Pixels::kTags;
  Start(tags_, names.tags, form, {});
  width_ = static_cast<std::size_t>(width);
}

void JobOutput::Write(const BandView& band) {
  const PhaseTimer timer(Phase::kEncoding);
  picture_.picture->WriteRows(band.pixels, band.stride, band.rows);
  if (tags_.picture != nullptr) tags_.picture->WriteRows(band.tags, band.tagStride, band.rows);
  if (overlay_.picture != nullptr) WriteOverlay(band);
}

// Mixes the pixels of images with the color that images have in the tag legend.
void JobOutput::WriteOverlay(const BandView& band) {
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
    overlay_.picture->WriteRows(tinted_.data(), tinted_.size(), 1);
  }
}

void JobOutput::FinishPage() {
  const PhaseTimer timer(Phase::kEncoding);
  for (Kind* const kind : {&picture_, &tags_, &overlay_}) {
    if (kind->picture != nullptr) kind->picture->Finish();
    kind->picture.reset();
  }
}

void JobOutput::Finish() {
  const PhaseTimer timer(Phase::kEncoding);
  for (Kind* const kind : {&picture_, &tags_, &overlay_}) {
    if (kind->document != nullptr) kind->document->Finish();
  }
}

}  // namespace qnv::tool
