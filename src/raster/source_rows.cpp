// Reads rows of a source: by the row kernel for its form, or in place when its bytes are already in band order.
#include "raster/source_rows.h"

#include <cstring>

#include "raster/rows/store_pixel.h"

namespace qnv {

const uint8_t* SourceRows::Fetch(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices,
                                 std::size_t count, uint8_t* chunk) const {
  if (form == SourceForm::kGray) return first + row * stride + column;
  if (form == SourceForm::kBlueGreenRed) return ThreeBytesAt(row, column);
  FetchInto(rows, row, column, indices, count, chunk);
  return chunk;
}

void SourceRows::FetchInto(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices,
                           std::size_t count, uint8_t* out) const {
  if (indices != nullptr) return FetchIndexed(rows, row, column, indices, count, out);
  const uint8_t* start = first + row * stride;
  switch (form) {
    case SourceForm::kOneBitTo24:
    case SourceForm::kOneBitTo8: {
      const std::size_t bit = firstBit + static_cast<std::size_t>(column);
      const auto expand = form == SourceForm::kOneBitTo24 ? rows.ExpandBitsRow24 : rows.ExpandBitsRow8;
      expand(out, start + bit / 8, bit % 8, count, set, clear);
      break;
    }
    case SourceForm::kRedGreenBlue: rows.SwapRow24(out, start + std::ptrdiff_t{column} * 3, count); break;
    case SourceForm::kBlueGreenRed: rows.CopyRow(out, start + std::ptrdiff_t{column} * 3, 3 * count); break;
    case SourceForm::kGray: rows.CopyRow(out, start + column, count); break;
    case SourceForm::kGrayTo24: rows.image->TripleRow24(out, start + column, count); break;
  }
}

// Converts all pixels between the first and the last index and then takes those that are wanted: faster than converting
// pixels one by one. Where the indices span more pixels than the buffer holds, their number is halved until they fit.
void SourceRows::FetchIndexed(const RowKernels& rows, int32_t row, int32_t column, const uint16_t* indices,
                              std::size_t count, uint8_t* out) const {
  uint8_t converted[kMaxPixels * 3 + 1];
  for (std::size_t done = 0; done < count;) {
    const uint16_t begin = indices[done];
    std::size_t end = count;
    // As many indices as span no more pixels than the buffer holds.
    while (indices[end - 1] - begin >= static_cast<int32_t>(kMaxPixels)) end = done + (end - done) / 2;
    const std::size_t between = indices[end - 1] - begin + std::size_t{1};
    FetchInto(rows, row, column + begin, nullptr, between, converted);
    converted[3 * between] = 0;  // the loop below reads a byte behind the last pixel
    StorePixels<3>(out + 3 * done, end - done, [&](std::size_t i) {
      uint32_t packed;
      std::memcpy(&packed, converted + std::size_t{3} * static_cast<std::size_t>(indices[done + i] - begin), 4);
      return packed;
    });
    done = end;
  }
}

}  // namespace qnv
