// Run-length data, BI_RLE8 and BI_RLE4, row by row into one palette index a byte.
#pragma once

#include <cstddef>
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

// Only an end of line, an end of the bitmap or a delta to a later row ends a row: runs that pass its end are cut.
// Pixels that no code names are 0. The data has no length: Requires an end-of-bitmap code that decoding reaches, or
// zeros behind the data: the last record that begins in the data takes at most 256 bytes behind it (the bytes of a
// literal of 255 pixels whose count was the last one; of a delta two, of a run one), and from there on every two zeros
// are an end of line, of which no bitmap has more than rows. Copies in whole blocks keep to what is known to be data.
// So 256 + 2 x rows bytes are never passed; hosts are told 260 + 2 x rows.
class RleDecoder {
 public:
  // What DecodeRow may write past a row's end.
  static constexpr std::size_t kOvershoot = 48;

  // fourBit: BI_RLE4. width: pixels of a row.
  RleDecoder(bool fourBit, int32_t width) : fourBit_(fourBit), width_(width) {}

  // Moves the state on by some rows.
  void SkipRows(RleState* state, int32_t rows) const {
    fourBit_ ? SkipRowsOf<true>(state, rows) : SkipRowsOf<false>(state, rows);
  }

  // Decodes the first `columns` indices of the row that begins at `begin`, columns <= width. row: width + kOvershoot
  // bytes. readable: all data before it may be read, as it may be before the beginning of any later row.
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
