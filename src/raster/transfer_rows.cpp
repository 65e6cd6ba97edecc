#include "raster/transfer_rows.h"

#include <algorithm>

#include "raster/transfer_operations.h"

namespace qnv {

TransferRows::Shape TransferRows::ShapeOf(uint8_t index) {
  if (index == kSrcCopy) return Shape::kSourceCopy;
  if (RopUsesSource(index)) return RopUsesPattern(index) ? Shape::kSourcePattern : Shape::kSource;
  return RopUsesDestination(index) ? Shape::kBandOnly : Shape::kFill;
}

void TransferRows::PaintRun(uint8_t* dst, int32_t bandRow, int32_t sourceRow, const ColumnRun& run) {
  const std::size_t pixels = static_cast<std::size_t>(run.count);
  switch (shape_) {
    case Shape::kFill:
      rows_.FillTileRow(dst, pixels * bytesPerPixel_,
                        masks_.At(masks_.RowOf(bandRow), masks_.PhaseOf(run.bandColumn)).xor2);
      break;
    case Shape::kBandOnly: {
      const TileMasks masks = masks_.At(masks_.RowOf(bandRow), masks_.PhaseOf(run.bandColumn));
      rows_.RopTileRow(dst, pixels * bytesPerPixel_, masks.and2, masks.xor2);
      break;
    }
    case Shape::kSourceCopy: source_->FetchInto(rows_, sourceRow, run.callerColumn, run.picks, pixels, dst); break;
    case Shape::kSource:
    case Shape::kSourcePattern: PaintSourceRun(dst, bandRow, sourceRow, run); break;
  }
  if (regray_) rows_.RegrayRow24(dst, pixels);
}

void TransferRows::PaintSourceRun(uint8_t* dst, int32_t bandRow, int32_t sourceRow, const ColumnRun& run) {
  const std::size_t pixels = static_cast<std::size_t>(run.count);
  SourceRows::Chunk chunk;
  for (std::size_t done = 0; done < pixels; done += SourceRows::kMostPixels) {
    const std::size_t count = std::min(SourceRows::kMostPixels, pixels - done);
    const int32_t column = static_cast<int32_t>(done);
    const uint8_t* source = source_->Fetch(rows_, sourceRow, run.callerColumn + column, run.picks, count, chunk);
    uint8_t* out = dst + done * bytesPerPixel_;
    const TileMasks masks = masks_.At(masks_.RowOf(bandRow), masks_.PhaseOf(run.bandColumn + column));
    if (shape_ == Shape::kSource) {
      rows_.RopSourceRow(out, source, count * bytesPerPixel_,
                         ByteMasks{*masks.and1, *masks.and2, *masks.xor1, *masks.xor2});
    } else {
      rows_.RopSourceTileRow(out, source, count * bytesPerPixel_, masks);
    }
  }
}

}  // namespace qnv
