// How stored pixels of every depth become bytes of a band: color tables, component masks, grays, runs of a row.
#include <gtest/gtest.h>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

// ---- Color tables: where they lie, how many entries they have, what missing entries show.

struct TableCase {
  const char* name;
  uint16_t bitCount;
  uint32_t colorsUsed;
  std::size_t entries;  // given behind the header, and no byte more
};

const TableCase kTables[] = {
    {"1 bit, full", 1, 0, 2},          {"1 bit, two used", 1, 2, 2},      {"1 bit, one used", 1, 1, 1},
    {"1 bit, more than fit", 1, 9, 2}, {"4 bits, full", 4, 0, 16},        {"4 bits, sixteen used", 4, 16, 16},
    {"4 bits, three used", 4, 3, 3},   {"4 bits, one used", 4, 1, 1},     {"4 bits, fifteen used", 4, 15, 15},
    {"4 bits, 255 used", 4, 255, 16},  {"8 bits, full", 8, 0, 256},       {"8 bits, 256 used", 8, 256, 256},
    {"8 bits, three used", 8, 3, 3},   {"8 bits, 255 used", 8, 255, 255}, {"8 bits, 70000 used", 8, 70000, 256},
};

uint32_t EntryColor(uint32_t index) { return index * 0x010203u + 0x402010u; }

// Every index that the depth can hold; indices without an entry are white.
TEST(Palette, Entries) {
  for (const TableCase& c : kTables) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint32_t headerSize : {40u, 56u, 108u, 124u}) {
        const int32_t indices = 1 << c.bitCount;
        TestDevice device({.bitsPerPixel = bandDepth, .width = static_cast<uint32_t>(indices), .height = 1});
        std::vector<uint32_t> table;
        for (uint32_t i = 0; i < c.entries; ++i) table.push_back(EntryColor(i) & 0xFFFFFF);
        std::vector<uint32_t> values;
        for (uint32_t i = 0; i < static_cast<uint32_t>(indices); ++i) values.push_back(i);
        std::vector<uint8_t> bits;
        AppendDibRow(bits, values, c.bitCount);
        const DibShape shape{.bitCount = c.bitCount, .headerSize = headerSize, .colorsUsed = c.colorsUsed};
        const Dib dib(DibInfo(indices, 1, shape, table), bits);
        EXPECT_EQ(1u, Stretch(device, dib, {0, 0, indices, 1, 0, 0, indices, 1})) << c.name;
        PlaneImage expected = UntouchedBand(device);
        for (uint32_t i = 0; i < static_cast<uint32_t>(indices); ++i) {
          expected.SetColor(i, 0, Physical(device, i < c.entries ? EntryColor(i) & 0xFFFFFF : 0xFFFFFF));
        }
        EXPECT_TRUE(SameImage(expected, BandImage(device)))
            << c.name << ", " << bandDepth << "-bit band, header of " << headerSize;
      }
    }
  }
}

// Short tables serve run-length data as well.
TEST(Palette, ShortTableOfRunLengthData) {
  TestDevice device({.width = 8, .height = 1});
  const DibShape shape{.bitCount = 4, .compression = BI_RLE4, .colorsUsed = 2};
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
      const Dib dib(DibInfo(2, 1, {.bitCount = depth, .colorsUsed = used}), bits);
      EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 2, 1, 0, 0, 2, 1}));
      EXPECT_TRUE(BandIs(device, ImageInks(device), "ah")) << depth << " bits, " << used << " used";
    }
  }
}

// ---- 16 and 32 bits a pixel: masks, shifts and how a component fills its byte.

enum class Masks { kGiven, kNone };

struct PixelCase {
  const char* name;
  uint32_t masks[3];  // red, green, blue
  uint32_t pixel;
  uint32_t red, green, blue;
};

Dib OnePixel(uint16_t bitCount, Masks given, const PixelCase& c, uint32_t headerSize) {
  const uint32_t compression = given == Masks::kGiven ? BI_BITFIELDS : BI_RGB;
  std::vector<uint8_t> info =
      DibInfo(1, 1, {.bitCount = bitCount, .compression = compression, .headerSize = headerSize});
  if (given == Masks::kGiven) {
    // The masks lie at byte 40, however long the header says it is.
    std::vector<uint8_t> masks;
    for (uint32_t mask : c.masks) Append32(masks, mask);
    info.resize(std::max<std::size_t>(info.size(), 52));
    std::copy(masks.begin(), masks.end(), info.begin() + 40);
  }
  std::vector<uint8_t> bits;
  AppendDibRow(bits, {c.pixel}, bitCount);
  return Dib(info, bits);
}

