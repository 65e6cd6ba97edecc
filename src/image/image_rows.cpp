// Brings converted image rows into the band by copying or merging.
#include "image/image_rows.h"

#include <cstring>

namespace qnv {

void CopyImage(ImageTransfer& transfer, const BandView& band, const RowKernels& kernels) {
  if (band.bits == nullptr) return;
  const std::size_t rowBytes = transfer.Columns() * band.bytesPerPixel;
  CoveredRows rows;
  while (transfer.NextRow(&rows)) {
    // A source row that covers no destination row is converted to the place of the next row, which overwrites it.
    // Only the last one is not overwritten, so all others can be left out.
    if (rows.count == 0 && !transfer.IsLastRow()) continue;
    uint8_t* first = band.At(transfer.Clipped().left, transfer.Clipped().top + rows.first);
    transfer.ConvertRow(first);
    for (int32_t i = 1; i < rows.count; ++i) {
      kernels.CopyRow(first + static_cast<std::size_t>(i) * band.stride, first, rowBytes);
    }
  }
}

void MergeRow(const ImageTransfer& transfer, const BandView& band, const RowKernels& kernels, uint32_t rop,
              const BltArguments& row, const uint8_t* pixels) {
  if (rop != ROP_MINIMUM || band.bits == nullptr) return;
  uint8_t* dst = band.At(row.destX, row.destY);
  const std::size_t bytes = transfer.RowPixels() * band.bytesPerPixel;
  kernels.MinimumRow(dst, pixels, bytes);
  // Columns beyond those that a converted row can hold count as 0, and the minimum with 0 is 0.
  std::memset(dst + bytes, 0, transfer.Columns() * band.bytesPerPixel - bytes);
}

}  // namespace qnv
