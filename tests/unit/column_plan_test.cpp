// Rows of every depth, stretched and mirrored into every target at every level, against a walk that reads and stores
// one pixel at a time. Source rows end at a fence.
#include "image/column_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "unit/kernel_levels.h"

namespace qnv {
namespace {

// A color, blue in the low byte, as a target holds it.
uint32_t Packed(uint32_t color, PixelTarget target) {
  const uint32_t red = color >> 16 & 0xFF, green = color >> 8 & 0xFF, blue = color & 0xFF;
  if (target == PixelTarget::kGray8) return (red * 30 + green * 59 + blue * 11) / 100;
  return target == PixelTarget::kBand24 ? color : red | green << 8 | blue << 16;
}

struct Source {
  uint32_t bitCount;
  const uint8_t* row;
  const std::vector<uint32_t>& table;

  uint32_t ColorAt(int32_t x) const {
    const uint32_t bit = static_cast<uint32_t>(x) * bitCount;
    const uint8_t* pixel = row + bit / 8;
    if (bitCount <= 8) return table[*pixel >> (8 - bitCount - bit % 8) & ((1u << bitCount) - 1)];
    const uint32_t packed = pixel[0] | static_cast<uint32_t>(pixel[1]) << 8;
    if (bitCount >= 24) return packed | static_cast<uint32_t>(pixel[2]) << 16;
    const auto five = [packed](uint32_t shift) {
      const uint32_t value = packed >> shift & 31;
      return value << 3 | value >> 2;
    };
    return five(10) << 16 | five(5) << 8 | five(0);
  }
};

// One source column after another, in numbers that wrap; a later one paints over what earlier ones have painted.
void ConvertNaively(uint8_t* out, const Source& source, const Stepping& stepping, const SourceMapping& mapping,
                    PixelTarget target) {
  const int32_t bytes = static_cast<int32_t>(BytesOf(target));
  uint32_t position = static_cast<uint32_t>(stepping.start) + 32768;
  int32_t done = 0;
  for (int32_t i = 0; i < stepping.sourcePixels; ++i) {
    position += stepping.step;
    const uint16_t reached = static_cast<uint16_t>(static_cast<int32_t>(position) / 65536);
    const int32_t end = std::min(reached, stepping.dstPixels);
    const int32_t x = mapping.mirrorX ? mapping.left + mapping.columns - 1 - i : mapping.left + i;
    const uint32_t pixel = Packed(source.ColorAt(x), target);
    for (int32_t at = done * bytes; at < end * bytes; ++at) out[at] = static_cast<uint8_t>(pixel >> at % bytes * 8);
    done = end;
  }
}

PixelMasks FiveBitMasks(PixelTarget target) {
  const ComponentMask red{0x7C00, 1, 5}, green{0x03E0, 6, 5}, blue{0x001F, 11, 5};
  if (target == PixelTarget::kSource24) return {{red, green, blue}};
  return {{blue, green, red}};
}

// Destination pixels for some source pixels.
struct Scale {
  int32_t target, source;
};

constexpr Scale kScales[] = {{1, 1},  {2, 1}, {3, 1}, {4, 1}, {5, 1},   {7, 1},   {8, 1},  {137, 100},
                             {9, 10}, {2, 3}, {1, 2}, {1, 3}, {10, 33}, {10, 45}, {2, 15}, {1, 20}};

// Steppings of documents whose numbers wrap: source columns are left out, come back or begin behind the first pixel.
constexpr Stepping kWrapping[] = {{65536, -8 * 65536, 21, 16},     {65536, -20 * 65536, 29, 21},
                                  {65536, -20 * 65536, 60, 40},    {2 * 65536, -4 * 65536, 6, 2},
                                  {3 * 65536, -7 * 65536, 40, 90}, {131072, INT32_MAX - 7, 50, 60},
                                  {65536, 32768, 40, 30},          {65536, 3 * 65536, 40, 30},
                                  {65536, -32769, 40, 30},         {0x7FFF8000, -65536, 30, 700},
                                  {0x80000000, 0, 9, 50},          {65535, 40000, 1000, 700},
                                  {65537, -32768, 1000, 700},      {70 * 65536, -90 * 65536, 9, 300},
                                  {40000, -30 * 65536, 90, 30}};

class ColumnPlanTest : public test::KernelTest {
 protected:
  ColumnPlanTest() {
    for (uint32_t& color : table_) color = random_() & 0xFFFFFF;
  }

