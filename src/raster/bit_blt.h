// The bit-block transfer of a device class, over what distinguishes the classes: the pixel format of the
// band, the reading of sources, and the mapping of coordinates.
#pragma once

#include <cstdint>

#include "color/color_forms.h"
#include "device/band_state.h"
#include "raster/fill_pattern.h"
#include "raster/source_rows.h"
#include "raster/transfer_operations.h"
#include "raster/transfer_rows.h"

namespace qnv {

// A source that is not one-bit: its form and the byte of its first pixel within a row.
struct SourcePixels {
  SourceForm form;
  std::ptrdiff_t firstByte;
};

struct Format24 {
  static constexpr uint32_t kBytesPerPixel = 3;
  static constexpr SourceForm kOneBit = SourceForm::kOneBitTo24;
  static uint32_t Pack(uint32_t colour) { return ExchangeRedBlue(colour); }
  static SourcePixels Pixels(const BltArguments& a, int32_t x) {
    return {a.inBandOrder ? SourceForm::kBlueGreenRed : SourceForm::kRedGreenBlue, std::ptrdiff_t{x} * 3};
  }
};

struct Format8 {
  static constexpr uint32_t kBytesPerPixel = 1;
  static constexpr SourceForm kOneBit = SourceForm::kOneBitTo8;
  static uint32_t Pack(uint32_t colour) { return colour & 0xFF; }
  static SourcePixels Pixels(const BltArguments& a, int32_t x) {
    return {SourceForm::kGray, std::ptrdiff_t{x} * a.source->bmBitsPixel / 8};
  }
};

// The resolution-mapping device keeps 24-bit pixels, but takes one source byte for all three unless it is
// described with 24 bits.
struct FormatScaled {
  static constexpr uint32_t kBytesPerPixel = 3;
  static constexpr SourceForm kOneBit = SourceForm::kOneBitTo24;
  bool threeByteSources;
  static uint32_t Pack(uint32_t colour) { return ExchangeRedBlue(colour); }
  SourcePixels Pixels(const BltArguments& a, int32_t x) const {
    return {threeByteSources ? SourceForm::kRedGreenBlue : SourceForm::kGrayTo24,
            std::ptrdiff_t{x} * a.source->bmBitsPixel / 8};
  }
};

// The source of a transfer whose first pixel is (x, y). False when it cannot be read: no bits, or a one-bit
// source without the draw mode that colours it.
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

// One of the seventeen operations. Reads state.blitClip and state.fillPattern.
template <class Format, class Mapping>
void Transfer(const BandState& state, const BandView& band, const Format& format, const Mapping& mapping,
              TransferOperation operation, bool regray, const BltArguments& a) {
  const uint8_t index = RopIndex(a.rop);
  const FillPattern* pattern = nullptr;
  FillPattern solid;
  if (RopUsesPattern(index)) {
    pattern = &state.fillPattern;
    if (ReadsBrush(operation)) {
      if (a.brush == nullptr) return;
      if (operation == TransferOperation::kBltGeneral && a.brush->style == BS_HOLLOW) return;
      if (a.brush->style == BS_SOLID) {
        SelectSolid(&solid, format.Pack(a.brush->colour));
        pattern = &solid;
      }
    }
  }
  const Rect callerBand = mapping.CallerRect(band.rect);
  TransferArea area;
  SourceRows source;
  const bool usesSource = RopUsesSource(index);
  if (usesSource) {
    if (a.source == nullptr) return;
    if (!CopyArea(a, state.originX, state.originY, state.blitClip, callerBand, &area)) return;
    if (!OpenSource(format, a, area.srcX, area.srcY, &source)) return;
  } else if (!FillArea(a, state.originX, state.originY, state.blitClip, callerBand, &area)) {
    return;
  }
  TransferRows rows(*state.rows, index, pattern, usesSource ? &source : nullptr, Format::kBytesPerPixel, regray);
  rows.Paint(band, mapping, callerBand, area);
}

// The whole transfer; the result is always 1.
template <class Format, class Mapping>
uint16_t BitBltOn(BandState& state, const BandView& band, const Format& format, const Mapping& mapping, bool regray,
                  const BltArguments& a) {
  if (a.clip == nullptr) return 1;
  SelectFillPattern(&state.fillPattern, nullptr, a.brush, a.drawMode);
  const uint32_t upperHalf = a.rop >> 16;
  const bool usesPattern = RopUsesPattern(static_cast<uint8_t>(upperHalf)) || upperHalf > 0xFF;
  if (usesPattern && state.fillPattern.style == kFillNothing) return 1;
  state.blitClip = Shifted(*a.clip, state.originX, state.originY);
  if (upperHalf != kDestination) {
    Transfer(state, band, format, mapping, OperationOf(upperHalf), regray, a);
  }
  return 1;
}

}  // namespace qnv
