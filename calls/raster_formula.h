// Raster codes as formulas of pattern, source and destination.
#pragma once

#include <cstdint>
#include <string>

namespace qnv::calls {

// "P & (S | D)" for the index of a ternary operation (bits 16..23 of its code): a shortest formula. "0" and "1" stand
// for all bits cleared and set.
std::string RasterFormula(uint8_t index);

}  // namespace qnv::calls
