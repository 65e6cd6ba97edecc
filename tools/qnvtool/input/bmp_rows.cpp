// Reads stored rows and run-length codes of BMP files, and converts what the rasteriser does not read.
#include "qnvtool/input/bmp_rows.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "qnvdrv10.h"
#include "qnvtool/base/interruption.h"
#include "qnvtool/input/bmp_reader.h"
#include "qnvtool/input/decoded_picture.h"
#include "qnvtool/input/rle_reader.h"

namespace qnv::tool {
namespace {

// Palette indices, one a byte, to a row of the bitmap.
void PackIndices(const uint8_t* from, int width, int bitCount, uint8_t* to) {
  if (bitCount == 8) {
    std::memcpy(to, from, static_cast<std::size_t>(width));
    return;
  }
  for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
    uint8_t& byte = to[x / 2];
    byte = x % 2 == 0 ? static_cast<uint8_t>(from[x] << 4) : static_cast<uint8_t>(byte | from[x]);
  }
}

// Keeps a window and reads another one only when rows outside it are asked for.
class WindowedRows : public PictureRows {
 public:
  DibWindow Window(int top, int count) final {
    if (count > rows_ || top < top_ || top + count > top_ + rows_) {
      ThrowIfInterrupted();
      rows_ = 0;
      bits_.assign(form_.stride() * static_cast<std::size_t>(count), 0);
      Fill(top, count, bits_.data());
      top_ = top;
      rows_ = count;
      SetDibRows(info_, topDown_ ? -count : count);
    }
    return {info_.data(), bits_.data(), top_, rows_};
  }

 protected:
  WindowedRows(const DibForm& form, bool topDown) : form_(form), topDown_(topDown), info_(MakeDibInfo(form, 1)) {}

  // Reads rows [top, top + count) into `bits`, in the order of the file.
  virtual void Fill(int top, int count, uint8_t* bits) = 0;

  const DibForm form_;

 private:
  const bool topDown_;
  Bytes info_;
  Bytes bits_;
  int top_ = 0;
  int rows_ = 0;
};

class StoredRows final : public WindowedRows {
 public:
  explicit StoredRows(const BmpPixels& pixels)
      : WindowedRows(pixels.form, pixels.topDown),
        pixels_(pixels),
        inFile_(RowsInFile(pixels)),
        white_(WhiteRow(pixels.form)) {}

 private:
  void Fill(int top, int count, uint8_t* bits) override {
    const int first = pixels_.topDown ? top : pixels_.height - top - count;  // stored row
    const int there = std::clamp(inFile_ - first, 0, count);
    const std::size_t from = pixels_.stride();
    const std::size_t to = form_.stride();
    const bool asItIs = !pixels_.convert && pixels_.alphaMask == 0 && pixels_.bitCount != 2;
    uint8_t* target = bits;
    if (!asItIs) {
      raw_.assign(from * static_cast<std::size_t>(there), 0);
      target = raw_.data();
    }
    const uint64_t offset = pixels_.offset + static_cast<uint64_t>(first) * from;
    const std::size_t wanted = from * static_cast<std::size_t>(there);
    const std::size_t got = wanted == 0 ? 0 : pixels_.file->Read(offset, target, wanted);
    for (int i = 0; i < count; ++i) {
      const std::size_t row = static_cast<std::size_t>(i);
      // The file may have become shorter since it was opened.
      const bool isThere =
          i < there &&
          row * from + (static_cast<std::size_t>(pixels_.width) * static_cast<std::size_t>(pixels_.bitCount) + 7) / 8 <=
              got;
      if (!isThere) {
        std::memcpy(bits + row * to, white_.data(), to);
      } else if (!asItIs) {
        Convert(raw_.data() + row * from, bits + row * to);
      }
    }
  }

  void Convert(const uint8_t* from, uint8_t* to) const {
    if (pixels_.bitCount == 2) {
      WidenRowTo4(from, pixels_.width, to);
    } else if (pixels_.alphaMask != 0) {
      BlendRow(from, pixels_.width, pixels_.bitCount, pixels_.masks, pixels_.alphaMask, to);
    } else {
      ExpandRowTo32(from, pixels_.width, pixels_.bitCount, pixels_.masks, to);
    }
  }

  const BmpPixels pixels_;
  const int inFile_;
  const Bytes white_;
  Bytes raw_;
};

// Complete codes, with the zeros that keep the rasteriser inside them.
class RleCodes final : public PictureRows {
 public:
  explicit RleCodes(const BmpPixels& pixels) : height_(pixels.height), info_(MakeDibInfo(pixels.form, pixels.height)) {
    const auto size = static_cast<std::size_t>(pixels.size);
    bits_.resize(size + 260 + 2 * static_cast<std::size_t>(height_));
    const std::size_t got = pixels.file->Read(pixels.offset, bits_.data(), size);
    std::fill(bits_.begin() + static_cast<std::ptrdiff_t>(got), bits_.end(), uint8_t{0});
  }

