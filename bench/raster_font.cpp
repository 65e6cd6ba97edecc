// Draws a font of random strokes.
#include "raster_font.h"

#include <algorithm>
#include <cstring>

#include "platform_header.h"

namespace qnv::bench {
namespace {

// Printable ASCII. The character table begins at byte kTable and has entries of kEntry bytes.
constexpr int kFirst = 0x20;
constexpr int kLast = 0x7E;
constexpr std::size_t kTable = 82;
constexpr std::size_t kEntry = 6;

struct Glyph {
  uint8_t* bits;
  int width, height;

  // Sets a pixel; glyphs are stored in columns of eight pixels.
  void Set(int x, int y) { bits[(x / 8) * height + y] |= static_cast<uint8_t>(0x80 >> (x % 8)); }

  void FillBox(int left, int top, int right, int bottom) {
    for (int y = std::max(top, 0); y < std::min(bottom, height); ++y) {
      for (int x = std::max(left, 0); x < std::min(right, width); ++x) Set(x, y);
    }
  }
};

// Two vertical and two horizontal strokes at random places inside the cell.
void DrawStrokes(Glyph glyph, Random& random) {
  const int pen = std::max(1, glyph.width / 8);
  const int top = glyph.height / 5;
  const int bottom = glyph.height - glyph.height / 5;
  const int left = pen;
  const int right = glyph.width - pen;
  for (int i = 0; i < 2; ++i) {
    const int x = left + random.Below(right - left - pen + 1);
    const int y = top + random.Below(bottom - top - pen + 1);
    glyph.FillBox(x, top, x + pen, bottom);
    glyph.FillBox(left, y, right, y + pen);
  }
}

}  // namespace

std::vector<uint8_t> MakeRasterFont(int cellWidth, int cellHeight) {
  const std::size_t characters = kLast - kFirst + 1;
  const std::size_t glyphBytes = static_cast<std::size_t>((cellWidth + 7) / 8 * cellHeight);
  const std::size_t glyphStart = kTable + characters * kEntry;
  std::vector<uint8_t> block(glyphStart + characters * glyphBytes, 0);
  FONTINFO font = {};
  font.dfPixWidth = static_cast<int16_t>(cellWidth);
  font.dfPixHeight = static_cast<int16_t>(cellHeight);
  font.dfPitchAndFamily = 1;
  font.dfFirstChar = kFirst;
  font.dfLastChar = kLast;
  std::memcpy(block.data(), &font, sizeof font);
  Random random(5);
  for (std::size_t i = 0; i < characters; ++i) {
    const uint16_t width = static_cast<uint16_t>(cellWidth);
    const uint32_t offset = static_cast<uint32_t>(glyphStart + i * glyphBytes);
    std::memcpy(&block[kTable + i * kEntry], &width, sizeof width);
    std::memcpy(&block[kTable + i * kEntry + 2], &offset, sizeof offset);
    if (i > 0) DrawStrokes({&block[offset], cellWidth, cellHeight}, random);  // the first is the space
  }
  return block;
}

char RandomCharacter(Random& random) {
  // About every sixth character of a line is a space.
  if (random.Below(6) == 0) return kFirst;
  return static_cast<char>(kFirst + 1 + random.Below(kLast - kFirst));
}

}  // namespace qnv::bench
