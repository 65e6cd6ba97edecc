// The resolution-mapping device's two ways from page coordinates (resolution A) to the band (resolution B):
// rounded for single coordinates, and thinning for whole rows and columns, where tables say which page
// pixels fall on a band pixel.
#pragma once

#include <cstdint>

#include "raster/ratio.h"
#include "raster/wrap.h"

namespace qnv {

class CoordinateMap {
 public:
  CoordinateMap() = default;
  ~CoordinateMap();
  CoordinateMap(const CoordinateMap&) = delete;
  CoordinateMap& operator=(const CoordinateMap&) = delete;

  // Sets the resolutions alone; enough for MapToBand and MapToPage.
  void SetResolutions(uint16_t a, uint16_t b);

  // Allocates and fills the tables. Requires: a is not 0. False without memory.
  bool Build();

  int32_t MapToBand(int32_t v) const { return toBand_.Of(v); }
  int32_t MapToPage(int32_t v) const { return toPage_.Of(v); }

  // The largest magnitude whose MapToBand is no overflow.
  int64_t FarthestMapped() const {
    if (b_ == 0) return int64_t{INT32_MAX} + 1;
    return (((int64_t{INT32_MAX} + 1) * a_ - 1 - a_ / 2) / b_);
  }

  // -1: the page row or column is not stored in the band.
  int32_t MapKept(int32_t v) const;

  // The band column of page column v: its inch, also one left of the page, and the table's entry within it.
  // False for a dropped column. Text is placed by this.
  bool TableColumn(int32_t v, int32_t* column) const { return TableColumns(*this, v).Next(column); }

  // The same for one column after another.
  class TableColumns {
   public:
    TableColumns(const CoordinateMap& map, int32_t first);
    bool Next(int32_t* column);

   private:
    const CoordinateMap& map_;
    int32_t inchColumn_;  // band column where the inch begins
    int32_t index_;
  };

  // True when every band pixel holds a page pixel of its own: MapKept of it is that band pixel.
  bool Decimates() const { return b_ != 0 && b_ <= a_; }
  // The page pixel of a band pixel. Requires: Decimates(), band >= 0.
  int32_t PageOf(int32_t band) const;
  // Calls take(page pixel) for the band pixels [band, end) until it returns false. Requires as PageOf.
  template <class Take>
  void ForEachPage(int32_t band, int32_t end, Take take) const {
    int32_t index = band % b_;
    for (int32_t inch = PageOf(band - index); band < end; inch = WrapAdd(inch, a_), index = 0) {
      for (; index < b_ && band < end; ++index, ++band) {
        if (!take(inch + static_cast<int32_t>(bandIndex_[index]))) return;
      }
    }
  }
  // The first band pixel whose page pixel is v or a later one. Requires: Decimates(), v >= 0.
  int32_t FirstBandFrom(int32_t v) const;
  // The same behind every coordinate too: v may be 2^31.
  int32_t EndBandOf(int64_t v) const {
    if (v <= INT32_MAX) return FirstBandFrom(static_cast<int32_t>(v));
    return WrapAdd(FirstBandFrom(INT32_MAX), MapKept(INT32_MAX) >= 0 ? 1 : 0);
  }

  uint16_t a() const { return a_; }
  uint16_t b() const { return b_; }
  const int32_t* columnMap() const { return columnMap_; }
  const uint32_t* bandIndex() const { return bandIndex_; }

 private:
  // An entry of a page index on which no band index falls: the nearest one before.
  static constexpr uint32_t kDropped = 0x80000000u;

  struct InchPlace {
    int32_t inch, index;
  };
  // Requires: v >= 0.
  InchPlace PlaceOf(int32_t v) const {
    const int32_t inch = static_cast<int32_t>(byA_.Divide(static_cast<uint32_t>(v)));
    return {inch, v - inch * a_};
  }

  uint16_t a_ = 1;
  uint16_t b_ = 1;
  Ratio toBand_{1, 1};
  Ratio toPage_{1, 1};
  Divider byA_{1};
  int32_t* columnMap_ = nullptr;   // a_ + 1 entries: band index, or the nearest before it with bit 31 set
  uint32_t* bandIndex_ = nullptr;  // b_ entries: page index 0..a_ of each band index
};

inline bool CoordinateMap::TableColumns::Next(int32_t* column) {
  const int32_t entry = map_.columnMap_[index_];
  *column = WrapAdd(inchColumn_, entry);
  if (++index_ == map_.a_) {
    index_ = 0;
    inchColumn_ = WrapAdd(inchColumn_, map_.b_);
  }
  return entry >= 0;
}

}  // namespace qnv
