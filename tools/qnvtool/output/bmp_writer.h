// Writes the pictures that the tool makes itself as BMP files.
#pragma once

#include <cstdint>
#include <vector>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// 24 bits a pixel. `pixels`: rows from the top, blue, green, red, without padding.
Bytes EncodeBmp24(int width, int height, int dpi, const std::vector<uint8_t>& pixels);

// 8 bits a pixel, RLE8. `indices`: rows from the top; `palette`: 0xRRGGBB, at most 256.
Bytes EncodeBmpRle8(int width, int height, int dpi, const std::vector<uint8_t>& indices,
                    const std::vector<uint32_t>& palette);

// Writes a whole file; "-" is standard output. Throws ToolError (cannot write).
void WriteFile(const std::string& path, const Bytes& bytes);

}  // namespace qnv::tool
