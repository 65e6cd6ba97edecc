// Reads PNG files with libpng.
#pragma once

#include "qnvtool/input/picture_file.h"

namespace qnv::tool {

// Opens a PNG file: all color types and depths, interlaced or not. Gray levels and palettes of up to 8 bits stay
// palettes (2 bits become 4), everything else becomes 24-bit pixels or, when it is gray, 8-bit ones. Transparency is
// laid over white. Interlaced pictures are collected row by row in a RowStore. Rows that are damaged or missing are
// white. Throws ToolError (bad input).
std::unique_ptr<PicturePages> OpenPng(const Input& file, const NoteSink& notes);

}  // namespace qnv::tool
