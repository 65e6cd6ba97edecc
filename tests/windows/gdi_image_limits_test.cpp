// Where images are promised to look different, and what both sides refuse.

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "windows/differences.h"

namespace qnv::test {
namespace {

TEST(GdiImageDifference, OneImageOnEachSide) {
  constexpr ImagePlace kWhole{3, 2, 29, 13, 0, 0, 29, 13};
  struct Case {
    Difference why;
    DibForm form;
    ImagePlace area = kWhole;
    uint16_t depth = 24;
    bool gray = false;
  };
  const Case cases[] = {
      {kShrinking, kPlainForm, {3, 2, 14, 13, 0, 0, 29, 13}},
      {kShrinking, kPlainForm, {3, 2, 29, 6, 0, 0, 29, 13}},
      {kBeyondImage, kPlainForm, {3, 2, 29, 13, -4, 0, 29, 13}},
      {kShortTable, {"8 bits", 8, BI_RGB, {}, 40, 100}},
      {kOneBitField, {"fields", 16, BI_BITFIELDS, {0x8000, 0x7F00, 0x00FF}}},
      {kWideMasks, {"32 bits", 32, BI_BITFIELDS, {0x000000FF, 0x0000FF00, 0x00FF0000}}},
      // Colors on a gray band: the library weighs red, green and blue, the platform looks for the nearest entry.
      {kGrayOfColor, {"8 bits", 8}, kWhole, 8},
      {kGrayOfColor, kPlainForm, kWhole, 8},
      {kFiveBitMatching, kPlainForm, kWhole, 8, true},
  };
  for (const Case& c : cases) {
    if (c.why.nature == Nature::kWine && !RunsUnderWine()) continue;
    const DibSample dib(c.form, {.gray = c.gray});
    const Witness witness({.depth = c.depth});
    PaintImage(witness, {.dib = &dib, .area = c.area});
    ExpectDifference(c.why, witness);
  }
}

TEST(GdiImageDifference, ATurnedExtentEndsBeforeItsCorner) {
  const DibSample dib(kPlainForm, {});
  for (unsigned mirror : {kTurnDstX, kTurnDstY, kTurnSrcX}) {
    const Witness witness;
    const ImagePair pair{.dib = &dib, .area = Mirrored(WholeImage(dib, 3, 2), mirror)};
    EXPECT_EQ(1u, PaintLibraryImage(witness, pair));
    EXPECT_NE(0, PaintPlatformImage(witness, pair));
    ExpectDifference(kMirrorCorner, witness);
  }
}

// Which pixels a shrunken image keeps is each side's own business, but each of them is a pixel of the image.
TEST(GdiImageDifference, ShrinkingInventsNoColors) {
  const DibSample dib({"1 bit", 1}, {});
  for (int32_t width : {3, 10, 20, 28}) {
    for (int32_t height : {2, 7, 12}) {
      const Witness witness;
      PaintImage(witness, {.dib = &dib, .area = {3, 2, width, height, 0, 0, 29, 13}});
      for (int32_t x = 3; x < 3 + width; ++x) {
        for (int32_t y = 2; y < 2 + height; ++y) {
          const uint8_t* pixel = witness.device().Pixel(static_cast<uint32_t>(x), static_cast<uint32_t>(y));
          EXPECT_TRUE(std::memcmp(pixel, &dib.info()->bmiColors[0], 3) == 0 ||
                      std::memcmp(pixel, &dib.info()->bmiColors[1], 3) == 0);
        }
      }
    }
  }
}

// See kShortTable.
TEST(GdiImageTables, WhatUsesTheEntriesOfAShortTableAgrees) {
  const Witness witness;
  DibSample dib({"8 bits", 8, BI_RGB, {}, 40, 100}, {});
  for (uint8_t& index : dib.bytes()) index = static_cast<uint8_t>(index % 100);
  EXPECT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)}));
}

// One image on one band.
class GdiImageLimits : public testing::Test {
 protected:
  DibSample dib_{kPlainForm, {}};
  ImagePair whole_{.dib = &dib_, .area = WholeImage(dib_, 3, 2)};
  Witness witness_;
};

TEST_F(GdiImageLimits, CoreHeadersAreRefused) {
  const BITMAPCOREHEADER header{sizeof(BITMAPCOREHEADER), 29, 13, 1, 24};
  std::memset(dib_.header(), 0, sizeof *dib_.header());
  std::memcpy(dib_.header(), &header, sizeof header);
  EXPECT_EQ(0u, PaintLibraryImage(witness_, whole_));
  EXPECT_TRUE(witness_.Untouched());
  EXPECT_NE(0, PaintPlatformImage(witness_, whole_));
  ExpectDifference(kCoreHeader, witness_);
}

