// Converts a source row into the visible columns of the destination: mirrored, enlarged or made smaller. Which source
// column goes where is the same for all rows, so it is planned once per call and applied to each row.
#pragma once

#include <cstdint>

#include "image/image_buffers.h"
#include "image/row_converters.h"
#include "image/row_stepping.h"
#include "image/source_mapping.h"

namespace qnv {

class ColumnPlan {
 public:
  // Makes the plan. bitCount: depth of the source rows. The lists of the plan are kept in `buffers` until the next
  // call. False without memory.
  bool Make(const Stepping& stepping, const SourceMapping& mapping, uint32_t bitCount, PixelTarget target,
            ImageBuffers& buffers);

  // Converts a row. out: the first visible destination column; only columns that a source column covers are written.
  void Apply(uint8_t* out, const uint8_t* row, const RowConverter& converter, const ConverterContext& context) const;

 private:
  // The ways from a source row to a destination row.
  enum class Order : uint8_t {
    kForward,         // consecutive source columns are converted
    kBackward,        // converted, then mirrored
    kRepeated,        // converted, then each pixel repeated 2, 4 or 8 times
    kConvertedFirst,  // converted, then pixels repeated or dropped by shuffles
    kGatheredFirst,   // source pixels collected by shuffles, then converted
    kIndexed,         // source columns looked up one by one
  };

  bool PlanIndices(const Stepping& stepping, int32_t first, int32_t advance, ImageBuffers& buffers);
  bool PlanGroups(std::size_t bytesPerPixel, std::size_t readable, ImageBuffers& buffers);
  bool TakeConverted(std::size_t bytes, ImageBuffers& buffers);

  Order order_ = Order::kForward;
  std::size_t sourceBytes_ = 0;           // bytes of a source pixel; 0: several pixels in a byte
  std::size_t bytesPerPixel_ = 3;         // of a converted pixel
  int32_t low_ = 0;                       // leftmost source column that is converted
  int32_t sourceCount_ = 0;               // source columns from low_ to the last one that is shown
  int32_t count_ = 0;                     // destination columns that are covered
  const uint16_t* indices_ = nullptr;     // the source column of each destination column
  const ShuffleGroup* groups_ = nullptr;  // the same as shuffles, in bytes from low_ on
  std::size_t groupPixels_ = 0;           // destination pixels of a group
  std::size_t factor_ = 0;                // kRepeated: how often
  uint8_t* converted_ = nullptr;          // the row between two steps
};

}  // namespace qnv
