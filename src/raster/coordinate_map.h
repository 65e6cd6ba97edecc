// The resolution-mapping device's two ways from page coordinates (resolution A) to the band (resolution B):
// rounded for single coordinates, and thinning for whole rows and columns, where tables say which page
// pixels fall on a band pixel.
#pragma once

#include <cstdint>

namespace qnv {

class CoordinateMap {
 public:
  CoordinateMap() = default;
  ~CoordinateMap();
  CoordinateMap(const CoordinateMap&) = delete;
  CoordinateMap& operator=(const CoordinateMap&) = delete;

  // Sets the resolutions alone; enough for MapToBand and MapToPage.
  void SetResolutions(uint16_t a, uint16_t b) {
    a_ = a;
    b_ = b;
  }

  // Allocates and fills the tables. Requires: a is not 0. False without memory.
  bool Build();

  int32_t MapToBand(int32_t v) const;
  int32_t MapToPage(int32_t v) const;

  // -1: the page row or column is not stored in the band.
  int32_t MapKept(int32_t v) const;

  // The band column of page column v: its inch, also one left of the page, and the table's entry within it.
  // False for a dropped column. Text is placed by this.
  bool TableColumn(int32_t v, int32_t* column) const;

  uint16_t a() const { return a_; }
  uint16_t b() const { return b_; }
  const int32_t* columnMap() const { return columnMap_; }
  const uint32_t* bandIndex() const { return bandIndex_; }

 private:
  uint16_t a_ = 1;
  uint16_t b_ = 1;
  int32_t* columnMap_ = nullptr;   // a_ + 1 entries: band index, or the nearest before it with bit 31 set
  uint32_t* bandIndex_ = nullptr;  // b_ entries: page index 0..a_ of each band index
};

}  // namespace qnv
