// Reads TIFF files with libtiff.
#pragma once

#include "qnvtool/input/picture_file.h"

namespace qnv::tool {

// Opens a TIFF file; each of its pictures is a page, except thumbnails and masks. Gray levels and palettes of 1 to 8
// bits stay palettes (2 bits become 4), 8-bit RGB becomes 24 bits; everything else that libtiff converts to RGBA
// (tiles, planes, 16 bits, CMYK, YCbCr, alpha, which is laid over white) becomes 24 bits, too. The orientation is
// respected. Rows that are damaged or missing are white. A strip or a row of tiles is in memory at a time: larger ones
// than kMaxTiffPiece are refused, except those of uncompressed pictures. Throws ToolError (bad input).
std::unique_ptr<PicturePages> OpenTiff(const Input& file, const NoteSink& notes);

inline constexpr uint64_t kMaxTiffPiece = uint64_t{64} << 20;  // bytes

}  // namespace qnv::tool
