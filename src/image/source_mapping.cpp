#include "image/source_mapping.h"

#include <cmath>

namespace qnv {
namespace {

// Truncates to 64 bits and keeps the low 32: what lies beyond wraps, never is undefined.
int32_t ToInt32(double v) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (!(v > -kLimit && v < kLimit)) return 0;
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(static_cast<int64_t>(v))));
}

int32_t ToInt16(double v) { return static_cast<int16_t>(static_cast<uint16_t>(ToInt32(v))); }

int32_t ToFixed(double v) { return ToInt32(0.5 + v * 65536.0); }

bool SameSign(int32_t a, int32_t b) { return (a < 0) == (b < 0); }

struct Edges {
  int32_t low, high;
};

// The source pixels from the one that holds `from` to the one that holds `to`, inside [0, size].
Edges CoveredPixels(double from, double to, int32_t size) {
  return {MaxOf(ToInt16(std::floor(from)), 0), MinOf(ToInt16(std::ceil(to)), size)};
}

}  // namespace

bool MapSource(const StretchRequest& request, const Rect& clipped, const Rect& band, int32_t sourceWidth,
               int32_t sourceHeight, bool topDown, SourceMapping* mapping) {
  int32_t sx = request.srcX, sy = request.srcY, sw = request.srcWidth, sh = request.srcHeight;
  if (topDown) {
    sy = WrapSubtract(sourceHeight, sy);
    sh = WrapSubtract(0, sh);
  }
  // An extent of zero counts as the one pixel before the given edge.
  if (sh == 0 && sy != 0) {
    sy = WrapSubtract(sy, 1);
    sh = 1;
  }
  if (sw == 0 && sx != 0) {
    sx = WrapSubtract(sx, 1);
    sw = 1;
  }
  const double ky = static_cast<double>(sh) / static_cast<double>(request.dstHeight);
  const double kx = static_cast<double>(sw) / static_cast<double>(request.dstWidth);
  const double yBase = (static_cast<double>(request.dstY) + request.dstHeight) * ky + sy;
  const double xBase = sx - request.dstX * kx;

  const double rowAtTop = yBase - clipped.top * ky;
  const double rowAtBottom = yBase - clipped.bottom * ky;
  const Edges rows = SameSign(sh, request.dstHeight) ? CoveredPixels(rowAtBottom, rowAtTop, sourceHeight)
                                                     : CoveredPixels(rowAtTop, rowAtBottom, sourceHeight);
  const double columnAtLeft = clipped.left * kx + xBase;
  const double columnAtRight = clipped.right * kx + xBase;
  const Edges columns = SameSign(sw, request.dstWidth) ? CoveredPixels(columnAtLeft, columnAtRight, sourceWidth)
                                                       : CoveredPixels(columnAtRight, columnAtLeft, sourceWidth);
  if (rows.low >= rows.high || columns.low >= columns.high) return false;

  const int32_t bandLeft = WrapMultiply(band.left, 65536);
  const int32_t bandTop = WrapMultiply(band.top, 65536);
  const int32_t left = WrapSubtract(ToFixed((columns.low - xBase) / kx), bandLeft);
  const int32_t right = WrapSubtract(ToFixed((columns.high - xBase) / kx), bandLeft);
  const int32_t top = WrapSubtract(ToFixed((yBase - rows.high) / ky), bandTop);
  const int32_t bottom = WrapSubtract(ToFixed((yBase - rows.low) / ky), bandTop);
  mapping->left = columns.low;
  mapping->top = rows.low;
  mapping->columns = columns.high - columns.low;
  mapping->rows = rows.high - rows.low;
  mapping->dstLeft = left;
  mapping->dstTop = top;
  mapping->dstWidth = WrapSubtract(right, left);
  mapping->dstHeight = WrapSubtract(bottom, top);
  mapping->mirrorX = mapping->dstWidth < 0;
  mapping->mirrorY = mapping->dstHeight < 0;
  return true;
}

}  // namespace qnv
