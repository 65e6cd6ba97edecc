// The rows are cut into blocks, which are filtered and compressed at the same time by several threads. Each block is a
// part of one deflate stream: it ends on a byte boundary and may refer to the end of the block before.
#include "qnvtool/output/row_deflate.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "qnvtool/base/ordered_tasks.h"
#include "qnvtool/base/output_file.h"
#include "qnvtool/base/phase_times.h"
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
constexpr uint8_t kFilterUp = 2;                             // a row as its difference from the one above

// A block and the memory that its compression needs. It is used again for a later block: fresh memory for every block
// took as long as the compression.
struct Block {
  ~Block() {
    if (hasStream) deflateEnd(&stream);
  }

  Buffer rows;             // as the device has them
  std::size_t before = 0;  // the first of them, which are above the block
  std::size_t count = 0;   // the others
  Buffer filtered;
  Buffer compressed;
  uLong adler = 0;  // of the filtered bytes
  std::size_t size = 0;
  z_stream stream{};
  bool hasStream = false;
  bool failed = false;  // no memory
};

// The bytes of a row as the device has them, and as they are written.
struct RowSize {
  std::size_t raw = 0;
  std::size_t converted = 0;
};

// Writes the difference of a row from the one above. Most parts of most rows do not differ, which is found out much
// faster than they are converted. Returns the number of parts that differ.
std::size_t FilterRow(const PictureForm& form, const uint8_t* row, const uint8_t* above, std::size_t rawSize,
                      uint8_t* result) {
  constexpr std::size_t kPart = 96;  // bytes; whole pixels
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

// Filters rows [first, end), the row before each of which is there too, except that above the picture, which is zero.
// Returns the share of the parts that differ from the row above, in thousandths.
std::size_t FilterRows(const PictureForm& form, const RowSize& size, const Block& block, std::size_t first,
                       std::size_t end, uint8_t* result) {
  const Buffer zeros(first == 0 ? size.raw : 0);
  std::size_t changed = 0;
  for (std::size_t row = first; row < end; ++row) {
    const uint8_t* const bytes = block.rows.data() + row * size.raw;
    *result = kFilterUp;
    changed += FilterRow(form, bytes, row == 0 ? zeros.data() : bytes - size.raw, size.raw, result + 1);
    result += 1 + size.converted;
  }
  const std::size_t parts = (size.raw + 95) / 96 * (end - first);
  return changed * 1000 / std::max<std::size_t>(parts, 1);
}

// Compresses a block as a part of a raw deflate stream.
void Compress(const PictureForm& form, const RowSize& size, Block& block, bool last) {
  const std::size_t rowSize = 1 + size.converted;
  block.filtered.resize((block.before + block.count) * rowSize);
  uint8_t* const filtered = block.filtered.data() + block.before * rowSize;
  block.size = block.count * rowSize;
  const std::size_t changes = FilterRows(form, size, block, block.before, block.before + block.count, filtered);
  const bool hasLevel = form.compression != kDefaultCompression;
  if (!hasLevel && changes <= 1000 / kSameShare) {
    block.adler = DeflateRuns(filtered, block.size, last ? DeflateEnd::kStream : DeflateEnd::kByte, block.compressed);
    return;
  }

  z_stream& stream = block.stream;
  if (!block.hasStream) {
    block.hasStream =
        deflateInit2(&stream, hasLevel ? form.compression : kLevel, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) == Z_OK;
    block.failed = !block.hasStream;
    if (block.failed) return;
  }
  deflateReset(&stream);
  // The row above the first one that is filtered is needed as well.
  if (block.before > 1) {
    FilterRows(form, size, block, 1, block.before, block.filtered.data() + rowSize);
    const std::size_t known = std::min(kDictionary, (block.before - 1) * rowSize);
    deflateSetDictionary(&stream, filtered - known, static_cast<uInt>(known));
  }
  // A sync flush adds at most six bytes to the bound.
  block.compressed.resize(deflateBound(&stream, static_cast<uLong>(block.size)) + 16);
  stream.next_in = filtered;
  stream.avail_in = static_cast<uInt>(block.size);
  stream.next_out = block.compressed.data();
  stream.avail_out = static_cast<uInt>(block.compressed.size());
  deflate(&stream, last ? Z_FINISH : Z_SYNC_FLUSH);
  block.compressed.resize(block.compressed.size() - stream.avail_out);
  block.adler = adler32(adler32(0, nullptr, 0), filtered, static_cast<uInt>(block.size));
}

}  // namespace

