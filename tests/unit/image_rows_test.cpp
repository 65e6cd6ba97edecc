// What the rows of images go through: the fields of 16-bit pixels, the steps of source rows and columns across the
// destination, and rows of every depth, stretched and mirrored into every target at every level, against a walk that
// reads and stores one pixel at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "image/color_tables.h"
#include "image/column_plan.h"
#include "image/row_stepping.h"
#include "unit/kernel_levels.h"

namespace qnv {
namespace {

PixelMasks MasksOf(uint32_t compression, uint32_t red, uint32_t green, uint32_t blue) {
  uint8_t info[52] = {};
  const uint32_t masks[3] = {red, green, blue};
  std::memcpy(info + 40, masks, sizeof masks);
  Dib dib{};
  dib.compression = compression;
  dib.bitCount = 16;
  dib.info = info;
  return MakePixelMasks(dib, PixelTarget::kSource24);
}

// The field's own high bits fill what eight bits have more.
uint8_t Widened(uint32_t pixel, uint32_t lowest, uint32_t bits) {
  const uint32_t field = pixel >> lowest & ((1u << bits) - 1);
  return static_cast<uint8_t>(field << (8 - bits) | field >> (2 * bits - 8));
}

TEST(ComponentMasks, FieldsOfEveryPixel) {
  const PixelMasks five = MasksOf(BI_RGB, 1, 2, 3);  // masks that nobody reads
  const PixelMasks six = MasksOf(BI_BITFIELDS, 0xF800, 0x07E0, 0x001F);
  for (uint32_t pixel = 0; pixel <= 0xFFFF; ++pixel) {
    for (uint32_t i = 0; i < 3; ++i) {
      ASSERT_EQ(five.component[i].Extract(pixel), Widened(pixel, 10 - 5 * i, 5)) << pixel;
      ASSERT_EQ(six.component[i].Extract(pixel), Widened(pixel, i == 0 ? 11 : 10 - 5 * i, i == 1 ? 6 : 5)) << pixel;
    }
  }
}

TEST(ComponentMasks, DegenerateMasks) {
  constexpr struct {
    const char* name;
    uint32_t mask, pixel;
    uint8_t expected;
  } kCases[] = {
      {"no bits", 0x0000, 0xFFFF, 0},
      {"lowest bit alone", 0x0001, 0xFFFF, 0},
      {"highest bit alone", 0x8000, 0xFFFF, 0},
      {"all sixteen", 0xFFFF, 0xABCD, 0xAB},
      {"low byte", 0x00FF, 0xABCD, 0xCD},
      {"upper half of the header's mask is cut", 0xFFFF001F, 0x001F, 0xFF},
      {"two bits", 0x0003, 0x0003, 0xC0 + 0x30},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(MasksOf(BI_BITFIELDS, c.mask, 0, 0).component[0].Extract(c.pixel), c.expected) << c.name;
  }
}

// ---- Stepping.

constexpr int32_t kOne = 65536;

// The walk over columns goes on where the one over rows stops, but covers nothing more.
TEST(RowStepping, CountsDestinationRowsAndColumns) {
  const struct {
    const char* name;
    int32_t dst, extent, source, clipStart, clipPixels;
    std::vector<int32_t> counts;
  } kCases[] = {
      {"one to one", 0, 4 * kOne, 4, 0, 4, {1, 1, 1, 1}},
      {"four rows to two", 0, 2 * kOne, 4, 0, 2, {1, 0, 1}},
      {"one row to three", 0, 3 * kOne, 1, 0, 3, {3}},
      {"two rows to three", 0, 3 * kOne, 2, 0, 3, {2, 1}},
      {"clip in the middle of an enlarged row", 0, 8 * kOne, 2, 2, 6, {2, 4}},
      {"mirrored", 4 * kOne, -4 * kOne, 4, 0, 4, {1, 1, 1, 1}},
      {"clip ends early", 0, 4 * kOne, 4, 0, 2, {1, 1}},
      {"wraps and comes back", -20000 * kOne, 30000 * kOne, 3, 0, 60000, {55537, 0, 10000}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    const Stepping stepping = MakeStepping(c.dst, c.extent, c.source, c.clipStart, c.clipPixels);
    std::vector<int32_t> counts;
    RowWalk walk(stepping);
    for (CoveredRows rows; walk.Next(&rows);) counts.push_back(rows.count);
    EXPECT_EQ(counts, c.counts);
    counts.resize(static_cast<std::size_t>(c.source));
    std::vector<int32_t> columns(counts.size());
    int32_t last = 0;
    const int32_t covered = WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) {
      columns[static_cast<std::size_t>(i)] = end - begin;
      last = std::max(last, end);
    });
    EXPECT_EQ(columns, counts);
    EXPECT_EQ(covered, last);
  }
}

// The promise is checked against the walk itself.
TEST(RowStepping, OneToOneColumns) {
  int promised = 0;
  for (const int32_t start : {-65536, -32769, -32768, -1, 0, 1, 32767, 32768, INT32_MAX}) {
    for (const int32_t source : {1, 7, 100, 32766, 32767, 40000}) {
      for (const int dst : {1, 7, 50, 40000}) {
        for (const uint32_t step : {65535u, 65536u, 65537u}) {
          const Stepping stepping{step, start, source, static_cast<uint16_t>(dst)};
          if (!IsOneToOne(stepping)) continue;
          ++promised;
          int32_t next = 0;
          const int32_t covered = WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) {
            ASSERT_EQ(i, next++);
            ASSERT_EQ(begin, i);
            ASSERT_EQ(end, i + 1);
          });
          EXPECT_EQ(covered, std::min(source, dst));
          EXPECT_EQ(next, covered);
        }
      }
    }
  }
  EXPECT_EQ(promised, 5 * 4 * 4);
  EXPECT_TRUE(IsOneToOne(MakeStepping(0, 4 * kOne, 4, 0, 4)));
  EXPECT_TRUE(IsOneToOne(MakeStepping(4 * kOne, -4 * kOne, 4, 0, 4)));
}

