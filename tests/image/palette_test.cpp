// Colour tables: where they lie, how many entries they have, what missing entries show.
#include <gtest/gtest.h>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

struct TableCase {
  const char* name;
  uint16_t bitCount;
  uint32_t coloursUsed;
  std::size_t entries;  // given behind the header, and no byte more
};

const TableCase kTables[] = {
    {"1 bit, full", 1, 0, 2},          {"1 bit, two used", 1, 2, 2},      {"1 bit, one used", 1, 1, 1},
    {"1 bit, more than fit", 1, 9, 2}, {"4 bits, full", 4, 0, 16},        {"4 bits, sixteen used", 4, 16, 16},
    {"4 bits, three used", 4, 3, 3},   {"4 bits, one used", 4, 1, 1},     {"4 bits, fifteen used", 4, 15, 15},
    {"4 bits, 255 used", 4, 255, 16},  {"8 bits, full", 8, 0, 256},       {"8 bits, 256 used", 8, 256, 256},
    {"8 bits, three used", 8, 3, 3},   {"8 bits, 255 used", 8, 255, 255}, {"8 bits, 70000 used", 8, 70000, 256},
};

uint32_t EntryColour(uint32_t index) { return index * 0x010203u + 0x402010u; }

// Every index that the depth can hold; indices without an entry are white.
TEST(Palette, Entries) {
  for (const TableCase& c : kTables) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint32_t headerSize : {40u, 56u, 108u, 124u}) {
        const int32_t indices = 1 << c.bitCount;
        TestDevice device({.bitsPerPixel = bandDepth, .width = static_cast<uint32_t>(indices), .height = 1});
        std::vector<uint32_t> table;
        for (uint32_t i = 0; i < c.entries; ++i) table.push_back(EntryColour(i) & 0xFFFFFF);
        std::vector<uint32_t> values;
        for (uint32_t i = 0; i < static_cast<uint32_t>(indices); ++i) values.push_back(i);
        std::vector<uint8_t> bits;
        AppendDibRow(bits, values, c.bitCount);
        const DibShape shape{.bitCount = c.bitCount, .headerSize = headerSize, .coloursUsed = c.coloursUsed};
        const Dib dib(DibInfo(indices, 1, shape, table), bits);
        EXPECT_EQ(1u, Stretch(device, dib, {0, 0, indices, 1, 0, 0, indices, 1})) << c.name;
        PicturePlane expected = UntouchedBand(device);
        for (uint32_t i = 0; i < static_cast<uint32_t>(indices); ++i) {
          expected.Put(i, 0, Physical(device, i < c.entries ? EntryColour(i) & 0xFFFFFF : 0xFFFFFF));
        }
        EXPECT_TRUE(SamePlane(expected, CurrentBand(device)))
            << c.name << ", " << bandDepth << "-bit band, header of " << headerSize;
      }
    }
  }
}

// Short tables serve run-length data as well.
TEST(Palette, ShortTableOfRunLengthData) {
  TestDevice device({.width = 8, .height = 1});
  const DibShape shape{.bitCount = 4, .compression = BI_RLE4, .coloursUsed = 2};
  const Dib dib(DibInfo(8, 1, shape, {0x0000FF, 0x00FF00}), RleWriter().Run(8, 0x1F).EndOfBitmap().bytes());
  EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 8, 1, 0, 0, 8, 1}));
  EXPECT_TRUE(BandIs(device, {{'g', 0x00FF00}, {'w', 0xFFFFFF}}, "gwgwgwgw"));
}

// From 16 bits on nothing but the header is read, whatever biClrUsed says.
TEST(Palette, NoTableAboveEightBits) {
  for (uint16_t depth : {uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
    for (uint32_t used : {0u, 1u, 5u, 256u, 0xFFFFFFFFu}) {
      TestDevice device({.width = 2, .height = 1});
      std::vector<uint8_t> bits;
      AppendDibRow(bits, {DibPixel(0, depth), DibPixel(7, depth)}, depth);
      const Dib dib(DibInfo(2, 1, {.bitCount = depth, .coloursUsed = used}), bits);
      EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 2, 1, 0, 0, 2, 1}));
      EXPECT_TRUE(BandIs(device, ImageInks(device), "ah")) << depth << " bits, " << used << " used";
    }
  }
}

}  // namespace
}  // namespace qnv::test
