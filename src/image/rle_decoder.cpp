// Decodes run-length data. Two functions interpret the codes: SkipRowsOf only finds where rows begin, DecodeRowOf also
// writes pixels. Both handle common records in tight loops and everything else one record at a time.
#include "image/rle_decoder.h"

#include <algorithm>
#include <cstring>

namespace qnv {
namespace {

// Bytes of the pixels of a literal; padded to an even number.
template <bool kFourBit>
constexpr int32_t LiteralBytes(int32_t pixels) {
  const int32_t bytes = kFourBit ? (pixels + 1) >> 1 : pixels;
  return bytes + (bytes & 1);
}

// The two bytes that begin a record. (n, value) is a run of n pixels, (0, 0) the end of a line, (0, 1) the end of the
// bitmap, (0, 2) a delta, and (0, n) from 3 on a literal of n pixels.
struct RleCode {
  uint8_t first, second;

  bool IsRun() const { return first != 0; }
  bool IsEndOfLine() const { return first == 0 && second == 0; }
  bool IsEndOfBitmap() const { return first == 0 && second == 1; }
  bool IsDelta() const { return first == 0 && second == 2; }
};

// A place inside a row.
struct RlePlace {
  const uint8_t* next;  // the next record
  int32_t column;       // where its pixels go

  RleCode Code() const { return {next[0], next[1]}; }
};

// Moves past a run or a literal and returns how many of its pixels fit into the row.
template <bool kFourBit>
int32_t PassPixels(RlePlace* place, int32_t width) {
  const RleCode code = place->Code();
  const int32_t pixels = std::min<int32_t>(code.IsRun() ? code.first : code.second, width - place->column);
  place->next += 2;
  // Intended: the pixels of an eight-bit literal that do not fit are not skipped but read as codes.
  if (!code.IsRun()) place->next += LiteralBytes<kFourBit>(kFourBit ? code.second : pixels);
  place->column += pixels;
  return pixels;
}

// Moves past a delta. True when it leads to a later row, which is then stored in *state.
bool PassDelta(RlePlace* place, int32_t width, RleState* state) {
  const int32_t target = std::min(place->column + place->next[2], width);
  const uint8_t rows = place->next[3];
  place->next += 4;
  if (rows == 0) {
    place->column = target;
    return false;
  }
  state->phase = RleState::kDelta;
  state->emptyRows = static_cast<uint8_t>(rows - 1);
  state->targetColumn = target;
  return true;
}

// Moves past runs and literals that fit into the row, and past ends of lines, until `rows` rows have ended or another
// record comes. *rows: rows left. The kind of the next record is unpredictable, so masks replace branches.
template <bool kFourBit>
void PassRecords(RlePlace* place, int32_t width, int32_t* rows) {
  const uint8_t* next = place->next;
  int32_t column = place->column;
  int32_t left = *rows;
  while (left != 0) {
    const int32_t first = next[0], second = next[1];
    const int32_t noRun = (first - 1) >> 31;  // all ones when first is 0
    const int32_t pixels = first | (second & noRun);
    const int32_t endOfLine = (pixels - 1) >> 31;                            // all ones when both bytes are 0
    const bool isEscape = static_cast<uint32_t>((second | ~noRun) - 1) < 2;  // the end of the bitmap, or a delta
    if (isEscape || pixels > width - column) break;
    next += 2 + (LiteralBytes<kFourBit>(second) & noRun);
    column = (column + pixels) & ~endOfLine;
    left += endOfLine;
  }
  *place = {next, column};
  *rows = left;
}

void WriteRun4(uint8_t* out, uint8_t both, int32_t count) {
  const uint8_t pair[2] = {static_cast<uint8_t>(both >> 4), static_cast<uint8_t>(both & 0x0F)};
  for (int32_t i = 0; i < count; ++i) out[i] = pair[i & 1];
}

void WriteLiteral4(uint8_t* out, const uint8_t* data, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    out[i] = static_cast<uint8_t>((i & 1) == 0 ? data[i / 2] >> 4 : data[i / 2] & 0x0F);
  }
}

// The first `count` pixels of the run or literal that begins at `record`.
template <bool kFourBit>
void WritePixels(uint8_t* out, const uint8_t* record, int32_t count) {
  const bool isRun = record[0] != 0;
  const std::size_t bytes = static_cast<std::size_t>(count);
  if constexpr (kFourBit) {
    isRun ? WriteRun4(out, record[1], count) : WriteLiteral4(out, record + 2, count);
  } else if (isRun) {
    std::memset(out, record[1], bytes);
  } else {
    std::memcpy(out, record + 2, bytes);
  }
}

// memset and memcpy of a constant size compile to vector stores. Most records have few pixels, for which a call of the
// runtime takes longer, so at least kMinBlocks blocks are written whatever the count.
constexpr int32_t kBlock = 16;
constexpr int32_t kMinBlocks = 3;
static_assert(std::size_t{kMinBlocks} * kBlock <= RleDecoder::kOvershoot);
// The most bytes that are read for a record when its literal is read in whole blocks.
constexpr std::ptrdiff_t kMaxRead = 2 + 256;

// Write `count` bytes in blocks of kBlock, and up to kOvershoot bytes more.
void FillBlocks(uint8_t* out, uint8_t value, int32_t count) {
  std::memset(out, value, kBlock);
  std::memset(out + kBlock, value, kBlock);
  std::memset(out + std::ptrdiff_t{2} * kBlock, value, kBlock);
  for (int32_t done = kMinBlocks * kBlock; done < count; done += kBlock) std::memset(out + done, value, kBlock);
}

void CopyBlocks(uint8_t* out, const uint8_t* from, int32_t count) {
  std::memcpy(out, from, kBlock);
  std::memcpy(out + kBlock, from + kBlock, kBlock);
  std::memcpy(out + std::ptrdiff_t{2} * kBlock, from + std::ptrdiff_t{2} * kBlock, kBlock);
  for (int32_t done = kMinBlocks * kBlock; done < count; done += kBlock) {
    std::memcpy(out + done, from + done, kBlock);
  }
}

// Writes eight-bit runs and literals that fit into the row, until `columns` columns are written, another record comes,
// or a literal lies so near to `readable` that whole blocks would be read beyond it.
void WriteRecords(RlePlace* place, int32_t columns, int32_t width, const uint8_t* readable, uint8_t* row) {
  const uint8_t* next = place->next;
  int32_t column = place->column;
  while (column < columns) {
    const int32_t room = width - column;
    const uint8_t first = next[0], second = next[1];
    if (first != 0) {
      if (first > room) break;
      FillBlocks(row + column, second, first);
      next += 2;
      column += first;
    } else {
      if (second < 3 || second > room || readable - next < kMaxRead) break;
      CopyBlocks(row + column, next + 2, second);
      next += 2 + LiteralBytes<false>(second);
      column += second;
    }
  }
  *place = {next, column};
}

}  // namespace