  DibWindow Window(int, int) override { return {info_.data(), bits_.data(), 0, height_}; }

 private:
  const int height_;
  const Bytes info_;
  Bytes bits_;
};

// Decodes codes from the last mark before the rows that are wanted.
class DecodedRleRows final : public WindowedRows {
 public:
  static constexpr int kRowsPerMark = 64;

  DecodedRleRows(const BmpPixels& pixels, RleReader reader, std::vector<RleReader::Mark> marks, int inFile)
      : WindowedRows(pixels.form, false),
        pixels_(pixels),
        reader_(std::move(reader)),
        marks_(std::move(marks)),
        inFile_(inFile),
        white_(WhiteRow(pixels.form)),
        row_(static_cast<std::size_t>(pixels.width) * 3) {}

 private:
  void Fill(int top, int count, uint8_t* bits) override {
    const int first = pixels_.height - top - count;  // stored row
    const std::size_t stride = form_.stride();
    int stored = first / kRowsPerMark * kRowsPerMark;
    if (stored < inFile_) reader_.MoveTo(marks_[static_cast<std::size_t>(stored / kRowsPerMark)]);
    for (; stored < first + count; ++stored) {
      const bool isThere = stored < inFile_ && reader_.NextRow(stored < first ? nullptr : row_.data());
      if (stored < first) continue;
      uint8_t* const to = bits + static_cast<std::size_t>(stored - first) * stride;
      if (!isThere) {
        std::memcpy(to, white_.data(), stride);
      } else if (form_.bitCount == 24) {
        std::memcpy(to, row_.data(), static_cast<std::size_t>(pixels_.width) * 3);
      } else {
        PackIndices(row_.data(), pixels_.width, form_.bitCount, to);
      }
    }
  }

  const BmpPixels pixels_;
  RleReader reader_;
  const std::vector<RleReader::Mark> marks_;
  const int inFile_;
  const Bytes white_;
  Bytes row_;
};

}  // namespace

int RowsInFile(const BmpPixels& pixels) {
  const uint64_t stride = pixels.stride();
  const uint64_t used = (static_cast<uint64_t>(pixels.width) * static_cast<uint64_t>(pixels.bitCount) + 7) / 8;
  if (pixels.size < used) return 0;
  return static_cast<int>(std::min<uint64_t>((pixels.size - used) / stride + 1, static_cast<uint64_t>(pixels.height)));
}

bool HasAlpha(const BmpPixels& pixels) {
  const std::size_t step = static_cast<std::size_t>(pixels.bitCount) / 8;
  const int rows = RowsInFile(pixels);
  Bytes row(pixels.stride());
  for (int i = 0; i < rows; ++i) {
    pixels.file->Read(pixels.offset + static_cast<uint64_t>(i) * row.size(), row.data(), row.size());
    if (i % 64 == 0) ThrowIfInterrupted();
    for (std::size_t x = 0; x < static_cast<std::size_t>(pixels.width); ++x) {
      const uint32_t pixel = step == 2 ? U16At(row, x * 2) : U32At(row, x * 4);
      if ((pixel & pixels.alphaMask) != 0) return true;
    }
  }
  return false;
}

std::shared_ptr<PictureRows> OpenBmpRows(const BmpPixels& pixels) { return std::make_shared<StoredRows>(pixels); }

std::shared_ptr<PictureRows> OpenRleRows(const BmpPixels& pixels, const NoteSink& notes) {
  RleReader reader(PartOf(pixels.file, pixels.offset, pixels.size), pixels.bitCount, pixels.width);
  std::vector<RleReader::Mark> marks;
  int inFile = 0;
  for (; inFile < pixels.height; ++inFile) {
    if (inFile % DecodedRleRows::kRowsPerMark == 0) {
      marks.push_back(reader.Here());
      ThrowIfInterrupted();
    }
    if (!reader.NextRow(nullptr)) break;
  }
  const int missing = pixels.height - inFile;
  if (missing != 0 && notes) notes(MissingRowsNote(missing, pixels.height, "the run-length codes break off"));
  if (missing == 0 && pixels.bitCount != 24 && pixels.size <= kMaxRleCodes) return std::make_shared<RleCodes>(pixels);
  BmpPixels decoded = pixels;
  decoded.form.compression = BI_RGB;
  return std::make_shared<DecodedRleRows>(decoded, std::move(reader), std::move(marks), inFile);
}

}  // namespace qnv::tool
