// How the columns of a source row come to stand in a destination row: worked out once per call, applied to
// every row.
#pragma once

#include <cstdint>

#include "image/image_buffers.h"
#include "image/row_converters.h"
#include "image/row_stepping.h"
#include "image/source_mapping.h"

namespace qnv {

class ColumnPlan {
 public:
  // bitCount: depth of the source rows. False without memory. The lists stand in `buffers` until the next call.
  bool Make(const Stepping& stepping, const SourceMapping& mapping, uint32_t bitCount, PixelTarget target,
            ImageBuffers& buffers);

  // Converts a row into out: the destination's columns that the source reaches, from the first one on.
  void Apply(uint8_t* out, const uint8_t* row, const RowConverter& converter, const ConverterContext& context) const;

 private:
  enum class Order : uint8_t {
    kForward,  // one source column after another
    kBackward,
    kRepeated,        // converted one after another, then each repeated 2, 4 or 8 times
    kConvertedFirst,  // converted one after another, then enlarged or thinned out
    kGatheredFirst,   // source pixels thinned out, then converted one after another
    kIndexed,         // source columns one by one
  };

  bool PlanIndices(const Stepping& stepping, int32_t first, int32_t advance, ImageBuffers& buffers);
  bool PlanGroups(std::size_t bytesPerPixel, std::size_t readable, ImageBuffers& buffers);
  bool TakeConverted(std::size_t bytes, ImageBuffers& buffers);

  Order order_ = Order::kForward;
  std::size_t sourceBytes_ = 0;           // of a source pixel; 0: less than one
  std::size_t bytesPerPixel_ = 3;         // of a converted one
  int32_t low_ = 0;                       // leftmost source column that is converted
  int32_t sourceCount_ = 0;               // source columns from there to the last one
  int32_t count_ = 0;                     // destination columns
  const uint16_t* indices_ = nullptr;     // the source column of each destination column
  const ShuffleGroup* groups_ = nullptr;  // what indices_ says, in bytes from low_ on
  std::size_t groupPixels_ = 0;
  std::size_t factor_ = 0;        // kRepeated
  uint8_t* converted_ = nullptr;  // a row between its two steps
};

}  // namespace qnv