void RunPixelCases(uint16_t bitCount, Masks given, const std::vector<PixelCase>& cases) {
  for (const PixelCase& c : cases) {
    for (uint32_t headerSize : {40u, 108u, 124u, 12u}) {
      for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
        TestDevice device({.bitsPerPixel = bandDepth, .width = 1, .height = 1});
        EXPECT_EQ(1u, Stretch(device, OnePixel(bitCount, given, c, headerSize), {0, 0, 1, 1, 0, 0, 1, 1})) << c.name;
        const uint32_t color = c.blue << 16 | c.green << 8 | c.red;
        EXPECT_TRUE(BandIs(device, {{'x', Physical(device, color)}}, "x"))
            << c.name << ", header of " << headerSize << ", " << bandDepth << "-bit band";
      }
    }
  }
}

TEST(BitFields, DefaultSixteenBits) {
  RunPixelCases(16, Masks::kNone,
                {
                    {"white", {}, 0x7FFF, 255, 255, 255},
                    {"the top bit is not read", {}, 0x8000, 0, 0, 0},
                    {"blue", {}, 0x001F, 0, 0, 255},
                    {"green", {}, 0x03E0, 0, 255, 0},
                    {"red", {}, 0x7C00, 255, 0, 0},
                    {"one step each", {}, 0x0421, 8, 8, 8},
                    {"half", {}, 0x4210, 132, 132, 132},
                    {"different steps", {}, 1 << 10 | 17 << 5 | 30, 8, 140, 247},
                });
}

// A 5-bit x becomes 8 x + x / 4, a 6-bit x becomes 4 x + x / 16.
TEST(BitFields, EveryLevel) {
  for (uint32_t x = 0; x < 64; ++x) {
    const uint32_t level = 8 * (x % 32) + x % 32 / 4;
    RunPixelCases(16, Masks::kNone, {{"5-5-5", {}, x % 32 << 10 | x % 32 << 5 | x % 32, level, level, level}});
    RunPixelCases(16, Masks::kGiven, {{"5-6-5", {0xF800, 0x07E0, 0x001F}, x << 5, 0, 4 * x + x / 16, 0}});
  }
}

TEST(BitFields, SixteenBitMasks) {
  RunPixelCases(
      16, Masks::kGiven,
      {
          {"5-6-5 white", {0xF800, 0x07E0, 0x001F}, 0xFFFF, 255, 255, 255},
          {"5-6-5 red", {0xF800, 0x07E0, 0x001F}, 0xF800, 255, 0, 0},
          {"5-6-5 blue", {0xF800, 0x07E0, 0x001F}, 0x001F, 0, 0, 255},
          {"5-5-5 given", {0x7C00, 0x03E0, 0x001F}, 0xC210, 132, 132, 132},
          {"red and blue exchanged", {0x001F, 0x07E0, 0xF800}, 0xF800, 0, 0, 255},
          {"4-4-4", {0x0F00, 0x00F0, 0x000F}, 0xF5A1, 0x55, 0xAA, 0x11},
          {"4-4-4 in the top bits", {0xF000, 0x0F00, 0x00F0}, 0x5A1F, 0x55, 0xAA, 0x11},
          {"8 bits of green", {0x0000, 0xFF00, 0x00FF}, 0xC35A, 0, 0xC3, 0x5A},
          // Up shift 14, fill shift 2: a 2-bit x becomes 64 x + 16 x.
          {"2 bits", {0x0003, 0x000C, 0x0030}, 0x002D, 80, 240, 160},
          // A single bit is shifted just past its byte.
          {"1 bit", {0x0002, 0x0004, 0x8000}, 0xFFFF, 0, 0, 0},
          {"1 bit, the lowest", {0x0001, 0x0001, 0x0001}, 0xFFFF, 0, 0, 0},
          {"no mask, no component", {0, 0, 0x001F}, 0xFFFF, 0, 0, 255},
          {"only the low 16 bits of a mask count", {0x12340F00, 0xFFFF00F0, 0x8000000F}, 0x05A1, 0x55, 0xAA, 0x11},
      });
}

