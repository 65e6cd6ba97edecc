// The resolution-mapping device: which page columns are kept, runs of columns against the rule for single ones, and
// glyphs against a painter that maps every pixel by itself.
#include "raster/coordinate_map.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <ostream>
#include <random>
#include <vector>

#include "raster/mappings.h"
#include "raster/mul_div.h"
#include "support/fenced_buffer.h"
#include "text/glyph_painter.h"

namespace qnv {
namespace {

using test::FencedBuffer;

struct Resolutions {
  uint16_t a, b;  // of the page, of the band
};

std::ostream& operator<<(std::ostream& out, const Resolutions& r) { return out << r.a << ":" << r.b; }

constexpr Resolutions kResolutions[] = {{720, 360}, {600, 400}, {360, 720}, {360, 360}, {1200, 361},
                                        {300, 72},  {72, 300},  {7, 3},     {3, 7},     {1, 1},
                                        {10, 1},    {1, 5},     {5, 1},     {100, 99},  {360, 1440}};

struct BuiltMap : CoordinateMap {
  explicit BuiltMap(const Resolutions& r) {
    SetResolutions(r.a, r.b);
    EXPECT_TRUE(Build());
  }
};

constexpr int32_t kDropped = INT32_MIN;

int32_t TableColumn(const CoordinateMap& map, int32_t v) {
  int32_t column = 0;
  return map.TableColumn(v, &column) ? column : kDropped;
}

TEST(CoordinateMap, Examples) {
  const BuiltMap halved({720, 360}), same({360, 360}), doubled({360, 720}), fourfold({360, 1440});
  EXPECT_EQ(halved.MapKept(720 + 6), 363);
  EXPECT_EQ(halved.MapKept(5), -1) << "dropped";
  EXPECT_EQ(halved.MapKept(-6), -1) << "not on the page";
  for (int32_t v = 0; v < 1000; ++v) EXPECT_EQ(same.MapKept(v), v);
  EXPECT_EQ(doubled.MapKept(7), 14);
  EXPECT_EQ(TableColumn(doubled, 0), 1) << "an exact half rounds down: band index 1 falls on page index 0";
  EXPECT_EQ(TableColumn(doubled, 360 + 5), 720 + 11);
  EXPECT_EQ(TableColumn(doubled, -1), -720 + 719) << "the last column of the inch before";
  EXPECT_EQ(fourfold.bandIndex()[1439], 360u) << "one past the inch";
  EXPECT_EQ(fourfold.columnMap()[360], 1439);
}

// Of every page inch, what is kept is the rounded page index of each band index.
TEST(CoordinateMap, KeptIndicesAreTheRoundedOnes) {
  for (const Resolutions& r : kResolutions) {
    SCOPED_TRACE(r);
    const BuiltMap map(r);
    std::vector<int32_t> kept(r.a + 1u, kDropped);
    for (int32_t j = 0; j < r.b; ++j) {
      const int32_t n = j * r.a, rounded = n / r.b + (n % r.b > r.b / 2 ? 1 : 0);
      kept[static_cast<std::size_t>(rounded)] = j;
      ASSERT_EQ(map.bandIndex()[j], static_cast<uint32_t>(rounded));
    }
    int32_t carried = 0;  // by the entries of dropped columns: the nearest kept one before
    for (int32_t i = 0; i < r.a; ++i) {
      const int32_t column = kept[static_cast<std::size_t>(i)];
      const bool drops = column == kDropped;
      if (!drops) carried = column;
      ASSERT_EQ(map.columnMap()[i], drops ? INT32_MIN | carried : column) << i;
      for (const int32_t inch : {-2, -1, 0, 1, 2}) {
        const int32_t v = inch * r.a + i;
        ASSERT_EQ(TableColumn(map, v), drops ? kDropped : inch * r.b + column) << v;
        ASSERT_EQ(map.MapKept(v), drops || v < 0 ? -1 : PortableMulDiv(v, r.b, r.a)) << v;
      }
    }
  }
}

TEST(CoordinateMap, PageOfIsTheInverseOfMapKept) {
  for (const Resolutions& r : kResolutions) {
    SCOPED_TRACE(r);
    const BuiltMap map(r);
    if (!map.Decimates()) continue;
    for (int32_t band = -2 * r.b - 1; band < 3 * r.b + 2; ++band) {
      const int32_t page = map.PageOf(band);
      ASSERT_EQ(band, TableColumn(map, page));
      ASSERT_EQ(band < 0 ? -1 : band, map.MapKept(page));
      ASSERT_EQ(band, map.FirstBandFrom(page));
      ASSERT_EQ(band + 1, map.FirstBandFrom(page + 1));
    }
  }
}

// A band column or row and the one of the caller that it comes from.
struct Placed {
  int32_t band, caller;
  bool operator==(const Placed&) const = default;
};
using BandOf = std::function<int32_t(int32_t)>;

std::vector<Placed> OneByOne(int32_t first, int32_t count, int32_t bandEnd, const BandOf& bandOf) {
  std::vector<Placed> placed;
  for (int32_t i = first; i < first + count; ++i) {
    const int32_t band = bandOf(i);
    if (band >= 0 && band < bandEnd) placed.push_back({band, i});
  }
  return placed;
}

// Takes runs apart; `first`: the caller column from which they count.
struct Collector {
  std::vector<Placed>* placed;
  int32_t first;