template <bool kFourBit>
void RleDecoder::SkipRowsOf(RleState* state, int32_t rows) const {
  RlePlace place{state->next, 0};
  while (rows != 0 && state->phase != RleState::kEndOfBitmap) {
    if (state->phase == RleState::kDelta) {
      const int32_t passed = std::min<int32_t>(rows, state->emptyRows);
      state->emptyRows = static_cast<uint8_t>(state->emptyRows - passed);
      rows -= passed;
      if (rows == 0) break;
      place.column = state->targetColumn;
      state->phase = RleState::kCodes;
    }
    PassRecords<kFourBit>(&place, width_, &rows);
    if (rows == 0) break;
    const RleCode code = place.Code();
    if (code.IsEndOfBitmap()) {
      place.next += 2;
      state->phase = RleState::kEndOfBitmap;
    } else if (!code.IsDelta()) {
      PassPixels<kFourBit>(&place, width_);
    } else if (PassDelta(&place, width_, state)) {
      --rows;
    }
  }
  state->next = place.next;
}

template <bool kFourBit>
void RleDecoder::DecodeRowOf(const RleState& begin, int32_t columns, const uint8_t* readable, uint8_t* row) const {
  RleState state = begin;
  RlePlace place{state.next, 0};
  const auto zerosFrom = [row](int32_t first, int32_t end) {
    if (first < end) std::memset(row + first, 0, static_cast<std::size_t>(end - first));
  };
  if (state.phase == RleState::kDelta && state.emptyRows == 0) {
    place.column = state.targetColumn;
    zerosFrom(0, place.column);
    state.phase = RleState::kCodes;
  }
  while (state.phase == RleState::kCodes) {
    if constexpr (!kFourBit) WriteRecords(&place, columns, width_, readable, row);
    if (place.column >= columns) return;
    const RleCode code = place.Code();
    if (code.IsEndOfLine() || code.IsEndOfBitmap()) break;
    const RlePlace record = place;
    if (!code.IsDelta()) {
      const int32_t pixels = PassPixels<kFourBit>(&place, width_);
      WritePixels<kFourBit>(row + record.column, record.next, pixels);
    } else if (!PassDelta(&place, width_, &state)) {
      zerosFrom(record.column, place.column);
    }
  }
  zerosFrom(place.column, columns);
}

template void RleDecoder::SkipRowsOf<false>(RleState*, int32_t) const;
template void RleDecoder::SkipRowsOf<true>(RleState*, int32_t) const;
template void RleDecoder::DecodeRowOf<false>(const RleState&, int32_t, const uint8_t*, uint8_t*) const;
template void RleDecoder::DecodeRowOf<true>(const RleState&, int32_t, const uint8_t*, uint8_t*) const;

}  // namespace qnv
