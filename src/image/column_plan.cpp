#include "image/column_plan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace qnv {
namespace {

// Picks that stand together in a group, wherever it begins; 1 when only the pixel itself does.
std::size_t PixelsPerGroup(const uint16_t* indices, std::size_t count, std::size_t bytesPerPixel) {
  std::size_t pixels = kGroupBytes / bytesPerPixel;
  for (std::size_t begin = 0; begin < count && pixels > 1;) {
    const std::size_t last = std::min(begin + pixels, count) - 1;
    const std::size_t apart = static_cast<std::size_t>(std::abs(indices[last] - indices[begin]));
    const bool fits = (apart + 1) * bytesPerPixel <= kGroupBytes;
    begin = fits ? last + 1 : 0;
    pixels -= fits ? 0 : 1;
  }
  return pixels;
}

// What a walk over the columns shows of their order.
struct ColumnOrder {
  int32_t firstWalked = -1, lastWalked = -1;  // source columns
  int32_t reached = 0;
  int32_t repetition = 0;   // destination columns of the first one
  int32_t lastLength = 0;   // of the last one
  bool consecutive = true;  // one for one
  bool ascending = true;    // only wrapped numbers step back
  bool repeated = true;     // each as often as the first, but the last

  void Add(int32_t i, int32_t begin, int32_t end) {
    if (firstWalked < 0) {
      firstWalked = lastWalked = i;
      repetition = lastLength = end - begin;
    } else if (lastLength != repetition || i != lastWalked + 1) {
      repeated = false;
    }
    lastWalked = i;
    lastLength = end - begin;
    if (lastLength != 1 || begin != i - firstWalked) consecutive = false;
    if (begin != reached) ascending = false;
    reached = end;
  }

  // 2, 4 or 8; 0 when columns are not repeated evenly.
  std::size_t Factor() const {
    const bool evenly = ascending && repeated && lastLength <= repetition;
    return evenly && (repetition == 2 || repetition == 4 || repetition == 8) ? static_cast<std::size_t>(repetition) : 0;
  }
};

// Formats whose whole rows are converted sooner than single pixels are picked out of bytes.
bool ConvertsBeforeDecimation(uint32_t bitCount, PixelTarget target) {
  return bitCount == 1 || (bitCount == 4 && target == PixelTarget::kGray8);
}

// Bytes converted for each destination pixel; beyond that picking is as fast.
constexpr std::size_t kMaxConverted = 6;

}  // namespace

bool ColumnPlan::Make(const Stepping& stepping, const SourceMapping& mapping, uint32_t bitCount, PixelTarget target,
                      ImageBuffers& buffers) {
  bytesPerPixel_ = BytesOf(target);
  sourceBytes_ = bitCount / 8;
  const int32_t first = mapping.mirrorX ? mapping.left + mapping.columns - 1 : mapping.left;
  const int32_t advance = mapping.mirrorX ? -1 : 1;

  ColumnOrder order;
  if (IsOneToOne(stepping)) {
    count_ = std::min<int32_t>(stepping.sourcePixels, stepping.dstPixels);
    order.firstWalked = 0;
    order.lastWalked = count_ - 1;
  } else {
    count_ = WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) { order.Add(i, begin, end); });
  }
  if (count_ == 0) return true;
  sourceCount_ = order.lastWalked - order.firstWalked + 1;
  low_ = first + (mapping.mirrorX ? order.lastWalked : order.firstWalked) * advance;

  if (order.consecutive && order.ascending) {
    order_ = mapping.mirrorX ? Order::kBackward : Order::kForward;
    return !mapping.mirrorX || TakeConverted(static_cast<std::size_t>(count_) * bytesPerPixel_, buffers);
  }
  factor_ = order.Factor();
  if (factor_ != 0 && !mapping.mirrorX) {
    order_ = Order::kRepeated;
    return TakeConverted(static_cast<std::size_t>(sourceCount_) * bytesPerPixel_, buffers);
  }
  order_ = Order::kIndexed;
  if (!PlanIndices(stepping, first, advance, buffers)) return false;
  if (!order.ascending) return true;
  const std::size_t count = static_cast<std::size_t>(count_);
  const std::size_t sourceCount = static_cast<std::size_t>(sourceCount_);
  const std::size_t bytes = sourceCount * bytesPerPixel_;
  const bool enlarges = stepping.step >= 65536;
  if (enlarges || (ConvertsBeforeDecimation(bitCount, target) && bytes <= kMaxConverted * count)) {
    if (!TakeConverted(bytes, buffers)) return false;
    if (PlanGroups(bytesPerPixel_, bytes + kGroupBytes, buffers)) order_ = Order::kConvertedFirst;
  } else if (sourceBytes_ > 0) {
    if (!TakeConverted(count * sourceBytes_, buffers)) return false;
    if (PlanGroups(sourceBytes_, sourceCount * sourceBytes_, buffers)) order_ = Order::kGatheredFirst;
  }
  return true;
}

