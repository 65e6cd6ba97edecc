// Rows of every depth, stretched and mirrored into every target at every level, against a walk that reads and stores
// one pixel at a time. Source rows end at a fence.
#include "image/column_plan.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/fenced_buffer.h"
#include "unit/kernel_levels.h"

namespace qnv {
namespace {

using test::FencedBuffer;

struct Color {
  uint32_t red, green, blue;
};

struct Source {
  uint32_t bitCount;
  const uint8_t* row;
  const std::vector<Color>& table;

  Color At(int32_t x) const {
    const uint8_t* pixel = row + static_cast<uint32_t>(x) * bitCount / 8;
    const uint32_t inByte = static_cast<uint32_t>(x) * bitCount % 8;
    if (bitCount <= 8) return table[*pixel >> (8 - bitCount - inByte) & ((1u << bitCount) - 1)];
    if (bitCount >= 24) return {pixel[2], pixel[1], pixel[0]};
    const uint32_t packed = pixel[0] | static_cast<uint32_t>(pixel[1]) << 8;
    const auto five = [packed](uint32_t shift) {
      const uint32_t value = packed >> shift & 31;
      return value << 3 | value >> 2;
    };
    return {five(10), five(5), five(0)};
  }
};

void Store(uint8_t* out, std::size_t at, PixelTarget target, const Color& c) {
  const uint32_t bytes[3] = {c.blue, c.green, c.red};
  for (std::size_t i = 0; i < 3; ++i) {
    if (target == PixelTarget::kBand24) out[3 * at + i] = static_cast<uint8_t>(bytes[i]);
    if (target == PixelTarget::kSource24) out[3 * at + i] = static_cast<uint8_t>(bytes[2 - i]);
  }
  if (target == PixelTarget::kGray8) out[at] = static_cast<uint8_t>((c.red * 30 + c.green * 59 + c.blue * 11) / 100);
}

void ConvertNaively(uint8_t* out, const Source& source, const Stepping& stepping, const SourceMapping& mapping,
                    PixelTarget target) {
  int64_t position = int64_t{stepping.start} + 32768;
  int32_t done = 0;
  for (int32_t i = 0; i < stepping.sourcePixels; ++i) {
    position += stepping.step;
    const int32_t end = std::min(static_cast<int32_t>(position / 65536), int32_t{stepping.dstPixels});
    const int32_t x = mapping.mirrorX ? mapping.left + mapping.columns - 1 - i : mapping.left + i;
    for (; done < end; ++done) Store(out, static_cast<std::size_t>(done), target, source.At(x));
  }
}

uint32_t TableEntry(const Color& c, PixelTarget target) {
  uint8_t bytes[4] = {};
  Store(bytes, 0, target, c);
  return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8 | static_cast<uint32_t>(bytes[2]) << 16;
}

PixelMasks FiveBitMasks(PixelTarget target) {
  const ComponentMask red{0x7C00, 1, 5}, green{0x03E0, 6, 5}, blue{0x001F, 11, 5};
  if (target == PixelTarget::kSource24) return {{red, green, blue}};
  return {{blue, green, red}};
}

// Destination pixels for some source pixels.
struct Scale {
  const char* name;
  int32_t target, source;
};

constexpr Scale kScales[] = {{"1:1", 1, 1},       {"x2", 2, 1},     {"x3", 3, 1},    {"x4", 4, 1},  {"x8", 8, 1},
                             {"x1.37", 137, 100}, {"x0.9", 9, 10},  {"/1.5", 2, 3},  {"/2", 1, 2},  {"/3", 1, 3},
                             {"/3.3", 10, 33},    {"/4.5", 10, 45}, {"/7.5", 2, 15}, {"/20", 1, 20}};

class ColumnPlanTest : public testing::TestWithParam<test::KernelLevel> {
 protected:
  void SetUp() override {
    if (GetParam().level > DetectCpuLevel()) GTEST_SKIP() << "not on this machine";
    for (int i = 0; i < 256; ++i) table_.push_back({Byte(), Byte(), Byte()});
  }

  uint32_t Byte() { return static_cast<uint32_t>(random_() & 255); }

  // `shown` of the destination's columns are visible, from `hidden` on.
  void Check(uint32_t bitCount, PixelTarget target, const Scale& scale, int32_t columns, bool mirrored) {
    const int32_t left = static_cast<int32_t>(random_() % 20);
    const int32_t extent = static_cast<int32_t>(int64_t{columns} * 65536 * scale.target / scale.source);
    // The first source column is never hidden as a whole.
    const int32_t most = scale.target > scale.source ? scale.target / scale.source - 1 : (extent >> 16) / 3;
    const int32_t hidden = random_() % 2 == 0 ? 0 : most;
    const int32_t shown = (extent >> 16) - hidden - (random_() % 2 == 0 ? 0 : (extent >> 16) / 4);
    if (shown <= 0) return;
    SourceMapping mapping{};
    mapping.left = left;
    mapping.columns = columns;
    mapping.mirrorX = mirrored;
    const Stepping stepping = MakeStepping(mirrored ? extent : 0, mirrored ? -extent : extent, columns, hidden, shown);

    FencedBuffer row((static_cast<std::size_t>(left + columns) * bitCount + 7) / 8, 0);
    for (std::size_t i = 0; i < row.size(); ++i) row.data()[i] = static_cast<uint8_t>(Byte());
    const std::size_t bytes = static_cast<std::size_t>(shown) * BytesOf(target);
    FencedBuffer expected(bytes, 0xEE), out(bytes, 0xEE);
    ConvertNaively(expected.data(), {bitCount, row.data(), table_}, stepping, mapping, target);

    PixelColors colors{};
    for (std::size_t i = 0; i < table_.size(); ++i) colors.table.entries[i] = TableEntry(table_[i], target);
    colors.masks = FiveBitMasks(target);
    ColumnPlan plan;
    ASSERT_TRUE(plan.Make(stepping, mapping, bitCount, target, buffers_));
    plan.Apply(out.data(), row.data(), RowConverterFor(bitCount, target),
               ConverterContext{colors, KernelsFor(GetParam().level)});
    ASSERT_EQ(0, std::memcmp(expected.data(), out.data(), bytes))
        << bitCount << " bits, target " << static_cast<int>(target) << ", " << scale.name << ", " << columns
        << " columns from " << left << ", " << shown << " shown from " << hidden << (mirrored ? ", mirrored" : "");
    ASSERT_TRUE(out.FencesIntact());
  }

  std::mt19937 random_{1};
  std::vector<Color> table_;
  ImageBuffers buffers_;
};

TEST_P(ColumnPlanTest, EveryFormatScaleAndDirection) {
  for (const uint32_t bitCount : {1u, 4u, 8u, 16u, 24u, 32u}) {
    for (const PixelTarget target : {PixelTarget::kBand24, PixelTarget::kSource24, PixelTarget::kGray8}) {
      for (const Scale& scale : kScales) {
        for (const int32_t columns : {1, 2, 5, 6, 7, 16, 33, 100, 700, 1200}) {
          for (const bool mirrored : {false, true}) {
            Check(bitCount, target, scale, columns, mirrored);
            if (HasFatalFailure()) return;
          }
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, ColumnPlanTest, testing::ValuesIn(test::kKernelLevels),
                         [](const auto& level) { return std::string(level.param.name); });

}  // namespace
}  // namespace qnv
