// Pictures whose files say how they are to be turned.
#pragma once

#include <cstdint>

#include "qnvtool/input/row_store.h"

namespace qnv::tool {

// The eight ways, numbered as in EXIF and TIFF: where the first row and the first column of the file are shown. 1: top,
// left; 2: top, right; 3: bottom, right; 4: bottom, left; 5: left, top; 6: right, top; 7: right, bottom; 8: left,
// bottom.
struct Orientation {
  int number = 1;

  bool swapsSides() const { return number >= 5; }
};

// The orientation of this number, or 1 for others.
inline Orientation OrientationOf(int number) { return {number >= 1 && number <= 8 ? number : 1}; }

// Puts the rows of a file into a store as they are to be shown.
class OrientedRows {
 public:
  // width, height: in the file. bytes: of a pixel. The store has the sides as they are shown.
  OrientedRows(RowStore& store, Orientation orientation, int width, int height, std::size_t bytes);

  // Adds the next row of the file: width * bytes bytes.
  void Add(const uint8_t* row);

  // Stores what is not stored yet. Fewer rows than `height` may have been added.
  void Finish();

 private:
  void StoreColumns();

  RowStore& store_;
  const Orientation orientation_;
  const int width_;
  const int height_;
  const std::size_t bytes_;
  const std::size_t rowBytes_;
  int blockRows_ = 1;  // rows that are collected, to be stored as columns
  int next_ = 0;       // row of the file
  int collected_ = 0;
  Bytes block_;
  Bytes piece_;
};

}  // namespace qnv::tool
