// Finds the beginnings of run-length rows, and decodes single rows from there.
#include "image/rle_rows.h"

namespace qnv {

bool RleRows::Find(const Dib& dib, const uint8_t* bits, const SourceMapping& mapping, ImageBuffers& buffers) {
  decoder_ = RleDecoder(dib.compression == BI_RLE4, dib.width);
  top_ = mapping.top;
  rows_ = mapping.rows;
  columns_ = mapping.left + mapping.columns;
  auto* begins = buffers.rleRows.Take<RleState>(static_cast<std::size_t>(rows_));
  row_ = buffers.rleRow.Take<uint8_t>(static_cast<std::size_t>(dib.width) + RleDecoder::kOvershoot);
  if (begins == nullptr || row_ == nullptr) return false;
  RleState state{bits};
  decoder_.SkipRows(&state, top_);
  begins[0] = state;
  for (int32_t row = 1; row < rows_; ++row) {
    decoder_.SkipRows(&state, 1);
    begins[row] = state;
  }
  begins_ = begins;
  return true;
}

const uint8_t* RleRows::Row(int32_t stored) const {
  decoder_.DecodeRow(begins_[stored - top_], columns_, begins_[rows_ - 1].next, row_);
  return row_;
}

}  // namespace qnv
