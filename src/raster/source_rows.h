// The source bitmap of a transfer as rows of pixels in the byte order of the band.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/row_kernels.h"

namespace qnv {

// The pixel format of a source, and of the band that it is converted for.
enum class SourceForm : uint8_t {
  kOneBitTo24,  // set bits stand for the background color, clear ones for the text color
  kOneBitTo8,
  kRedGreenBlue,  // three bytes a pixel, into a 24-bit band
  kBlueGreenRed,  // the same in the order of the band
  kGray,          // one byte a pixel, into an 8-bit band
  kGrayTo24,      // one byte a pixel, into all three band bytes
};

// A source, opened at the first pixel that a transfer reads.
struct SourceRows {
  // Pixels that are converted at a time. Few enough for the chunk to stay in the first-level cache, and so many that
  // its stores have left the store buffer when the row kernel reads them back.
  static constexpr std::size_t kMaxPixels = 2048;
  using Chunk = uint8_t[kMaxPixels * 3];

  SourceForm form;
  const uint8_t* first;   // byte that holds the first source pixel
  std::size_t firstBit;   // 0..7, one-bit sources only
  std::ptrdiff_t stride;  // bytes from one row to the next
  uint32_t set, clear;    // packed colors, one-bit sources only

  // Whether source bytes are band bytes, so that they are read in the memory of the host.
  bool IsInBandOrder() const { return form == SourceForm::kGray || form == SourceForm::kBlueGreenRed; }

  // Whether rows of `bytes` band bytes follow one another in the source without a gap, so that several can be read as
  // one.
  bool RowsJoin(std::ptrdiff_t bytes) const {
    return (form == SourceForm::kRedGreenBlue || IsInBandOrder()) && stride == bytes;
  }

  // The bytes of a pixel of three bytes; row and column as for Fetch.
  const uint8_t* ThreeBytesAt(int32_t row, int32_t column) const {
    return first + row * stride + std::ptrdiff_t{column} * 3;
  }

  // Returns the address of the band bytes of `count` pixels, either in the memory of the host or converted into
  // `chunk`. row, column: counted from the first pixel of the transfer. indices: null for consecutive pixels, else the
  // column of each pixel, counted from `column`.
  const uint8_t* Fetch(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices, std::size_t count,
                       uint8_t* chunk) const;

  // The same, always into memory of the caller. Without indices the count is not limited by the size of a chunk.
  void FetchInto(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices, std::size_t count,
                 uint8_t* out) const;

 private:
  // FetchInto with indices. Requires: a form that becomes three bytes a pixel; ascending indices.
  void FetchIndexed(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices, std::size_t count,
                    uint8_t* out) const;
};

}  // namespace qnv