  void operator()(const ColumnRun& run) const {
    EXPECT_GT(run.count, 0);
    EXPECT_LE(run.count, KeptMapping::kMaxRunPixels);
    EXPECT_EQ(run.indices[0], 0);
    for (int32_t i = 0; i < run.count; ++i) {
      placed->push_back({run.bandColumn + i, first + run.callerColumn + run.indices[i]});
    }
  }
};

std::vector<Resolutions> MoreResolutions() {
  std::vector<Resolutions> all(std::begin(kResolutions), std::end(kResolutions));
  all.insert(all.end(), {{65535, 300}, {64, 1}, {360, 0}});
  return all;
}

TEST(KeptMapping, RunsAndRowsAreTheKeptOnes) {
  for (const Resolutions& r : MoreResolutions()) {
    const BuiltMap map(r);
    const auto compare = [&](int32_t first, int32_t count, int32_t bandEnd) {
      const std::vector<Placed> expected =
          OneByOne(first, count, bandEnd, [&](int32_t page) { return map.MapKept(page); });
      std::vector<Placed> columns, rows;
      KeptMapping{&map}.ForEachRun(first, count, bandEnd, Collector{&columns, first});
      KeptMapping{&map}.ForEachKeptRow(first, count, bandEnd, [&](int32_t band, int32_t page) {
        rows.push_back({band, page});
      });
      ASSERT_EQ(expected, columns) << r << ", " << count << " from " << first << " into " << bandEnd;
      ASSERT_EQ(expected, rows) << r << ", " << count << " from " << first << " into " << bandEnd;
    };
    for (const int32_t first : {-2000, -3, 0, 1, 2, 359, 360, 719, 5000, 60000}) {
      for (const int32_t count : {0, 1, 2, 3, 10, 700, 5000}) {
        for (const int32_t bandEnd : {0, 1, 5, 1000, 1 << 20}) compare(first, count, bandEnd);
      }
    }
    compare(-3, 200000, 1 << 20);              // many runs
    compare(INT32_MAX - 300, 300, INT32_MAX);  // to the end of the numbers
  }
}

// Text goes by the table, which also knows columns left of the page.
TEST(KeptMapping, TableRunsAreTheColumnsOfTheTable) {
  for (const Resolutions& r : MoreResolutions()) {
    const BuiltMap map(r);
    for (const int32_t first : {-2000, -1, 0, 359, 60000}) {
      for (const int32_t count : {0, 1, 2, 700, 65536}) {
        for (const int32_t left : {-700, -1, 0, 500}) {
          for (const int32_t right : {left + 1, left + 1000, 1 << 20}) {
            std::vector<Placed> columns;
            KeptMapping{&map}.ForEachTableRun(first, count, left, right, Collector{&columns, first});
            const auto bandOf = [&](int32_t page) {
              const int32_t column = TableColumn(map, page);
              return column == kDropped ? -1 : column - left;
            };
            ASSERT_EQ(OneByOne(first, count, right - left, bandOf), columns)
                << r << ", " << count << " from " << first << " into " << left << " to " << right;
          }
        }
      }
    }
  }
}

// Columns join a run while they are neighbors in the band, the run has room, and their distance fits its numbers.
TEST(KeptMapping, JoinsOfRuns) {
  const struct {
    const char* name;
    BandOf bandOf;
    std::vector<int32_t> counts;  // of the runs
  } kCases[] = {
      {"one after another", [](int32_t i) { return i; }, {2048, 2048, 904}},
      {"one band column apart", [](int32_t i) { return i < 100 ? 2 * i : -1; }, std::vector<int32_t>(100, 1)},
      {"a band column left out", [](int32_t i) { return i < 10 ? i + i / 5 : -1; }, {5, 5}},
      {"a band column twice", [](int32_t i) { return i < 10 ? i - i / 5 : -1; }, {5, 5}},
      {"backward", [](int32_t i) { return 3 - i; }, {1, 1, 1, 1}},
      {"every other one dropped", [](int32_t i) { return i % 2 == 0 && i < 100 ? i / 2 : -1; }, {50}},
      {"65535 apart", [](int32_t i) { return i % 65535 == 0 ? i / 65535 : -1; }, {2}},
      {"65536 apart", [](int32_t i) { return i % 65536 == 0 ? i / 65536 : -1; }, {1, 1}},
      {"the last columns and one behind them", [](int32_t i) { return i < 3 ? 4998 + i : -1; }, {2}},
  };
  for (const auto& c : kCases) {
    std::vector<Placed> placed;
    std::vector<int32_t> counts;
    KeptMapping::ForEachMappedRun(70000, 5000, c.bandOf, [&](const ColumnRun& run) {
      Collector{&placed, 0}(run);
      counts.push_back(run.count);
    });
    EXPECT_EQ(OneByOne(0, 70000, 5000, c.bandOf), placed) << c.name;
    EXPECT_EQ(c.counts, counts) << c.name;
  }
}

constexpr uint32_t kText = 0x030201, kBackground = 0x0C0B0A;

struct Glyph {
  FencedBuffer bits;
  PlacedGlyph placed;

