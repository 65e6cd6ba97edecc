// The formulas for the memory that calls read.
#include "calls/memory_reads.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace qnv::test {
namespace {

TEST(SpanListMemory, FollowsStyleAndCount) {
  const struct {
    const char* name;
    uint16_t style, count;
    std::vector<int16_t> words;
    std::size_t bytes;
  } cases[] = {
      {"pairs", 4, 3, {0, 1, 2, 3, 4, 5}, 12},
      {"pairs, the other style", 104, 1, {0, 1}, 4},
      {"no pairs", 4, 0, {}, 0},
      {"one record, the closing count is not read", 5, 1, {2, 0, 9, 1, 5}, 10},
      {"an odd count reads the closing one", 105, 1, {3, 0, 9, 1, 5, 7, 3}, 14},
      {"two records", 5, 2, {2, 0, 9, 1, 5, 2, 4, 1, 2, 3, 4, 5, 6}, 26},
      {"a record without spans", 5, 1, {0, 1, 2}, 6},
      {"a negative count that leads before the list ends it", 5, 9, {-20, 1, 2}, 6},
      {"a negative count that leads back repeats", 5, 3, {0, 1, 2, 0, -7, 1, 2}, 14},
      {"rows of records", 205, 2, {5, 2, 1, 9, 0}, 10},
      {"an odd row reads one word more", 205, 1, {5, 1, 1, 9}, 8},
      {"rows", 305, 2, {5, 1, 2, 3, 4}, 10},
      {"no rows", 305, 0, {}, 0},
      {"byte deltas", 405, 4, {1, 2, 3, 0, 0, 0}, 12},
      {"no byte deltas paint a row", 405, 0, {1, 2, 3}, 6},
      {"nibble deltas", 505, 4, {1, 2, 3, 0, 0}, 9},
      {"a bracket", 80, 7, {}, 0},
      {"an unknown style", 6, 7, {}, 0},
  };
  for (const auto& c : cases) {
    std::vector<uint8_t> memory(2 * c.words.size());
    if (!memory.empty()) std::memcpy(memory.data(), c.words.data(), memory.size());
    std::size_t bytes = 99;
    const uint8_t none = 0;
    const uint8_t* const at = memory.empty() ? &none : memory.data();
    EXPECT_TRUE(calls::SpanListBytes(c.style, c.count, at, calls::Limit(at, c.bytes), &bytes)) << c.name;
    EXPECT_EQ(bytes, c.bytes) << c.name;
    if (c.bytes != 0) {
      EXPECT_FALSE(calls::SpanListBytes(c.style, c.count, at, calls::Limit(at, c.bytes - 1), &bytes)) << c.name;
    }
  }
}

TEST(RleMemory, EndsWhereTheLibraryStops) {
  const struct {
    const char* name;
    uint16_t bitCount;
    int32_t width, height;
    std::vector<uint8_t> data;
    std::size_t bytes;
    bool sawEnd;
    uint8_t maxIndex;
  } cases[] = {
      {"end of bitmap", 8, 4, 2, {4, 9, 0, 1, 99}, 4, true, 9},
      {"the last row is full", 8, 4, 1, {3, 9, 5, 7, 0, 1}, 4, false, 9},
      {"the end of the last row", 8, 4, 2, {4, 1, 0, 0, 2, 3, 0, 0, 99}, 8, false, 3},
      {"a literal and its padding", 8, 4, 2, {0, 3, 1, 2, 200, 99, 0, 0, 0, 1}, 10, true, 200},
      {"a literal that does not fit goes on as codes", 8, 2, 2, {0, 5, 1, 2, 0, 0, 0, 1}, 8, true, 2},
      {"a delta over the last row", 8, 4, 3, {0, 2, 1, 3, 99}, 4, false, 0},
      {"a delta along the row", 8, 4, 1, {0, 2, 3, 0, 1, 8, 99}, 6, false, 8},
      {"four bits", 4, 5, 1, {0, 5, 0x12, 0x34, 0x5F, 0}, 5, false, 5},
      {"a run of four bits", 4, 5, 2, {5, 0x3C, 0, 1}, 4, true, 12},
  };
  for (const auto& c : cases) {
    calls::DibShape shape;
    shape.isPainted = true;
    shape.width = c.width;
    shape.height = c.height;
    shape.bitCount = c.bitCount;
    shape.compression = c.bitCount == 8 ? BI_RLE8 : BI_RLE4;
    const calls::RleExtent extent = calls::MeasureRle(shape, c.data.data(), calls::Limit(c.data.data(), c.bytes));
    EXPECT_TRUE(extent.complete) << c.name;
    EXPECT_EQ(extent.bytes, c.bytes) << c.name;
    EXPECT_EQ(extent.sawEnd, c.sawEnd) << c.name;
    EXPECT_EQ(extent.maxIndex, c.maxIndex) << c.name;
    EXPECT_FALSE(calls::MeasureRle(shape, c.data.data(), calls::Limit(c.data.data(), c.bytes - 1)).complete) << c.name;
  }
}

TEST(DibMemory, IsHeaderAndTable) {
  const struct {
    const char* name;
    BITMAPINFOHEADER header;
    bool isPainted;
    uint32_t bytes;
  } cases[] = {
      {"one bit", {40, 8, 8, 1, 1, 0, 0, 0, 0, 0, 0}, true, 48},
      {"four bits, five colors", {40, 8, 8, 1, 4, 0, 0, 0, 0, 5, 0}, true, 60},
      {"more colors than the depth has", {44, 8, 8, 1, 8, 0, 0, 0, 0, 999, 0}, true, 44 + 1024},
      {"masks", {40, 8, 8, 1, 16, BI_BITFIELDS, 0, 0, 0, 0, 0}, true, 52},
      {"24 bits", {7, 8, 8, 1, 24, 0, 0, 0, 0, 0, 0}, true, 40},
      {"a header that is too small", {39, 8, 8, 1, 8, 0, 0, 0, 0, 0, 0}, false, 40},
      {"an embedded picture", {40, 8, 8, 1, 24, 4, 0, 0, 0, 0, 0}, false, 40},
      {"two planes", {40, 8, 8, 2, 24, 0, 0, 0, 0, 0, 0}, false, 40},
      {"no rows", {40, 8, 0, 1, 24, 0, 0, 0, 0, 0, 0}, false, 40},
  };
  for (const auto& c : cases) {
    std::vector<uint8_t> memory(8192);
    std::memcpy(memory.data(), &c.header, sizeof c.header);
    calls::DibShape shape;
    EXPECT_TRUE(calls::ReadDibShape(memory.data(), calls::Limit(memory.data(), c.bytes), &shape)) << c.name;
    EXPECT_EQ(shape.isPainted, c.isPainted) << c.name;
    EXPECT_EQ(shape.headerBytes, c.bytes) << c.name;
    EXPECT_FALSE(calls::ReadDibShape(memory.data(), calls::Limit(memory.data(), c.bytes - 1), &shape)) << c.name;
  }
}

TEST(DibMemory, IsTheRowsOfTheSource) {
  calls::DibShape shape;
  shape.isPainted = true;
  shape.width = 3;
  shape.height = 100;
  shape.bitCount = 24;  // rows of 12 bytes, of which 9 are pixels
  const struct {
    const char* name;
    bool topDown;
    calls::ImageRequest request;
    std::ptrdiff_t first;
    std::size_t bytes;
  } cases[] = {
      {"ten rows and one on either side", false, {0, 10, 20, 10, 0}, 19 * 12, 11 * 12 + 9},
      {"from the top", true, {0, 10, 20, 10, 0}, 69 * 12, 11 * 12 + 9},
      {"all", false, {0, 10, 0, 100, 0}, 0, 99 * 12 + 9},
      {"mirrored", false, {0, 10, 30, -10, 0}, 19 * 12, 11 * 12 + 9},
      {"outside", false, {0, 10, 200, 10, 0}, 0, 0},
      {"a wrapping place", false, {INT32_MAX, 10, 20, 10, 0}, 0, 99 * 12 + 9},
      {"a wrapping origin", false, {1, 10, 20, 10, INT32_MAX}, 0, 99 * 12 + 9},
      {"far rows", false, {0, 10, 40000, 10, 0}, 0, 99 * 12 + 9},
  };
  for (const auto& c : cases) {
    shape.topDown = c.topDown;
    calls::Range range;
    std::vector<uint8_t> bits(1200);
    EXPECT_TRUE(calls::DibBitsRange(shape, c.request, bits.data(), calls::Limit(), &range)) << c.name;
    EXPECT_EQ(range.bytes, c.bytes) << c.name;
    if (c.bytes != 0) {
      EXPECT_EQ(range.first, c.first) << c.name;
    }
  }
}

TEST(SourceMemory, IsTheSourceRectangle) {
  calls::DeviceShape color, gray, scaled;
  color.description = {QNV_KIND_RASTER, 24, 300, 10, 10, 300};
  gray.description = {QNV_KIND_RASTER, 8, 300, 10, 10, 300};
  scaled.description = {QNV_KIND_SCALED, 8, 300, 10, 10, 300};
  const struct {
    const char* name;
    const calls::DeviceShape* device;
    calls::SourceFields source;
    int32_t srcX, srcY, width, height;
    std::ptrdiff_t first;
    std::size_t rowBytes, rows;
  } cases[] = {
      {"color", &color, {0, 20, 10, 60, 1, 24}, 2, 3, 5, 4, 3 * 60 + 6, 15, 4},
      {"cut by the bitmap", &color, {0, 20, 10, 60, 1, 24}, 18, 8, 50, 40, 8 * 60 + 54, 6, 2},
      {"begins before it", &color, {0, 20, 10, 60, 1, 24}, -3, -1, 5, 2, 0, 6, 1},
      {"one bit", &color, {0, 20, 10, 4, 1, 1}, 7, 0, 2, 1, 0, 2, 1},
      {"gray", &gray, {0, 20, 10, 20, 1, 8}, 3, 1, 4, 2, 23, 4, 2},
      {"gray by another depth", &gray, {0, 20, 10, 60, 1, 24}, 3, 0, 4, 1, 9, 10, 1},
      {"scaled with gray sources", &scaled, {0, 20, 10, 20, 1, 8}, 3, 1, 4, 2, 23, 4, 2},
      {"nothing of it", &color, {0, 20, 10, 60, 1, 24}, 20, 0, 5, 5, 0, 0, 0},
      {"an end that wraps", &color, {0, 20, 10, 60, 1, 24}, INT32_MIN, 0, -1, 1, 0, 60, 1},
  };
  for (const auto& c : cases) {
    calls::Slots slots{};
    slots.at[4] = static_cast<uint32_t>(c.srcX);
    slots.at[5] = static_cast<uint32_t>(c.srcY);
    slots.at[6] = static_cast<uint32_t>(c.width);
    slots.at[7] = static_cast<uint32_t>(c.height);
    const calls::SourceRange range = calls::TransferSourceRange(c.source, *c.device, slots);
    EXPECT_EQ(range.rows, c.rows) << c.name;
    if (c.rows == 0) continue;
    EXPECT_EQ(range.first, c.first) << c.name;
    EXPECT_EQ(range.rowBytes, c.rowBytes) << c.name;
  }
}

TEST(RasterCodes, SayWhatTheyRead) {
  EXPECT_TRUE(calls::RopReadsSource(SRCCOPY));
  EXPECT_FALSE(calls::RopReadsPattern(SRCCOPY));
  EXPECT_FALSE(calls::RopReadsSource(PATINVERT));
  EXPECT_TRUE(calls::RopReadsPattern(PATINVERT));
  EXPECT_TRUE(calls::RopReadsSource(MERGECOPY) && calls::RopReadsPattern(MERGECOPY));
  for (const uint32_t rop : {DSTINVERT, BLACKNESS, WHITENESS}) {
    EXPECT_FALSE(calls::RopReadsSource(rop) || calls::RopReadsPattern(rop));
  }
}

}  // namespace
}  // namespace qnv::test
