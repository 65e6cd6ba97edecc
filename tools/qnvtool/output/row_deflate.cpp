// The rows are cut into blocks, each of which is a part of one deflate stream: it ends on a byte boundary and may refer
// to the end of the block before, whose rows are filtered again for it.
#include "qnvtool/output/row_deflate.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>
#include <utility>

#include "qnvtool/base/reused.h"
#include "qnvtool/output/run_deflate.h"

namespace qnv::tool {
namespace {

using Buffer = std::vector<uint8_t>;

// How a block is compressed depends on how much of it differs from the row above. Seconds of processor time for
// compressing alone, and kilobytes, for a photograph at 300 dots per inch and a text of one page at 600:
//
//                  photograph    text
//     zlib 2       0.18  3501    0.24   876
//     zlib 3       0.28  3356    0.24   806
//     zlib 4       0.30  3333    0.59   471
//     zlib 6       1.10  3126    0.61   347
//     runs only    0.08  3511    0.02   427
//
// The filter leaves little but runs of zeros of a page of text. Hatches and patterns need matches at a distance.
constexpr int kLevel = 4;              // where the user chooses none
constexpr std::size_t kSameShare = 2;  // runs only, when no more than one part in so many has changes

constexpr std::size_t kBlock = std::size_t{512} * 1024;      // bytes of filtered rows; smaller ones compress worse
constexpr std::size_t kDictionary = std::size_t{32} * 1024;  // how far back deflate looks
constexpr std::size_t kPart = 96;                            // bytes of a row that are compared at once; whole pixels
constexpr uint8_t kFilterUp = 2;                             // a row as its difference from the one above

// The memory that a thread needs to compress a block. It is kept for later blocks: fresh memory for every block took as
// long as the compression.
struct Scratch {
  Scratch() = default;
  ~Scratch() { EndStream(); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  void EndStream() {
    if (level != kNoLevel) deflateEnd(&stream);
    level = kNoLevel;
  }

  static constexpr int kNoLevel = -2;
  Buffer filtered;
  Buffer compressed;
  z_stream stream{};
  int level = kNoLevel;  // of the stream
};

Reused<Scratch> scratches;

// Writes the difference of a row from the one above. Most parts of most rows do not differ, which is found out much
// faster than they are converted. Returns the number of parts that differ.
std::size_t FilterRow(const PictureForm& form, const uint8_t* row, const uint8_t* above, std::size_t rawSize,
                      uint8_t* result) {
  const bool swaps = form.pixels == PictureForm::Pixels::kColor;
  const std::size_t step = form.pixels == PictureForm::Pixels::kGrayOf3 ? 3 : 1;
  std::size_t changed = 0;
  for (std::size_t at = 0; at < rawSize; at += kPart) {
    const std::size_t size = std::min(kPart, rawSize - at);
    const uint8_t* const a = row + at;
    const uint8_t* const b = above + at;
    if (std::memcmp(a, b, size) == 0) {
      std::memset(result, 0, size / step);
    } else if (swaps) {
      for (std::size_t i = 0; i < size; i += 3) {
        result[i] = static_cast<uint8_t>(a[i + 2] - b[i + 2]);
        result[i + 1] = static_cast<uint8_t>(a[i + 1] - b[i + 1]);
        result[i + 2] = static_cast<uint8_t>(a[i] - b[i]);
      }
      ++changed;
    } else {
      for (std::size_t i = 0; i < size; i += step) result[i / step] = static_cast<uint8_t>(a[i] - b[i]);
      ++changed;
    }
    result += size / step;
  }
  return changed;
}

class DeflateEncoder final : public RowEncoder {
 public:
  explicit DeflateEncoder(const PictureForm& form)
      : RowEncoder(form), rowSize_(1 + FileRowSize(form)), deviceRowSize_(DeviceRowSize(form)), zeros_(deviceRowSize_) {
    unit_ = static_cast<int>(std::bit_floor(std::max<std::size_t>(kBlock / rowSize_, 1)));
    rowsAbove_ = static_cast<int>(kDictionary / rowSize_) + 2;
  }

  int unit() const override { return unit_; }
  int rowsAbove() const override { return rowsAbove_; }

  EncodedRows Encode(const PictureRowsView& view) const override {
    EncodedRows blocks;
    for (int row = 0; row < view.rows; row += unit_) {
      const int end = std::min(row + unit_, view.rows);
      blocks.push_back(Compress(view, row, end, view.top + end == form_.height));
    }
    return blocks;
  }