// The platform knows no codes above the index, or knows others.
TEST_F(GdiImageLimits, CodesAboveTheIndexAreTheLibrarysOwn) {
  whole_.rop = 0x80CC0020;
  EXPECT_EQ(1u, PaintLibraryImage(witness_, whole_));
  EXPECT_TRUE(witness_.Untouched());
  EXPECT_NE(0, PaintPlatformImage(witness_, whole_));
  ExpectDifference(kExtendedCode, witness_);
}

// The minimum has no name in the platform, so its pictures are put together byte by byte.
TEST_F(GdiImageLimits, TheMinimumIsThatOfTwoPictures) {
  std::vector<uint8_t> expected = witness_.device().BandBytes();
  ASSERT_TRUE(ImageAgrees(witness_, whole_));
  const std::vector<uint8_t> image = witness_.device().BandBytes();
  std::ranges::transform(expected, image, expected.begin(), [](uint8_t a, uint8_t b) { return std::min(a, b); });
  witness_.Reset(1);
  whole_.rop = ROP_MINIMUM;
  EXPECT_EQ(1u, PaintLibraryImage(witness_, whole_));
  EXPECT_EQ(expected, witness_.device().BandBytes());
}

TEST_F(GdiImageLimits, ResultsAreNoNumbersOfLines) {
  EXPECT_EQ(1u, PaintLibraryImage(witness_, whole_)) << kTransferResult.name;
  EXPECT_EQ(13, PaintPlatformImage(witness_, whole_));
  whole_.area.dstX = 300;
  EXPECT_EQ(0u, PaintLibraryImage(witness_, whole_));
  EXPECT_EQ(13, PaintPlatformImage(witness_, whole_));
  EXPECT_TRUE(witness_.Same());
}

// The platform also takes an image piece by piece, each piece with the address of its own first scan. The library's
// bits are always those of the whole image; a host that has a piece only says so in the header.
TEST(GdiImageDifference, BitsAreThoseOfTheWholeImage) {
  constexpr uint32_t kFirst = 4;
  constexpr uint32_t kCount = 6;
  const DibSample dib(kPlainForm, {});
  const DibSample longer(kPlainForm, {.height = 26});  // starts with the same rows
  const auto paint = [&dib](const Witness& witness, const void* bits) {
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(1u, QNVDevSetDIBitsToDevice(witness.handle(), 3, 2, kFirst, kCount, &kEverywhere, &mode, bits, dib.info(),
                                          nullptr) &
                      0xFFFF);
    EXPECT_EQ(static_cast<int>(kCount), SetDIBitsToDevice(witness.dc(), 3, 2, 29, kCount, 0, kFirst, kFirst, kCount,
                                                          dib.Row(kFirst), dib.info(), DIB_RGB_COLORS));
  };
  const Witness same;
  paint(same, dib.bits());
  EXPECT_TRUE(same.Same());
  const Witness other;
  paint(other, longer.Row(kFirst));
  ExpectDifference(kFirstScan, other);
}

TEST(GdiImageRefusals, BothSidesRefuse) {
  struct Bad {
    const char* name;
    void (*spoil)(BITMAPINFOHEADER*);
  };
  const Bad cases[] = {
      {"no planes", [](BITMAPINFOHEADER* header) { header->biPlanes = 0; }},
      {"seven bits", [](BITMAPINFOHEADER* header) { header->biBitCount = 7; }},
      {"no width", [](BITMAPINFOHEADER* header) { header->biWidth = 0; }},
      {"no height", [](BITMAPINFOHEADER* header) { header->biHeight = 0; }},
      {"eight-bit runs of 24-bit pixels", [](BITMAPINFOHEADER* header) { header->biCompression = BI_RLE8; }},
  };
  for (const Bad& bad : cases) {
    DibSample dib(kPlainForm, {});
    bad.spoil(dib.header());
    const Witness witness;
    const ImagePair pair{.dib = &dib, .area = WholeImage(dib, 3, 2)};
    EXPECT_EQ(0u, PaintLibraryImage(witness, pair)) << bad.name;
    EXPECT_EQ(0, PaintPlatformImage(witness, pair)) << bad.name;
    EXPECT_TRUE(witness.Same()) << bad.name;
    EXPECT_TRUE(witness.Untouched()) << bad.name;
  }
}

}  // namespace
}  // namespace qnv::test
