// The row loops of image transfers, shared by the device classes: converted rows are copied into the band, merged with
// it, or handed on as sources of one-row transfers. On a band without memory they run and paint nothing.
#pragma once

#include <cstdint>

#include "image/image_transfer.h"
#include "raster/band_view.h"
#include "raster/blt_arguments.h"

namespace qnv {

// The band as image rows address it. Intended: only the low 16 bits of the stride are used.
inline BandView ImageBand(BandView band) {
  band.stride &= 0xFFFF;
  return band;
}

// The form of converted rows for a band whose transfers take sources in band order.
constexpr PixelTarget BandTarget(bool is24) { return is24 ? PixelTarget::kBand24 : PixelTarget::kGray8; }

// SRCCOPY: each source row is converted into the first band row that it covers and copied to the others.
void CopyImage(ImageTransfer& transfer, const BandView& band, const RowKernels& kernels);

// A row buffer as the source of a one-row transfer. width: pixels, cut to 16 bits by the record.
inline SourceBitmap RowBitmap(const uint8_t* buffer, uint32_t width, uint32_t bytesPerPixel) {
  return {0,     static_cast<int16_t>(static_cast<uint16_t>(width)),
          1,     static_cast<uint16_t>(width * bytesPerPixel),
          1,     static_cast<uint8_t>(bytesPerPixel * 8),
          buffer};
}

// Pixels of the row buffer left of the picture, so that column numbers in it are those of the band. A source bitmap has
// at most INT16_MAX columns: a picture farther to the right is converted, but transfers do not reach it.
inline int32_t ColumnsBefore(const ImageTransfer& transfer) {
  const int32_t left = transfer.LeftInBand();
  return left >= 0 && left < INT16_MAX ? left : INT16_MAX;
}

// The clip of one-row transfers, which does not limit: the image is already clipped.
inline constexpr Rect kNoClip{0, 0, 0, 0};

// The transfer that paints destination row `y` (caller pixels, origin added). Its source column is the column of the
// picture in the band.
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

// The `keeps` argument of FeedRows for images whose every destination row may be visible.
struct AllRows {
  bool operator()(int32_t) const { return true; }
};

// Every raster code but SRCCOPY: calls paintRow(BltArguments, pixels) for each destination row, with the one-row
// transfer under `rop` that paints it and with the converted pixels of its source row.
//   keeps(row)                  whether a destination row can be visible. A row that cannot is passed to paintRow only
//                               when it is the very first one, unconverted: a transfer also prepares the fill pattern.
//   afterConvert(pixels, count) may change a converted source row before painting
//   paintRow                    returns false to end the image
// Returns 1, or 0 when paintRow ended the image or memory was short.
template <class Keeps, class AfterConvert, class PaintRow>
uint16_t FeedRows(ImageTransfer& transfer, uint32_t bitmapWidth, uint32_t bytesPerPixel, uint32_t rop,
                  const ImageArguments& a, Keeps keeps, AfterConvert afterConvert, PaintRow paintRow) {
  // Clearing the buffer once is enough, because every row writes the same columns.
  const int32_t before = ColumnsBefore(transfer);
  uint8_t* buffer = transfer.TakeRowBuffer(before);
  if (buffer == nullptr) return 0;
  const SourceBitmap bitmap = RowBitmap(buffer, bitmapWidth, bytesPerPixel);
  uint8_t* visible = buffer + static_cast<std::size_t>(before) * bytesPerPixel;
  CoveredRows rows;
  bool fed = false;
  while (transfer.NextRow(&rows)) {
    bool converted = false;
    const int32_t top = transfer.Clipped().top + rows.first;
    for (int32_t i = 0; i < rows.count; ++i) {
      const bool seen = keeps(top + i);
      if (!seen && fed) continue;
      if (seen && !converted) {
        transfer.ConvertRow(visible);
        afterConvert(visible, transfer.RowPixels());
        converted = true;
      }
      fed = true;
      if (!paintRow(RowTransfer(transfer, bitmap, top + i, rop, a), visible)) return 0;
    }
  }
  return 1;
}

// Extended codes are tagged like SRCAND. Only ROP_MINIMUM paints: each byte becomes the smaller of band and image.
inline constexpr uint32_t kMergeTags = SRCAND;

// Merges one row. row, pixels: what FeedRows passes to paintRow.
void MergeRow(const ImageTransfer& transfer, const BandView& band, const RowKernels& kernels, uint32_t rop,
              const BltArguments& row, const uint8_t* pixels);

}  // namespace qnv
