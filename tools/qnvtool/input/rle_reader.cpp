// Interprets run-length codes one by one.
#include "qnvtool/input/rle_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qnv::tool {
namespace {

constexpr std::size_t kBuffer = std::size_t{1} << 16;

}  // namespace

RleReader::RleReader(Input codes, int bitCount, int width)
    : codes_(std::move(codes)), bitCount_(bitCount), width_(width) {}

// The next byte, or -1 behind the last.
int RleReader::Next() {
  if (used_ == buffer_.size()) {
    bufferAt_ += buffer_.size();
    buffer_.resize(kBuffer);
    buffer_.resize(codes_->Read(bufferAt_, buffer_.data(), kBuffer));
    used_ = 0;
    if (buffer_.empty()) return -1;
  }
  return buffer_[used_++];
}

RleReader::Mark RleReader::Here() const {
  Mark mark = mark_;
  mark.at = bufferAt_ + used_;
  return mark;
}

void RleReader::MoveTo(const Mark& mark) {
  mark_ = mark;
  bufferAt_ = mark.at;
  buffer_.clear();
  used_ = 0;
}

// Writes pixels of one value at the present column.
void RleReader::Pixels(uint8_t* row, int count, const uint8_t* value, int valueBytes) {
  if (row == nullptr) return;
  const auto column = static_cast<std::size_t>(mark_.column);
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    if (bitCount_ == 24) {
      std::memcpy(row + (column + i) * 3, value, 3);
    } else {
      row[column + i] = value[i % static_cast<std::size_t>(valueBytes)];
    }
  }
}

// Reads a literal. False when the file ends in it.
bool RleReader::Literal(uint8_t* row, int pixels) {
  const int fitting = std::min(pixels, width_ - mark_.column);
  // Intended: the pixels of an eight-bit literal that do not fit are not skipped but read as codes. The rasteriser does
  // so.
  const int bytes = bitCount_ == 4 ? (pixels + 1) / 2 : bitCount_ == 8 ? fitting : pixels * 3;
  for (int i = 0; i < bytes + bytes % 2; ++i) {
    const int byte = Next();
    if (byte < 0) return false;
    if (row == nullptr || i >= bytes) continue;
    const auto at = static_cast<std::size_t>(mark_.column);
    const auto index = static_cast<std::size_t>(i);
    if (bitCount_ == 4) {
      if (i * 2 < fitting) row[at + index * 2] = static_cast<uint8_t>(byte >> 4);
      if (i * 2 + 1 < fitting) row[at + index * 2 + 1] = static_cast<uint8_t>(byte & 0x0F);
    } else if (bitCount_ == 8) {
      row[at + index] = static_cast<uint8_t>(byte);
    } else if (i < fitting * 3) {
      row[at * 3 + index] = static_cast<uint8_t>(byte);
    }
  }
  mark_.column += fitting;
  return true;
}

bool RleReader::NextRow(uint8_t* row) {
  const std::size_t bytes = static_cast<std::size_t>(width_) * (bitCount_ == 24 ? 3 : 1);
  if (row != nullptr) std::memset(row, 0, bytes);
  if (mark_.ended) return true;
  if (mark_.emptyRows > 0) {
    --mark_.emptyRows;
    return true;
  }
  for (;;) {
    const int first = Next();
    const int second = Next();
    if (second < 0) return mark_.column >= width_ && std::exchange(mark_.column, 0) != 0;
    if (first != 0) {
      uint8_t value[3] = {static_cast<uint8_t>(second), 0, 0};
      if (bitCount_ == 4) {
        value[0] = static_cast<uint8_t>(second >> 4);
        value[1] = static_cast<uint8_t>(second & 0x0F);
      } else if (bitCount_ == 24) {
        const int green = Next();
        const int red = Next();
        if (red < 0) return false;
        value[1] = static_cast<uint8_t>(green);
        value[2] = static_cast<uint8_t>(red);
      }
      const int count = std::min(first, width_ - mark_.column);
      Pixels(row, count, value, bitCount_ == 4 ? 2 : 1);
      mark_.column += count;
    } else if (second == 0) {
      mark_.column = 0;
      return true;
    } else if (second == 1) {
      mark_.ended = true;
      return true;
    } else if (second == 2) {
      const int right = Next();
      const int down = Next();
      if (down < 0) return false;
      mark_.column = std::min(mark_.column + right, width_);
      if (down != 0) {
        mark_.emptyRows = down - 1;
        return true;
      }
    } else if (!Literal(row, second)) {
      return false;
    }
  }
}

}  // namespace qnv::tool