class RowDeflate::State {
 public:
  State(Workers& workers, const PictureForm& form, std::string path, std::function<void(const Piece&)> write)
      : form_(form),
        path_(std::move(path)),
        write_(std::move(write)),
        tasks_(workers, workers.count(), [this](const Block* block) { WriteBlock(*block); }) {
    const auto width = static_cast<std::size_t>(form.width);
    const bool color = form.pixels == PictureForm::Pixels::kColor;
    size_.raw = width * (color || form.pixels == PictureForm::Pixels::kGrayOf3 ? 3 : 1);
    size_.converted = width * (color ? 3 : 1);
    blockRows_ = (kBlock + size_.converted) / (1 + size_.converted);
    keptRows_ = kDictionary / (1 + size_.converted) + 2;
    // One more than are compressed at a time, to be filled meanwhile.
    for (std::size_t i = 0; i <= static_cast<std::size_t>(workers.count()); ++i)
      blocks_.push_back(std::make_unique<Block>());
    constexpr uint8_t kMethod = 0x78;         // deflate with a window of 32 KB
    constexpr uint8_t kLevelAndCheck = 0x5E;  // a fast level; makes the two bytes a multiple of 31
    write_({kMethod, kLevelAndCheck});
  }

  void WriteRows(const uint8_t* first, std::size_t stride, int rows) {
    for (int row = 0; row < rows; ++row) {
      const uint8_t* const bytes = first + static_cast<std::size_t>(row) * stride;
      Buffer& collected = blocks_[filling_]->rows;
      collected.insert(collected.end(), bytes, bytes + size_.raw);
      if (++blocks_[filling_]->count == blockRows_) StartBlock(false);
    }
  }

  void Finish() {
    StartBlock(true);
    tasks_.Finish();
    Piece checksum;
    for (int shift = 24; shift >= 0; shift -= 8) checksum.push_back(static_cast<uint8_t>(adler_ >> shift));
    write_(checksum);
  }

 private:
  // Starts to compress the collected rows. The last of them are copied as those above the next block.
  void StartBlock(bool last) {
    Block& block = *blocks_[filling_];
    tasks_.MakeRoom();  // after this the next block is not in use any more
    filling_ = (filling_ + 1) % blocks_.size();
    Block& next = *blocks_[filling_];
    next.before = std::min(keptRows_, block.before + block.count);
    next.count = 0;
    next.rows.assign(block.rows.end() - static_cast<std::ptrdiff_t>(next.before * size_.raw), block.rows.end());
    tasks_.Start([form = form_, size = size_, &block, last]() -> const Block* {
      const PhaseTimer timer(Phase::kEncoding);
      Compress(form, size, block, last);
      return &block;
    });
  }

  void WriteBlock(const Block& block) {
    if (block.failed) CannotWrite(path_, "no memory");
    if (!block.compressed.empty()) write_(block.compressed);
    adler_ = adler32_combine(adler_, block.adler, static_cast<z_off_t>(block.size));
  }

  const PictureForm form_;
  const std::string path_;
  const std::function<void(const Piece&)> write_;
  RowSize size_;
  std::size_t blockRows_ = 0;                   // rows of a block
  std::size_t keptRows_ = 0;                    // rows above a block that are kept for it
  std::vector<std::unique_ptr<Block>> blocks_;  // used in turn
  std::size_t filling_ = 0;                     // the one that collects rows
  uLong adler_ = adler32(0, nullptr, 0);        // of all blocks written
  OrderedTasks<const Block*> tasks_;
};

RowDeflate::RowDeflate(Workers& workers, const PictureForm& form, std::string path,
                       std::function<void(const Piece&)> write)
    : state_(std::make_unique<State>(workers, form, std::move(path), std::move(write))) {}

RowDeflate::~RowDeflate() = default;

void RowDeflate::WriteRows(const uint8_t* first, std::size_t stride, int rows) {
  state_->WriteRows(first, stride, rows);
}

void RowDeflate::Finish() { state_->Finish(); }

}  // namespace qnv::tool