  int32_t Below(int32_t end) { return static_cast<int32_t>(random_() % static_cast<uint32_t>(end)); }

  // A row at that scale of which some destination columns on either side are hidden. The first source column is never
  // hidden as a whole.
  void CheckScale(uint32_t bitCount, PixelTarget target, const Scale& scale, int32_t columns, bool mirrored) {
    const int32_t extent = static_cast<int32_t>(int64_t{columns} * 65536 * scale.target / scale.source);
    const int32_t maxHidden = scale.target > scale.source ? scale.target / scale.source - 1 : (extent >> 16) / 3;
    const int32_t hidden = Below(2) == 0 ? 0 : Below(maxHidden + 1);
    const int32_t shown = (extent >> 16) - hidden - (Below(2) == 0 ? 0 : (extent >> 16) / 4);
    if (shown <= 0) return;
    Check(bitCount, target, MakeStepping(mirrored ? extent : 0, mirrored ? -extent : extent, columns, hidden, shown),
          mirrored);
  }

  void Check(uint32_t bitCount, PixelTarget target, const Stepping& stepping, bool mirrored) {
    SourceMapping mapping{};
    mapping.left = Below(20);
    mapping.columns = stepping.sourcePixels;
    mapping.mirrorX = mirrored;
    const std::size_t pixels = static_cast<std::size_t>(mapping.left + mapping.columns);
    const test::Bytes bits = Random((pixels * bitCount + 7) / 8);
    const uint8_t* const row = test::SourceAtFence(bits);
    const std::size_t bytes = stepping.dstPixels * BytesOf(target);
    const test::Bytes old(bytes, 0xEE);
    test::Bytes expected = old;
    ConvertNaively(expected.data(), {bitCount, row, table_}, stepping, mapping, target);

    PixelColors colors{};
    for (std::size_t i = 0; i < table_.size(); ++i) colors.table.entries[i] = Packed(table_[i], target);
    colors.masks = FiveBitMasks(target);
    ColumnPlan plan;
    ASSERT_TRUE(plan.Make(stepping, mapping, bitCount, target, buffers_));
    SCOPED_TRACE(testing::Message() << bitCount << " bits, target " << static_cast<int>(target) << ", step "
                                    << stepping.step << " from " << stepping.start << ", " << stepping.sourcePixels
                                    << " columns from " << mapping.left << " into " << stepping.dstPixels
                                    << (mirrored ? ", mirrored" : ""));
    test::CheckRow(old, expected, 0, [&](uint8_t* out) {
      plan.Apply(out, row, RowConverterFor(bitCount, target), ConverterContext{colors, kernels()});
    });
  }

  std::vector<uint32_t> table_ = std::vector<uint32_t>(256);
  ImageBuffers buffers_;
};

TEST_P(ColumnPlanTest, EveryFormatScaleAndDirection) {
  for (const uint32_t bitCount : {1u, 4u, 8u, 16u, 24u, 32u}) {
    for (const PixelTarget target : {PixelTarget::kBand24, PixelTarget::kSource24, PixelTarget::kGray8}) {
      for (const bool mirrored : {false, true}) {
        for (const Scale& scale : kScales) {
          for (const int32_t columns : {1, 2, 5, 6, 7, 16, 33, 100, 700, 1200}) {
            CheckScale(bitCount, target, scale, columns, mirrored);
            if (HasFatalFailure()) return;
          }
        }
        // So thin that pixels are picked one by one, more of them than are converted at a time.
        CheckScale(bitCount, target, {1, 20}, 12000, mirrored);
        for (const Stepping& stepping : kWrapping) Check(bitCount, target, stepping, mirrored);
        if (HasFatalFailure()) return;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, ColumnPlanTest, testing::ValuesIn(test::kKernelLevels), test::KernelLevelName);

}  // namespace
}  // namespace qnv
