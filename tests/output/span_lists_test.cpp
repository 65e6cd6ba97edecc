// The encodings whose lists name the ends of every span: single rows (styles 4 and 104), one list for several rows (5
// and 105), a record for each row (205) and one span for each row (305).
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

// ---- Single rows: pairs of x and y, of which the first brings the row, then the ends of spans.

const std::vector<SpanCase> kScanlinesCases = {
    {"one span", 2, {0, 2, 3, 7}, {{3, 2, 7, 3}}},
    {"one pixel", 2, {0, 0, 10, 11}, {{10, 0, 11, 1}}},
    {"empty span", 2, {0, 0, 10, 10}},
    {"reversed span", 2, {0, 0, 10, 4}},
    {"right end on the band's edge", 2, {0, 5, 9, 13}, {{9, 5, 13, 6}}},
    {"wider than the band", 2, {0, 1, -300, 300}, {{0, 1, 13, 2}}},
    {"spans in any order, touching and overlapping",
     6,
     {0, 3, 8, 10, 0, 2, 2, 3, 9, 11, 5, 5},
     {{0, 3, 3, 4}, {8, 3, 11, 4}}},
    {"the x of the header pair is not read", 2, {-32768, 4, 0, 1}, {{0, 4, 1, 5}}},
    {"only the header", 1, {0, 2}},
    {"count 0", 0, {0, 2}},
    {"the count ends the list", 2, {0, 0, 1, 2, 4, 9}, {{1, 0, 2, 1}}},
    {"only the low 16 bits of the count", 0xABCD0002, {0, 0, 1, 2}, {{1, 0, 2, 1}}},
    {"row above the band", 2, {0, -1, 0, 13}},
    {"row below the band", 2, {0, 6, 0, 13}},
    {"origin 100 and row -100", 2, {0, -100, 4, 6}, {{4, 0, 6, 1}}, kEverywhere, {.originY = 100}},
    {"row above the clip", 2, {0, 1, 0, 13}, {}, {0, 2, 13, 6}},
    {"row on the clip's bottom", 2, {0, 4, 0, 13}, {}, {0, 2, 13, 4}},
};

TEST(Scanlines, Lists) { RunSpanCases({OS_SCANLINES, 104}, kScanlinesCases); }

TEST(Scanlines, ManySpansOfOneRow) {
  TestDevice device({.width = 601, .height = 2});
  std::vector<int16_t> words = {0, 1};
  std::vector<BandRect> painted;
  for (int16_t x = 0; x < 601; x = static_cast<int16_t>(x + 2)) {
    words.insert(words.end(), {x, static_cast<int16_t>(x + 1)});
    painted.push_back({x, 1, x + 1, 2});
  }
  EXPECT_EQ(1u, PaintList(device, OS_SCANLINES, 302, words));
  EXPECT_TRUE(PenPainted(device, painted));
}

// Solid fills go four pixels at a time: every length and phase must equal single-pixel writes, and the pixel after the
// span must stay. The band starts with different bytes so that the exclusive-or shows each byte's own value.
TEST(Scanlines, EveryLengthAndPhaseOfASolidSpan) {
  for (uint16_t depth : kBandDepths) {
    TestDevice device({.bitsPerPixel = depth, .width = 29, .height = 3});
    const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
    const uint32_t color = Physical(device, kPenColor);
    for (int rop2 : {R2_COPYPEN, R2_XORPEN, R2_NOTCOPYPEN}) {
      for (int16_t left = 0; left < 5; ++left) {
        for (int16_t length = 0; length <= 22; ++length) {
          for (std::size_t i = 0; i < device.band().size(); ++i) {
            device.band().data()[i] = static_cast<uint8_t>(i * 37 + 11);
          }
          const DRAWMODE mode = MakeDrawMode({.rop2 = rop2});
          const int16_t right = static_cast<int16_t>(left + length);
          PlaneImage expected = BandImage(device);
          for (int32_t x = left; x < right; ++x) {
            const uint32_t d = expected.Color(x, 1);
            expected.SetColor(x, 1, rop2 == R2_COPYPEN ? color : rop2 == R2_XORPEN ? d ^ color : ~color);
          }
          PaintRow(device, left, right, 1, {.pen = &pen, .drawMode = &mode});
          EXPECT_TRUE(BandShows(device, expected))
              << depth << " bits, rop2 " << rop2 << ", left " << left << ", length " << length;
        }
      }
    }
  }
}

// ---- Banded spans: n, top, bottom, n ends of spans, n. One list serves every row of its record.

