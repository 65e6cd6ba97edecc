// Lays glyphs out as cells of a raster font: all of one height, ink moved inside the cell.
#include "qnvtool/text/font_record.h"

#include <algorithm>

#include "qnvdrv10.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kLongTable = 82;
constexpr std::size_t kLongEntry = 6;
constexpr uint16_t kOneByteType = 0x0300;  // any value but 0x200 has the long table
constexpr uint16_t kTwoByteType = 0x0320;
constexpr uint8_t kVariablePitch = 1;

// Pixels that ink left of the pen position is moved to the right.
int InkShift(const Glyph& glyph) { return std::max(0, -glyph.left); }

void PutU16(Bytes& memory, std::size_t at, uint32_t value) {
  memory[at] = static_cast<uint8_t>(value);
  memory[at + 1] = static_cast<uint8_t>(value >> 8);
}

void PutU32(Bytes& memory, std::size_t at, uint32_t value) {
  PutU16(memory, at, value);
  PutU16(memory, at + 2, value >> 16);
}

// Appends a cell: columns of 8 pixels, `height` bytes each, top row first.
void AppendCell(Bytes& memory, const Glyph& glyph, int ascent, int height) {
  const std::size_t stride = static_cast<std::size_t>(glyph.columns + 7) / 8;
  const std::size_t cellColumns = static_cast<std::size_t>(CellWidth(glyph) + 7) / 8;
  const std::size_t cell = memory.size();
  memory.resize(cell + cellColumns * static_cast<std::size_t>(height));
  const int left = glyph.left + InkShift(glyph);
  for (int row = 0; row < glyph.rows; ++row) {
    const int y = ascent - glyph.top + row;
    if (y < 0 || y >= height) continue;
    for (int column = 0; column < glyph.columns; ++column) {
      const std::size_t source = static_cast<std::size_t>(row) * stride + static_cast<std::size_t>(column) / 8;
      if ((glyph.bits[source] & 0x80 >> column % 8) == 0) continue;
      const int x = left + column;
      const std::size_t target =
          cell + static_cast<std::size_t>(x / 8) * static_cast<std::size_t>(height) + static_cast<std::size_t>(y);
      memory[target] = static_cast<uint8_t>(memory[target] | 0x80 >> x % 8);
    }
  }
}

// A record with its table and cells; the fields of one-byte fonts are left 0.
FontRecord MakeRecord(const std::vector<Glyph>& glyphs, int ascent, int descent, uint16_t type) {
  FontRecord record;
  int below = descent;
  record.ascent = ascent;
  for (const Glyph& glyph : glyphs) {
    if (glyph.rows == 0) continue;
    record.ascent = std::max(record.ascent, glyph.top);
    below = std::max(below, glyph.rows - glyph.top);
  }
  record.height = std::max(1, record.ascent + below);
  Bytes& memory = record.memory;
  memory.resize(kLongTable + glyphs.size() * kLongEntry);
  PutU16(memory, offsetof(FONTINFO, dfType), type);
  PutU16(memory, offsetof(FONTINFO, dfAscent), static_cast<uint32_t>(record.ascent));
  PutU16(memory, offsetof(FONTINFO, dfPixHeight), static_cast<uint32_t>(record.height));
  memory[offsetof(FONTINFO, dfPitchAndFamily)] = kVariablePitch;
  for (std::size_t i = 0; i < glyphs.size(); ++i) {
    const std::size_t entry = kLongTable + i * kLongEntry;
    PutU16(memory, entry, static_cast<uint32_t>(CellWidth(glyphs[i])));
    PutU32(memory, entry + 2, static_cast<uint32_t>(memory.size()));
    AppendCell(memory, glyphs[i], record.ascent, record.height);
  }
  return record;
}

}  // namespace

int CellWidth(const Glyph& glyph) {
  const int ink = glyph.columns == 0 ? 0 : glyph.left + InkShift(glyph) + glyph.columns;
  return std::max({0, glyph.advance, ink});
}

FontRecord MakeOneByteRecord(const std::vector<Glyph>& glyphs, int ascent, int descent) {
  FontRecord record = MakeRecord(glyphs, ascent, descent, kOneByteType);
  record.memory[offsetof(FONTINFO, dfFirstChar)] = static_cast<uint8_t>(kFirstLatin);
  record.memory[offsetof(FONTINFO, dfLastChar)] = static_cast<uint8_t>(kLastLatin);
  record.memory[offsetof(FONTINFO, dfDefaultChar)] = static_cast<uint8_t>('?' - kFirstLatin);
  record.memory[offsetof(FONTINFO, dfBreakChar)] = static_cast<uint8_t>(' ' - kFirstLatin);
  return record;
}

FontRecord MakeTwoByteRecord(const std::vector<Glyph>& glyphs, int ascent, int descent) {
  return MakeRecord(glyphs, ascent, descent, kTwoByteType);
}

}  // namespace qnv::tool
