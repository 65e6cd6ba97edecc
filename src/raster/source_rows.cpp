#include "raster/source_rows.h"

#include <cstring>

#include "raster/pick_bits.h"

namespace qnv {

const uint8_t* SourceRows::Fetch(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* picks,
                                 std::size_t count, uint8_t* chunk) const {
  if (form == SourceForm::kGray) return first + row * stride + column;
  if (form == SourceForm::kBlueGreenRed) return first + row * stride + std::ptrdiff_t{column} * 3;
  FetchInto(rows, row, column, picks, count, chunk);
  return chunk;
}

void SourceRows::FetchInto(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* picks,
                           std::size_t count, uint8_t* out) const {
  const uint8_t* start = first + row * stride;
  switch (form) {
    case SourceForm::kOneBitTo24:
    case SourceForm::kOneBitTo8: {
      std::size_t bit = firstBit + static_cast<std::size_t>(column);
      uint8_t picked[kMostPixels / 8];
      if (picks != nullptr) {
        PickBits(picked, start, bit, picks, count);
        start = picked;
        bit = 0;
      }
      const auto expand = form == SourceForm::kOneBitTo24 ? rows.ExpandBitsRow24 : rows.ExpandBitsRow8;
      expand(out, start + bit / 8, bit % 8, count, set, clear);
      break;
    }
    case SourceForm::kRedGreenBlue: {
      start += std::ptrdiff_t{column} * 3;
      Chunk picked;
      if (picks != nullptr) {
        for (std::size_t i = 0; i < count; ++i) std::memcpy(picked + 3 * i, start + std::size_t{3} * picks[i], 3);
        start = picked;
      }
      rows.SwapRow24(out, start, count);
      break;
    }
    case SourceForm::kBlueGreenRed: rows.CopyRow(out, start + std::ptrdiff_t{column} * 3, 3 * count); break;
    case SourceForm::kGray: std::memcpy(out, start + column, count); break;
    case SourceForm::kGrayTo24:
      start += column;
      if (picks == nullptr) return rows.image->TripleRow24(out, start, count);
      for (std::size_t i = 0; i < count; ++i) std::memset(out + 3 * i, start[picks[i]], 3);
      break;
  }
}

}  // namespace qnv
