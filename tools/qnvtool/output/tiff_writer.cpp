// Writes TIFF files through libtiff. The strips are compressed here, by any thread.
#include <tiffio.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "qnvtool/base/output_file.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/reused.h"
#include "qnvtool/output/documents.h"

namespace qnv::tool {
namespace {

using Buffer = std::vector<uint8_t>;

constexpr std::size_t kStripBytes = std::size_t{1} << 20;  // before compression
constexpr int kDeflateLevel = 4;                           // where the user chooses none

// The file as libtiff sees it. Failures are kept, because exceptions must not pass through libtiff.
struct TiffStream {
  std::FILE* file = nullptr;
  int error = 0;
  std::string message;  // of libtiff
};

TiffStream& StreamOf(thandle_t handle) { return *static_cast<TiffStream*>(handle); }

tmsize_t ReadBytes(thandle_t handle, void* bytes, tmsize_t size) {
  return static_cast<tmsize_t>(std::fread(bytes, 1, static_cast<std::size_t>(size), StreamOf(handle).file));
}

tmsize_t WriteBytes(thandle_t handle, void* bytes, tmsize_t size) {
  TiffStream& stream = StreamOf(handle);
  const std::size_t written = std::fwrite(bytes, 1, static_cast<std::size_t>(size), stream.file);
  if (written != static_cast<std::size_t>(size) && stream.error == 0) stream.error = errno;
  return static_cast<tmsize_t>(written);
}

toff_t Seek(thandle_t handle, toff_t offset, int whence) {
  TiffStream& stream = StreamOf(handle);
  if (fseeko(stream.file, static_cast<off_t>(offset), whence) != 0) {
    if (stream.error == 0) stream.error = errno;
    return static_cast<toff_t>(-1);
  }
  return static_cast<toff_t>(ftello(stream.file));
}

toff_t SizeOf(thandle_t handle) {
  const off_t here = ftello(StreamOf(handle).file);
  const toff_t size = Seek(handle, 0, SEEK_END);
  Seek(handle, static_cast<toff_t>(here), SEEK_SET);
  return size;
}

int CloseNothing(thandle_t) { return 0; }

void KeepMessage(thandle_t handle, const char*, const char* format, va_list arguments) {
  if (handle == nullptr || !StreamOf(handle).message.empty()) return;
  std::array<char, 256> text{};
  std::vsnprintf(text.data(), text.size(), format, arguments);
  StreamOf(handle).message = text.data();
}

// Each strip is a zlib stream. In predicted ones each byte but the first ones of a row is its difference from the pixel
// before.
class StripEncoder final : public RowEncoder {
 public:
  explicit StripEncoder(const PictureForm& form)
      : RowEncoder(form),
        unit_(static_cast<int>(std::bit_floor(std::max<std::size_t>(kStripBytes / FileRowSize(form), 1)))) {}

  int unit() const override { return unit_; }
  int rowsAbove() const override { return 0; }
  bool isPredicted() const { return form_.pixels != PictureForm::Pixels::kTags; }

  EncodedRows Encode(const PictureRowsView& view) const override {
    EncodedRows strips;
    for (int row = 0; row < view.rows; row += unit_) {
      strips.push_back({Compress(view, row, std::min(row + unit_, view.rows)), 0, 0});
    }
    return strips;
  }

 private:
  struct Scratch {
    Buffer rows, row, compressed;
  };

  Buffer Compress(const PictureRowsView& view, int begin, int end) const {
    static Reused<Scratch> reused;
    const auto loan = reused.Take();
    auto& [rows, row, compressed] = *loan;
    rows.clear();
    const std::size_t step = form_.pixels == PictureForm::Pixels::kColor ? 3 : 1;  // bytes of a pixel
    for (int i = begin; i < end; ++i) {
      ConvertRow(form_, view.Row(i), row);
      for (std::size_t at = row.size(); isPredicted() && at-- > step;) {
        row[at] = static_cast<uint8_t>(row[at] - row[at - step]);
      }
      rows.insert(rows.end(), row.begin(), row.end());
    }
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    compressed.resize(size);
    const int level = form_.compression == kDefaultCompression ? kDeflateLevel : form_.compression;
    if (compress2(compressed.data(), &size, rows.data(), static_cast<uLong>(rows.size()), level) != Z_OK) {
      throw std::bad_alloc();
    }
    return {compressed.begin(), compressed.begin() + static_cast<std::ptrdiff_t>(size)};
  }

