// Which columns of a picture a resolution-mapping band keeps: worked out once per call, applied to every row.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/image_buffers.h"
#include "raster/mappings.h"

namespace qnv {

class KeptColumns {
 public:
  // Columns [left, left + width) of the caller, counted from the band's left edge. False without memory. The lists
  // stand in `buffers` until the next call.
  bool Make(const KeptMapping& mapping, int32_t left, int32_t width, int32_t bandColumns, ImageBuffers& buffers);

  struct Run {
    int32_t bandColumn;  // of the first pixel, from the band's left edge
    int32_t count;
    const int32_t* columns;  // of the picture, from its first visible one
  };

  const Run* begin() const { return runs_; }
  const Run* end() const { return runs_ + runCount_; }
  bool IsEmpty() const { return runCount_ == 0; }

  // Band columns from the first run's begin to the last run's end.
  int32_t First() const { return runs_[0].bandColumn; }
  int32_t End() const { return runs_[runCount_ - 1].bandColumn + runs_[runCount_ - 1].count; }

 private:
  const Run* runs_ = nullptr;
  std::size_t runCount_ = 0;
};

}  // namespace qnv
