// A device-independent bitmap as the rasteriser takes it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// The largest width and height that the rasteriser accepts.
inline constexpr int kMaxDibSide = 32767;

struct Dib {
  int width = 0;         // pixels
  int height = 0;        // rows, always positive
  bool topDown = false;  // the first stored row is the top one
  int bitCount = 0;
  uint32_t compression = 0;

  // Pixels per metre as the file says, 0 when it does not.
  int xPixelsPerMetre = 0;
  int yPixelsPerMetre = 0;

  Bytes info;  // BITMAPINFOHEADER, then the color table (4 bytes an entry) or three masks
  Bytes bits;  // pixel rows or RLE codes, safe to decode to the last row

  std::vector<std::string> remarks;  // faults of the file that reading has repaired, for the user
};

// Bytes from one stored row to the next.
inline std::size_t DibStride(int width, int bitCount) {
  return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bitCount) + 31) / 32 * 4;
}

}  // namespace qnv::tool