// 32-bit pixels have one layout; masks are not looked at, and the top byte never.
TEST(BitFields, ThirtyTwoBits) {
  const std::vector<PixelCase> cases = {
      {"components", {}, 0x80102030, 0x10, 0x20, 0x30},
      {"white", {}, 0x00FFFFFF, 255, 255, 255},
      {"top byte alone", {}, 0xFF000000, 0, 0, 0},
      {"with the usual masks", {0xFF0000, 0xFF00, 0xFF}, 0x80102030, 0x10, 0x20, 0x30},
      {"with masks that say otherwise", {0xFF, 0xFF00, 0xFF0000}, 0x80102030, 0x10, 0x20, 0x30},
  };
  RunPixelCases(32, Masks::kNone, cases);
  RunPixelCases(32, Masks::kGiven, cases);
}

// ---- Images on a gray band: weights 30, 59 and 11 of red, green and blue, truncated.

TEST(GrayImages, EveryDepth) {
  struct Case {
    const char* name;
    uint32_t red, green, blue;
    uint32_t gray;
  };
  const Case cases[] = {
      {"blue", 0, 0, 255, 28},       {"green", 0, 255, 0, 150},    {"red", 255, 0, 0, 76},
      {"white", 255, 255, 255, 255}, {"black", 0, 0, 0, 0},        {"truncated, not rounded", 0, 1, 3, 0},
      {"just below", 3, 0, 0, 0},    {"just reached", 2, 0, 4, 1}, {"yellow", 255, 255, 0, 226},
      {"magenta", 255, 0, 255, 104}, {"cyan", 0, 255, 255, 178},   {"gray stays", 137, 137, 137, 137},
  };
  for (const Case& c : cases) {
    for (uint16_t depth : {uint16_t{1}, uint16_t{4}, uint16_t{8}, uint16_t{24}, uint16_t{32}}) {
      for (uint32_t rop : {SRCCOPY, 0x00CC0021u}) {
        const bool indexed = depth <= 8;
        std::vector<uint8_t> bits;
        AppendDibRow(bits, {indexed ? 1 : c.red << 16 | c.green << 8 | c.blue}, depth);
        std::vector<uint32_t> table;
        if (indexed) table = {0x5A5A5A, c.blue << 16 | c.green << 8 | c.red};
        const Dib dib(DibInfo(1, 1, {.bitCount = depth, .colorsUsed = indexed ? 2u : 0u}, table), bits);
        TestDevice device({.bitsPerPixel = 8, .width = 5, .height = 1});
        EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 3, 1, 0, 0, 1, 1}, {.rop = rop})) << c.name;
        EXPECT_TRUE(BandIs(device, {{'g', Gray(c.gray)}}, ".ggg.")) << c.name << ", " << depth << " bits";
      }
    }
  }
}

// ---- Every source depth, in both directions, into every kind of row: a color band, the row of a transfer, a gray
// band.

struct Target {
  const char* name;
  uint16_t bandDepth;
  uint32_t rop;  // any other low word than SRCCOPY's makes the rows go through a transfer
};

const Target kTargets[] = {
    {"color band", 24, SRCCOPY},
    {"color band by transfer", 24, 0x00CC0000},
    {"gray band", 8, SRCCOPY},
    {"gray band by transfer", 8, 0x00CC0000},
};

constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};

// 33 pixels, irregular also where only the lowest bit of an index counts.
const std::string kImage = "abbcdheggfkmjlpnnoipdcahbbekgmijl";

struct Part {
  int32_t from;
  int32_t count;
  int32_t scale;
  bool mirrored;
};

// Part of the image, each pixel `scale` wide, from column 2 on.
void RunPart(const Target& target, uint16_t depth, const Part& part) {
  const int32_t span = part.count * part.scale;
  TestDevice device({.bitsPerPixel = target.bandDepth, .width = static_cast<uint32_t>(span + 5), .height = 1});
  const Dib dib = PictureDib(33, kImage, {.bitCount = depth});
  const ImagePlace place = {
      part.mirrored ? 2 + span : 2, 0, part.mirrored ? -span : span, 1, part.from, 0, part.count, 1};
  EXPECT_EQ(1u, Stretch(device, dib, place, {.rop = target.rop}));
  std::string pixels = kImage.substr(static_cast<std::size_t>(part.from), static_cast<std::size_t>(part.count));
  if (part.mirrored) std::reverse(pixels.begin(), pixels.end());
  std::string line = "..";
  for (char pixel : pixels) line.append(static_cast<std::size_t>(part.scale), pixel);
  EXPECT_TRUE(BandIs(device, ImageInks(device, depth), line + "..."))
      << target.name << ", " << depth << " bits, " << part.count << " pixels from " << part.from << ", scale "
      << part.scale << (part.mirrored ? ", mirrored" : "");
}

