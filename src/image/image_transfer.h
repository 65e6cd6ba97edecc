// One image transfer: validation and set-up, then converted rows on demand. The device classes differ only in
// what they do with the rows.
#pragma once

#include <algorithm>
#include <cstdint>

#include "image/column_plan.h"
#include "image/dib.h"
#include "image/image_arguments.h"
#include "image/rle_rows.h"
#include "image/row_converters.h"
#include "image/row_stepping.h"
#include "raster/paint_state.h"

namespace qnv {

// How rows reach the band, decided by the raster code alone.
enum class ImageMode : uint8_t {
  kCopy,    // SRCCOPY: rows are converted straight into the band
  kMerge,   // extended codes: rows are merged with the band
  kBitBlt,  // everything else: rows become sources of bit-block transfers
};

constexpr ImageMode ImageModeOf(uint32_t rop) {
  if (rop == SRCCOPY) return ImageMode::kCopy;
  return rop > 0x00FFFFFF ? ImageMode::kMerge : ImageMode::kBitBlt;
}

class ImageTransfer {
 public:
  explicit ImageTransfer(ImageBuffers& buffers) : buffers_(buffers) {}

  // bandRect: the band in the caller's pixels. target: what rows are converted into. False when the transfer is
  // refused or wholly clipped away, or without memory; nothing has been painted then.
  bool Prepare(const PaintState& paint, const Rect& bandRect, PixelTarget target, const ImageArguments& a);

  // The visible destination, caller's pixels with the origin added, and its place relative to the band.
  const Rect& Clipped() const { return clipped_; }
  int32_t LeftInBand() const { return leftInBand_; }
  int32_t Width() const { return WrapSubtract(clipped_.right, clipped_.left); }
  // The same as a count: a band without memory may be wider than a signed number tells.
  std::size_t Columns() const { return static_cast<uint32_t>(Width()); }

  // Steps to the next source row; false at the end.
  bool NextRow(CoveredRows* rows) { return walk_.Next(rows); }
  bool IsLastRow() const { return walk_.IsLast(); }

  // Converts the current source row; out: place of the first visible pixel. Columns that no source pixel
  // reaches are left as they are.
  void ConvertRow(uint8_t* out);

  // Pixels that a converted row can hold; what lies behind them in a wider destination stays as it was cleared.
  static constexpr int32_t kMaxRowPixels = UINT16_MAX;
  std::size_t RowPixels() const { return std::min<std::size_t>(Columns(), kMaxRowPixels); }

  // A cleared row buffer: `before` columns, RowPixels() of the picture and a spare one that stays clear; null without
  // memory. Its size never follows a coordinate. Requires: before <= INT16_MAX.
  uint8_t* TakeRowBuffer(int32_t before);

 private:
  const uint8_t* SourceRow(int32_t stored) const;

  ImageBuffers& buffers_;
  Dib dib_{};
  const uint8_t* bits_ = nullptr;
  PixelTarget target_ = PixelTarget::kBand24;
  Rect clipped_{};
  int32_t leftInBand_ = 0;
  RowWalk walk_{Stepping{}};
  int32_t firstRow_ = 0;    // stored row walked first
  int32_t rowAdvance_ = 1;  // +1 or -1
  ColumnPlan columns_;
  RowConverter convert_{};
  PixelColors colors_;
  const RowKernels* rows_ = nullptr;
  RleRows rleRows_;  // run-length sources
};

}  // namespace qnv