TEST(BandedSpans, Lists) {
  RunSpanCases(
      {OS_BANDED_SPANS, 105},
      {
          {"one record of two spans", 1, {4, 1, 4, 1, 3, 8, 11, 4}, {{1, 1, 3, 4}, {8, 1, 11, 4}}},
          {"two records",
           2,
           {2, 0, 1, 0, 2, 2, /**/ 4, 4, 6, 3, 4, 12, 13, 4},
           {{0, 0, 2, 1}, {3, 4, 4, 6}, {12, 4, 13, 6}}},
          {"records may overlap and run upwards",
           2,
           {2, 3, 5, 2, 4, 2, /**/ 2, 2, 4, 3, 6, 2},
           {{2, 3, 4, 5}, {3, 2, 6, 4}}},
          {"a record above the band is stepped over whole",
           2,
           {4, -9, 0, 0, 5, 6, 9, 4, /**/ 2, 0, 1, 5, 7, 2},
           {{5, 0, 7, 1}}},
          {"a record below the band does not end the list",
           2,
           {2, 6, 9, 0, 5, 2, /**/ 2, 5, 9, 5, 7, 2},
           {{5, 5, 7, 6}}},
          {"rows enter from above and leave below", 1, {2, -100, 100, 6, 7, 2}, {{6, 0, 7, 6}}},
          {"no rows", 1, {2, 3, 3, 0, 13, 2}},
          {"bottom above top", 1, {2, 4, 2, 0, 13, 2}},
          {"a record without spans", 2, {0, 0, 6, 0, /**/ 2, 0, 1, 3, 4, 2}, {{3, 0, 4, 1}}},
          {"empty and reversed spans paint nothing", 1, {6, 0, 2, 3, 3, 9, 5, 7, 8, 6}, {{7, 0, 8, 2}}},
          {"an odd n takes the repeated n as the last right end",
           1,
           {3, 0, 1, 0, 1, 2, 3},
           {{0, 0, 1, 1}, {2, 0, 3, 1}}},
          {"the step is n + 4 words after an odd n too",
           2,
           {1, 0, 1, 0, 1, /**/ 2, 2, 3, 4, 5, 2},
           {{0, 0, 1, 1}, {4, 2, 5, 3}}},
          {"count 0", 0, {2, 0, 6, 0, 13, 2}},
          {"only the low 16 bits of the count", 0x70000000, {2, 0, 6, 0, 13, 2}},
          {"clip cuts rows and spans", 1, {4, 0, 6, 0, 5, 7, 13, 4}, {{3, 2, 5, 4}, {7, 2, 9, 4}}, {3, 2, 9, 4}},
      });
}

// Records of more than 1024 bytes of spans, even and odd, one after the other and followed by a short one: the work
// area for the clipped spans must be large enough every time.
TEST(BandedSpans, LongRecords) {
  // n of each record: exactly 1024 bytes, the first odd n above 255, long and longer, longer first
  for (const std::vector<int16_t>& sizes :
       std::vector<std::vector<int16_t>>{{256}, {257}, {600, 900, 2}, {1201, 601, 257}}) {
    SCOPED_TRACE(Text("first record of ", sizes[0]));
    TestDevice device({.bitsPerPixel = 8, .width = 1300, .height = static_cast<uint32_t>(2 * sizes.size())});
    std::vector<int16_t> words;
    std::vector<BandRect> painted;
    int16_t top = 0;
    for (int16_t n : sizes) {
      words.insert(words.end(), {n, top, static_cast<int16_t>(top + 2)});
      for (int16_t i = 0; i < n; ++i) words.push_back(i);
      words.push_back(n);
      // Pairs (0, 1), (2, 3) ...: every even column below n; the pair of an odd n ends at n itself.
      for (int16_t i = 0; i < n; i = static_cast<int16_t>(i + 2)) painted.push_back({i, top, i + 1, top + 2});
      top = static_cast<int16_t>(top + 2);
    }
    EXPECT_EQ(1u, PaintList(device, OS_BANDED_SPANS, static_cast<uint32_t>(sizes.size()), words));
    EXPECT_TRUE(PenPainted(device, painted));
  }
}

TEST(BandedSpans, CountIsUnsigned) {
  TestDevice device(kSpanBand);
  // 0x8001 records, all but the last one without spans.
  std::vector<int16_t> words(4 * 0x8000, 0);
  words.insert(words.end(), {2, 0, 1, 0, 1, 2});
  EXPECT_EQ(1u, PaintList(device, OS_BANDED_SPANS, 0x8001, words));
  EXPECT_TRUE(PenPainted(device, {{0, 0, 1, 1}}));
}

// ---- Row records: the first row, then for each row n and n ends of spans.

