// Decodes run-length data, BI_RLE8 and BI_RLE4, row by row into palette indices, one a byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv {

// The beginning of a row in the data. Decoding can start from a copy at any time.
struct RleState {
  enum Phase : uint8_t { kCodes, kDelta, kEndOfBitmap };

  const uint8_t* next;  // the next record
  Phase phase = kCodes;
  uint8_t emptyRows = 0;     // kDelta: empty rows before the target row
  int32_t targetColumn = 0;  // kDelta: the column of the target row where codes continue
};

// A row is ended only by an end of line, the end of the bitmap, or a delta to a later row; runs that pass the end of
// the row are cut there. Pixels that no code names are 0.
//
// The data has no length. Requires: the codes end the bitmap, or enough zeros follow the data. The last record that
// begins in the data takes at most 256 bytes behind it (a literal of 255 pixels of which only the count is in the data;
// a delta takes two, a run one). From there on every two zeros are an end of line, and a bitmap has no more of them
// than rows. So at most 256 + 2 x rows bytes behind the data are read; the interface asks hosts for 260 + 2 x rows.
// Copies in whole blocks are only made where all of the block is known to be data.
class RleDecoder {
 public:
  // Bytes that DecodeRow may write past the end of a row.
  static constexpr std::size_t kOvershoot = 48;

  // fourBit: BI_RLE4. width: pixels of a row.
  RleDecoder(bool fourBit, int32_t width) : fourBit_(fourBit), width_(width) {}

  // Moves the state forward by `rows` rows.
  void SkipRows(RleState* state, int32_t rows) const {
    fourBit_ ? SkipRowsOf<true>(state, rows) : SkipRowsOf<false>(state, rows);
  }

  // Decodes the first `columns` palette indices, columns <= width, of the row that begins at `begin`. row: width +
  // kOvershoot bytes. readable: all data before it may be read; the beginning of any later row is such an address.
  void DecodeRow(const RleState& begin, int32_t columns, const uint8_t* readable, uint8_t* row) const {
    fourBit_ ? DecodeRowOf<true>(begin, columns, readable, row) : DecodeRowOf<false>(begin, columns, readable, row);
  }

 private:
  template <bool kFourBit>
  void SkipRowsOf(RleState* state, int32_t rows) const;
  template <bool kFourBit>
  void DecodeRowOf(const RleState& begin, int32_t columns, const uint8_t* readable, uint8_t* row) const;

  bool fourBit_;
  int32_t width_;
};

}  // namespace qnv
