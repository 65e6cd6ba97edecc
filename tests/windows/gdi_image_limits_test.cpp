// Where images are promised to look different, and what both sides refuse.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "windows/differences.h"
#include "windows/image_pair.h"

namespace qnv::test {
namespace {

constexpr int32_t kWidth = 29;
constexpr int32_t kHeight = 13;
constexpr DibForm kPlainForm{"24 bits", 24};

DibSample Sample(const DibForm& form) { return DibSample(form, kWidth, kHeight, RowOrder::kBottomUp, 7); }

TEST(GdiImageDifference, ATurnedExtentEndsBeforeItsCorner) {
  const DibSample dib = Sample(kPlainForm);
  for (unsigned mirror : {kTurnDstX, kTurnDstY, kTurnSrcX}) {
    const Witness witness;
    const ImagePair pair{.dib = &dib, .area = Mirrored(WholeImage(dib, 3, 2), mirror)};
    EXPECT_EQ(1u, PaintLibraryImage(witness, pair));
    EXPECT_NE(0, PaintPlatformImage(witness, pair));
    ExpectDifference(kMirrorCorner, witness);
  }
}

TEST(GdiImageDifference, ShrinkingKeepsOtherPixels) {
  const DibSample dib = Sample(kPlainForm);
  for (const ImageArea& area :
       {ImageArea{3, 2, 14, 13, 0, 0, kWidth, kHeight}, ImageArea{3, 2, 29, 6, 0, 0, kWidth, kHeight}}) {
    const Witness witness;
    PaintBoth(witness, {.dib = &dib, .area = area});
    ExpectDifference(kShrinking, witness);
  }
}

// Which pixels a shrunken image keeps is each side's own business, but each of them is a pixel of the image.
TEST(GdiImageDifference, ShrinkingInventsNoColors) {
  const DibForm form{"1 bit", 1};
  const DibSample dib = Sample(form);
  for (int32_t width : {3, 10, 20, 28}) {
    for (int32_t height : {2, 7, 12}) {
      Witness witness;
      PaintBoth(witness, {.dib = &dib, .area = {3, 2, width, height, 0, 0, kWidth, kHeight}});
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

TEST(GdiImageDifference, WhatLiesBeyondTheImageIsNotPainted) {
  const DibSample dib = Sample(kPlainForm);
  const Witness witness;
  PaintBoth(witness, {.dib = &dib, .area = {3, 2, kWidth, kHeight, -4, 0, kWidth, kHeight}});
  ExpectDifference(kBeyondImage, witness);
}

TEST(GdiImageDifference, MissingEntriesOfAShortTableAreWhite) {
  const DibSample dib = Sample({"8 bits", 8, BI_RGB, {}, 40, 100});
  const Witness witness;
  PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
  ExpectDifference(kShortTable, witness);

  // What uses only the entries that are there agrees.
  DibForm form{"8 bits", 8, BI_RGB, {}, 40, 100};
  DibSample low(form, kWidth, kHeight, RowOrder::kBottomUp, 7);
  low.LimitIndices(100);
  PaintBoth(witness, {.dib = &low, .area = WholeImage(low, 3, 2)});
  EXPECT_TRUE(witness.Same());
}

TEST(GdiImageDifference, FieldsOfOneBitAreDark) {
  const DibSample dib = Sample({"fields", 16, BI_BITFIELDS, {0x8000, 0x7F00, 0x00FF}});
  const Witness witness;
  PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
  ExpectDifference(kOneBitField, witness);
}

TEST(GdiImageDifference, MasksOfWidePixelsAreNotRead) {
  const DibSample dib = Sample({"32 bits", 32, BI_BITFIELDS, {0x000000FF, 0x0000FF00, 0x00FF0000}});
  const Witness witness;
  PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
  ExpectDifference(kWideMasks, witness);
}

TEST(GdiImageDifference, CoreHeadersAreRefused) {
  std::vector<uint8_t> info(sizeof(BITMAPCOREHEADER) + 40);
  const BITMAPCOREHEADER header{sizeof(BITMAPCOREHEADER), kWidth, kHeight, 1, 24};
  std::memcpy(info.data(), &header, sizeof header);
  const DibSample dib = Sample(kPlainForm);
  const Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(0u, QNVStretchDIBits(witness.handle(), 0, 3, 2, kWidth, kHeight, 0, 0, kWidth, kHeight, dib.bits(),
                                 info.data(), nullptr, SRCCOPY, nullptr, &mode, &kEverywhere) &
                    0xFFFF);
  EXPECT_TRUE(witness.Untouched());
  EXPECT_NE(0, StretchDIBits(witness.dc(), 3, 2, kWidth, kHeight, 0, 0, kWidth, kHeight, dib.bits(),
                             reinterpret_cast<const BITMAPINFO*>(info.data()), DIB_RGB_COLORS, SRCCOPY));
  ExpectDifference(kCoreHeader, witness);
}

// The platform knows no codes above the index, or knows others.
TEST(GdiImageDifference, CodesAboveTheIndexAreTheLibrarysOwn) {
  const DibSample dib = Sample(kPlainForm);
  const Witness witness;
  EXPECT_EQ(1u, PaintLibraryImage(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2), .rop = 0x80CC0020}));
  EXPECT_TRUE(witness.Untouched());
  EXPECT_NE(0, PaintPlatformImage(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2), .rop = 0x80CC0020}));
  ExpectDifference(kExtendedCode, witness);
}

// The minimum has no name in the platform, so its pictures are put together byte by byte.
TEST(GdiImageDifference, TheMinimumIsThatOfTwoPictures) {
  const DibSample dib = Sample(kPlainForm);
  Witness image;
  PaintBoth(image, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
  ASSERT_TRUE(image.Same());
  Witness witness;
  const std::vector<uint8_t> ground = witness.device().BandBytes();
  std::vector<uint8_t> expected = image.device().BandBytes();
  for (std::size_t i = 0; i < expected.size(); ++i) expected[i] = std::min(expected[i], ground[i]);
  EXPECT_EQ(1u, PaintLibraryImage(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2), .rop = ROP_MINIMUM}));
  EXPECT_EQ(expected, witness.device().BandBytes());
}

