// qnvfilter: a filter of CUPS. The pages of a document go through the rasteriser band by band, as images at their own
// resolution, and come out as the raster that the device takes.
//   qnvfilter JOB USER TITLE COPIES OPTIONS [FILE]
#include <cups/cups.h>
#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "qnvfilter/page_source.h"
#include "qnvtool/base/file_bytes.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/output/documents.h"
#include "qnvtool/paint/rasteriser.h"

// The printer description is read by the functions that libcups has for it, which it calls deprecated for its own
// reasons.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>

namespace qnv::filter {
namespace {

using tool::Bytes;
using tool::ExitCode;
using tool::ToolError;

constexpr int kBandRows = 256;
constexpr int kDefaultDpi = 300;

// The options of the job, with the defaults of the printer description that the environment names.
class JobOptions {
 public:
  explicit JobOptions(const char* text) {
    count_ = cupsParseOptions(text, 0, &options_);
    const char* const path = std::getenv("PPD");
    if (path == nullptr) return;
    description_ = ppdOpenFile(path);
    if (description_ == nullptr) return;
    ppdMarkDefaults(description_);
    cupsMarkOptions(description_, count_, options_);
  }
  ~JobOptions() {
    if (description_ != nullptr) ppdClose(description_);
    cupsFreeOptions(count_, options_);
  }
  JobOptions(const JobOptions&) = delete;
  JobOptions& operator=(const JobOptions&) = delete;

  // The value of an option; empty when neither the job nor the description has it.
  std::string Get(const char* name) const {
    if (description_ != nullptr) {
      const ppd_choice_t* const choice = ppdFindMarkedChoice(description_, name);
      if (choice != nullptr) return choice->choice;
    }
    const char* const value = cupsGetOption(name, count_, options_);
    return value != nullptr ? value : "";
  }

 private:
  int count_ = 0;
  cups_option_t* options_ = nullptr;
  ppd_file_t* description_ = nullptr;
};

PdfForm PdfFormOf(const JobOptions& options) {
  PdfForm form;
  form.dpi = kDefaultDpi;
  const std::string resolution = options.Get("Resolution");
  if (!resolution.empty()) {
    char* end = nullptr;
    const long dpi = std::strtol(resolution.c_str(), &end, 10);
    if (std::string(end) != "dpi" || dpi < 20 || dpi > 4800) {
      throw ToolError(ExitCode::kUsage, fmt::format("Resolution={}: use 20dpi to 4800dpi", resolution));
    }
    form.dpi = static_cast<int>(dpi);
  }
  form.gray = options.Get("ColorModel") == "Gray" || options.Get("print-color-mode") == "monochrome";
  return form;
}

// The raster that the queue wants; PWG raster unless it says otherwise.
tool::PictureFormat FormatOfQueue() {
  const char* const type = std::getenv("FINAL_CONTENT_TYPE");
  const std::string wanted = type != nullptr ? type : "";
  const auto endsIn = [&](const std::string& end) {
    return wanted.size() >= end.size() && wanted.compare(wanted.size() - end.size(), end.size(), end) == 0;
  };
  if (endsIn("image/urf")) return tool::PictureFormat::kUrf;
  if (endsIn("application/vnd.cups-raster")) return tool::PictureFormat::kCups;
  return tool::PictureFormat::kPwg;
}

// A bitmap of some rows of a page, the last one first, as the library takes it.
class RowsBitmap {
 public:
  explicit RowsBitmap(const PageForm& form) : form_(form) {
    const std::size_t bytes = form.gray ? 1 : 3;
    stride_ = (static_cast<std::size_t>(form.width) * bytes + 3) / 4 * 4;
    tool::AppendU32(info_, 40);
    tool::AppendU32(info_, static_cast<uint32_t>(form.width));
    tool::AppendU32(info_, 0);  // rows, set for each band
    tool::AppendU16(info_, 1);
    tool::AppendU16(info_, static_cast<uint32_t>(bytes * 8));
    for (int i = 0; i < 6; ++i) tool::AppendU32(info_, 0);  // uncompressed
    for (uint32_t level = 0; form.gray && level < 256; ++level) tool::AppendU32(info_, level * 0x010101);
    row_.resize(static_cast<std::size_t>(form.width) * bytes);
  }

  void Read(PageSource& source, int rows) {
    bits_.assign(stride_ * static_cast<std::size_t>(rows), 0);
    constexpr std::size_t kHeightField = 8;
    for (std::size_t i = 0; i < 4; ++i) info_[kHeightField + i] = static_cast<uint8_t>(rows >> 8 * i);
    for (int row = rows - 1; row >= 0; --row) {
      source.ReadRow(row_.data());
      uint8_t* const target = bits_.data() + static_cast<std::size_t>(row) * stride_;
      if (form_.gray) {
        std::memcpy(target, row_.data(), row_.size());
        continue;
      }
      for (std::size_t i = 0; i < row_.size(); i += 3) {
        target[i] = row_[i + 2];
        target[i + 1] = row_[i + 1];
        target[i + 2] = row_[i];
      }
    }
  }

  const Bytes& bits() const { return bits_; }
  const Bytes& info() const { return info_; }

