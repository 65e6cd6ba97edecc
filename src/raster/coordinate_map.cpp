// Builds the tables of the resolution mapping for one inch, and looks coordinates of any inch up in them.
#include "raster/coordinate_map.h"

#include <algorithm>
#include <cstdlib>

namespace qnv {
namespace {

// n / d rounded to nearest; an exact half rounds down.
uint32_t RoundDiv(uint32_t n, uint32_t d) { return n / d + (n % d > d / 2 ? 1 : 0); }

}  // namespace

CoordinateMap::~CoordinateMap() {
  std::free(bandIndex_);
  std::free(columnMap_);
}

void CoordinateMap::SetResolutions(uint16_t a, uint16_t b) {
  a_ = a;
  b_ = b;
  toBand_ = Ratio(b, a);
  toPage_ = Ratio(a, b);
  byA_ = Divider(std::max<uint16_t>(a, 1));
}

bool CoordinateMap::Build() {
  // One entry more than an inch has page pixels: when B is more than twice A, the last band pixels of the inch round to
  // page index A.
  columnMap_ = static_cast<int32_t*>(std::malloc((std::size_t{a_} + 1) * sizeof *columnMap_));
  bandIndex_ = static_cast<uint32_t*>(std::malloc(std::max<std::size_t>(b_, 1) * sizeof *bandIndex_));
  if (columnMap_ == nullptr || bandIndex_ == nullptr) return false;
  std::fill_n(columnMap_, std::size_t{a_} + 1, -1);
  for (uint32_t j = 0; j < b_; ++j) {
    // Where several band pixels show the same page pixel, the page pixel is mapped to the last of them.
    const uint32_t i = RoundDiv(j * a_, b_);
    columnMap_[i] = static_cast<int32_t>(j);
    bandIndex_[j] = i;
  }
  // Page pixels without a band pixel take the band index before theirs, marked as dropped.
  uint32_t carried = 0;
  for (uint32_t i = 0; i < a_; ++i) {
    if (columnMap_[i] == -1) {
      columnMap_[i] = static_cast<int32_t>(carried | kDropped);
    } else {
      carried = static_cast<uint32_t>(columnMap_[i]);
    }
  }
  return true;
}

// The table says whether the page pixel is kept; the band pixel itself comes from the rounded mapping.
int32_t CoordinateMap::MapKept(int32_t v) const {
  if (v < 0 || columnMap_[PlaceOf(v).index] < 0) return -1;
  return MapToBand(v);
}

CoordinateMap::TableColumns::TableColumns(const CoordinateMap& map, int32_t first) : map_(map) {
  const InchPlace place = map.PlaceOf(first);
  inchColumn_ = WrapMultiply(place.inch, map.b_);
  index_ = place.index;
}

int32_t CoordinateMap::PageOf(int32_t band) const {
  const InchPlace place = PlaceOfBand(band);
  return WrapAdd(WrapMultiply(place.inch, a_), static_cast<int32_t>(bandIndex_[place.index]));
}

// For a dropped page pixel it is the band pixel after the nearest one before.
int32_t CoordinateMap::FirstBandFrom(int32_t v) const {
  const InchPlace place = PlaceOf(v);
  const uint32_t entry = static_cast<uint32_t>(columnMap_[place.index]);
  const uint32_t kept = (entry & kDropped) == 0 ? entry : (entry & ~kDropped) + 1;
  return WrapAdd(WrapMultiply(place.inch, b_), static_cast<int32_t>(kept));
}

}  // namespace qnv
