#include "image/column_plan.h"

#include <algorithm>
#include <cstring>

namespace qnv {

bool ColumnPlan::Make(const Stepping& stepping, const SourceMapping& mapping, PixelTarget target,
                      ImageBuffers& buffers) {
  mirrored_ = mapping.mirrorX;
  bytesPerPixel_ = BytesOf(target);
  const int32_t first = mirrored_ ? mapping.left + mapping.columns - 1 : mapping.left;
  const int32_t advance = mirrored_ ? -1 : 1;

  int32_t firstWalked = -1;
  int32_t lastWalked = -1;
  int32_t reached = 0;
  bool consecutive = true;
  bool ascending = true;  // only wrapped numbers step back
  count_ = WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) {
    if (firstWalked < 0) firstWalked = i;
    lastWalked = i;
    if (end - begin != 1 || begin != i - firstWalked) consecutive = false;
    if (begin != reached) ascending = false;
    reached = end;
  });
  if (count_ == 0) return true;
  sourceCount_ = lastWalked - firstWalked + 1;
  low_ = first + (mirrored_ ? lastWalked : firstWalked) * advance;

  if (consecutive && ascending) {
    order_ = mirrored_ ? Order::kBackward : Order::kForward;
  } else if (ascending && stepping.step >= 65536) {
    order_ = Order::kEnlarged;
    if (!PlanEnlarged(stepping, buffers)) return false;
  } else {
    order_ = Order::kPicked;
    return PlanPicked(stepping, buffers, first, advance);
  }
  if (order_ == Order::kForward) return true;
  // A group reads a few bytes past the last pixel.
  const std::size_t bytes = static_cast<std::size_t>(sourceCount_) * bytesPerPixel_ + kGroupBytes;
  converted_ = buffers.converted.Take<uint8_t>(bytes);
  reversed_ = buffers.reversed.Take<uint8_t>(bytes);
  if (converted_ == nullptr || reversed_ == nullptr) return false;
  std::memset(converted_ + bytes - kGroupBytes, 0, kGroupBytes);
  std::memset(reversed_ + bytes - kGroupBytes, 0, kGroupBytes);
  return true;
}

// Enlarged columns that stand together come from source columns that do: five or sixteen of them fit a group.
bool ColumnPlan::PlanEnlarged(const Stepping& stepping, ImageBuffers& buffers) {
  groupPixels_ = kGroupBytes / bytesPerPixel_;
  const std::size_t groupCount = (static_cast<std::size_t>(count_) + groupPixels_ - 1) / groupPixels_;
  auto* groups = buffers.groups.Take<ShuffleGroup>(groupCount);
  if (groups == nullptr) return false;
  std::memset(groups, 0, groupCount * sizeof *groups);
  int32_t firstWalked = -1;
  WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) {
    if (firstWalked < 0) firstWalked = i;
    const uint32_t source = static_cast<uint32_t>(i - firstWalked) * static_cast<uint32_t>(bytesPerPixel_);
    for (int32_t at = begin; at < end; ++at) {
      ShuffleGroup& group = groups[static_cast<std::size_t>(at) / groupPixels_];
      const std::size_t place = static_cast<std::size_t>(at) % groupPixels_;
      if (place == 0) group.from = source;
      for (std::size_t b = 0; b < bytesPerPixel_; ++b) {
        group.bytes[place * bytesPerPixel_ + b] = static_cast<uint8_t>(source - group.from + b);
      }
    }
  });
  groups_ = groups;
  return true;
}

bool ColumnPlan::PlanPicked(const Stepping& stepping, ImageBuffers& buffers, int32_t first, int32_t advance) {
  auto* picks = buffers.columns.Take<uint16_t>(static_cast<std::size_t>(count_));
  if (picks == nullptr) return false;
  WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) {
    std::fill(picks + begin, picks + end, static_cast<uint16_t>(first + i * advance));
  });
  picks_ = picks;
  return true;
}

void ColumnPlan::Apply(uint8_t* out, const uint8_t* row, const RowConverter& converter,
                       const ConverterContext& context) const {
  if (count_ == 0) return;
  const PixelRows& image = *context.rows.image;
  const std::size_t count = static_cast<std::size_t>(count_);
  const std::size_t sourceCount = static_cast<std::size_t>(sourceCount_);
  const uint32_t low = static_cast<uint32_t>(low_);
  const auto reverse = bytesPerPixel_ == 3 ? image.ReverseRow24 : image.ReverseRow8;
  switch (order_) {
    case Order::kForward: converter.Consecutive(out, row, low, count, context); break;
    case Order::kPicked: converter.Picked(out, row, picks_, count, context); break;
    case Order::kBackward:
      converter.Consecutive(converted_, row, low, count, context);
      reverse(out, converted_, count);
      break;
    case Order::kEnlarged:
      converter.Consecutive(converted_, row, low, sourceCount, context);
      if (mirrored_) reverse(reversed_, converted_, sourceCount);
      image.ShuffleRow(out, mirrored_ ? reversed_ : converted_, groups_, groupPixels_ * bytesPerPixel_,
                       count * bytesPerPixel_);
      break;
  }
}

}  // namespace qnv
