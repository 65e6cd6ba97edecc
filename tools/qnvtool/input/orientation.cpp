// Mirrors rows, and turns blocks of rows into columns.
#include "qnvtool/input/orientation.h"

#include <algorithm>
#include <cstring>

namespace qnv::tool {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{8} << 20;
constexpr int kMaxBlockRows = 512;

}  // namespace

OrientedRows::OrientedRows(RowStore& store, Orientation orientation, int width, int height, std::size_t bytes)
    : store_(store),
      orientation_(orientation),
      width_(width),
      height_(height),
      bytes_(bytes),
      rowBytes_(static_cast<std::size_t>(width) * bytes),
      piece_(std::max(store.stride(), rowBytes_), 0) {
  if (!orientation.swapsSides()) return;
  blockRows_ = static_cast<int>(std::clamp<std::size_t>(kBlockBytes / rowBytes_, 1, kMaxBlockRows));
  block_.resize(rowBytes_ * static_cast<std::size_t>(blockRows_));
}

void OrientedRows::Add(const uint8_t* row) {
  if (orientation_.swapsSides()) {
    std::memcpy(block_.data() + rowBytes_ * static_cast<std::size_t>(collected_), row, rowBytes_);
    ++next_;
    if (++collected_ == blockRows_) StoreColumns();
    return;
  }
  const bool mirrored = orientation_.number == 2 || orientation_.number == 3;
  const bool fromBottom = orientation_.number == 3 || orientation_.number == 4;
  if (mirrored) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(width_); ++x) {
      std::memcpy(piece_.data() + x * bytes_, row + rowBytes_ - (x + 1) * bytes_, bytes_);
    }
  } else {
    std::memcpy(piece_.data(), row, rowBytes_);
  }
  store_.Write(fromBottom ? height_ - 1 - next_ : next_, piece_.data());
  ++next_;
}

void OrientedRows::Finish() {
  if (collected_ != 0) StoreColumns();
}

// Column x of the collected rows becomes a part of a row of the store.
void OrientedRows::StoreColumns() {
  const bool fromRight = orientation_.number == 6 || orientation_.number == 7;  // the first row is the right column
  const bool upwards = orientation_.number == 7 || orientation_.number == 8;    // the first column is the bottom row
  const int first = next_ - collected_;
  const auto count = static_cast<std::size_t>(collected_);
  for (int x = 0; x < width_; ++x) {
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t to = fromRight ? count - 1 - i : i;
      std::memcpy(piece_.data() + to * bytes_, block_.data() + i * rowBytes_ + static_cast<std::size_t>(x) * bytes_,
                  bytes_);
    }
    const int column = fromRight ? height_ - next_ : first;
    store_.Write(upwards ? width_ - 1 - x : x, static_cast<std::size_t>(column) * bytes_, piece_.data(),
                 count * bytes_);
  }
  collected_ = 0;
}

}  // namespace qnv::tool
