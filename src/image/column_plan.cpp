// Plans the columns of an image: finds out how regular the step from source to destination columns is, and chooses the
// fastest way that fits.
#include "image/column_plan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace qnv {
namespace {

// The largest number of consecutive destination pixels whose source pixels always lie within one group of kGroupBytes;
// 1 when not even two do.
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

// Collects, column by column, how source columns are distributed over destination columns.
struct ColumnOrder {
  int32_t firstWalked = -1, lastWalked = -1;  // first and last source column that is shown
  int32_t reached = 0;                        // destination columns so far
  int32_t repetition = 0;                     // destination columns of the first source column
  int32_t lastLength = 0;                     // destination columns of the last source column
  bool consecutive = true;                    // each source column covers one destination column
  bool ascending = true;                      // no step back; only wrapped numbers step back
  bool repeated = true;                       // all but the last cover as many destination columns as the first

  // Source column i covers the destination columns [begin, end).
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

  // How often every column is repeated: 2, 4 or 8, the factors that have a row kernel; else 0.
  std::size_t Factor() const {
    const bool evenly = ascending && repeated && lastLength <= repetition;
    return evenly && (repetition == 2 || repetition == 4 || repetition == 8) ? static_cast<std::size_t>(repetition) : 0;
  }
};

// Whether, when an image is made smaller, it is faster to convert all source pixels and drop some than to convert only
// those that are shown. True for some formats with several pixels in a byte.
bool ConvertsBeforeDecimation(uint32_t bitCount, PixelTarget target) {
  return bitCount == 1 || (bitCount == 4 && target == PixelTarget::kGray8);
}

// ... as long as no more than this many bytes are converted for each destination pixel.
constexpr std::size_t kMaxConverted = 6;

}  // namespace

bool ColumnPlan::Make(const Stepping& stepping, const SourceMapping& mapping, uint32_t bitCount, PixelTarget target) {
  const Request request{stepping, mapping.left, mapping.mirrorX, bitCount, target};
  if (made_ && request == request_) return true;
  request_ = request;
  made_ = MakeNew();
  return made_;
}

bool ColumnPlan::MakeNew() {
  const auto& [stepping, left, mirrorX, bitCount, target] = request_;
  bytesPerPixel_ = BytesOf(target);
  sourceBytes_ = bitCount / 8;
  const int32_t first = mirrorX ? left + stepping.sourcePixels - 1 : left;
  const int32_t advance = mirrorX ? -1 : 1;

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
  low_ = first + (mirrorX ? order.lastWalked : order.firstWalked) * advance;

  if (order.consecutive && order.ascending) {
    order_ = mirrorX ? Order::kBackward : Order::kForward;
    return !mirrorX || TakeConverted(static_cast<std::size_t>(count_) * bytesPerPixel_);
  }
  factor_ = order.Factor();
  if (factor_ != 0 && !mirrorX) {
    order_ = Order::kRepeated;
    return TakeConverted(static_cast<std::size_t>(sourceCount_) * bytesPerPixel_);
  }
  order_ = Order::kIndexed;
  if (!PlanIndices(first, advance)) return false;
  if (!order.ascending) return true;
  const std::size_t count = static_cast<std::size_t>(count_);
  const std::size_t sourceCount = static_cast<std::size_t>(sourceCount_);
  const std::size_t bytes = sourceCount * bytesPerPixel_;
  const bool enlarges = stepping.step >= 65536;
  if (enlarges || (ConvertsBeforeDecimation(bitCount, target) && bytes <= kMaxConverted * count)) {
    if (!TakeConverted(bytes)) return false;
    if (PlanGroups(bytesPerPixel_, bytes + kGroupBytes)) order_ = Order::kConvertedFirst;
  } else if (sourceBytes_ > 0) {
    if (!TakeConverted(count * sourceBytes_)) return false;
    if (PlanGroups(sourceBytes_, sourceCount * sourceBytes_)) order_ = Order::kGatheredFirst;
  }
  return true;
}

bool ColumnPlan::PlanIndices(int32_t first, int32_t advance) {
  auto* indices = indexBuffer_.Take<uint16_t>(static_cast<std::size_t>(count_));
  if (indices == nullptr) return false;
  WalkColumns(request_.stepping, [&](int32_t i, int32_t begin, int32_t end) {
    std::fill(indices + begin, indices + end, static_cast<uint16_t>(first + i * advance));
  });
  indices_ = indices;
  return true;
}

// Translates indices_ into groups for ShuffleRow. readable: bytes that may be read from the pixel low_ on. False when a
// group would hold a single pixel only, or without memory.
bool ColumnPlan::PlanGroups(std::size_t bytesPerPixel, std::size_t readable) {
  const std::size_t count = static_cast<std::size_t>(count_);
  groupPixels_ = PixelsPerGroup(indices_, count, bytesPerPixel);
  if (groupPixels_ < 2 || readable < kGroupBytes) return false;
  const std::size_t groupCount = (count + groupPixels_ - 1) / groupPixels_;
  auto* groups = groupBuffer_.Take<ShuffleGroup>(groupCount);
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

// Takes the buffer for a row between two steps. A group may read a few bytes past the last pixel; those are cleared.
bool ColumnPlan::TakeConverted(std::size_t bytes) {
  converted_ = convertedBuffer_.Take<uint8_t>(bytes + kGroupBytes);
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
