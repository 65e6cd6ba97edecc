// The rows of BMP files.
#pragma once

#include <memory>

#include "qnvtool/input/bit_fields.h"
#include "qnvtool/input/picture_file.h"

namespace qnv::tool {

// What is known of a BMP file when its headers are read.
struct BmpPixels {
  Input file;
  uint64_t offset = 0;  // of the pixels
  uint64_t size = 0;    // of the rows or codes that the file has, bytes
  int width = 0;
  int height = 0;
  bool topDown = false;
  int bitCount = 0;      // in the file
  bool convert = false;  // bit fields are to be expanded
  ColorMasks masks;
  uint32_t alphaMask = 0;  // 0: opaque

  DibForm form;  // of the windows

  std::size_t stride() const { return DibStride(width, bitCount); }
};

// Rows that are complete in the file. The last row may lack the bytes that fill it up.
int RowsInFile(const BmpPixels& pixels);

// Whether a pixel has any alpha. Files in which all is 0 do not mean alpha.
bool HasAlpha(const BmpPixels& pixels);

std::shared_ptr<PictureRows> OpenBmpRows(const BmpPixels& pixels);

// For run-length codes: passes all rows once. A complete bitmap of few codes is given out as codes.
std::shared_ptr<PictureRows> OpenRleRows(const BmpPixels& pixels, const NoteSink& notes);

}  // namespace qnv::tool