  Glyph(std::mt19937& random, int32_t x, int32_t y, int32_t width, int32_t height)
      : bits(static_cast<std::size_t>((width + 7) / 8 * height), 0), placed{bits.data(), x, y, width, height} {
    for (std::size_t i = 0; i < bits.size(); ++i) bits.data()[i] = static_cast<uint8_t>(random());
  }
  bool At(int32_t column, int32_t row) const {
    return (placed.bits[column / 8 * placed.height + row] >> (7 - column % 8) & 1) != 0;
  }
};

void PaintNaively(const BandView& band, const CoordinateMap& map, bool transparent, const Rect& limits,
                  const Glyph& glyph) {
  for (int32_t row = 0; row < glyph.placed.height; ++row) {
    for (int32_t column = 0; column < glyph.placed.width; ++column) {
      const int32_t x = glyph.placed.x + column, y = glyph.placed.y + row;
      int32_t bandColumn;
      if (!Contains(limits, x, y) || !map.TableColumn(x, &bandColumn)) continue;
      const int32_t bandRow = map.MapToBand(y);
      const bool set = glyph.At(column, row);
      if (!Contains(band.rect, bandColumn, bandRow) || (transparent && !set)) continue;
      std::memcpy(band.At(bandColumn, bandRow), set ? &kText : &kBackground, 3);
    }
  }
}

void Compare(std::mt19937& random, const CoordinateMap& map, bool transparent) {
  const auto below = [&](uint32_t end) { return static_cast<int32_t>(random() % end); };
  constexpr int32_t kColumns = 90, kRows = 70;
  const std::size_t stride = 3 * kColumns + 2;
  const int32_t left = below(300) - 20, top = below(300) - 20;
  FencedBuffer expected(stride * kRows, 0x5A), painted(stride * kRows, 0x5A);
  BandView band{expected.data(), static_cast<uint32_t>(stride), Rect{left, top, left + kColumns, top + kRows}, 3};
  const int32_t x = map.MapToPage(left) + below(400) - 200, y = map.MapToPage(top) + below(400) - 200;
  const Glyph glyph(random, x, y, 1 + below(below(4) == 0 ? 300 : 40), 1 + below(below(4) == 0 ? 400 : 60));
  Rect limits{x - 5 + below(10), y - 5 + below(10), 0, 0};
  limits.right = x + glyph.placed.width + 5 - below(10);
  limits.bottom = y + glyph.placed.height + 5 - below(10);
  PaintNaively(band, map, transparent, limits, glyph);
  band.bits = painted.data();
  const BitPainter painter(KernelsFor(DetectCpuLevel()), kText, kBackground, transparent, 3);
  PaintGlyph(band, KeptMapping{&map}, painter, limits, glyph.placed);
  ASSERT_EQ(0, std::memcmp(expected.data(), painted.data(), painted.size()))
      << glyph.placed.width << " x " << glyph.placed.height << " at " << x << ", " << y << ", band at " << left << ", "
      << top;
  ASSERT_TRUE(painted.FencesIntact());
}

TEST(KeptGlyphs, EveryPixelWhereItMapsTo) {
  for (const Resolutions& resolutions : kResolutions) {
    const BuiltMap map(resolutions);
    std::mt19937 random(resolutions.a);
    for (int turn = 0; turn < 300; ++turn) {
      Compare(random, map, turn % 2 != 0);
      if (HasFatalFailure()) FAIL() << resolutions << ", turn " << turn;
    }
  }
}

}  // namespace
}  // namespace qnv
