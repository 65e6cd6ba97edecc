// Writes the raster streams that printers and printing systems take, through libcups.
#include <cups/cups.h>
#include <cups/pwg.h>
#include <cups/raster.h>

#include <cmath>
#include <cstring>
#include <exception>
#include <vector>

#include "qnvtool/base/output_file.h"
#include "qnvtool/output/documents.h"

namespace qnv::tool {
namespace {

cups_mode_t ModeOf(PictureFormat format) {
  return format == PictureFormat::kPwg   ? CUPS_RASTER_WRITE_PWG
         : format == PictureFormat::kUrf ? CUPS_RASTER_WRITE_APPLE
                                         : CUPS_RASTER_WRITE_COMPRESSED;
}

class RasterDocument final : public PageDocument {
 public:
  RasterDocument(PictureFormat format, const std::string& path, int pages) : file_(path), pages_(pages) {
    raster_ = cupsRasterOpenIO(Write, this, ModeOf(format));
    if (raster_ == nullptr) CannotWrite(file_.path(), "no memory");
  }

  ~RasterDocument() override { cupsRasterClose(raster_); }

  std::unique_ptr<PictureWriter> StartPage(const PictureForm& form, const std::vector<PageWord>& words) override;

  void Finish() override {
    Check(true);
    file_.Close();
  }

 private:
  friend class RasterPicture;

  // Failures are kept, because exceptions must not pass through libcups.
  static ssize_t Write(void* context, unsigned char* bytes, std::size_t size) {
    auto* const self = static_cast<RasterDocument*>(context);
    if (self->failure_ != nullptr) return -1;
    try {
      self->file_.Write(bytes, size);
    } catch (...) {
      self->failure_ = std::current_exception();
      return -1;
    }
    return static_cast<ssize_t>(size);
  }

  void Check(bool done) const {
    if (failure_ != nullptr) std::rethrow_exception(failure_);
    if (!done) CannotWrite(file_.path(), cupsRasterErrorString());
  }

  OutputFile file_;
  const int pages_;
  cups_raster_t* raster_ = nullptr;
  std::exception_ptr failure_;
};

// The header of a page. libcups names the size of the paper and fills in what the format demands; the size in pixels is
// that of the picture exactly.
cups_page_header2_t HeaderOf(const PictureForm& form, int pages) {
  const bool color = form.pixels == PictureForm::Pixels::kColor;
  const auto hundredths = [&](int pixels) { return static_cast<int>(std::lround(pixels * 2540.0 / form.dpi)); };
  pwg_media_t* const media = pwgMediaForSize(hundredths(form.width), hundredths(form.height));
  cups_page_header2_t header;
  std::memset(&header, 0, sizeof header);
  if (media == nullptr || cupsRasterInitPWGHeader(&header, media, color ? "srgb_8" : "sgray_8", form.dpi, form.dpi,
                                                  "one-sided", nullptr) == 0) {
    header = {};
    return header;
  }
  header.cupsWidth = static_cast<unsigned>(form.width);
  header.cupsHeight = static_cast<unsigned>(form.height);
  header.cupsBytesPerLine = header.cupsWidth * (color ? 3 : 1);
  header.NumCopies = 1;
  header.cupsInteger[CUPS_RASTER_PWG_TotalPageCount] = static_cast<unsigned>(pages);
  header.cupsInteger[CUPS_RASTER_PWG_ImageBoxRight] = header.cupsWidth;
  header.cupsInteger[CUPS_RASTER_PWG_ImageBoxBottom] = header.cupsHeight;
  for (int i = 0; i < 2; ++i) header.cupsImagingBBox[i + 2] = header.cupsPageSize[i];
  return header;
}

class RasterPicture final : public PictureWriter {
 public:
  RasterPicture(RasterDocument& document, const PictureForm& form)
      : document_(document), rowSize_(FileRowSize(form)), row_(rowSize_) {
    cups_page_header2_t header = HeaderOf(form, document.pages_);
    if (header.cupsWidth == 0) CannotWrite(document_.file_.path(), "the page has no size that raster files can name");
    document_.Check(cupsRasterWriteHeader2(document_.raster_, &header) != 0);
  }

  void Write(const EncodedRows& rows) override {
    for (const EncodedPiece& piece : rows) {
      for (std::size_t at = 0; at < piece.bytes.size(); at += rowSize_) {
        // libcups takes rows that may be changed.
        std::memcpy(row_.data(), piece.bytes.data() + at, rowSize_);
        const auto size = static_cast<unsigned>(rowSize_);
        document_.Check(cupsRasterWritePixels(document_.raster_, row_.data(), size) == size);
      }
    }
  }

  void Finish() override {}

 private:
  RasterDocument& document_;
  const std::size_t rowSize_;
  std::vector<uint8_t> row_;
};

std::unique_ptr<PictureWriter> RasterDocument::StartPage(const PictureForm& form, const std::vector<PageWord>&) {
  return std::make_unique<RasterPicture>(*this, form);
}

}  // namespace

std::unique_ptr<PageDocument> CreateRasterFile(PictureFormat format, const std::string& path, int pages) {
  return std::make_unique<RasterDocument>(format, path, pages);
}

}  // namespace qnv::tool
