// Computes the source rectangle of an image and its destination in 16.16, with the double arithmetic that the interface
// prescribes: every operation in this order, rounded to double.
#include "image/source_mapping.h"

#include <bit>

#include "image/rounding_mode.h"

namespace qnv {
namespace {

// A double as sign, integer part and whether there is a fraction. Conversions to 64 bits, floor and ceil would use the
// x87 unit on 32-bit builds, and the state of that unit belongs to the host.
struct Parts {
  uint64_t whole = 0;  // integer part of the magnitude; 0 for magnitudes from 2^63 on
  bool negative = false;
  bool fraction = false;  // the number is not an integer
};

Parts Decompose(double v) {
  const uint64_t bits = std::bit_cast<uint64_t>(v);
  const int exponent = static_cast<int>(bits >> 52 & 0x7FF) - 1075;
  const uint64_t mantissa = (bits & ((uint64_t{1} << 52) - 1)) | uint64_t{1} << 52;
  Parts parts;
  parts.negative = bits >> 63 != 0;
  if (exponent >= 0) {
    if (exponent < 11) parts.whole = mantissa << exponent;
  } else if (exponent > -53) {
    parts.whole = mantissa >> -exponent;
    parts.fraction = (mantissa & ((uint64_t{1} << -exponent) - 1)) != 0;
  } else {
    parts.fraction = v != 0;
  }
  return parts;
}

// The low 32 bits of a number with the sign of `parts`: larger numbers wrap.
int32_t Signed(const Parts& parts, uint64_t magnitude) {
  return static_cast<int32_t>(static_cast<uint32_t>(parts.negative ? 0 - magnitude : magnitude));
}

int32_t Truncate(double v) {
  const Parts parts = Decompose(v);
  return Signed(parts, parts.whole);
}

int32_t Floor(double v) {
  const Parts parts = Decompose(v);
  return Signed(parts, parts.whole + (parts.negative && parts.fraction ? 1 : 0));
}

int32_t Ceil(double v) {
  const Parts parts = Decompose(v);
  return Signed(parts, parts.whole + (!parts.negative && parts.fraction ? 1 : 0));
}

int32_t ToInt16(int32_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

int32_t ToFixed(double v) { return Truncate(0.5 + v * 65536.0); }

bool SameSign(int32_t a, int32_t b) { return (a < 0) == (b < 0); }

struct Edges {
  int32_t low, high;
};

// The source pixels that the range [from, to) touches, cut to [0, size).
Edges CoveredPixels(double from, double to, int32_t size) {
  return {MaxOf(ToInt16(Floor(from)), 0), MinOf(ToInt16(Ceil(to)), size)};
}

}  // namespace

bool MapSource(const StretchRequest& request, const Rect& clipped, const Rect& band, int32_t sourceWidth,
               int32_t sourceHeight, bool topDown, SourceMapping* mapping) {
  const DefaultRounding rounding;
  int32_t sx = request.srcX, sy = request.srcY, sw = request.srcWidth, sh = request.srcHeight;
  if (topDown) {
    sy = WrapSubtract(sourceHeight, sy);
    sh = WrapSubtract(0, sh);
  }
  // Intended: an extent of 0 counts as the one pixel before the given edge.
  if (sh == 0 && sy != 0) {
    sy = WrapSubtract(sy, 1);
    sh = 1;
  }
  if (sw == 0 && sx != 0) {
    sx = WrapSubtract(sx, 1);
    sw = 1;
  }
  // Source pixels per destination pixel, and the source position of destination coordinate 0.
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
