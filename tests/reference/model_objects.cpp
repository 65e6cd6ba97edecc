// Pens and brushes.
#include "reference/band_model.h"

namespace qnv::reference {
namespace {

// The six hatches, most significant bit leftmost: a 0 bit is a line pixel, a 1 bit a gap.
constexpr uint8_t kHatchRows[6][8] = {
    {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},  // horizontal
    {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F},  // vertical
    {0x7F, 0xBF, 0xDF, 0xEF, 0xF7, 0xFB, 0xFD, 0xFE},  // falling diagonal
    {0xFE, 0xFD, 0xFB, 0xF7, 0xEF, 0xDF, 0xBF, 0x7F},  // rising diagonal
    {0x00, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F},  // cross
    {0x7D, 0xBB, 0xD7, 0xEF, 0xD7, 0xBB, 0x7D, 0xFE},  // diagonal cross, one pixel alone in the last row
};

uint32_t RealizePen(const Model& model, const LogicalPen& in, PhysicalPen* out) {
  out->style = in.style == PS_NULL ? PS_NULL : PS_SOLID;
  out->widthX = in.widthX;
  out->widthY = in.widthY;
  out->colour = model.ColorInfo(in.colour);
  return 0x8000;
}

uint32_t PatternCell(const SourceBitmap& bitmap, int row, int column) {
  const uint8_t* line = static_cast<const uint8_t*>(bitmap.bmBits) + row * bitmap.bmWidthBytes;
  if (bitmap.bmBitsPixel == 24) {
    const uint8_t* p = line + 3 * column;
    return 0xFF000000u | uint32_t{p[2]} << 16 | uint32_t{p[1]} << 8 | p[0];
  }
  if (bitmap.bmBitsPixel == 8) return 0xFF000000u | line[column] * 0x010101u;
  return (line[0] >> (7 - column) & 1) != 0 ? 0x00FFFFFFu : 0xFF000000u;
}

}  // namespace

uint32_t BandModel::RealizeObject(uint32_t kind, const void* input, void* output) const {
  kind &= 0xFFFF;
  if (kind != OBJ_PEN && kind != OBJ_BRUSH) return 0;
  if (output == nullptr) return kind == OBJ_PEN ? 10 : 268;
  if (input == nullptr) return 0;
  if (kind == OBJ_PEN)
    return RealizePen(*this, *static_cast<const LogicalPen*>(input), static_cast<PhysicalPen*>(output));

  const LogicalBrush& in = *static_cast<const LogicalBrush*>(input);
  PhysicalBrush* out = static_cast<PhysicalBrush*>(output);
  const uint8_t scale = static_cast<uint8_t>(scaled() ? 1 : description_.resolutionA / 720 + 1);
  out->style = in.style;
  out->hatch = static_cast<uint16_t>(in.hatch);
  out->patternDepth = 0;
  out->hatchScale[0] = scale;
  out->hatchScale[1] = scale;
  out->colour = ColorInfo(static_cast<uint32_t>(in.colour));
  if (in.style == BS_SOLID) return 0x8002;
  if (in.style == BS_HOLLOW) return 0x8000;
  if (in.style > BS_PATTERN) return 0;

  if (in.style == BS_HATCHED) {
    if (in.hatch < 0 || in.hatch > 5) return 0x8000;
    for (int i = 0; i < 64; ++i) {
      const bool gap = (kHatchRows[in.hatch][i / 8] >> (7 - i % 8) & 1) != 0;
      out->cells[i] = gap ? in.background : out->colour | 0xFF000000u;
    }
    return 0x8000;
  }

  const SourceBitmap* bitmap = reinterpret_cast<const SourceBitmap*>(in.colour);
  if (bitmap == nullptr || bitmap->bmBits == nullptr) return 0;
  out->patternDepth = bitmap->bmBitsPixel == 24 || bitmap->bmBitsPixel == 8 ? bitmap->bmBitsPixel : 1;
  for (int i = 0; i < 64; ++i) out->cells[i] = PatternCell(*bitmap, i / 8, i % 8);
  if (out->patternDepth == 1) out->colour = 0;
  return 0x8000;
}

}  // namespace qnv::reference