 private:
  const PageForm form_;
  std::size_t stride_ = 0;
  Bytes info_;
  Bytes bits_;
  std::vector<uint8_t> row_;
};

// The device of a page, whose band moves down.
class PageDevice {
 public:
  PageDevice(const tool::Rasteriser& rasteriser, const PageForm& form, int page)
      : rasteriser_(rasteriser), form_(form), page_(page) {
    stride_ = (static_cast<std::size_t>(form.width) * (form.gray ? 1 : 3) + 3) / 4 * 4;
    band_.resize(stride_ * kBandRows);
    DeviceDescription description{};
    description.kind = QNV_KIND_RASTER;
    description.bitsPerPixel = form.gray ? 8 : 24;
    description.resolutionA = description.resolutionB = static_cast<uint16_t>(form.dpi);
    description.width = static_cast<uint32_t>(form.width);
    description.height = kBandRows;
    const BandRect rect{0, 0, form.width, kBandRows};
    constexpr std::size_t kMaxStride = 65535;  // image transfers count a band row in 16 bits
    if (stride_ <= kMaxStride) handle_ = rasteriser.enable(&description, &rect, band_.data(), nullptr);
    if (handle_ == nullptr) Refused(fmt::format("a page of {} x {} pixels", form.width, form.height));
  }
  ~PageDevice() {
    if (handle_ != nullptr) rasteriser_.disable(handle_);
  }
  PageDevice(const PageDevice&) = delete;
  PageDevice& operator=(const PageDevice&) = delete;

  // Paints a bitmap of as many rows into the band at page row `top`.
  void Paint(const RowsBitmap& bitmap, int top, int rows) {
    const BandRect rect{0, top, form_.width, top + kBandRows};
    Control(QNV_SET_BAND_RECT, &rect);
    Control(QNV_CLEAR_BAND, nullptr);
    DRAWMODE mode;
    std::memset(&mode, 0, sizeof mode);
    mode.Rop2 = R2_COPYPEN;
    mode.bkMode = TRANSPARENT;
    const BandRect clip{0, 0, form_.width, form_.height};
    const uint32_t result = rasteriser_.setDIBitsToDevice(handle_, 0, top, 0, static_cast<uint32_t>(rows), &clip, &mode,
                                                          bitmap.bits().data(), bitmap.info().data(), nullptr);
    if ((result & 0xFFFF) != 1) Refused("an image");
  }

  const uint8_t* band() const { return band_.data(); }
  std::size_t stride() const { return stride_; }

 private:
  [[noreturn]] void Refused(const std::string& what) const {
    throw ToolError(ExitCode::kLibrary, fmt::format("page {}: the library refuses {}", page_, what));
  }

  void Control(uint32_t code, const void* data) const {
    if ((rasteriser_.control(handle_, code, data, nullptr) & 0xFFFF) != 1) Refused(fmt::format("escape {:#x}", code));
  }

  const tool::Rasteriser& rasteriser_;
  const PageForm form_;
  const int page_;
  std::size_t stride_ = 0;
  std::vector<uint8_t> band_;
  DeviceHandle* handle_ = nullptr;
};

// Paints a page.
void PrintPage(const tool::Rasteriser& rasteriser, PageSource& source, const PageForm& form, int page,
               tool::PageDocument& output) {
  using Pixels = tool::PictureForm::Pixels;
  const tool::PictureForm pictureForm{form.width, form.height, form.dpi, form.gray ? Pixels::kGray : Pixels::kColor};
  const auto picture = output.StartPage(pictureForm, {});
  const auto encoder = tool::CreatePlainEncoder(pictureForm);
  PageDevice device(rasteriser, form, page);
  RowsBitmap bitmap(form);
  for (int top = 0; top < form.height; top += kBandRows) {
    const int rows = std::min(kBandRows, form.height - top);
    bitmap.Read(source, rows);
    device.Paint(bitmap, top, rows);
    picture->Write(encoder->Encode({device.band(), device.stride(), top, rows}));
  }
  picture->Finish();
  fmt::print(stderr, "PAGE: {} 1\n", page);
}

// Filters a document. Only the first filter of a queue gets a file by name; copies of what others hand on are their
// work, and so are those of PDF documents, which pdftopdf repeats.
void Filter(const std::string& path, const JobOptions& options, int copies) {
  const PdfForm pdf = PdfFormOf(options);
  const tool::Rasteriser rasteriser = tool::LinkedRasteriser();
  std::unique_ptr<PageSource> source = OpenPages(path, pdf);
  if (path.empty() || !source->isRaster()) copies = 1;
  constexpr int kUnknown = 0;  // pages
  const auto output = tool::CreateRasterFile(FormatOfQueue(), "-", kUnknown);
  int page = 0;
  for (int copy = 1; copy <= copies; ++copy) {
    if (copy > 1) source = OpenPages(path, pdf);
    PageForm form;
    while (source->NextPage(form)) PrintPage(rasteriser, *source, form, ++page, *output);
  }
  output->Finish();
}

}  // namespace
}  // namespace qnv::filter

int main(int argc, char** argv) {
  if (argc != 6 && argc != 7) {
    std::fputs("ERROR: usage: qnvfilter JOB USER TITLE COPIES OPTIONS [FILE]\n", stderr);
    return 1;
  }
  try {
    const qnv::filter::JobOptions options(argv[5]);
    qnv::filter::Filter(argc == 7 ? argv[6] : "", options, std::max(1, std::atoi(argv[4])));
  } catch (const std::exception& error) {
    fmt::print(stderr, "ERROR: {}\n", error.what());
    return 1;
  }
  return 0;
}
