// Drives libtiff, directory by directory, and for each picture strip by strip or tile by tile.
#include "qnvtool/input/tiff_reader.h"

#include <fmt/core.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/decoded_picture.h"
#include "qnvtool/input/exif.h"
#include "qnvtool/input/orientation.h"

namespace qnv::tool {
namespace {

constexpr int kMaxPages = 65535;
constexpr tmsize_t kMaxAllocation = tmsize_t{128} << 20;

// libtiff at work on one file.
class TiffSession {
 public:
  // inMemory: libtiff gets the whole file at once.
  explicit TiffSession(const InputFile& file, bool inMemory = false) : file_(file) {
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMaxAllocation);
    TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options, OnWarning, nullptr);
    tiff_ = TIFFClientOpenExt(file.name().c_str(), inMemory ? "r" : "rm", this, Read, Write, Seek, Close, Size, Map,
                              Unmap, options);
    TIFFOpenOptionsFree(options);
    if (tiff_ == nullptr) Fail();
  }
  ~TiffSession() { TIFFClose(tiff_); }
  TiffSession(const TiffSession&) = delete;
  TiffSession& operator=(const TiffSession&) = delete;

  TIFF* get() const { return tiff_; }
  const std::string& error() const { return error_; }

  [[noreturn]] void Fail() const {
    throw ToolError(ExitCode::kBadInput, fmt::format("{}: is a damaged TIFF picture: {}", file_.name(),
                                                     error_.empty() ? "it cannot be read" : error_));
  }

  // A field that is a number; `missing` where there is none.
  template <class Number>
  Number Field(uint32_t tag, Number missing) const {
    Number value = missing;
    return TIFFGetFieldDefaulted(tiff_, tag, &value) == 1 ? value : missing;
  }

 private:
  static int OnError(TIFF*, void* user, const char*, const char* format, va_list arguments) {
    auto* const session = static_cast<TiffSession*>(user);
    char text[200];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (session->error_.empty()) session->error_ = text;
    return 1;
  }
  static int OnWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

  // Exceptions must not pass through libtiff.
  static tmsize_t Read(thandle_t handle, void* to, tmsize_t count) {
    auto* const session = static_cast<TiffSession*>(handle);
    try {
      const std::size_t got = session->file_.Read(session->at_, to, static_cast<std::size_t>(count));
      session->at_ += got;
      return static_cast<tmsize_t>(got);
    } catch (const std::exception&) {
      return -1;
    }
  }
  static tmsize_t Write(thandle_t, void*, tmsize_t) { return -1; }
  static toff_t Seek(thandle_t handle, toff_t offset, int whence) {
    auto* const session = static_cast<TiffSession*>(handle);
    session->at_ = whence == SEEK_SET ? offset : offset + (whence == SEEK_CUR ? session->at_ : session->file_.size());
    return session->at_;
  }
  static int Close(thandle_t) { return 0; }
  static toff_t Size(thandle_t handle) { return static_cast<TiffSession*>(handle)->file_.size(); }

  static int Map(thandle_t handle, void** base, toff_t* size) {
    auto* const session = static_cast<TiffSession*>(handle);
    try {
      session->whole_ = session->file_.Head(static_cast<std::size_t>(session->file_.size()));
    } catch (const std::exception&) {
      return 0;
    }
    *base = session->whole_.data();
    *size = session->whole_.size();
    return 1;
  }
  static void Unmap(thandle_t, void*, toff_t) {}

  const InputFile& file_;
  Bytes whole_;
  TIFF* tiff_ = nullptr;
  uint64_t at_ = 0;
  std::string error_;  // the first one
};

