// Reads run-length codes of BMP files, row by row, from a file of any size.
#pragma once

#include <cstdint>
#include <vector>

#include "qnvtool/input/input_file.h"

namespace qnv::tool {

// The codes of RLE4, RLE8 and RLE24. Rows come in the order of the file, the bottom row first. What the codes mean is
// the same as in the rasteriser: rows end by an end of line, the end of the bitmap or a delta; runs are cut at the end
// of a row; pixels that no code names are 0.
class RleReader {
 public:
  // bitCount: 4, 8 or 24.
  RleReader(Input codes, int bitCount, int width);

  // Decodes the next row: one palette index a byte, or three bytes a pixel. A null `row` only passes it. False when the
  // codes break off before the row is complete; then all later rows are missing too.
  bool NextRow(uint8_t* row);

  // Where a row begins. Requires for MoveTo: `mark` came from Here() of a reader of the same codes.
  struct Mark {
    uint64_t at = 0;
    int emptyRows = 0;  // of a delta
    int column = 0;     // where the codes of the next row that is not empty continue
    bool ended = false;
  };
  Mark Here() const;
  void MoveTo(const Mark& mark);

 private:
  int Next();
  bool Literal(uint8_t* row, int pixels);
  void Pixels(uint8_t* row, int count, const uint8_t* value, int valueBytes);

  const Input codes_;
  const int bitCount_;
  const int width_;
  Mark mark_;
  Bytes buffer_;
  uint64_t bufferAt_ = 0;
  std::size_t used_ = 0;
};

}  // namespace qnv::tool
