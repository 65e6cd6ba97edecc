// The rows of a run-length bitmap that a transfer needs. A row can only be found by passing all rows before it, so the
// beginnings of rows are found once and kept; then rows can be decoded in any order, and only those that are shown.
#pragma once

#include <cstdint>

#include "image/dib.h"
#include "image/image_buffers.h"
#include "image/rle_decoder.h"
#include "image/source_mapping.h"

namespace qnv {

class RleRows {
 public:
  // Finds the rows of the source rectangle in `mapping`. The lists are kept in `buffers` until the next call. False
  // without memory.
  bool Find(const Dib& dib, const uint8_t* bits, const SourceMapping& mapping, ImageBuffers& buffers);

  // Decodes a row of the source rectangle by its place in the storage: one palette index a byte, from column 0 to the
  // end of the rectangle. Valid until the next call.
  const uint8_t* Row(int32_t stored) const;

 private:
  RleDecoder decoder_{false, 0};
  const RleState* begins_ = nullptr;  // where each row of the rectangle begins
  int32_t top_ = 0;                   // stored row of begins_[0]
  int32_t rows_ = 0;
  int32_t columns_ = 0;  // columns to decode, from column 0 on
  uint8_t* row_ = nullptr;
};

}  // namespace qnv
