// The rows of a run-length source that a transfer shows. They can only be found by walking from the first one;
// where each begins is kept, so that they are decoded in any order, and only those that are seen.
#pragma once

#include <cstdint>

#include "image/dib.h"
#include "image/image_buffers.h"
#include "image/rle_decoder.h"
#include "image/source_mapping.h"

namespace qnv {

class RleRows {
 public:
  // False without memory. The rows stand in `buffers` until the next call.
  bool Find(const Dib& dib, const uint8_t* bits, const SourceMapping& mapping, ImageBuffers& buffers);

  // The palette indices of a stored row of the source rectangle, from column 0 to the rectangle's end. Valid until
  // the next row is asked for.
  const uint8_t* Row(int32_t stored) const;

 private:
  RleDecoder decoder_{false, 0};
  const RleState* begins_ = nullptr;  // of the rectangle's rows
  int32_t top_ = 0;                   // stored row of begins_[0]
  int32_t rows_ = 0;
  int32_t columns_ = 0;  // from column 0
  uint8_t* row_ = nullptr;
};

}  // namespace qnv