 private:
  // Filters rows [begin, end) of the view, which may be above it. Returns the number of parts that differ from the row
  // above.
  std::size_t FilterRows(const PictureRowsView& view, int begin, int end, uint8_t* result) const {
    std::size_t changed = 0;
    for (int row = begin; row < end; ++row) {
      const uint8_t* const above = view.top + row == 0 ? zeros_.data() : view.Row(row - 1);
      *result = kFilterUp;
      changed += FilterRow(form_, view.Row(row), above, deviceRowSize_, result + 1);
      result += rowSize_;
    }
    return changed;
  }

  // Compresses rows [begin, end) of the view as a part of a raw deflate stream.
  EncodedPiece Compress(const PictureRowsView& view, int begin, int end, bool last) const {
    const auto loan = scratches.Take();
    Scratch& scratch = *loan;
    EncodedPiece block;
    const std::size_t rows = static_cast<std::size_t>(end - begin);
    block.size = rows * rowSize_;
    const int known = std::min(rowsAbove_, view.top + begin);  // rows above
    const std::size_t knownSize = static_cast<std::size_t>(std::max(known - 1, 0)) * rowSize_;
    scratch.filtered.resize(knownSize + block.size);
    uint8_t* const filtered = scratch.filtered.data() + knownSize;
    const std::size_t changed = FilterRows(view, begin, end, filtered);
    const bool hasLevel = form_.compression != kDefaultCompression;
    const std::size_t parts = (deviceRowSize_ + kPart - 1) / kPart * rows;
    if (!hasLevel && changed <= parts / kSameShare) {
      block.checksum = DeflateRuns(filtered, block.size, last ? DeflateEnd::kStream : DeflateEnd::kByte, block.bytes);
      return block;
    }

    z_stream& stream = StreamOf(scratch, hasLevel ? form_.compression : kLevel);
    if (knownSize != 0) {
      FilterRows(view, begin - (known - 1), begin, scratch.filtered.data());
      const std::size_t used = std::min(kDictionary, knownSize);
      deflateSetDictionary(&stream, filtered - used, static_cast<uInt>(used));
    }
    // A sync flush adds at most six bytes to the bound.
    Buffer& compressed = scratch.compressed;
    compressed.resize(deflateBound(&stream, static_cast<uLong>(block.size)) + 16);
    stream.next_in = filtered;
    stream.avail_in = static_cast<uInt>(block.size);
    stream.next_out = compressed.data();
    stream.avail_out = static_cast<uInt>(compressed.size());
    deflate(&stream, last ? Z_FINISH : Z_SYNC_FLUSH);
    block.bytes.assign(compressed.begin(), compressed.end() - static_cast<std::ptrdiff_t>(stream.avail_out));
    block.checksum = static_cast<uint32_t>(adler32(adler32(0, nullptr, 0), filtered, static_cast<uInt>(block.size)));
    return block;
  }

  // At its beginning.
  static z_stream& StreamOf(Scratch& scratch, int level) {
    if (scratch.level == level) {
      deflateReset(&scratch.stream);
    } else {
      scratch.EndStream();
      scratch.stream = {};
      if (deflateInit2(&scratch.stream, level, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) != Z_OK) throw std::bad_alloc();
      scratch.level = level;
    }
    return scratch.stream;
  }

  const std::size_t rowSize_;  // with the byte that names the filter
  const std::size_t deviceRowSize_;
  const Buffer zeros_;  // the row above the picture
  int unit_ = 1;
  int rowsAbove_ = 0;
};

}  // namespace

std::unique_ptr<RowEncoder> CreateDeflateEncoder(const PictureForm& form) {
  return std::make_unique<DeflateEncoder>(form);
}

ZlibStream::ZlibStream(std::function<void(const std::vector<uint8_t>&)> write) : write_(std::move(write)) {
  constexpr uint8_t kMethod = 0x78;         // deflate with a window of 32 KB
  constexpr uint8_t kLevelAndCheck = 0x5E;  // a fast level; makes the two bytes a multiple of 31
  write_({kMethod, kLevelAndCheck});
}

void ZlibStream::Write(const EncodedRows& rows) {
  for (const EncodedPiece& block : rows) {
    if (!block.bytes.empty()) write_(block.bytes);
    checksum_ = static_cast<uint32_t>(adler32_combine(checksum_, block.checksum, static_cast<z_off_t>(block.size)));
  }
}

void ZlibStream::Finish() {
  std::vector<uint8_t> checksum;
  for (int shift = 24; shift >= 0; shift -= 8) checksum.push_back(static_cast<uint8_t>(checksum_ >> shift));
  write_(checksum);
}

}  // namespace qnv::tool
