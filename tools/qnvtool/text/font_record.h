// Raster-font records as QNVDevExtTextOut takes them: the FONTINFO fields, the long character table at byte 82 and
// the glyph bits, in one block of memory.
#pragma once

#include <cstdint>
#include <vector>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// The ink and the advance of a character in pixels; y counts upwards from the baseline.
struct Glyph {
  int advance = 0;
  int left = 0;  // from the pen position to the first ink column
  int top = 0;   // from the baseline up to the top of the first ink row
  int columns = 0;
  int rows = 0;
  Bytes bits;  // rows of (columns + 7) / 8 bytes, top row first, bit 0x80 leftmost
};

struct FontRecord {
  Bytes memory;
  int ascent = 0;  // rows from the top of a cell to the baseline
  int height = 0;  // rows of every cell

  bool empty() const { return memory.empty(); }
};

inline constexpr char32_t kFirstLatin = 32;
inline constexpr char32_t kLastLatin = 255;

// The width of the cell of a glyph, which is also its advance. A cell shows ink only between the pen position and its
// end, so ink that extends to the left is moved in, and a cell is at least as wide as its ink.
int CellWidth(const Glyph& glyph);

// One-byte font for the codes kFirstLatin..kLastLatin; glyphs[i] belongs to code kFirstLatin + i. The space is the
// break character, the question mark stands for codes outside. Cells reach at least from `ascent` rows above the
// baseline to `descent` rows below it, farther where a glyph needs it.
FontRecord MakeOneByteRecord(const std::vector<Glyph>& glyphs, int ascent, int descent);

// Two-byte font; glyphs[i] belongs to code i (such fonts know no first code, so codes are dense from 0).
FontRecord MakeTwoByteRecord(const std::vector<Glyph>& glyphs, int ascent, int descent);

}  // namespace qnv::tool
