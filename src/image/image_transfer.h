// One image transfer: checks and prepares a call, then delivers converted rows from top to bottom. What happens to the
// rows is up to the device classes.
#pragma once

#include <algorithm>
#include <cstdint>

#include "image/dib.h"
#include "image/image_arguments.h"
#include "image/image_buffers.h"
#include "image/rle_rows.h"
#include "image/row_converters.h"
#include "image/row_stepping.h"
#include "raster/paint_state.h"

namespace qnv {

// How rows reach the band. The raster code alone decides.
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
  // buffers: work memory of the device.
  explicit ImageTransfer(ImageBuffers& buffers) : buffers_(buffers) {}

  // Checks and prepares a call. bandRect: the band in caller pixels. target: the form of converted rows. False when the
  // call is refused, when all of it is clipped away, and without memory; nothing has been painted then.
  bool Prepare(const PaintState& paint, const Rect& bandRect, PixelTarget target, const ImageArguments& a);

  // The visible destination in caller pixels, origin added, never empty.
  const Rect& Clipped() const { return clipped_; }
  // Its left edge, counted from that of the band.
  int32_t LeftInBand() const { return leftInBand_; }
  int32_t Width() const { return WrapSubtract(clipped_.right, clipped_.left); }
  // The width as an unsigned number: a band without memory may have 2^31 columns and more.
  std::size_t Columns() const { return static_cast<uint32_t>(Width()); }

  // Steps to the next source row and tells which destination rows it covers; false at the end.
  bool NextRow(CoveredRows* rows) { return walk_.Next(rows); }
  bool IsLastRow() const { return walk_.IsLast(); }

  // Converts the current source row. out: place of the first visible pixel. Columns that no source column covers keep
  // their bytes.
  void ConvertRow(uint8_t* out);

  // The most pixels that a converted row holds. In a wider destination the columns beyond keep what the row buffer was
  // cleared to.
  static constexpr int32_t kMaxRowPixels = UINT16_MAX;
  std::size_t RowPixels() const { return std::min<std::size_t>(Columns(), kMaxRowPixels); }

  // A row buffer filled with 0: `before` pixels, RowPixels() pixels of the picture, and one more that stays 0. Null
  // without memory. Its size is limited whatever the coordinates are. Requires: before <= INT16_MAX.
  uint8_t* TakeRowBuffer(int32_t before);

 private:
  // A row of the bitmap by its place in the storage.
  const uint8_t* SourceRow(int32_t stored) const;

  ImageBuffers& buffers_;
  Dib dib_{};
  const uint8_t* bits_ = nullptr;
  PixelTarget target_ = PixelTarget::kBand24;
  Rect clipped_{};
  int32_t leftInBand_ = 0;
  RowWalk walk_{Stepping{}};
  int32_t firstRow_ = 0;    // stored row that is painted first
  int32_t rowAdvance_ = 1;  // +1 or -1
  RowConverter convert_{};
  PixelColors colors_;
  const RowKernels* rows_ = nullptr;
  RleRows rleRows_;  // for run-length bitmaps
};

}  // namespace qnv
