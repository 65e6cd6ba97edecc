// Run-length data, BI_RLE8 and BI_RLE4, row by row into one palette index a byte.
#pragma once

#include <cstdint>

namespace qnv {

// Where decoding stands between two rows; a copy can be taken up again later.
struct RleState {
  enum Phase : uint8_t { kCodes, kDelta, kEndOfBitmap };

  const uint8_t* next;  // compressed data
  Phase phase = kCodes;
  uint8_t emptyRows = 0;     // kDelta: rows still to pass before the target row
  int32_t targetColumn = 0;  // kDelta: where codes go on in the target row
};

class RleDecoder {
 public:
  // fourBit: BI_RLE4. width: pixels of a row.
  RleDecoder(bool fourBit, int32_t width) : fourBit_(fourBit), width_(width) {}

  // Decodes one row of `width` indices and moves the state to the next. Only an end of line, an end of the
  // bitmap or a delta to a later row ends a row: runs that pass its end are cut. Pixels that no code names
  // are 0. The data has no length: Requires an end-of-bitmap code, or rows enough.
  void DecodeRow(RleState* state, uint8_t* row) const;

  // The same without writing.
  void SkipRow(RleState* state) const;

 private:
  template <class Writer>
  void WalkRow(RleState* state, Writer& writer) const;

  const bool fourBit_;
  const int32_t width_;
};

}  // namespace qnv