class TiffPicture final : public TurnedPicture {
 public:
  TiffPicture(const Input& input, const NoteSink& notes, uint64_t directory)
      : TurnedPicture(input, notes), directory_(directory) {
    const TiffSession session(file());
    TIFF* const tiff = session.get();
    Select(session);
    const auto width = session.Field<uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
    const auto height = session.Field<uint32_t>(TIFFTAG_IMAGELENGTH, 0);
    CheckPictureSize(name(), width, height);
    fileWidth_ = static_cast<int>(width);
    fileHeight_ = static_cast<int>(height);
    orientation_ = OrientationOf(session.Field<uint16_t>(TIFFTAG_ORIENTATION, 1));
    ChooseForm(session);
    CheckPieces(session);
    inMemory_ = NeedsWholeFile(session);
    const auto unit = static_cast<int>(session.Field<uint16_t>(TIFFTAG_RESOLUTIONUNIT, 2));
    xPixelsPerMetre_ = PixelsPerMetre(static_cast<double>(session.Field<float>(TIFFTAG_XRESOLUTION, 0)), unit);
    yPixelsPerMetre_ = PixelsPerMetre(static_cast<double>(session.Field<float>(TIFFTAG_YRESOLUTION, 0)), unit);
    TurnSides();
    uint32_t size = 0;
    void* profile = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &profile) == 1) Note("its color profile is not used");
    if (session.Field<uint16_t>(TIFFTAG_PHOTOMETRIC, 0) == PHOTOMETRIC_SEPARATED) {
      Note("its CMYK colors are converted without a color profile");
    }
  }

 private:
  enum class Layout { kIndices, kRgb, kRgba };

  void Select(const TiffSession& session) const {
    if (TIFFSetSubDirectory(session.get(), directory_) != 1) session.Fail();
  }

  // Whether rows can be taken as they are, and what they become.
  void ChooseForm(const TiffSession& session) {
    const auto bits = session.Field<uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
    const auto samples = session.Field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
    const auto photometric = session.Field<uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    const bool plain = TIFFIsTiled(session.get()) == 0 && session.Field<uint16_t>(TIFFTAG_SAMPLEFORMAT, 1) == 1;
    const bool contiguous = session.Field<uint16_t>(TIFFTAG_PLANARCONFIG, 1) == PLANARCONFIG_CONTIG;
    // Less than a byte a pixel is not turned; rows alone can be exchanged.
    const bool isWhole = bits == 8 || orientation_.number == 1 || orientation_.number == 4;
    bits_ = bits;
    form_.bitCount = 24;
    if (plain && samples == 1 && isWhole && (bits == 1 || bits == 2 || bits == 4 || bits == 8) &&
        FillTable(session, photometric)) {
      layout_ = Layout::kIndices;
      form_.bitCount = bits == 2 ? 4 : bits;
    } else if (plain && contiguous && samples == 3 && bits == 8 && photometric == PHOTOMETRIC_RGB) {
      layout_ = Layout::kRgb;
    } else {
      layout_ = Layout::kRgba;
      char why[1024] = "";
      if (TIFFRGBAImageOK(session.get(), why) != 1) {
        throw ToolError(ExitCode::kBadInput,
                        fmt::format("{}: is a TIFF picture of a kind that cannot be printed: {}", name(), why));
      }
    }
  }

  // False for colors that are neither gray levels nor a palette.
  bool FillTable(const TiffSession& session, uint16_t photometric) {
    const uint32_t count = 1u << bits_;
    if (photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE) {
      for (uint32_t i = 0; i < count; ++i) {
        const uint32_t gray = i * 255 / (count - 1);
        form_.table.push_back((photometric == PHOTOMETRIC_MINISBLACK ? gray : 255 - gray) * 0x010101);
      }
      return true;
    }
    uint16_t* red = nullptr;
    uint16_t* green = nullptr;
    uint16_t* blue = nullptr;
    if (photometric != PHOTOMETRIC_PALETTE || TIFFGetField(session.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 1) {
      return false;
    }
    // Some programs write eight bits where sixteen belong.
    uint16_t largest = 0;
    for (uint32_t i = 0; i < count; ++i) largest = std::max({largest, red[i], green[i], blue[i]});
    const int shift = largest > 255 ? 8 : 0;
    for (uint32_t i = 0; i < count; ++i) {
      form_.table.push_back(static_cast<uint32_t>(red[i] >> shift) << 16 |
                            static_cast<uint32_t>(green[i] >> shift) << 8 | static_cast<uint32_t>(blue[i] >> shift));
    }
    return true;
  }

  // Uncompressed rows are read where they stand.
  bool ReadsInPlace(const TiffSession& session) const {
    return layout_ != Layout::kRgba && session.Field<uint16_t>(TIFFTAG_COMPRESSION, 1) == COMPRESSION_NONE;
  }

  // Version 4.5.0 of libtiff reads uncompressed tiles only from memory: from a file it takes their size, rounded up to
  // whole kilobytes, for the size that the file must give.
  static bool NeedsWholeFile(const TiffSession& session) {
    return TIFFIsTiled(session.get()) != 0 && session.Field<uint16_t>(TIFFTAG_COMPRESSION, 1) == COMPRESSION_NONE;
  }

  void CheckPieces(const TiffSession& session) const {
    if (ReadsInPlace(session)) return;
    TIFF* const tiff = session.get();
    uint64_t bytes = 0;
    if (NeedsWholeFile(session)) {
      bytes = file().size();
    } else if (TIFFIsTiled(tiff) != 0) {
      bytes = uint64_t{session.Field<uint32_t>(TIFFTAG_TILELENGTH, 0)} * 4 *
              (static_cast<uint64_t>(fileWidth_) + session.Field<uint32_t>(TIFFTAG_TILEWIDTH, 0));
    } else {
      const uint32_t rows = RowsOfStrip(session);
      // Rows are converted one by one where libtiff does not need all of them for that.
      bytes = layout_ == Layout::kRgba ? uint64_t{rows} * static_cast<uint64_t>(fileWidth_) * 4
                                       : TIFFRawStripSize64(tiff, 0);
    }
    if (bytes <= kMaxTiffPiece) return;
    throw ToolError(ExitCode::kBadInput,
                    fmt::format("{}: is a TIFF picture with pieces of {} MB, at most {} can be in memory; rewrite it "
                                "with smaller ones (tiffcp -s -r 16 -c lzw)",
                                name(), bytes >> 20, kMaxTiffPiece >> 20));
  }

  uint32_t RowsOfStrip(const TiffSession& session) const {
    const auto rows = session.Field<uint32_t>(TIFFTAG_ROWSPERSTRIP, 0xFFFFFFFF);
    return std::clamp(rows, 1u, static_cast<uint32_t>(fileHeight_));
  }

  void Decode(RowStore& rows) const override {
    const TiffSession session(file(), inMemory_);
    Select(session);
    int done = 0;
    if (layout_ == Layout::kRgba) {
      OrientedRows oriented(rows, orientation_, fileWidth_, fileHeight_, 3);
      // libtiff is not to turn the pieces one by one.
      TIFFSetField(session.get(), TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
      done = TIFFIsTiled(session.get()) != 0 ? AddTiles(session, oriented) : AddStrips(session, oriented);
      FillMissing(session, oriented, done);
    } else {
      // Whole bytes or whole rows are moved, so the bytes of a row count as its pixels.
      const std::size_t pixel = layout_ == Layout::kRgb ? 3 : 1;
      const int width = bits_ == 8 ? fileWidth_ : static_cast<int>(rows.stride());
      OrientedRows oriented(rows, orientation_, width, fileHeight_, pixel);
      done = AddRows(session, oriented);
      FillMissing(session, oriented, done);
    }
  }

  void FillMissing(const TiffSession& session, OrientedRows& oriented, int done) const {
    if (done < fileHeight_) {
      Note(MissingRowsNote(fileHeight_ - done, fileHeight_, session.error()));
      Bytes white = WhiteRow(form_);
      white.resize(std::max(white.size(), static_cast<std::size_t>(fileWidth_) * 3), white[0]);
      for (; done < fileHeight_; ++done) oriented.Add(white.data());
    }
    oriented.Finish();
  }

  // Returns the number of rows that could be read, as the next two do.
  int AddRows(const TiffSession& session, OrientedRows& oriented) const {
    TIFF* const tiff = session.get();
    const auto size = static_cast<std::size_t>(std::max<tmsize_t>(TIFFScanlineSize(tiff), 1));
    Bytes row(std::max(size, static_cast<std::size_t>(fileWidth_) * 3));
    Bytes converted(std::max(row.size(), form_.stride()), 0);
    const bool inPlace = ReadsInPlace(session);
    const bool reversed = session.Field<uint16_t>(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_LSB2MSB;
    const uint32_t rowsOfStrip = RowsOfStrip(session);
    for (int i = 0; i < fileHeight_; ++i) {
      const auto line = static_cast<uint32_t>(i);
      if (inPlace) {
        const uint64_t strip = TIFFGetStrileOffset(tiff, line / rowsOfStrip);
        if (strip == 0 || file().Read(strip + uint64_t{line % rowsOfStrip} * size, row.data(), size) != size) return i;
        if (reversed) TIFFReverseBits(row.data(), static_cast<tmsize_t>(size));
      } else if (TIFFReadScanline(tiff, row.data(), line) != 1) {
        return i;
      }
      if (layout_ == Layout::kRgb) {
        for (std::size_t x = 0; x < static_cast<std::size_t>(fileWidth_) * 3; x += 3) std::swap(row[x], row[x + 2]);
        oriented.Add(row.data());
      } else if (bits_ == 2) {
        WidenRowTo4(row.data(), fileWidth_, converted.data());
        oriented.Add(converted.data());
      } else {
        std::memcpy(converted.data(), row.data(), std::min(size, converted.size()));
        oriented.Add(converted.data());
      }
    }
    return fileHeight_;
  }

  // Adds a row of RGBA pixels whose colors are multiplied by their alpha.
  void AddRgba(const uint32_t* pixels, Bytes& row, OrientedRows& oriented, bool& transparent) const {
    for (std::size_t x = 0; x < static_cast<std::size_t>(fileWidth_); ++x) {
      const uint32_t pixel = pixels[x];
      const uint32_t paper = 255 - TIFFGetA(pixel);
      transparent |= paper != 0;
      row[x * 3] = static_cast<uint8_t>(std::min(255u, TIFFGetB(pixel) + paper));
      row[x * 3 + 1] = static_cast<uint8_t>(std::min(255u, TIFFGetG(pixel) + paper));
      row[x * 3 + 2] = static_cast<uint8_t>(std::min(255u, TIFFGetR(pixel) + paper));
    }
    oriented.Add(row.data());
  }

  // libtiff gives out strips and tiles with the bottom row first.
  int AddStrips(const TiffSession& session, OrientedRows& oriented) const {
    const auto rowsOfStrip = static_cast<int>(RowsOfStrip(session));
    const auto width = static_cast<std::size_t>(fileWidth_);
    std::vector<uint32_t> raster(width * static_cast<std::size_t>(rowsOfStrip));
    Bytes row(width * 3);
    bool transparent = false;
    int done = 0;
    while (done < fileHeight_) {
      const int rows = std::min(rowsOfStrip, fileHeight_ - done);
      if (TIFFReadRGBAStripExt(session.get(), static_cast<uint32_t>(done), raster.data(), 1) != 1) break;
      for (int i = rows - 1; i >= 0; --i) {
        AddRgba(raster.data() + static_cast<std::size_t>(i) * width, row, oriented, transparent);
      }
      done += rows;
    }
    if (transparent) Note("its transparency is laid over white");
    return done;
  }

  int AddTiles(const TiffSession& session, OrientedRows& oriented) const {
    const auto tileWidth = session.Field<uint32_t>(TIFFTAG_TILEWIDTH, 1);
    const auto tileHeight = session.Field<uint32_t>(TIFFTAG_TILELENGTH, 1);
    const auto width = static_cast<std::size_t>(fileWidth_);
    std::vector<uint32_t> tile(std::size_t{tileWidth} * tileHeight);
    std::vector<uint32_t> band(width * tileHeight);
    Bytes row(width * 3);
    bool transparent = false;
    int done = 0;
    while (done < fileHeight_) {
      const auto top = static_cast<uint32_t>(done);
      const std::size_t rows = std::min<std::size_t>(tileHeight, static_cast<std::size_t>(fileHeight_ - done));
      for (std::size_t left = 0; left < width; left += tileWidth) {
        if (TIFFReadRGBATileExt(session.get(), static_cast<uint32_t>(left), top, tile.data(), 1) != 1) {
          if (transparent) Note("its transparency is laid over white");
          return done;
        }
        const std::size_t count = std::min<std::size_t>(tileWidth, width - left);
        for (std::size_t i = 0; i < rows; ++i) {
          const auto* const from = tile.data() + (tileHeight - 1 - i) * tileWidth;
          std::copy(from, from + count, band.data() + i * width + left);
        }
      }
      for (std::size_t i = 0; i < rows; ++i) AddRgba(band.data() + i * width, row, oriented, transparent);
      done += static_cast<int>(rows);
    }
    if (transparent) Note("its transparency is laid over white");
    return done;
  }

  const uint64_t directory_;
  bool inMemory_ = false;
  Layout layout_ = Layout::kRgba;
  int bits_ = 8;
};

class TiffPages final : public PicturePages {
 public:
  TiffPages(const Input& file, const NoteSink& notes) : file_(file), notes_(notes) {
    const TiffSession session(*file);
    std::vector<uint64_t> others;
    do {
      const auto type = session.Field<uint32_t>(TIFFTAG_SUBFILETYPE, 0);
      const bool isPage = (type & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0;
      (isPage ? directories_ : others).push_back(TIFFCurrentDirOffset(session.get()));
    } while (directories_.size() + others.size() < kMaxPages && TIFFReadDirectory(session.get()) == 1);
    if (directories_.empty()) directories_ = std::move(others);
    if (!session.error().empty() && notes) {
      notes(fmt::format("of its pictures only the first {} can be read: {}", directories_.size(), session.error()));
    }
  }

  int count() const override { return static_cast<int>(directories_.size()); }

  PicturePtr Open(int index) const override {
    const NoteSink sink = [notes = notes_, prefix = count() > 1 ? fmt::format("page {}: ", index + 1)
                                                                : std::string()](const std::string& note) {
      if (notes) notes(prefix + note);
    };
    return std::make_shared<const TiffPicture>(file_, sink, directories_[static_cast<std::size_t>(index)]);
  }

 private:
  const Input file_;
  const NoteSink notes_;
  std::vector<uint64_t> directories_;  // where they stand in the file
};

}  // namespace

std::unique_ptr<PicturePages> OpenTiff(const Input& file, const NoteSink& notes) {
  return std::make_unique<TiffPages>(file, notes);
}

}  // namespace qnv::tool
