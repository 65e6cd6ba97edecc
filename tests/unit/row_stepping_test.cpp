// How source rows and columns step across the destination.
#include "image/row_stepping.h"

#include <gtest/gtest.h>

#include <vector>

namespace qnv {
namespace {

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

}  // namespace
}  // namespace qnv
