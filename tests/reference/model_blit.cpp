// Bit-block transfers.
#include "reference/band_model.h"

namespace qnv::reference {
namespace {

struct Geometry {
  Rect target;           // in the caller's coordinates, origin added
  int sourceX, sourceY;  // the source pixel of the target's corner
};

Geometry Place(const BlitArgs& args, Point origin, const Rect& clip, const Rect& band, bool usesSource) {
  const int x = args.destX + origin.x;
  const int y = args.destY + origin.y;
  Rect target{x, y, x + args.width, y + args.height};
  constexpr Geometry kNothing{{0, 0, 0, 0}, 0, 0};
  if (!usesSource) {
    if (!AllZero(clip)) target = Intersect(target, clip);
    if (IsEmpty(target)) return kNothing;
    return {Intersect(target, band), 0, 0};
  }
  if (!AllZero(clip)) {
    // A destination that starts before 0 widens the clip, which keeps it in step with its source.
    Rect widened = clip;
    if (x < 0) widened.left += x;
    if (y < 0) widened.top += y;
    target = Intersect(target, widened);
    if (IsEmpty(target)) return kNothing;
  }
  // What the clip cut off at the left and top does not move the source.
  const Rect source{args.srcX, args.srcY, args.srcX + (target.right - target.left),
                    args.srcY + (target.bottom - target.top)};
  const Rect present = Intersect(source, {0, 0, args.source->bmWidth, args.source->bmHeight});
  if (IsEmpty(present)) return kNothing;
  const Rect moved = Shift(present, {target.left - args.srcX, target.top - args.srcY});
  const Rect final = Intersect(moved, band);
  return {final, final.left + present.left - moved.left, final.top + present.top - moved.top};
}

}  // namespace

uint32_t BandModel::BitBlt(const BlitArgs& args) {
  if (args.clip == nullptr) return 1;
  SelectFillPattern(pattern_, nullptr, args.brush, args.drawMode);
  const uint32_t code = args.rop >> 16;
  const bool wantsPattern = IndexUsesPattern(code & 0xFF) || code > 0xFF;
  if (wantsPattern && pattern_.style == kNothingToPaint) return 1;
  if (code == 0xAA) return 1;

  const uint32_t index = code & 0xFF;
  const bool usesPattern = IndexUsesPattern(index);
  const bool usesSource = IndexUsesSource(index);
  const bool oneBit =
      usesSource && args.source != nullptr && args.source->bmPlanes == 1 && args.source->bmBitsPixel == 1;
  if (usesSource && (args.source == nullptr || (oneBit && args.drawMode == nullptr))) return 1;

  const bool threeBytes = plane_.bytesPerPixel() == 3;
  const auto packed = [&](uint32_t color) { return threeBytes ? SwapRedBlue(color) : color & 0xFF; };
  bool fromCells = usesPattern;
  uint32_t solid = 0;
  // Three operations take even a solid color from the prepared cells; two do not ask whether the brush is hollow.
  if (usesPattern && code != 0xC0 && code != 0xFB && code != 0xE2) {
    if (args.brush == nullptr) return 1;
    if (args.brush->style == BS_HOLLOW && code != 0x5A && code != 0xF0) return 1;
    if (args.brush->style == BS_SOLID) {
      solid = packed(args.brush->colour);
      fromCells = false;
    }
  }
  if (fromCells && !pattern_.HasCells()) return 1;

  const Rect band = CallerBand();
  const Geometry place = Place(args, origin_, Shift(ToRect(*args.clip), origin_), band, usesSource);
  for (int y = place.target.top; y < place.target.bottom; ++y) {
    for (int x = place.target.left; x < place.target.right; ++x) {
      Spot spot;
      if (!Kept(x - band.left, y - band.top, &spot)) continue;
      uint32_t source = 0;
      if (usesSource) {
        const int sourceX = place.sourceX + x - place.target.left;
        const int sourceY = place.sourceY + y - place.target.top;
        const uint8_t* row = static_cast<const uint8_t*>(args.source->bmBits) + sourceY * args.source->bmWidthBytes;
        if (oneBit) {
          const bool set = (row[sourceX / 8] >> (7 - sourceX % 8) & 1) != 0;
          source = packed(set ? args.drawMode->bkColor : args.drawMode->TextColor);
        } else {
          // Other sources count their first pixel by their own depth, the next ones by the device's.
          const int start = place.sourceX * args.source->bmBitsPixel / 8;
          const int step = x - place.target.left;
          if (scaled() ? description_.bitsPerPixel == 24 : threeBytes) {
            const uint8_t* p = scaled() ? row + start + 3 * step : row + 3 * sourceX;
            source = uint32_t{p[0]} << 16 | uint32_t{p[1]} << 8 | p[2];
          } else {
            source = row[start + step] * 0x010101u;
          }
        }
      }
      const uint32_t pattern = fromCells ? pattern_.Cell(spot.column, spot.row) : solid;
      Put(spot.column, spot.row, EvaluateRop3(index, pattern, source, plane_.Read(spot.column, spot.row)));
    }
  }
  return 1;
}

}  // namespace qnv::reference
