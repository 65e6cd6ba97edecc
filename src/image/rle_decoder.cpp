#include "image/rle_decoder.h"

#include <algorithm>
#include <cstring>

namespace qnv {
namespace {

// Writers append pixels to a row; the decoder has already cut them to the row's end.

class RowWriter {
 public:
  explicit RowWriter(uint8_t* row) : next_(row) {}

  void Zeros(int32_t count) { Fill(0, count); }
  void Run8(uint8_t index, int32_t count) { Fill(index, count); }
  void Run4(uint8_t both, int32_t count) {
    const uint8_t nibbles[2] = {static_cast<uint8_t>(both >> 4), static_cast<uint8_t>(both & 0x0F)};
    for (int32_t i = 0; i < count; ++i) *next_++ = nibbles[i & 1];
  }
  void Literal8(const uint8_t* data, int32_t count) {
    if (count == 0) return;
    std::memcpy(next_, data, static_cast<std::size_t>(count));
    next_ += count;
  }
  void Literal4(const uint8_t* data, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
      *next_++ = static_cast<uint8_t>((i & 1) == 0 ? data[i / 2] >> 4 : data[i / 2] & 0x0F);
    }
  }

 private:
  void Fill(uint8_t value, int32_t count) {
    if (count == 0) return;
    std::memset(next_, value, static_cast<std::size_t>(count));
    next_ += count;
  }

  uint8_t* next_;
};

struct NoWriter {
  void Zeros(int32_t) {}
  void Run8(uint8_t, int32_t) {}
  void Run4(uint8_t, int32_t) {}
  void Literal8(const uint8_t*, int32_t) {}
  void Literal4(const uint8_t*, int32_t) {}
};

constexpr std::size_t EvenBytes(std::size_t bytes) { return (bytes + 1) & ~std::size_t{1}; }

}  // namespace

template <class Writer>
void RleDecoder::WalkRow(RleState* state, Writer& writer) const {
  int32_t column = 0;
  if (state->phase == RleState::kEndOfBitmap) return writer.Zeros(width_);
  if (state->phase == RleState::kDelta) {
    if (state->emptyRows != 0) {
      --state->emptyRows;
      return writer.Zeros(width_);
    }
    writer.Zeros(state->targetColumn);
    column = state->targetColumn;
    state->phase = RleState::kCodes;
  }
  for (;;) {
    const uint8_t first = *state->next++;
    const uint8_t second = *state->next++;
    const int32_t room = width_ - column;
    if (first != 0) {
      const int32_t count = std::min<int32_t>(first, room);
      fourBit_ ? writer.Run4(second, count) : writer.Run8(second, count);
      column += count;
    } else if (second == 0) {
      return writer.Zeros(room);
    } else if (second == 1) {
      state->phase = RleState::kEndOfBitmap;
      return writer.Zeros(room);
    } else if (second == 2) {
      const int32_t dx = std::min<int32_t>(*state->next++, room);
      const uint8_t dy = *state->next++;
      if (dy != 0) {
        state->phase = RleState::kDelta;
        state->emptyRows = static_cast<uint8_t>(dy - 1);
        state->targetColumn = column + dx;
        return writer.Zeros(room);
      }
      writer.Zeros(dx);
      column += dx;
    } else {
      const int32_t count = std::min<int32_t>(second, room);
      if (fourBit_) {
        writer.Literal4(state->next, count);
        state->next += EvenBytes((std::size_t{second} + 1) / 2);
      } else {
        // Intended: literals that do not fit are not passed over but read as codes.
        writer.Literal8(state->next, count);
        state->next += EvenBytes(static_cast<std::size_t>(count));
      }
      column += count;
    }
  }
}

void RleDecoder::DecodeRow(RleState* state, uint8_t* row) const {
  RowWriter writer(row);
  WalkRow(state, writer);
}

void RleDecoder::SkipRow(RleState* state) const {
  NoWriter writer;
  WalkRow(state, writer);
}

}  // namespace qnv
