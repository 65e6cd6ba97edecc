// The row driver of image transfers: feeds converted rows to the band in the way that the raster code asks for.
// A transfer over a band without memory runs and paints nothing.
#pragma once

#include <cstdint>

#include "image/image_transfer.h"
#include "raster/band_view.h"
#include "raster/blt_arguments.h"

namespace qnv {

// The band with the row distance that the driver steps by. Intended: 16 bits of it.
inline BandView ImageBand(BandView band) {
  band.stride &= 0xFFFF;
  return band;
}

// What rows become for a band whose transfers take them in band order.
constexpr PixelTarget BandTarget(bool is24) { return is24 ? PixelTarget::kBand24 : PixelTarget::kGray8; }

// SRCCOPY: each source row is converted into the first band row that it covers and copied to the others.
void CopyImage(ImageTransfer& transfer, const BandView& band, const RowKernels& kernels);

// A row buffer as the source of a one-row transfer. width: the source's width in pixels, kept to 16 bits.
inline SourceBitmap RowBitmap(const uint8_t* buffer, uint32_t width, uint32_t bytesPerPixel) {
  return {0,     static_cast<int16_t>(static_cast<uint16_t>(width)),
          1,     static_cast<uint16_t>(width * bytesPerPixel),
          1,     static_cast<uint8_t>(bytesPerPixel * 8),
          buffer};
}

// Columns of the row buffer before the picture. A bitmap has at most INT16_MAX columns, so that a picture farther to
// the right is not looked at; its rows are converted all the same.
inline int32_t ColumnsBefore(const ImageTransfer& transfer) {
  const int32_t left = transfer.LeftInBand();
  return left >= 0 && left < INT16_MAX ? left : INT16_MAX;
}

// The clip of the transfers below: an image is clipped before its rows are.
inline constexpr Rect kNoClip{0, 0, 0, 0};

// The one-row transfer of destination row `y`, caller's pixels with the origin added; the source column is the band's
// own.
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
          &kNoClip};
}

// Every code but SRCCOPY: hands each destination row that a source row covers to paintRow as a one-row transfer under
// `rop`. afterConvert(pixels, count) may change a converted row before. paintRow(BltArguments, pixels) gets the
// converted row too, and returns false to end the transfer, whose result is 0 then. 0 also without memory, else 1.
template <class AfterConvert, class PaintRow>
uint16_t FeedRows(ImageTransfer& transfer, uint32_t bitmapWidth, uint32_t bytesPerPixel, uint32_t rop,
                  const ImageArguments& a, AfterConvert afterConvert, PaintRow paintRow) {
  // Cleared once: every row writes the same columns.
  const int32_t before = ColumnsBefore(transfer);
  uint8_t* buffer = transfer.TakeRowBuffer(before);
  if (buffer == nullptr) return 0;
  const SourceBitmap bitmap = RowBitmap(buffer, bitmapWidth, bytesPerPixel);
  uint8_t* visible = buffer + static_cast<std::size_t>(before) * bytesPerPixel;
  CoveredRows rows;
  while (transfer.NextRow(&rows)) {
    if (rows.count == 0) continue;
    transfer.ConvertRow(visible);
    afterConvert(visible, transfer.RowPixels());
    const int32_t top = transfer.Clipped().top + rows.first;
    for (int32_t i = 0; i < rows.count; ++i) {
      if (!paintRow(RowTransfer(transfer, bitmap, top + i, rop, a), visible)) return 0;
    }
  }
  return 1;
}

// Extended codes: each row is tagged as by SRCAND, and merged with the band by the smaller of two bytes for
// ROP_MINIMUM. The other codes paint nothing.
inline constexpr uint32_t kMergeTags = SRCAND;

// row, pixels: as FeedRows hands them over.
void MergeRow(const ImageTransfer& transfer, const BandView& band, const RowKernels& kernels, uint32_t rop,
              const BltArguments& row, const uint8_t* pixels);

}  // namespace qnv