TEST(RowConverters, EveryDepthDirectionAndTarget) {
  for (const Target& target : kTargets) {
    for (uint16_t depth : kDepths) {
      for (bool mirrored : {false, true}) {
        for (int32_t from : {0, 1, 2, 3, 5, 7, 8, 9, 15, 16}) {
          for (int32_t count : {1, 2, 7, 8, 9, 16, 17}) {
            for (int32_t scale : {1, 2, 5}) RunPart(target, depth, {from, count, scale, mirrored});
          }
        }
      }
    }
  }
}

// A row of pixels smaller than a byte starts and ends anywhere in its bytes.
TEST(RowConverters, PartsOfPackedRows) {
  for (uint16_t depth : {uint16_t{1}, uint16_t{4}}) {
    for (int32_t from = 0; from < 24; ++from) {
      for (int32_t count = 1; from + count <= 24; ++count) RunPart(kTargets[0], depth, {from, count, 1, true});
    }
  }
}

// Gray runs of every length and phase end where they should.
TEST(RowConverters, RunLengths) {
  for (const Target& target : kTargets) {
    for (bool mirrored : {false, true}) {
      for (int32_t scale = 1; scale <= 19; ++scale) RunPart(target, 8, {4, 3, scale, mirrored});
    }
  }
}

// Shrinking: a source pixel that covers nothing is stepped over, in both directions.
TEST(RowConverters, Shrinking) {
  for (const Target& target : kTargets) {
    for (uint16_t depth : kDepths) {
      SCOPED_TRACE(std::string(target.name) + ", " + std::to_string(depth) + " bits");
      const Dib dib = PictureDib(16, "abbcdheggfkmjlpn", {.bitCount = depth});
      TestDevice device({.bitsPerPixel = target.bandDepth, .width = 9, .height = 2});
      EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 8, 1, 0, 0, 16, 1}, {.rop = target.rop}));
      EXPECT_EQ(1u, Stretch(device, dib, {8, 1, -8, 1, 0, 0, 16, 1}, {.rop = target.rop}));
      EXPECT_TRUE(BandIs(device, ImageInks(device, depth), "abdegkjp. nlmfghcb."));
    }
  }
}

// Rows are converted in pieces; a long one has several: as it is, and thinned to pixels near each other and far apart.
TEST(RowConverters, LongRows) {
  std::string image;
  while (image.size() < 2700) image += kImage;
  image.resize(2700);
  std::string everySecondBackwards, everyNinth;
  for (std::size_t i = 0; i < 300; ++i) {
    everySecondBackwards += image[599 - 2 * i];
    everyNinth += image[9 * i + 4];
  }
  for (const Target& target : kTargets) {
    for (uint16_t depth : kDepths) {
      SCOPED_TRACE(std::string(target.name) + ", " + std::to_string(depth) + " bits");
      const Dib dib = PictureDib(2700, image, {.bitCount = depth});
      TestDevice device({.bitsPerPixel = target.bandDepth, .width = 300, .height = 3});
      EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 300, 1, 0, 0, 300, 1}, {.rop = target.rop}));
      EXPECT_EQ(1u, Stretch(device, dib, {300, 1, -300, 1, 0, 0, 600, 1}, {.rop = target.rop}));
      EXPECT_EQ(1u, Stretch(device, dib, {0, 2, 300, 1, 0, 0, 2700, 1}, {.rop = target.rop}));
      EXPECT_TRUE(BandIs(device, ImageInks(device, depth), image.substr(0, 300) + everySecondBackwards + everyNinth));
    }
  }
}

// The bytes themselves: a pixel stored as blue 1, green 2, red 3 is 1, 2, 3 in the band, straight or through a
// transfer.
TEST(RowConverters, ByteOrder) {
  for (uint32_t rop : {SRCCOPY, 0x00CC0000u}) {
    TestDevice device({.width = 2, .height = 1});
    const Dib dib(DibInfo(2, 1, {}), {1, 2, 3, 250, 251, 252, 0, 0});
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 2, 1, 0, 0, 2, 1}, {.rop = rop}));
    const uint8_t expected[8] = {1, 2, 3, 250, 251, 252, 0xCC, 0xCC};
    EXPECT_EQ(0, std::memcmp(expected, device.band().data(), sizeof expected)) << std::hex << rop;
  }
}

}  // namespace
}  // namespace qnv::test
