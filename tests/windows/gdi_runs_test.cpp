// Run-length images beside the platform's StretchDIBits and SetDIBitsToDevice.

#include <gtest/gtest.h>
#include <windows.h>

#include <initializer_list>
#include <vector>

#include "support/random_bytes.h"
#include "windows/differences.h"
#include "windows/image_pair.h"
#include "windows/transfer_pair.h"

namespace qnv::test {
namespace {

constexpr int32_t kWidth = 29;
constexpr int32_t kHeight = 13;

constexpr DibForm kRle4{"RLE4", 4, BI_RLE4};
constexpr DibForm kRle8{"RLE8", 8, BI_RLE8};

using Bytes = std::vector<uint8_t>;

void Append(Bytes* data, std::initializer_list<uint8_t> bytes) { data->insert(data->end(), bytes); }

void AppendLiteral(Bytes* data, uint32_t pixels, bool four, RandomBytes* random) {
  Append(data, {0, static_cast<uint8_t>(pixels)});
  const uint32_t bytes = four ? (pixels + 1) / 2 : pixels;
  for (uint32_t i = 0; i < bytes; ++i) data->push_back(random->Byte());
  if (bytes % 2 != 0) data->push_back(0);
}

// One row that ends exactly at its last pixel, out of runs and literals of every length.
void AppendRow(Bytes* data, bool four, RandomBytes* random) {
  for (uint32_t x = 0; x < kWidth;) {
    const uint32_t pixels = 1 + random->Below(kWidth - x);
    if (pixels >= 3 && random->Below(2) == 0) {
      AppendLiteral(data, pixels, four, random);
    } else {
      Append(data, {static_cast<uint8_t>(pixels), random->Byte()});
    }
    x += pixels;
  }
}

// Rows that are full and end, as both sides want them.
Bytes FullRows(bool four, uint64_t seed) {
  RandomBytes random(seed);
  Bytes data;
  for (int32_t row = 0; row < kHeight; ++row) {
    AppendRow(&data, four, &random);
    Append(&data, {0, 0});
  }
  Append(&data, {0, 1});
  return data;
}

class GdiRuns : public testing::TestWithParam<DibForm> {};

TEST_P(GdiRuns, FullRowsAgree) {
  const bool four = GetParam().bitCount == 4;
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    Witness witness({.depth = depth, .width = 97, .height = 43});
    for (uint64_t seed = 0; seed < 40; ++seed) {
      const DibSample dib(GetParam(), kWidth, kHeight, FullRows(four, seed), seed, depth == 8);
      for (unsigned mirror : {0u, 1u, 2u, 3u}) {
        for (int32_t factor : {1, 3}) {
          witness.Reset(seed);
          PaintBoth(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, 3, 2, factor), mirror)});
          ASSERT_TRUE(witness.Same()) << depth << " bits, data " << seed << ", mirror " << mirror << ", factor "
                                      << factor;
        }
      }
    }
  }
}

TEST_P(GdiRuns, PartsAndRopsAgree) {
  Witness witness;
  const DibSample dib(GetParam(), kWidth, kHeight, FullRows(GetParam().bitCount == 4, 5), 5);
  for (uint32_t rop : {SRCCOPY, SRCINVERT, NOTSRCERASE}) {
    for (int32_t x = 0; x < 12; x += 5) {
      for (int32_t y = 0; y < 9; y += 4) {
        PaintBoth(witness, {.dib = &dib, .area = {3, 2, 15, 4, x, y, 15, 4}, .rop = rop});
        ASSERT_TRUE(witness.Same()) << x << ", " << y << ", rop " << std::hex << rop;
      }
    }
  }
}