// Whatever a document's numbers wrap to, nothing outside the destination is named.
TEST(RowStepping, HostileValuesStayInside) {
  constexpr int32_t kValues[] = {0,         1,          -1,          kOne,     -kOne,     32767 * kOne, INT32_MAX,
                                 INT32_MIN, 0x55555555, -0x33333333, 12345678, -87654321, 0x7FFF8000};
  for (const int32_t dst : kValues) {
    for (const int32_t extent : kValues) {
      for (const int32_t clipStart : {0, 5, 40000}) {
        for (const int32_t source : {1, 3, 500}) {
          const Stepping stepping = MakeStepping(dst, extent, source, clipStart, 100);
          RowWalk walk(stepping);
          int32_t calls = 0;
          for (CoveredRows rows; walk.Next(&rows); ++calls) {
            ASSERT_TRUE(rows.first >= 0 && rows.first < 100 && rows.count >= 0 && rows.first + rows.count <= 100);
          }
          ASSERT_LE(calls, source);
          const int32_t covered = WalkColumns(stepping, [&](int32_t i, int32_t begin, int32_t end) {
            ASSERT_TRUE(i >= 0 && i < source && begin >= 0 && end <= 100);
          });
          ASSERT_TRUE(covered >= 0 && covered <= 100);
        }
      }
    }
  }
}

// ---- Plans of columns. Source rows end at a fence.

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
    SCOPED_TRACE(testing::Message() << bitCount << " bits, target " << static_cast<int>(target) << ", step "
                                    << stepping.step << " from " << stepping.start << ", " << stepping.sourcePixels
                                    << " columns from " << mapping.left << " into " << stepping.dstPixels
                                    << (mirrored ? ", mirrored" : ""));
    // One plan serves all cases, as on a device: made anew, asked for once more, and after a plan for another row.
    const auto check = [&] {
      ASSERT_TRUE(plan_.Make(stepping, mapping, bitCount, target));
      test::CheckRow(old, expected, 0, [&](uint8_t* out) {
        plan_.Apply(out, row, RowConverterFor(bitCount, target), ConverterContext{colors, kernels()});
      });
    };
    check();
    check();
    SourceMapping shifted = mapping;
    ++shifted.left;
    ASSERT_TRUE(plan_.Make(stepping, shifted, bitCount, target));
    check();
  }

  std::vector<uint32_t> table_ = std::vector<uint32_t>(256);
  ColumnPlan plan_;
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
