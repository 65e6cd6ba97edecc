#include "raster/coordinate_map.h"

#include <gtest/gtest.h>

#include "raster/mul_div.h"

namespace qnv {
namespace {

struct Map : CoordinateMap {
  Map(uint16_t a, uint16_t b) {
    SetResolutions(a, b);
    EXPECT_TRUE(Build());
  }
};

constexpr int32_t kDropped = INT32_MIN;

int32_t TableColumn(const CoordinateMap& map, int32_t v) {
  int32_t column = 0;
  return map.TableColumn(v, &column) ? column : kDropped;
}

bool IsDropped(int32_t entry) { return entry < 0; }
int32_t Carried(int32_t entry) { return entry & 0x7FFFFFFF; }

TEST(CoordinateMap, HalvingKeepsEvenIndices) {
  const Map map(720, 360);
  for (int32_t j = 0; j < 360; ++j) {
    EXPECT_EQ(map.columnMap()[2 * j], j);
    EXPECT_TRUE(IsDropped(map.columnMap()[2 * j + 1]));
    EXPECT_EQ(Carried(map.columnMap()[2 * j + 1]), j);
    EXPECT_EQ(map.bandIndex()[j], static_cast<uint32_t>(2 * j));
  }
  EXPECT_EQ(map.MapKept(5), -1);
  EXPECT_EQ(map.MapKept(6), 3);
  EXPECT_EQ(map.MapKept(-1), -1);
  EXPECT_EQ(map.MapKept(720 + 6), 363);
}

TEST(CoordinateMap, EqualResolutionsKeepEverything) {
  const Map map(360, 360);
  for (int32_t v = 0; v < 1000; ++v) EXPECT_EQ(map.MapKept(v), v);
}

TEST(CoordinateMap, DoublingKeepsTheLargerOfTwo) {
  const Map map(360, 720);
  for (int32_t i = 0; i < 360; ++i) {
    EXPECT_EQ(map.MapKept(i), 2 * i);
    EXPECT_FALSE(IsDropped(map.columnMap()[i]));
  }
  // Exact halves round down, so that the odd band indices fall on the page index before them.
  EXPECT_EQ(map.columnMap()[0], 1);
  EXPECT_EQ(TableColumn(map, 0), 1);
  EXPECT_EQ(TableColumn(map, 360 + 5), 720 + 11);
  EXPECT_EQ(TableColumn(map, -1), -720 + 719) << "the last column of the inch before";
}

TEST(CoordinateMap, FourfoldReachesOnePastTheInch) {
  const Map map(360, 1440);
  EXPECT_EQ(map.bandIndex()[1439], 360u);
  EXPECT_EQ(map.columnMap()[360], 1439);
}

// Of every page inch, what is kept is the rounded page index of each band index.
TEST(CoordinateMap, KeptIndicesAreTheRoundedOnes) {
  constexpr struct {
    uint16_t a, b;
  } kPairs[] = {{600, 400}, {720, 360}, {360, 720}, {300, 72}, {1200, 361}, {7, 3}, {3, 7}, {1, 1}, {5, 1}, {1, 5}};
  for (const auto& pair : kPairs) {
    const Map map(pair.a, pair.b);
    for (int32_t i = 0; i < pair.a; ++i) {
      int32_t last = -1;
      for (int32_t j = 0; j < pair.b; ++j) {
        const int32_t n = j * pair.a;
        const int32_t rounded = n / pair.b + (n % pair.b > pair.b / 2 ? 1 : 0);
        if (rounded == i) last = j;
      }
      if (last >= 0) {
        EXPECT_EQ(map.columnMap()[i], last) << pair.a << ":" << pair.b << " page index " << i;
        EXPECT_EQ(map.MapKept(i), PortableMulDiv(i, pair.b, pair.a));
      } else {
        EXPECT_TRUE(IsDropped(map.columnMap()[i])) << pair.a << ":" << pair.b << " page index " << i;
        EXPECT_EQ(map.MapKept(i), -1);
        EXPECT_EQ(TableColumn(map, i), kDropped);
      }
    }
  }
}

}  // namespace
}  // namespace qnv