bool ColumnPlan::PlanIndices(const Stepping& stepping, int32_t first, int32_t advance, ImageBuffers& buffers) {
  auto* indices = buffers.columns.Take<uint16_t>(static_cast<std::size_t>(count_));
  if (indices == nullptr) return false;
  WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) {
    std::fill(indices + begin, indices + end, static_cast<uint16_t>(first + i * advance));
  });
  indices_ = indices;
  return true;
}

// readable: bytes from the pixel low_ on. False when groups would hold single pixels, and without memory.
bool ColumnPlan::PlanGroups(std::size_t bytesPerPixel, std::size_t readable, ImageBuffers& buffers) {
  const std::size_t count = static_cast<std::size_t>(count_);
  groupPixels_ = PixelsPerGroup(indices_, count, bytesPerPixel);
  if (groupPixels_ < 2 || readable < kGroupBytes) return false;
  const std::size_t groupCount = (count + groupPixels_ - 1) / groupPixels_;
  auto* groups = buffers.groups.Take<ShuffleGroup>(groupCount);
  if (groups == nullptr) return false;
  std::memset(groups, 0, groupCount * sizeof *groups);
  groups_ = groups;
  for (std::size_t begin = 0; begin < count; begin += groupPixels_, ++groups) {
    const std::size_t end = std::min(begin + groupPixels_, count);
    const auto byteOf = [&](std::size_t i) { return static_cast<std::size_t>(indices_[i] - low_) * bytesPerPixel; };
    const std::size_t from = std::min({byteOf(begin), byteOf(end - 1), readable - kGroupBytes});
    groups->from = static_cast<uint32_t>(from);
    uint8_t* next = groups->bytes;
    for (std::size_t i = begin; i < end; ++i) {
      for (std::size_t b = 0; b < bytesPerPixel; ++b) *next++ = static_cast<uint8_t>(byteOf(i) - from + b);
    }
  }
  return true;
}

// A group reads a few bytes past the last pixel.
bool ColumnPlan::TakeConverted(std::size_t bytes, ImageBuffers& buffers) {
  converted_ = buffers.converted.Take<uint8_t>(bytes + kGroupBytes);
  if (converted_ == nullptr) return false;
  std::memset(converted_ + bytes, 0, kGroupBytes);
  return true;
}

void ColumnPlan::Apply(uint8_t* out, const uint8_t* row, const RowConverter& converter,
                       const ConverterContext& context) const {
  if (count_ == 0) return;
  const PixelRows& image = *context.rows.image;
  const std::size_t count = static_cast<std::size_t>(count_);
  const uint32_t low = static_cast<uint32_t>(low_);
  switch (order_) {
    case Order::kForward: converter.Consecutive(out, row, low, count, context); break;
    case Order::kBackward:
      converter.Consecutive(converted_, row, low, count, context);
      (bytesPerPixel_ == 3 ? image.ReverseRow24 : image.ReverseRow8)(out, converted_, count);
      break;
    case Order::kRepeated:
      converter.Consecutive(converted_, row, low, static_cast<std::size_t>(sourceCount_), context);
      (bytesPerPixel_ == 3 ? image.RepeatRow24 : image.RepeatRow8)(out, converted_, count, factor_);
      break;
    case Order::kConvertedFirst:
      converter.Consecutive(converted_, row, low, static_cast<std::size_t>(sourceCount_), context);
      image.ShuffleRow(out, converted_, groups_, groupPixels_ * bytesPerPixel_, count * bytesPerPixel_);
      break;
    case Order::kGatheredFirst:
      image.ShuffleRow(converted_, row + low * sourceBytes_, groups_, groupPixels_ * sourceBytes_,
                       count * sourceBytes_);
      converter.Consecutive(out, converted_, 0, count, context);
      break;
    case Order::kIndexed: converter.Indexed(out, row, indices_, count, context); break;
  }
}

}  // namespace qnv
