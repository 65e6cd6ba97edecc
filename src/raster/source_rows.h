// The source of a transfer, row by row, in band byte order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/row_kernels.h"

namespace qnv {

// How the bytes of a source become band bytes.
enum class SourceForm : uint8_t {
  kOneBitTo24,  // set bits stand for the background color, clear ones for the text color
  kOneBitTo8,
  kRedGreenBlue,  // three bytes a pixel, into a 24-bit band
  kBlueGreenRed,  // the same in the order of the band
  kGray,          // one byte a pixel, into an 8-bit band
  kGrayTo24,      // one byte a pixel, into all three band bytes
};

struct SourceRows {
  // The longest run fetched into a chunk; it stays in the first-level cache.
  // Long enough that what is stored has left the store buffer when it is read back.
  static constexpr std::size_t kMaxPixels = 2048;
  using Chunk = uint8_t[kMaxPixels * 3];

  SourceForm form;
  const uint8_t* first;   // byte that holds the first source pixel
  std::size_t firstBit;   // 0..7, one-bit sources only
  std::ptrdiff_t stride;  // bytes from one row to the next
  uint32_t set, clear;    // packed colors, one-bit sources only

  // Whether pixels are taken from the host's memory as they are.
  bool IsInBandOrder() const { return form == SourceForm::kGray || form == SourceForm::kBlueGreenRed; }

  // Whether rows that become `bytes` band bytes each follow one another without a gap.
  bool RowsJoin(std::ptrdiff_t bytes) const {
    return (form == SourceForm::kRedGreenBlue || IsInBandOrder()) && stride == bytes;
  }

  // Band bytes of `count` pixels of row `row` (0 = the row of the first source pixel) from pixel `column`
  // (0 = the first) on: where they are, in the host's own memory or in `chunk`.
  // indices: with them, the columns to take instead of consecutive ones, counted from `column`.
  const uint8_t* Fetch(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices, std::size_t count,
                       uint8_t* chunk) const;

  // Fetch into memory that the caller names, any count without indices.
  void FetchInto(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices, std::size_t count,
                 uint8_t* out) const;

 private:
  // Requires: a form that becomes three bytes a pixel; ascending indices.
  void FetchIndexed(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices, std::size_t count,
                    uint8_t* out) const;
};

}  // namespace qnv
