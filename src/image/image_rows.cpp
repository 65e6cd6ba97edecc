#include "image/image_rows.h"

namespace qnv {

void CopyImage(ImageTransfer& transfer, const BandView& band, const RowKernels& kernels) {
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

void MergeRow(const BandView& band, const RowKernels& kernels, uint32_t rop, const BltArguments& row) {
  if (rop != ROP_MINIMUM || band.bits == nullptr) return;
  const std::size_t first = static_cast<std::size_t>(row.srcX) * band.bytesPerPixel;
  kernels.MinimumRow(band.At(row.destX, row.destY), static_cast<const uint8_t*>(row.source->bmBits) + first,
                     static_cast<std::size_t>(row.width) * band.bytesPerPixel);
}

}  // namespace qnv
