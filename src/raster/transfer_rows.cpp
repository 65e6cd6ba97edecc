// The row loops of a transfer: one kernel call for each row and run of columns, in pieces where a source is converted.
#include "raster/transfer_rows.h"

#include <algorithm>

#include "raster/transfer_operations.h"

namespace qnv {

// SRCCOPY alone has a shape of its own: its pixels can be converted straight into the band.
TransferRows::Shape TransferRows::ShapeOf(uint8_t index) {
  if (index == kSrcCopy) return Shape::kSourceCopy;
  if (RopUsesSource(index)) return RopUsesPattern(index) ? Shape::kSourcePattern : Shape::kSource;
  return RopUsesDestination(index) ? Shape::kBandOnly : Shape::kFill;
}

void TransferRows::PaintRows(const BandView& band, const RowRange& range, const ColumnRun& run) {
  const std::size_t pixels = static_cast<std::size_t>(run.count);
  const std::size_t bytes = pixels * bytesPerPixel_;
  const std::size_t phase = masks_.PhaseOf(run.bandColumn);
  uint8_t* dst = band.RelativeAt(static_cast<uint32_t>(run.bandColumn), static_cast<uint32_t>(range.bandRow));
  for (int32_t i = 0; i < range.count; ++i, dst += band.stride) {
    const int32_t bandRow = range.bandRow + i;
    const int32_t sourceRow = range.sourceRow + i;
    switch (shape_) {
      case Shape::kFill: rows_.FillTileRow(dst, bytes, masks_.At(masks_.RowOf(bandRow), phase).xor2); break;
      case Shape::kBandOnly: {
        const TileMasks masks = masks_.At(masks_.RowOf(bandRow), phase);
        rows_.RopTileRow(dst, bytes, masks.and2, masks.xor2);
        break;
      }
      case Shape::kSourceCopy: source_->FetchInto(rows_, sourceRow, run.callerColumn, run.indices, pixels, dst); break;
      case Shape::kSource:
      case Shape::kSourcePattern: PaintSourceRun(dst, bandRow, sourceRow, run); break;
    }
    if (regray_) rows_.image->RegrayRow24(dst, pixels);
  }
}

void TransferRows::PaintSourceRun(uint8_t* dst, int32_t bandRow, int32_t sourceRow, const ColumnRun& run) {
  const std::size_t pixels = static_cast<std::size_t>(run.count);
  const bool patterned = shape_ == Shape::kSourcePattern;
  const ByteMasks byteMasks = masks_.WithoutPattern();
  if (!patterned && source_->form == SourceForm::kRedGreenBlue && run.indices == nullptr) {
    return rows_.RopSwapRow24(dst, source_->ThreeBytesAt(sourceRow, run.callerColumn), pixels, byteMasks);
  }
  TileMasks tiles{};
  if (patterned) tiles = masks_.At(masks_.RowOf(bandRow), masks_.PhaseOf(run.bandColumn));
  SourceRows::Chunk chunk;
  // Pieces are whole numbers of pattern periods, so that each begins at the same phase of the pattern. A source that is
  // not converted could go through in one piece, but kernels pass several times over rows with a pattern, and a piece
  // stays in the cache.
  static_assert(SourceRows::kMaxPixels % kMaxPeriod == 0);
  const bool whole = !patterned && source_->IsInBandOrder();
  const std::size_t most = whole ? pixels : SourceRows::kMaxPixels;
  for (std::size_t done = 0; done < pixels; done += most) {
    const std::size_t count = std::min(most, pixels - done);
    const uint8_t* source =
        source_->Fetch(rows_, sourceRow, run.callerColumn + static_cast<int32_t>(done), run.indices, count, chunk);
    uint8_t* out = dst + done * bytesPerPixel_;
    const std::size_t bytes = count * bytesPerPixel_;
    if (patterned) {
      rows_.RopSourceTileRow(out, source, bytes, tiles);
    } else {
      rows_.RopSourceRow(out, source, bytes, byteMasks);
    }
  }
}

}  // namespace qnv