  const int unit_;
};

class TiffDocument final : public PageDocument {
 public:
  TiffDocument(const std::string& path, int pages) : file_(path), pages_(pages) {
    if (!file_.isSeekable()) {
      copied_ = std::tmpfile();  // libtiff goes back to earlier places
      if (copied_ == nullptr) file_.Fail();
    }
    stream_.file = copied_ != nullptr ? copied_ : file_.get();
    static std::once_flag isSet;  // for the whole program
    std::call_once(isSet, [] {
      TIFFSetErrorHandler(nullptr);
      TIFFSetWarningHandler(nullptr);
      TIFFSetErrorHandlerExt(KeepMessage);
    });
    tiff_ = TIFFClientOpen("", "wl", &stream_, ReadBytes, WriteBytes, Seek, CloseNothing, SizeOf, nullptr, nullptr);
    Check(tiff_ != nullptr);
  }

  ~TiffDocument() override {
    if (tiff_ != nullptr) TIFFClose(tiff_);
    if (copied_ != nullptr) std::fclose(copied_);
  }

  std::unique_ptr<PictureWriter> StartPage(const PictureForm& form, const std::vector<PageWord>& words) override;

  void Finish() override {
    TIFFFlush(tiff_);
    CheckStream();
    if (copied_ != nullptr) {
      std::rewind(copied_);
      Buffer buffer(1 << 16);
      while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), copied_)) {
        file_.Write(buffer.data(), size);
      }
    }
    file_.Close();
    // The file is closed, and the destructor must not write to it.
    stream_.file = nullptr;
    TIFFCleanup(tiff_);
    tiff_ = nullptr;
  }

 private:
  friend class TiffPictureWriter;

  void CheckStream() const {
    if (stream_.error != 0) CannotWrite(file_.path(), std::strerror(stream_.error));
    if (!stream_.message.empty()) CannotWrite(file_.path(), stream_.message);
  }

  // Throws ToolError (cannot write) with the reason that libtiff met.
  void Check(bool done) const {
    CheckStream();
    if (!done) CannotWrite(file_.path(), "TIFF file");
  }

  OutputFile file_;
  const int pages_;
  int started_ = 0;
  std::FILE* copied_ = nullptr;  // where the file itself is not seekable
  TiffStream stream_;
  TIFF* tiff_ = nullptr;
};

class TiffPictureWriter final : public PictureWriter {
 public:
  TiffPictureWriter(TiffDocument& document, const PictureForm& form) : document_(document) {
    const bool color = form.pixels == PictureForm::Pixels::kColor;
    const StripEncoder encoder(form);
    TIFF* const tiff = document.tiff_;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(form.width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(form.height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, color ? 3 : 1);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, encoder.isPredicted() ? PREDICTOR_HORIZONTAL : PREDICTOR_NONE);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(encoder.unit()));
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, static_cast<double>(form.dpi));
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, static_cast<double>(form.dpi));
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE);
    TIFFSetField(tiff, TIFFTAG_PAGENUMBER, document.started_++, document.pages_);
    if (form.pixels == PictureForm::Pixels::kTags) {
      SetPalette();
    } else {
      TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, color ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    }
  }

  void Write(const EncodedRows& rows) override {
    const PhaseTimer timer(Phase::kWriting);
    for (EncodedPiece strip : rows) {  // libtiff takes bytes that may be changed
      const auto size = static_cast<tmsize_t>(strip.bytes.size());
      document_.Check(TIFFWriteRawStrip(document_.tiff_, strips_++, strip.bytes.data(), size) == size);
    }
  }

  void Finish() override {
    const PhaseTimer timer(Phase::kWriting);
    document_.Check(TIFFWriteDirectory(document_.tiff_) == 1);
  }

 private:
  // Index = tag value, as in PNG files.
  void SetPalette() {
    std::array<std::array<uint16_t, 256>, 3> map{};
    const auto set = [&](std::size_t index, uint32_t rgb) {
      for (std::size_t i = 0; i < 3; ++i) map[i][index] = static_cast<uint16_t>((rgb >> (16 - 8 * i) & 0xFF) * 257);
    };
    set(0, kTagTextCell);
    set(1, kTagGraphics);
    set(3, kTagImage);
    TIFFSetField(document_.tiff_, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE);
    TIFFSetField(document_.tiff_, TIFFTAG_COLORMAP, map[0].data(), map[1].data(), map[2].data());
  }

  TiffDocument& document_;
  uint32_t strips_ = 0;  // written
};

std::unique_ptr<PictureWriter> TiffDocument::StartPage(const PictureForm& form, const std::vector<PageWord>&) {
  return std::make_unique<TiffPictureWriter>(*this, form);
}

}  // namespace

std::unique_ptr<PageDocument> CreateTiffFile(const std::string& path, int pages) {
  return std::make_unique<TiffDocument>(path, pages);
}

std::unique_ptr<RowEncoder> CreateStripEncoder(const PictureForm& form) { return std::make_unique<StripEncoder>(form); }

}  // namespace qnv::tool