TEST_P(GdiRuns, SetDibitsAgrees) {
  Witness witness;
  for (uint64_t seed = 0; seed < 10; ++seed) {
    const DibSample dib(GetParam(), kWidth, kHeight, FullRows(GetParam().bitCount == 4, seed), seed);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(1u, QNVDevSetDIBitsToDevice(witness.handle(), 3, 2, 0, kHeight, &kEverywhere, &mode, dib.bits(),
                                          dib.info(), nullptr) &
                      0xFFFF);
    EXPECT_EQ(kHeight, SetDIBitsToDevice(witness.dc(), 3, 2, kWidth, kHeight, 0, 0, 0, kHeight, dib.bits(), dib.info(),
                                         DIB_RGB_COLORS));
    EXPECT_TRUE(witness.Same()) << "data " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(BothDepths, GdiRuns, testing::Values(kRle4, kRle8));

// Data that is odd in one way only, for an image of 4 x 3 pixels. Runs of index 1, 2 and 3 make it telling.
struct OddRuns {
  const char* name;
  Bytes data;
};

constexpr ImageArea kOddArea = {3, 2, 4, 3, 0, 0, 4, 3};

void PaintOddRuns(const Witness& witness, const DibForm& form, const Bytes& data) {
  const DibSample dib(form, 4, 3, data, 4);
  PaintBoth(witness, {.dib = &dib, .area = kOddArea});
}

TEST(GdiOddRuns, WhatReachesBeyondARowIsCut) {
  if (!RunsUnderWine()) GTEST_SKIP() << "no platform promises anything for such data";
  const OddRuns cases[] = {
      {"a run that is too long", {6, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1}},
      {"no end of the bitmap", {4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 0}},
      {"an end of line before the end of the bitmap", {4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 0, 0, 1}},
      {"more rows than the image has", {4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 0, 4, 5, 0, 0, 0, 1}},
  };
  for (const OddRuns& c : cases) {
    const Witness witness;
    PaintOddRuns(witness, kRle8, c.data);
    EXPECT_TRUE(witness.Same()) << c.name;
  }
  const Witness witness;
  PaintOddRuns(witness, kRle4, {0, 8, 0x12, 0x34, 0x56, 0x78, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1});
  EXPECT_TRUE(witness.Same()) << "a literal of four bits that is too long";
}

// The platform leaves what is skipped as it was, the library paints it with color 0: over a ground of that color both
// come to the same.
TEST(GdiOddRunsDifference, SkippedPixelsGetColorZero) {
  const OddRuns cases[] = {
      {"an early end of line", {2, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1}},
      {"an early end of the bitmap", {4, 1, 0, 0, 2, 2, 0, 1}},
      {"a step to the right", {1, 1, 0, 2, 2, 0, 1, 2, 0, 0, 4, 3, 0, 0, 4, 4, 0, 1}},
      {"a step up and to the right", {1, 1, 0, 2, 2, 1, 1, 2, 0, 0, 4, 3, 0, 1}},
      {"a step of two rows", {1, 1, 0, 2, 0, 2, 3, 2, 0, 1}},
      {"nothing at all", {0, 1}},
  };
  for (const OddRuns& c : cases) {
    SCOPED_TRACE(c.name);
    const Witness witness;
    const DibSample dib(kRle8, 4, 3, c.data, 4);
    PaintBoth(witness, {.dib = &dib, .area = kOddArea});
    ExpectDifference(kSkippedPixels, witness);

    const RGBQUAD zero = dib.info()->bmiColors[0];
    const BrushPair ground = SolidPair(witness, RGB(zero.rgbRed, zero.rgbGreen, zero.rgbBlue));
    PaintBoth(witness, {.area = {.width = 43, .height = 19}, .rop = PATCOPY, .brush = &ground}, MakeDrawMode());
    PaintBoth(witness, {.dib = &dib, .area = kOddArea});
    EXPECT_TRUE(witness.Same());
  }
}

TEST(GdiOddRunsDifference, AFullRowDoesNotEndByItself) {
  const Witness witness;
  PaintOddRuns(witness, kRle8, {4, 1, 4, 2, 4, 3, 0, 1});
  ExpectDifference(kRowWithoutEnd, witness);
}

TEST(GdiOddRunsDifference, TheRestOfAnOverlongLiteralIsReadAsCodes) {
  const Witness witness;
  PaintOddRuns(witness, kRle8, {0, 6, 1, 2, 3, 4, 0, 0, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1});
  ExpectDifference(kOverlongLiteral, witness);
}

TEST(GdiOddRunsDifference, TopDownRunsAreTaken) {
  const Witness witness;
  const Bytes data = {4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1};
  DibSample dib(kRle8, 4, 3, data, 4);
  dib.Spoil([](BITMAPINFOHEADER* header) { header->biHeight = -header->biHeight; });
  const ImagePair pair{.dib = &dib, .area = kOddArea};
  EXPECT_EQ(1u, PaintLibraryImage(witness, pair));
  EXPECT_EQ(0, PaintPlatformImage(witness, pair));
  ExpectDifference(kTopDownRuns, witness);

  const Witness upright;
  const DibSample twin(kRle8, 4, 3, {4, 3, 0, 0, 4, 2, 0, 0, 4, 1, 0, 1}, 4);
  PaintBoth(upright, {.dib = &twin, .area = kOddArea});
  EXPECT_TRUE(upright.Same());
  EXPECT_TRUE(BandShows(witness.device(), BandImage(upright.device())));
}

}  // namespace
}  // namespace qnv::test
