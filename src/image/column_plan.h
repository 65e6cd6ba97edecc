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
  // False without memory. The lists stand in `buffers` until the next call.
  bool Make(const Stepping& stepping, const SourceMapping& mapping, PixelTarget target, ImageBuffers& buffers);

  // Converts a row into out: the destination's columns that the source reaches, from the first one on.
  void Apply(uint8_t* out, const uint8_t* row, const RowConverter& converter, const ConverterContext& context) const;

 private:
  enum class Order : uint8_t {
    kForward,  // one source column after another
    kBackward,
    kEnlarged,  // source columns repeated; backward when mirrored
    kPicked,    // source columns one by one
  };

  bool PlanEnlarged(const Stepping& stepping, ImageBuffers& buffers);
  bool PlanPicked(const Stepping& stepping, ImageBuffers& buffers, int32_t first, int32_t advance);

  Order order_ = Order::kForward;
  bool mirrored_ = false;
  std::size_t bytesPerPixel_ = 3;
  int32_t low_ = 0;                       // leftmost source column that is converted
  int32_t sourceCount_ = 0;               // source columns that are converted
  int32_t count_ = 0;                     // destination columns
  const uint16_t* picks_ = nullptr;       // kPicked: the source column of each destination column
  const ShuffleGroup* groups_ = nullptr;  // kEnlarged: over the converted columns in the order of walking
  std::size_t groupPixels_ = 0;
  uint8_t* converted_ = nullptr;
  uint8_t* reversed_ = nullptr;
};

}  // namespace qnv
