// Reads BMP files and converts them to the one form of bitmap that the rasteriser takes.
#pragma once

#include <string>

#include "qnvtool/input/dib.h"

namespace qnv::tool {

// Turns the bytes of a BMP file into a Dib:
//   headers      12 (core), 16 and 64 (OS/2 v2), 40, 52, 56, 108, 124 bytes; all become BITMAPINFOHEADER
//   pixels       1, 4, 8, 16, 24, 32 bits; RLE4 and RLE8; bit fields of 16 and 32 bits
//   converted    three-byte color tables to four bytes an entry; bit-field pixels with masks that the rasteriser
//                does not read (any 32-bit layout but 8-8-8, odd 16-bit masks) to plain 32-bit pixels
//   RLE          end-of-bitmap codes are appended, so that a stream that breaks off ends the picture there
// `name` stands in front of error messages. Throws ToolError (bad input) that names the first field that is wrong;
// every field is compared with the size of the file before anything is read through it.
Dib ReadBmp(const Bytes& file, const std::string& name);

// True when the file begins as a BMP file does.
bool LooksLikeBmp(const Bytes& file);

}  // namespace qnv::tool