TEST(GdiImageDifference, ResultsAreNoNumbersOfLines) {
  const DibSample dib = Sample(kPlainForm);
  const Witness witness;
  const ImagePair inside{.dib = &dib, .area = WholeImage(dib, 3, 2)};
  EXPECT_EQ(1u, PaintLibraryImage(witness, inside)) << kTransferResult.name;
  EXPECT_EQ(kHeight, PaintPlatformImage(witness, inside));
  const ImagePair outside{.dib = &dib, .area = WholeImage(dib, 300, 2)};
  EXPECT_EQ(0u, PaintLibraryImage(witness, outside));
  EXPECT_EQ(kHeight, PaintPlatformImage(witness, outside));
  EXPECT_TRUE(witness.Same());
}

TEST(GdiImageWine, GraysAreMatchedByFiveBits) {
  if (!RunsUnderWine()) GTEST_SKIP() << "known of Wine only";
  const DibSample dib(kPlainForm, kWidth, kHeight, RowOrder::kBottomUp, 7, true);
  const Witness witness({.depth = 8});
  PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
  ExpectDifference(kFiveBitMatching, witness);
}

// Colors on a gray band: the library weighs red, green and blue, the platform looks for the nearest entry.
TEST(GdiImageDifference, GraysOfColorsAreWeighed) {
  for (const DibForm& form : {DibForm{"8 bits", 8}, kPlainForm}) {
    const DibSample dib = Sample(form);
    const Witness witness({.depth = 8});
    PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
    ExpectDifference(kGrayOfColor, witness);
  }
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
    DibSample dib = Sample(kPlainForm);
    dib.Spoil(bad.spoil);
    const Witness witness;
    const ImagePair pair{.dib = &dib, .area = {3, 2, kWidth, kHeight, 0, 0, kWidth, kHeight}};
    EXPECT_EQ(0u, PaintLibraryImage(witness, pair)) << bad.name;
    EXPECT_EQ(0, PaintPlatformImage(witness, pair)) << bad.name;
    EXPECT_TRUE(witness.Same()) << bad.name;
    EXPECT_TRUE(witness.Untouched()) << bad.name;
  }
}

}  // namespace
}  // namespace qnv::test
