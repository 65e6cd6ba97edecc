#include "raster/coordinate_map.h"

#include <algorithm>
#include <cstdlib>

#include "raster/mul_div.h"
#include "raster/wrap.h"

namespace qnv {
namespace {

// An exact half rounds down.
uint32_t RoundDiv(uint32_t n, uint32_t d) { return n / d + (n % d > d / 2 ? 1 : 0); }

}  // namespace

CoordinateMap::~CoordinateMap() {
  std::free(bandIndex_);
  std::free(columnMap_);
}

bool CoordinateMap::Build() {
  // Where B is more than twice A the last band indices round to page index A, one past the inch.
  columnMap_ = static_cast<int32_t*>(std::malloc((std::size_t{a_} + 1) * sizeof *columnMap_));
  bandIndex_ = static_cast<uint32_t*>(std::malloc(std::max<std::size_t>(b_, 1) * sizeof *bandIndex_));
  if (columnMap_ == nullptr || bandIndex_ == nullptr) return false;
  std::fill_n(columnMap_, std::size_t{a_} + 1, -1);
  for (uint32_t j = 0; j < b_; ++j) {
    const uint32_t i = RoundDiv(j * a_, b_);
    columnMap_[i] = static_cast<int32_t>(j);
    bandIndex_[j] = i;
  }
  uint32_t carried = 0;
  for (uint32_t i = 0; i < a_; ++i) {
    if (columnMap_[i] == -1) {
      columnMap_[i] = static_cast<int32_t>(carried | 0x80000000u);
    } else {
      carried = static_cast<uint32_t>(columnMap_[i]);
    }
  }
  return true;
}

int32_t CoordinateMap::MapToBand(int32_t v) const { return MulDiv(v, b_, a_); }

int32_t CoordinateMap::MapToPage(int32_t v) const { return MulDiv(v, a_, b_); }

int32_t CoordinateMap::MapKept(int32_t v) const {
  if (v < 0 || columnMap_[v % a_] < 0) return -1;
  return MapToBand(v);
}

bool CoordinateMap::TableColumn(int32_t v, int32_t* column) const {
  int32_t inch = v / a_;
  int32_t index = v % a_;
  if (index < 0) {
    index += a_;
    --inch;
  }
  const int32_t entry = columnMap_[index];
  if (entry < 0) return false;
  *column = WrapAdd(WrapMultiply(inch, b_), entry);
  return true;
}

}  // namespace qnv
