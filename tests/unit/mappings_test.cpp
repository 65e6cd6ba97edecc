// Runs of columns on the resolution-mapping device against its rule for single columns.
#include "raster/mappings.h"

#include <gtest/gtest.h>

#include <vector>

namespace qnv {
namespace {

struct Placed {
  int32_t band, caller;
  bool operator==(const Placed&) const = default;
};

std::vector<Placed> OneByOne(const CoordinateMap& map, int32_t first, int32_t count, int32_t bandColumns) {
  std::vector<Placed> placed;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t column = map.MapKept(first + i);
    if (column >= 0 && column < bandColumns) placed.push_back({column, i});
  }
  return placed;
}

std::vector<Placed> ByRuns(const CoordinateMap& map, int32_t first, int32_t count, int32_t bandColumns) {
  std::vector<Placed> placed;
  KeptMapping{&map}.ForEachRun(first, count, bandColumns, [&](const ColumnRun& run) {
    EXPECT_GT(run.count, 0);
    EXPECT_LE(run.count, KeptMapping::kMaxRunPixels);
    EXPECT_EQ(run.indices[0], 0);
    for (int32_t i = 0; i < run.count; ++i) placed.push_back({run.bandColumn + i, run.callerColumn + run.indices[i]});
  });
  return placed;
}

constexpr struct {
  uint16_t a, b;
} kPairs[] = {{720, 360}, {600, 400}, {360, 720},   {360, 360}, {1200, 361}, {300, 72}, {7, 3},
              {3, 7},     {1, 1},     {65535, 300}, {1, 5},     {5, 1},      {360, 0},  {100, 99}};

TEST(KeptMapping, RunsAreTheKeptColumns) {
  for (const auto& pair : kPairs) {
    CoordinateMap map;
    map.SetResolutions(pair.a, pair.b);
    ASSERT_TRUE(map.Build());
    for (const int32_t first : {-2000, -3, 0, 1, 2, 359, 360, 719, 5000, 60000}) {
      for (const int32_t count : {0, 1, 2, 3, 10, 700, 5000, 200000}) {
        for (const int32_t bandColumns : {0, 1, 5, 1000, 1 << 20}) {
          ASSERT_EQ(OneByOne(map, first, count, bandColumns), ByRuns(map, first, count, bandColumns))
              << pair.a << ":" << pair.b << ", " << count << " from " << first << " into " << bandColumns;
        }
      }
    }
    // To the end of the numbers.
    const int32_t last = INT32_MAX - 300;
    ASSERT_EQ(OneByOne(map, last, 300, INT32_MAX), ByRuns(map, last, 300, INT32_MAX)) << pair.a << ":" << pair.b;
  }
}

TEST(KeptMapping, PageOfIsTheInverseOfMapKept) {
  for (const auto& pair : kPairs) {
    CoordinateMap map;
    map.SetResolutions(pair.a, pair.b);
    ASSERT_TRUE(map.Build());
    if (!map.Decimates()) continue;
    for (int32_t band = 0; band < 3 * pair.b + 2; ++band) {
      const int32_t page = map.PageOf(band);
      ASSERT_EQ(band, map.MapKept(page)) << pair.a << ":" << pair.b;
      ASSERT_EQ(band, map.FirstBandFrom(page)) << pair.a << ":" << pair.b;
      ASSERT_EQ(band + 1, map.FirstBandFrom(page + 1)) << pair.a << ":" << pair.b;
    }
  }
}

}  // namespace
}  // namespace qnv
