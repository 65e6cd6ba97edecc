// The columns of a picture that a resolution-mapping band keeps. They are the same for all rows, so they are listed
// once per call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/image_buffers.h"
#include "raster/mappings.h"

namespace qnv {

class KeptColumns {
 public:
  // Lists the kept ones of the caller columns [left, left + width), counted from the left edge of the band. The lists
  // are kept in `buffers` until the next call. False without memory.
  bool Make(const KeptMapping& mapping, int32_t left, int32_t width, int32_t bandColumns, ImageBuffers& buffers);

  // Consecutive band columns.
  struct Run {
    int32_t bandColumn;  // of the first pixel, from the band's left edge
    int32_t count;
    const int32_t* columns;  // for each its column of the picture, counted from the first visible one
  };

  const Run* begin() const { return runs_; }
  const Run* end() const { return runs_ + runCount_; }
  bool IsEmpty() const { return runCount_ == 0; }

  // The band columns from the first run to the last, half-open. Requires: not empty.
  int32_t First() const { return runs_[0].bandColumn; }
  int32_t End() const { return runs_[runCount_ - 1].bandColumn + runs_[runCount_ - 1].count; }

 private:
  const Run* runs_ = nullptr;
  std::size_t runCount_ = 0;
};

}  // namespace qnv
