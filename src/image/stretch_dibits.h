// The row driver of image transfers: feeds converted rows to the band according to the raster code.
#pragma once

#include <cstdint>

#include "device/band_state.h"
#include "device/device.h"
#include "image/image_transfer.h"

namespace qnv {

// A transfer over a band without memory runs and paints nothing.

// The band with the row distance that the driver steps by. Intended: 16 bits of it.
inline BandView ImageBand(BandView band) {
  band.stride &= 0xFFFF;
  return band;
}

// What rows are converted into on a device whose transfers take them in band order.
inline PixelTarget BandTarget(const BandState& state) {
  return state.Is24() ? PixelTarget::kBand24 : PixelTarget::kGray8;
}

// SRCCOPY: each source row is converted into the first band row that it covers and copied to the others.
inline void CopyImage(ImageTransfer& transfer, const BandView& band, const RowKernels& kernels) {
  if (band.bits == nullptr) return;
  const std::size_t rowBytes = static_cast<std::size_t>(transfer.Width()) * band.bytesPerPixel;
  CoveredRows rows;
  while (transfer.NextRow(&rows)) {
    // A row between destination rows lies where the next one is about to be written: only the last one, which
    // none follows, is ever seen.
    if (rows.count == 0 && !transfer.IsLastRow()) continue;
    uint8_t* first = band.At(transfer.Clipped().left, transfer.Clipped().top + rows.first);
    transfer.ConvertRow(first);
    for (int32_t i = 1; i < rows.count; ++i) {
      kernels.CopyRow(first + static_cast<std::size_t>(i) * band.stride, first, rowBytes);
    }
  }
}

// A row buffer as the source of a one-row transfer. width: the source's width in pixels, kept to 16 bits.
inline SourceBitmap RowBitmap(const uint8_t* buffer, uint32_t width, uint32_t bytesPerPixel) {
  return {0,     static_cast<int16_t>(static_cast<uint16_t>(width)),
          1,     static_cast<uint16_t>(width * bytesPerPixel),
          1,     static_cast<uint8_t>(bytesPerPixel * 8),
          buffer};
}

inline constexpr Rect kNoClip{0, 0, 0, 0};

// The one-row transfer of destination row `y`, caller's pixels; the source column is the band's own.
inline BltArguments RowTransfer(const ImageTransfer& transfer, const SourceBitmap& bitmap, int32_t y, uint32_t rop,
                                const ImageArguments& a) {
  return {transfer.Clipped().left,
          y,
          &bitmap,
          transfer.LeftInBand(),
          0,
          transfer.Width(),
          1,
          rop,
          a.brush,
          a.drawMode,
          &kNoClip,
          true};
}

// Extended codes. beforeRow(BltArguments) is called for every covered row with the transfer that stands for
// it; false ends the transfer with 0. Only ROP_MINIMUM paints.
template <class BeforeRow>
uint16_t MergeImage(ImageTransfer& transfer, const BandView& band, const RowKernels& kernels, uint32_t bitmapWidth,
                    const ImageArguments& a, BeforeRow beforeRow) {
  uint8_t* buffer = transfer.TakeRowBuffer(transfer.LeftInBand() + transfer.Width());
  if (buffer == nullptr) return 0;
  uint8_t* visible = buffer + static_cast<std::size_t>(transfer.LeftInBand()) * band.bytesPerPixel;
  const SourceBitmap bitmap = RowBitmap(buffer, bitmapWidth, band.bytesPerPixel);
  const std::size_t rowBytes = static_cast<std::size_t>(transfer.Width()) * band.bytesPerPixel;
  CoveredRows rows;
  while (transfer.NextRow(&rows)) {
    if (rows.count == 0) continue;
    transfer.ConvertRow(visible);
    const int32_t top = transfer.Clipped().top + rows.first;
    for (int32_t i = 0; i < rows.count; ++i) {
      if (!beforeRow(RowTransfer(transfer, bitmap, top + i, SRCAND, a))) return 0;
    }
    if (a.rop != ROP_MINIMUM || band.bits == nullptr) continue;
    uint8_t* dst = band.At(transfer.Clipped().left, top);
    for (int32_t i = 0; i < rows.count; ++i, dst += band.stride) kernels.MinimumRow(dst, visible, rowBytes);
  }
  return 1;
}

// Every other code. afterConvert(pixels, count) may change a converted row; paintRow(BltArguments) paints a
// covered row, false ends the transfer with 0.
template <class AfterConvert, class PaintRow>
uint16_t BlitImage(ImageTransfer& transfer, uint32_t bitmapWidth, uint32_t bytesPerPixel, const ImageArguments& a,
                   AfterConvert afterConvert, PaintRow paintRow) {
  // Cleared once: every row writes the same columns.
  uint8_t* buffer = transfer.TakeRowBuffer(transfer.LeftInBand() + transfer.Width());
  if (buffer == nullptr) return 0;
  const SourceBitmap bitmap = RowBitmap(buffer, bitmapWidth, bytesPerPixel);
  uint8_t* visible = buffer + static_cast<std::size_t>(transfer.LeftInBand()) * bytesPerPixel;
  CoveredRows rows;
  while (transfer.NextRow(&rows)) {
    if (rows.count == 0) continue;
    transfer.ConvertRow(visible);
    afterConvert(visible, static_cast<std::size_t>(transfer.Width()));
    const int32_t top = transfer.Clipped().top + rows.first;
    for (int32_t i = 0; i < rows.count; ++i) {
      if (!paintRow(RowTransfer(transfer, bitmap, top + i, a.rop, a))) return 0;
    }
  }
  return 1;
}

}  // namespace qnv
