// Writes the kept columns of a converted row, once into the first band row and from there into the others.
#include "image/kept_row_copier.h"

#include <cstring>

#include "image/image_transfer.h"
#include "raster/rows/store_pixel.h"

namespace qnv {

void KeptRowCopier::Copy(const uint8_t* pixels, const CoveredRows& rows) const {
  uint8_t* first = BandRow(rows.first);
  for (const KeptColumns::Run& run : columns_) {
    uint8_t* dst = first + static_cast<std::size_t>(run.bandColumn) * 3;
    const std::size_t count = static_cast<std::size_t>(run.count);
    StorePixels<3>(dst, count, [=](std::size_t i) {
      uint32_t packed;
      // Columns beyond the most that a row holds are 0, like the pixel behind the last.
      const int32_t column = MinOf(run.columns[i], ImageTransfer::kMaxRowPixels);
      std::memcpy(&packed, pixels + std::ptrdiff_t{3} * column, 4);
      return packed;
    });
    if (regray_) kernels_.image->RegrayRow24(dst, count);
  }
  const std::size_t offset = static_cast<std::size_t>(columns_.First()) * 3;
  const std::size_t bytes = static_cast<std::size_t>(columns_.End() - columns_.First()) * 3;
  for (int32_t i = 1; i < rows.count; ++i) {
    uint8_t* other = BandRow(rows.first + i);
    if (other != nullptr && other != first) std::memcpy(other + offset, first + offset, bytes);
  }
}

}  // namespace qnv
