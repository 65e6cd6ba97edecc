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

BandEncoder::BandEncoder(std::unique_ptr<RowEncoder> picture, std::unique_ptr<RowEncoder> tags,
                         std::unique_ptr<RowEncoder> overlay)
    : picture_(std::move(picture)), tags_(std::move(tags)), overlay_(std::move(overlay)) {
  for (const auto* const encoder : {&picture_, &tags_, &overlay_}) {
    if (*encoder == nullptr) continue;
    unit_ = std::max(unit_, (*encoder)->unit());
    rowsAbove_ = std::max(rowsAbove_, (*encoder)->rowsAbove());
  }
}

EncodedBand BandEncoder::Encode(const BandView& band) const {
  const PhaseTimer timer(Phase::kEncoding);
  EncodedBand result;
  result.picture = picture_->Encode({band.pixels, band.stride, band.top, band.rows});
  if (tags_ != nullptr) result.tags = tags_->Encode({band.tags, band.tagStride, band.top, band.rows});
  if (overlay_ != nullptr) result.overlay = EncodeOverlay(band);
  return result;
}

// Mixes the pixels of images with the color that images have in the tag legend.
EncodedRows BandEncoder::EncodeOverlay(const BandView& band) const {
  const PictureForm& form = overlay_->form();
  const auto width = static_cast<std::size_t>(form.width);
  const std::size_t stride = DeviceRowSize(form);
  const int above = std::min(overlay_->rowsAbove(), band.top);
  std::vector<uint8_t> tinted;
  for (int i = -above; i < band.rows; ++i) {
    const uint8_t* const pixels = band.pixels + static_cast<std::ptrdiff_t>(band.stride) * i;
    const uint8_t* const tags = band.tags + static_cast<std::ptrdiff_t>(band.tagStride) * i;
    const std::size_t row = tinted.size();
    tinted.insert(tinted.end(), pixels, pixels + stride);
    for (std::size_t x = 0; x < width; ++x) {
      if (tags[x] != QNV_TAG_IMAGE) continue;
      for (std::size_t byte = 0; byte < 3; ++byte) {
        uint8_t& value = tinted[row + x * 3 + byte];
        value = static_cast<uint8_t>((value + (kTagImage >> 8 * byte & 0xFF) + 1) / 2);
      }
    }
  }
  return overlay_->Encode({tinted.data() + stride * static_cast<std::size_t>(above), stride, band.top, band.rows});
}

JobOutput::JobOutput(const PageNames& wanted, const std::string& format, const DeviceChoice& device,
                     const OutputParts& parts, int compression)
    : device_(device), parts_(parts), compression_(compression) {
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
    kind.picture = parts_.createPng(path, form);
  } else {
    if (kind.document == nullptr) {
      kind.document = parts_.createDocument(kind.format, path, static_cast<int>(names_.size()));
    }
    kind.picture = kind.document->StartPage(form, words);
  }
}

PictureForm JobOutput::FormOf(const PictureSize& size) const {
  using Pixels = PictureForm::Pixels;
  PictureForm form{size.width, size.height, device_.bandDpi, Pixels::kColor, compression_};
  if (device_.kind == DeviceChoice::Kind::kGray) form.pixels = Pixels::kGray;
  if (device_.kind == DeviceChoice::Kind::kScaledGray) form.pixels = Pixels::kGrayOf3;
  return form;
}

std::shared_ptr<const BandEncoder> JobOutput::EncoderFor(const PictureSize& size) const {
  const auto create = [&](const Kind& kind, const PictureForm& form) {
    if (kind.wanted.empty()) return std::unique_ptr<RowEncoder>();
    return kind.format == PictureFormat::kPnm ? CreatePlainEncoder(form) : parts_.createEncoder(kind.format, form);
  };
  const PictureForm form = FormOf(size);
  PictureForm tags = form;
  tags.pixels = PictureForm::Pixels::kTags;
  return std::make_shared<const BandEncoder>(create(picture_, form), create(tags_, tags), create(overlay_, form));
}

void JobOutput::StartPage(const Page& page, const PictureSize& size) {
  const PhaseTimer timer(Phase::kEncoding);
  const PageNames& names = names_.at(next_++);
  PictureForm form = FormOf(size);
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
  form.pixels = PictureForm::Pixels::kTags;
  Start(tags_, names.tags, form, {});
}

void JobOutput::Write(const EncodedBand& band) {
  const PhaseTimer timer(Phase::kEncoding);
  picture_.picture->Write(band.picture);
  if (tags_.picture != nullptr) tags_.picture->Write(band.tags);
  if (overlay_.picture != nullptr) overlay_.picture->Write(band.overlay);
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
