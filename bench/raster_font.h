// A raster font whose glyphs are strokes, about as dense as letters.
#pragma once

#include <cstdint>
#include <vector>

#include "bench_memory.h"

namespace qnv::bench {

// A variable-pitch record with the long character table; all cells of the same size. The record lies at the start.
std::vector<uint8_t> MakeRasterFont(int cellWidth, int cellHeight);

// A character of that font.
char RandomCharacter(Random& random);

}  // namespace qnv::bench
