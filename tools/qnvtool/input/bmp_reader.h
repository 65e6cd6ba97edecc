// Reads BMP files. Their rows are passed to the rasteriser as they are wherever it can read them.
#pragma once

#include "qnvtool/input/picture_file.h"

namespace qnv::tool {

// Opens a BMP file:
//   headers      12 (core), 16 and 64 (OS/2 v2), 40, 52, 56, 108, 124 bytes; all become BITMAPINFOHEADER
//   pixels       1, 2, 4, 8, 16, 24, 32 bits; RLE4, RLE8 and RLE24; bit fields of 16 and 32 bits; embedded PNG and JPEG
//   converted    2 bits to 4; three-byte color tables to four bytes an entry; bit-field pixels with masks that the
//                rasteriser does not read (any 32-bit layout but 8-8-8, odd 16-bit masks) to plain 32-bit pixels;
//                pixels with alpha to 24 bits over white; RLE24 to rows
//   RLE          up to kMaxRleCodes bytes of complete codes are passed on, with the zeros behind them that the
//                rasteriser asks for; longer or broken ones are decoded row by row
//   missing      rows that the file does not hold are white
// Throws ToolError (bad input) that names the first field that is wrong; every field is compared with the size of the
// file before anything is read through it.
PicturePtr OpenBmp(const Input& file, const PictureDecoders& decoders, const NoteSink& notes);

inline constexpr std::size_t kMaxRleCodes = std::size_t{4} << 20;  // bytes

}  // namespace qnv::tool
