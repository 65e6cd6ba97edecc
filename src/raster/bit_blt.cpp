// The bit-block transfer, from the arguments of a call to rows: prepares the fill pattern, finds the area and opens the
// source. Written once as a template over the pixel format of the band and the mapping to it.
#include "raster/bit_blt.h"

#include "color/color_forms.h"
#include "raster/source_rows.h"
#include "raster/transfer_operations.h"
#include "raster/transfer_rows.h"

namespace qnv {
namespace {

// How the pixels of a source of more than one bit are read, and where in a row the first one begins, in bytes.
struct SourcePixels {
  SourceForm form;
  std::ptrdiff_t firstByte;
};

// The pixel formats of bands. Pack: a color reference as a packed color of the band. Pixels: how to read the source
// from pixel x of a row on.

struct Format24 {
  static constexpr uint32_t kBytesPerPixel = 3;
  static constexpr SourceForm kOneBit = SourceForm::kOneBitTo24;
  SourceOrder order;
  static uint32_t Pack(uint32_t color) { return ExchangeRedBlue(color); }
  SourcePixels Pixels(const BltArguments&, int32_t x) const {
    return {order == SourceOrder::kBlueGreenRed ? SourceForm::kBlueGreenRed : SourceForm::kRedGreenBlue,
            std::ptrdiff_t{x} * 3};
  }
};

struct Format8 {
  static constexpr uint32_t kBytesPerPixel = 1;
  static constexpr SourceForm kOneBit = SourceForm::kOneBitTo8;
  static uint32_t Pack(uint32_t color) { return color & 0xFF; }
  static SourcePixels Pixels(const BltArguments& a, int32_t x) {
    return {SourceForm::kGray, std::ptrdiff_t{x} * a.source->bmBitsPixel / 8};
  }
};

// The band of the resolution-mapping device: 24 bits, but sources may have one byte a pixel.
struct FormatKept {
  static constexpr uint32_t kBytesPerPixel = 3;
  static constexpr SourceForm kOneBit = SourceForm::kOneBitTo24;
  bool threeByteSources;
  static uint32_t Pack(uint32_t color) { return ExchangeRedBlue(color); }
  SourcePixels Pixels(const BltArguments& a, int32_t x) const {
    return {threeByteSources ? SourceForm::kRedGreenBlue : SourceForm::kGrayTo24,
            std::ptrdiff_t{x} * a.source->bmBitsPixel / 8};
  }
};

// Prepares *source for reading from pixel (x, y) of the source bitmap on. False when it cannot be read: no bits, or a
// one-bit source without the draw mode that gives it its colors.
template <class Format>
bool OpenSource(const Format& format, const BltArguments& a, int32_t x, int32_t y, SourceRows* source) {
  const SourceBitmap& bitmap = *a.source;
  const DRAWMODE* const drawMode = a.drawMode;
  if (bitmap.bmBits == nullptr) return false;
  const auto* row = static_cast<const uint8_t*>(bitmap.bmBits) + std::ptrdiff_t{y} * bitmap.bmWidthBytes;
  if (bitmap.bmPlanes == 1 && bitmap.bmBitsPixel == 1) {
    if (drawMode == nullptr) return false;
    *source = {Format::kOneBit,
               row + x / 8,
               static_cast<std::size_t>(x % 8),
               bitmap.bmWidthBytes,
               format.Pack(drawMode->bkColor),
               format.Pack(drawMode->TextColor)};
    return true;
  }
  const SourcePixels pixels = format.Pixels(a, x);
  *source = {pixels.form, row + pixels.firstByte, 0, bitmap.bmWidthBytes, 0, 0};
  return true;
}

// Paints a transfer. A solid brush is used directly, because with a null draw mode the fill pattern is still that of an
// earlier call.
template <class Format, class Mapping>
void Transfer(const PaintState& paint, const BandView& band, const Format& format, const Mapping& mapping, bool regray,
              const BltArguments& a) {
  // First what ends most calls: a page has many bands, and a call paints in few of them.
  const Rect callerBand = mapping.CallerRect(band.rect);
  if (LiesOutside(a, paint.origin, callerBand)) return;
  const uint32_t upperHalf = a.rop >> 16;
  const uint8_t index = RopIndex(a.rop);
  const FillPattern* pattern = nullptr;
  FillPattern solid;
  if (RopUsesPattern(index)) {
    pattern = &paint.fillPattern;
    const PatternOrigin from = PatternOriginOf(upperHalf);
    if (from != PatternOrigin::kPrepared) {
      if (a.brush == nullptr) return;
      if (from == PatternOrigin::kBrushUnlessHollow && a.brush->style == BS_HOLLOW) return;
      if (a.brush->style == BS_SOLID) {
        SelectSolid(&solid, format.Pack(a.brush->colour));
        pattern = &solid;
      }
    }
  }
  const Rect clip = Shifted(*a.clip, paint.origin.x, paint.origin.y);
  TransferArea area;
  SourceRows source;
  const bool usesSource = RopUsesSource(index);
  // Only operations that read a source are limited by it, and only their clip is widened.
  if (usesSource) {
    if (a.source == nullptr) return;
    if (!CopyArea(a, paint.origin, clip, callerBand, &area)) return;
    if (!OpenSource(format, a, area.srcX, area.srcY, &source)) return;
  } else if (!FillArea(a, paint.origin, clip, callerBand, &area)) {
    return;
  }
  TransferRows rows(paint.rows, index, pattern, usesSource ? &source : nullptr, Format::kBytesPerPixel, regray);
  rows.Paint(band, mapping, callerBand, area);
}

// A whole call. The checks compare the upper half of the raster code, not only the index: a code with anything in bits
// 24..31 counts as one that uses the pattern, and is never the operation that does nothing.
template <class Format, class Mapping>
uint16_t BitBltOn(const PaintState& paint, const BandView& band, const Format& format, const Mapping& mapping,
                  bool regray, const BltArguments& a) {
  if (a.clip == nullptr) return 1;
  SelectFillPattern(&paint.fillPattern, nullptr, a.brush, a.drawMode);
  const uint32_t upperHalf = a.rop >> 16;
  const bool usesPattern = RopUsesPattern(static_cast<uint8_t>(upperHalf)) || upperHalf > 0xFF;
  if (usesPattern && paint.fillPattern.style == kFillNothing) return 1;
  if (upperHalf != kDestination) Transfer(paint, band, format, mapping, regray, a);
  return 1;
}

}  // namespace

uint16_t BitBlt24(const PaintState& paint, const BandView& band, SourceOrder order, const BltArguments& a) {
  return BitBltOn(paint, band, Format24{order}, PlainMapping{}, false, a);
}

uint16_t BitBlt8(const PaintState& paint, const BandView& band, const BltArguments& a) {
  return BitBltOn(paint, band, Format8{}, PlainMapping{}, false, a);
}

uint16_t BitBltKept(const PaintState& paint, const BandView& band, const KeptMapping& mapping,
                    const KeptTransfer& transfer, const BltArguments& a) {
  return BitBltOn(paint, band, FormatKept{transfer.threeByteSources}, mapping, transfer.regray, a);
}

}  // namespace qnv
