// Pictures cut into strips for the bands, and the page rows that a device keeps.
#include "qnvtool/picture_strips.h"

#include <gtest/gtest.h>

#include <cmath>

#include "qnvtool/kept_rows.h"

namespace qnv::test {
namespace {

using tool::CutAtKeptRows;
using tool::CutIntoStrips;
using tool::Strip;

TEST(PictureStrips, ExactScalesStayWhole) {
  EXPECT_EQ(CutIntoStrips(500, 10, 500), (std::vector<Strip>{{0, 500, 10, 500}}));
  EXPECT_EQ(CutIntoStrips(500, 10, 1500), (std::vector<Strip>{{0, 500, 10, 1500}}));
  EXPECT_EQ(CutIntoStrips(1000, 0, 500), (std::vector<Strip>{{0, 1000, 0, 500}}));
  EXPECT_EQ(CutIntoStrips(127, 3, 600), (std::vector<Strip>{{0, 127, 3, 600}}));
}

TEST(PictureStrips, StripsCoverThePictureWithoutGaps) {
  for (const int sourceRows : {1, 2, 64, 100, 127, 128, 600, 1001, 32767}) {
    for (const int rows : {1, 7, 97, 600, 601, 2480, 32767}) {
      int page = 11;
      int source = 0;
      for (const Strip& strip : CutIntoStrips(sourceRows, 11, rows)) {
        ASSERT_EQ(strip.top, page);
        ASSERT_GE(strip.sourceTop, source);
        ASSERT_GT(strip.rows, 0);
        ASSERT_GT(strip.sourceRows, 0);
        // Each strip shows what belongs there, to the nearest page row.
        const double exact = 11 + static_cast<double>(strip.sourceTop) * rows / sourceRows;
        ASSERT_LE(std::abs(exact - strip.top), 0.5 + 127.0 * rows / sourceRows * (strip.sourceTop > source));
        page += strip.rows;
        source = strip.sourceTop + strip.sourceRows;
      }
      EXPECT_EQ(page, 11 + rows) << sourceRows << ' ' << rows;
      EXPECT_LE(source, sourceRows);
    }
  }
}

TEST(PictureStrips, EnlargedRowsStartAtKeptRows) {
  const tool::KeptRows kept(720, 360);
  const auto isKept = [&](int row) { return kept.Has(row); };
  const auto strips = CutAtKeptRows(40, 5, 125, isKept);
  EXPECT_GT(strips.size(), 30u);
  int covered = 0;
  for (const Strip& strip : strips) {
    EXPECT_EQ(strip.sourceRows, 1);
    EXPECT_TRUE(isKept(strip.top)) << strip.top;
    for (int i = 0; i < strip.rows; ++i) covered += isKept(strip.top + i) ? 1 : 0;
  }
  EXPECT_EQ(covered, 62);  // the even rows from 6 to 128
}

TEST(PictureStrips, ReducedPicturesNeedNoKeptRows) {
  const auto strips = CutAtKeptRows(600, 5, 311, [](int) { return false; });
  for (const Strip& strip : strips) EXPECT_LE(strip.rows, strip.sourceRows);
  EXPECT_FALSE(strips.empty());
}

TEST(KeptRows, EveryBandRowHasItsPageRow) {
  constexpr std::pair<int, int> kRatios[] = {{720, 360}, {600, 400}, {300, 299}, {200, 200}};
  for (const auto& [page, band] : kRatios) {
    const tool::KeptRows kept(page, band);
    int count = 0;
    for (int row = 0; row < page; ++row) count += kept.Has(row) ? 1 : 0;
    EXPECT_EQ(count, band);
    EXPECT_TRUE(kept.Has(0));
    EXPECT_TRUE(kept.Has(page));
    EXPECT_FALSE(kept.Has(-page));
  }
  const tool::KeptRows dense(180, 360);
  for (int row = 0; row < 180; ++row) EXPECT_TRUE(dense.Has(row));
  EXPECT_FALSE(tool::KeptRows(720, 360).Has(5));
}

}  // namespace
}  // namespace qnv::test
