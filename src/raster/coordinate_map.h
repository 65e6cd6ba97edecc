// From page coordinates at resolution A to band coordinates at resolution B, for the resolution-mapping device. There
// are two mappings. Single coordinates, such as the ends of spans, are multiplied by B / A and rounded. Whole rows and
// columns of pictures are decimated: tables for one inch say which page pixel each band pixel shows; the other page
// pixels are dropped.
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

  // Sets the resolutions, in dots per inch. Enough for MapToBand, MapToPage and FarthestMapped.
  void SetResolutions(uint16_t a, uint16_t b);

  // Allocates and fills the tables that the other functions need. Requires: a is not 0. False without memory.
  bool Build();

  // Rounded mapping; -1 on overflow.
  int32_t MapToBand(int32_t v) const { return toBand_.Of(v); }
  int32_t MapToPage(int32_t v) const { return toPage_.Of(v); }

  // The largest magnitude that MapToBand maps without overflow.
  int64_t FarthestMapped() const {
    if (b_ == 0) return int64_t{INT32_MAX} + 1;
    return (((int64_t{INT32_MAX} + 1) * a_ - 1 - a_ / 2) / b_);
  }

  // The band row or column that shows page row or column v; -1 when v is dropped or negative.
  int32_t MapKept(int32_t v) const;

  // The band column of page column v, for the glyphs of text. Unlike MapKept it also maps columns left of the page.
  // False for a dropped column.
  bool TableColumn(int32_t v, int32_t* column) const { return TableColumns(*this, v).Next(column); }

  // TableColumn for consecutive columns from `first` on.
  class TableColumns {
   public:
    TableColumns(const CoordinateMap& map, int32_t first);
    bool Next(int32_t* column);

   private:
    const CoordinateMap& map_;
    int32_t inchColumn_;  // band column where the inch begins
    int32_t index_;       // page column within the inch
  };

  // True when the band is not finer than the page, so that every band pixel shows a page pixel of its own. Then loops
  // may run over band pixels and look up the page pixel of each.
  bool Decimates() const { return b_ != 0 && b_ <= a_; }
  // The page pixel that a band pixel shows, left of the page too. Requires: Decimates().
  int32_t PageOf(int32_t band) const;
  // Calls take(page pixel) for each of the band pixels [band, end) until take returns false. Requires as PageOf.
  template <class Take>
  void ForEachPage(int32_t band, int32_t end, Take take) const {
    InchPlace place = PlaceOfBand(band);
    for (int32_t inch = WrapMultiply(place.inch, a_); band < end; inch = WrapAdd(inch, a_), place.index = 0) {
      for (; place.index < b_ && band < end; ++place.index, ++band) {
        if (!take(WrapAdd(inch, static_cast<int32_t>(bandIndex_[place.index])))) return;
      }
    }
  }
  // The first band pixel whose page pixel is v or a later one. Requires: Decimates().
  int32_t FirstBandFrom(int32_t v) const;
  // The same for the end of a range, which may be 2^31.
  int32_t EndBandOf(int64_t v) const {
    if (v <= INT32_MAX) return FirstBandFrom(static_cast<int32_t>(v));
    return WrapAdd(FirstBandFrom(INT32_MAX), MapKept(INT32_MAX) >= 0 ? 1 : 0);
  }

  uint16_t a() const { return a_; }
  uint16_t b() const { return b_; }
  const int32_t* columnMap() const { return columnMap_; }
  const uint32_t* bandIndex() const { return bandIndex_; }

 private:
  // Marks the entry of a page index that no band index shows; the other bits are the nearest band index before it.
  static constexpr uint32_t kDropped = 0x80000000u;

  // A coordinate as inch and index within the inch. Inches left of the page are negative.
  struct InchPlace {
    int32_t inch, index;
  };
  // Of a page coordinate.
  InchPlace PlaceOf(int32_t v) const {
    const auto divided = [&](int32_t n) { return static_cast<int32_t>(byA_.Divide(static_cast<uint32_t>(n))); };
    const int32_t inch = v >= 0 ? divided(v) : ~divided(~v);
    return {inch, WrapSubtract(v, WrapMultiply(inch, a_))};
  }
  // Of a band coordinate. Requires: b is not 0.
  InchPlace PlaceOfBand(int32_t band) const {
    const int32_t inch = band / b_ - (band % b_ < 0 ? 1 : 0);
    return {inch, WrapSubtract(band, WrapMultiply(inch, b_))};
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
