// Converts a source row into the visible columns of the destination: mirrored, enlarged or made smaller. Which source
// column goes where is the same for all rows, so it is planned once and applied to each row. A device keeps its plan:
// hosts pass an image to every band, and it has the same columns in all of them.
#pragma once

#include <cstdint>

#include "image/row_converters.h"
#include "image/row_stepping.h"
#include "image/source_mapping.h"
#include "image/work_buffer.h"

namespace qnv {

class ColumnPlan {
 public:
  // Makes the plan, or keeps the one that is there when it is the same. bitCount: depth of the source rows. False
  // without memory.
  bool Make(const Stepping& stepping, const SourceMapping& mapping, uint32_t bitCount, PixelTarget target);

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

  // All that a plan depends on.
  struct Request {
    Stepping stepping{};
    int32_t left = 0;
    bool mirrorX = false;
    uint32_t bitCount = 0;
    PixelTarget target = PixelTarget::kBand24;

    bool operator==(const Request&) const = default;
  };

  bool MakeNew();
  bool PlanIndices(int32_t first, int32_t advance);
  bool PlanGroups(std::size_t bytesPerPixel, std::size_t readable);
  bool TakeConverted(std::size_t bytes);

  Request request_;
  bool made_ = false;  // what follows is the plan for request_
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
  WorkBuffer indexBuffer_, groupBuffer_, convertedBuffer_;
};

}  // namespace qnv
