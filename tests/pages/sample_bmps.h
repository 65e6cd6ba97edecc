// Images of every kind that a BMP file can hold.
#pragma once

#include <string>

namespace qnv::test {

// Writes 1.bmp, 4.bmp, 8.bmp, 16.bmp, 24.bmp, 32.bmp, 16-fields.bmp, 32-fields.bmp, 24-top-down.bmp, rle4.bmp
// and rle8.bmp, 60 x 40 pixels each, into a folder that exists. Throws ToolError (cannot write).
void WriteSampleBmps(const std::string& folder);

}  // namespace qnv::test
