// Device-independent bitmaps as the rasteriser takes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// The largest width and height that the rasteriser accepts.
inline constexpr int kMaxDibSide = 32767;

// Bytes from one stored row to the next.
inline std::size_t DibStride(int width, int bitCount) {
  return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bitCount) + 31) / 32 * 4;
}

// How the pixels of a bitmap are stored.
struct DibForm {
  int width = 0;  // pixels
  int bitCount = 24;
  uint32_t compression = 0;     // BI_RGB, BI_RLE8, BI_RLE4, BI_BITFIELDS
  std::vector<uint32_t> table;  // colors, 0x00RRGGBB, of pixels of up to 8 bits
  std::vector<uint32_t> masks;  // red, green and blue of BI_BITFIELDS

  std::size_t stride() const { return DibStride(width, bitCount); }
};

// A BITMAPINFOHEADER with what follows it. `rows` is negative when the top row is stored first.
Bytes MakeDibInfo(const DibForm& form, int rows);

// Changes the number of rows.
void SetDibRows(Bytes& info, int rows);

// A white row: in the lightest color of the table where there is one.
Bytes WhiteRow(const DibForm& form);

// Converts a row of 2-bit pixels to 4-bit pixels.
void WidenRowTo4(const uint8_t* from, int width, uint8_t* to);

}  // namespace qnv::tool