const std::vector<SpanCase> kRowRecordsCases = {
    {"rows of one, two and no spans",
     4,
     {1, /**/ 2, 1, 4, /**/ 4, 0, 2, 6, 9, /**/ 0, /**/ 2, 11, 13},
     {{1, 1, 4, 2}, {0, 2, 2, 3}, {6, 2, 9, 3}, {11, 4, 13, 5}}},
    {"rows above the band are stepped over by their length",
     4,
     {-2, /**/ 4, 0, 1, 2, 3, /**/ 0, /**/ 2, 5, 7, /**/ 2, 6, 8},
     {{5, 0, 7, 1}, {6, 1, 8, 2}}},
    {"rows above the clip are stepped over by their length",
     4,
     {0, /**/ 4, 0, 1, 2, 3, /**/ 2, 9, 11, /**/ 2, 5, 7, /**/ 2, 6, 8},
     {{5, 2, 7, 3}, {6, 3, 8, 4}},
     {0, 2, 13, 6}},
    {"the walk ends at the band's bottom", 4, {5, /**/ 2, 3, 5}, {{3, 5, 5, 6}}},
    {"the walk ends at the clip's bottom",
     4,
     {1, /**/ 2, 3, 5, /**/ 2, 4, 6},
     {{3, 1, 5, 2}, {4, 2, 6, 3}},
     {0, 0, 13, 3}},
    {"the first row below the band", 2, {6}},
    {"the walk ends after count records", 1, {0, /**/ 2, 0, 2, /**/ 2, 5, 6}, {{0, 0, 2, 1}}},
    {"count 0", 0, {0, 2, 0, 13}},
    {"only the low 16 bits of the count", 0x10001, {0, /**/ 2, 0, 2}, {{0, 0, 2, 1}}},
    {"an odd n takes the next row's n as the last right end",
     2,
     {0, /**/ 3, 0, 1, 3, /**/ 6, 0, 1, 2, 3, 4, 5},
     {{0, 0, 1, 1}, {3, 0, 6, 1}, {0, 1, 1, 2}, {2, 1, 3, 2}, {4, 1, 5, 2}}},
    {"n of -1 steps by no word: every later row meets the same n", 3, {0, -1, 2, 0, 5, 2, 0, 5}},
    {"origin shifts rows and columns",
     2,
     {-101, /**/ 2, -20, -17, /**/ 2, -19, -16},
     {{0, 3, 3, 4}, {1, 4, 4, 5}},
     kEverywhere,
     {.originX = 20, .originY = 104}},
};

TEST(RowRecords, Lists) { RunSpanCases({OS_ROW_RECORDS}, kRowRecordsCases); }

// ---- Row spans: the first row, then two ends for each row.

TEST(RowSpans, ASmallDisc) {
  TestDevice device(kSpanBand);
  EXPECT_EQ(1u, PaintList(device, OS_ROW_SPANS, 4, {1, /**/ 4, 8, /**/ 3, 9, /**/ 3, 9, /**/ 4, 8}));
  EXPECT_TRUE(BandIs(device, {{'#', kPenColor}},
                     "............."
                     "....####....."
                     "...######...."
                     "...######...."
                     "....####....."));
}

TEST(RowSpans, Lists) {
  RunSpanCases(
      {OS_ROW_SPANS},
      {
          {"empty and reversed rows keep their place",
           4,
           {0, /**/ 1, 2, /**/ 5, 5, /**/ 9, 3, /**/ 2, 3},
           {{1, 0, 2, 1}, {2, 3, 3, 4}}},
          {"rows above the band", 4, {-3, /**/ 0, 13, /**/ 0, 13, /**/ 0, 13, /**/ 7, 9}, {{7, 0, 9, 1}}},
          {"rows above the clip",
           3,
           {0, /**/ 0, 13, /**/ 1, 2, /**/ 2, 3},
           {{1, 1, 2, 2}, {2, 2, 3, 3}},
           {0, 1, 13, 6}},
          {"the walk ends at the band's bottom", 9, {4, /**/ 0, 2, /**/ 11, 14}, {{0, 4, 2, 5}, {11, 5, 13, 6}}},
          {"the walk ends at the clip's bottom", 9, {1, /**/ 0, 2}, {{0, 1, 2, 2}}, {0, 0, 13, 2}},
          {"the walk ends after count rows", 2, {0, /**/ 0, 1, /**/ 0, 2, /**/ 0, 3}, {{0, 0, 1, 1}, {0, 1, 2, 2}}},
          {"count 0", 0, {0, 0, 13}},
          {"the first row below the band", 3, {6}},
          {"all rows above the band", 3, {-3, /**/ 0, 13, /**/ 0, 13, /**/ 0, 13}},
          {"the numbers of the rows wrap", 3, {-1, 0, 13, 0, 13, 0, 13}, {}, kEverywhere, {.originY = INT32_MIN}},
      });
}

TEST(RowSpans, CountIsUnsigned) {
  PlacedDevice device(kSpanBand, {.top = 30000, .originY = 60000});
  // The first row lies 2768 rows above the band; a count taken as signed would be negative.
  std::vector<int16_t> words = {-32768};
  for (int i = 0; i <= 0x8000; ++i) words.insert(words.end(), {0, 2});
  EXPECT_EQ(1u, PaintList(device, OS_ROW_SPANS, 0x8001, words));
  EXPECT_TRUE(PenPainted(device, {{0, 0, 2, 6}}));
}

}  // namespace
}  // namespace qnv::test
