// Images of every form, run-length data among them, beside the platform's StretchDIBits and SetDIBitsToDevice.

#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "support/random_bytes.h"
#include "support/transfer_model.h"
#include "windows/differences.h"

namespace qnv::test {
namespace {

class GdiImages : public testing::TestWithParam<DibForm> {};

TEST_P(GdiImages, WholeImagesAgreeInEveryOrderAndMirror) {
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    // See kFiveBitMatching.
    const int tolerance = depth == 8 && GetParam().bitCount > 8 && RunsUnderWine() ? 7 : 0;
    Witness witness({.depth = depth, .left = 100, .top = 50});
    for (bool topDown : {false, true}) {
      const DibSample dib(GetParam(), {.topDown = topDown, .gray = depth == 8});
      for (unsigned mirror = 0; mirror < 16; ++mirror) {
        witness.Reset(mirror);
        ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, 103, 52), mirror)}, tolerance));
      }
    }
  }
}

TEST_P(GdiImages, PartsOfImagesAgree) {
  const Witness witness;
  RandomBytes random(3);
  const auto below = [&random](int32_t limit) {
    return static_cast<int32_t>(random.Below(static_cast<uint32_t>(limit)));
  };
  for (bool topDown : {false, true}) {
    const DibSample dib(GetParam(), {.topDown = topDown, .seed = 8});
    for (unsigned i = 0; i < 48; ++i) {
      ImagePlace area{below(20) - 5, below(14) - 4, 0, 0, below(20), below(9), 0, 0};
      area.dstWidth = area.srcWidth = 1 + below(dib.width() - area.srcX);
      area.dstHeight = area.srcHeight = 1 + below(dib.height() - area.srcY);
      if (area.dstX + area.dstWidth <= 0 || area.dstY + area.dstHeight <= 0) continue;
      ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = Mirrored(area, i % 16)}));
    }
  }
}

TEST_P(GdiImages, WholeFactorsAgree) {
  const Witness witness({.width = 131, .height = 61});
  for (bool topDown : {false, true}) {
    const DibSample dib(GetParam(), {.topDown = topDown, .seed = 9});
    for (int32_t across : {1, 2, 3, 5}) {
      for (int32_t down : {1, 2, 4}) {
        ImagePlace area = WholeImage(dib, 3, 2);
        area.dstWidth *= across;
        area.dstHeight *= down;
        for (unsigned mirror : {0u, 1u, 2u, 3u}) {
          ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = Mirrored(area, mirror)}));
        }
      }
    }
  }
}

TEST_P(GdiImages, TheCommonCodesAgree) {
  const Witness witness;
  for (bool topDown : {false, true}) {
    const DibSample dib(GetParam(), {.topDown = topDown});
    for (uint32_t rop : {SRCPAINT, SRCAND, SRCINVERT, SRCERASE, NOTSRCCOPY, NOTSRCERASE, MERGEPAINT}) {
      ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2), .rop = rop}));
    }
  }
}

// All scans are handed over, and `count` of them are asked for from `first` on.
TEST_P(GdiImages, ScansAgreeInEveryOrder) {
  Witness witness;
  for (bool topDown : {false, true}) {
    const DibSample dib(GetParam(), {.topDown = topDown});
    for (uint32_t first = 0; first < 13; first += 3) {
      for (uint32_t count = 1; first + count <= 13; count += 2) {
        witness.Reset(first + count);
        EXPECT_EQ(1u, SetLibraryScans(witness, dib, first, count));
        EXPECT_NE(0, SetPlatformScans(witness, dib, first, count));
        ASSERT_TRUE(witness.Same()) << "scans " << first << " + " << count;
      }
    }
  }
}

TEST_P(GdiImages, ClipsOfScansAgree) {
  Witness witness;
  const DibSample dib(GetParam(), {});
  for (const BandRect& clip : {BandRect{0, 0, 20, 9}, BandRect{7, 5, 43, 19}, BandRect{10, 8, 11, 9}}) {
    witness.Reset(4);
    EXPECT_EQ(1u, SetLibraryScans(witness, dib, 0, 13, clip));
    const Selected clipped(witness.dc(), {}, clip);
    SetPlatformScans(witness, dib, 0, 13);
    EXPECT_TRUE(witness.Same()) << Describe(clip);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryForm, GdiImages, testing::ValuesIn(kDibForms));

TEST(GdiImageClips, AgreeAlsoInTheMiddleOfAnEnlargedPixel) {
  const Witness witness({.width = 131, .height = 61});
  const DibSample dib(kPlainForm, {});
  for (int32_t factor : {1, 2, 3}) {
    for (unsigned mirror : {0u, 1u, 2u, 3u}) {
      for (int32_t left = 0; left < 8; ++left) {
        for (int32_t top = 0; top < 6; ++top) {
          const BandRect clip{3 + left, 2 + top, 3 + 27 * factor - top, 2 + 12 * factor - left / 2};
          ASSERT_TRUE(ImageAgrees(
              witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, 3, 2, factor), mirror), .clip = clip}));
        }
      }
    }
  }
}

TEST(GdiImageClips, ImagesThatStickOutOfTheBandAgree) {
  const Witness witness;
  const DibSample dib(kPlainForm, {});
  for (int32_t factor : {1, 3}) {
    for (int32_t x = -25 * factor; x < 43; x += 9) {
      for (int32_t y = -12 * factor; y < 19; y += 5) {
        for (unsigned mirror : {0u, 3u}) {
          ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, x, y, factor), mirror)}));
        }
      }
    }
  }
}

TEST(GdiImageRops, EveryCodeAgrees) {
  Witness witness({.width = 61, .height = 40});
  const DibSample dib(kPlainForm, {});
  const BrushPair brushes[] = {SolidPair(witness, 0x00405060), DeepPatternPair(witness, 3)};
  for (const BrushPair& brush : brushes) {
    for (uint32_t i = 0; i < 256; ++i) {
      const uint8_t index = static_cast<uint8_t>(i);
      const bool threeOperands = IndexUsesPattern(index) && IndexUsesSource(index);
      const bool tiled = brush.library.style != BS_SOLID;
      for (int32_t factor : {1, 2}) {
        // See kPatternWithSource.
        const bool aligned = tiled && threeOperands && RunsUnderWine();
        const ImagePlace area = aligned ? WholeImage(dib, 0, 8, factor) : WholeImage(dib, 3, 5, factor);
        witness.Reset(i);
        ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = area, .rop = CodeOf(index), .brush = &brush}));
      }
    }
  }
}

TEST(GdiImageFields, WiderAndNarrowerFieldsAgree) {
  const uint32_t masks[][3] = {{0x00E0, 0x001C, 0x0003}, {0x3F00, 0x00C0, 0x003F}, {0xFF00, 0x00F0, 0x000F},
                               {0x7000, 0x0700, 0x0070}, {0xFC00, 0x03F0, 0x000F}, {0x007F, 0x3F80, 0xC000},
                               {0x001F, 0x03E0, 0x7C00}, {0x3F80, 0x007F, 0xC000}};
  const Witness witness;
  for (const auto& mask : masks) {
    const DibSample dib({"fields", 16, BI_BITFIELDS, {mask[0], mask[1], mask[2]}}, {});
    EXPECT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)}));
  }
}

TEST(GdiImageFactors, BrokenFactorsAgreeWithWine) {
  if (!RunsUnderWine()) GTEST_SKIP() << kBrokenFactor.name << ": no platform promises which pixels are doubled";
  const Witness witness({.width = 131, .height = 61});
  const DibSample dib(kPlainForm, {});
  for (int32_t width = 29; width < 3 * 29; width += 2) {
    for (int32_t height : {13, 14, 17, 20, 25, 31, 38}) {
      EXPECT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = {3, 2, width, height, 0, 0, 29, 13}}));
    }
  }
}

using RunBytes = std::vector<uint8_t>;

// 13 rows of 29 pixels that are full and end, as both sides want them, out of runs and literals of every length.
DibSample FullRows(const DibForm& form, uint64_t seed, bool gray = false) {
  constexpr uint32_t kColumns = 29;
  RandomBytes random(seed);
  RunBytes data;
  for (int row = 0; row < 13; ++row) {
    for (uint32_t x = 0; x < kColumns;) {
      const uint32_t pixels = 1 + random.Below(kColumns - x);
      const bool literal = pixels >= 3 && random.Below(2) == 0;
      if (literal) data.push_back(0);
      data.push_back(static_cast<uint8_t>(pixels));
      const uint32_t bytes = !literal ? 1 : form.bitCount == 4 ? (pixels + 1) / 2 : pixels;
      for (uint32_t i = 0; i < bytes; ++i) data.push_back(random.Byte());
      if (literal && bytes % 2 != 0) data.push_back(0);
      x += pixels;
    }
    data.insert(data.end(), {0, 0});
  }
  data.insert(data.end(), {0, 1});
  return DibSample(form, {.seed = seed, .gray = gray, .runs = data});
}

class GdiRuns : public testing::TestWithParam<DibForm> {};

TEST_P(GdiRuns, FullRowsAgree) {
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    Witness witness({.depth = depth, .width = 97, .height = 43});
    for (uint64_t seed = 0; seed < 40; ++seed) {
      const DibSample dib = FullRows(GetParam(), seed, depth == 8);
      for (unsigned mirror : {0u, 1u, 2u, 3u}) {
        for (int32_t factor : {1, 3}) {
          witness.Reset(seed);
          ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, 3, 2, factor), mirror)}));
        }
      }
    }
  }
}

TEST_P(GdiRuns, PartsAndRopsAgree) {
  const Witness witness;
  const DibSample dib = FullRows(GetParam(), 5);
  for (uint32_t rop : {SRCCOPY, SRCINVERT, NOTSRCERASE}) {
    for (int32_t x = 0; x < 12; x += 5) {
      for (int32_t y = 0; y < 9; y += 4) {
        ASSERT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = {3, 2, 15, 4, x, y, 15, 4}, .rop = rop}));
      }
    }
  }
}

TEST_P(GdiRuns, ScansAgree) {
  const Witness witness;
  for (uint64_t seed = 0; seed < 10; ++seed) {
    const DibSample dib = FullRows(GetParam(), seed);
    EXPECT_EQ(1u, SetLibraryScans(witness, dib, 0, 13));
    EXPECT_EQ(13, SetPlatformScans(witness, dib, 0, 13));
    EXPECT_TRUE(witness.Same()) << "data " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(BothDepths, GdiRuns, testing::Values(kRle4Form, kRle8Form));

// Data that is odd in one way only, for an image of 4 x 3 pixels. Runs of index 1, 2 and 3 make it telling.
struct OddRuns {
  const char* name;
  RunBytes data;
  const DibForm& form = kRle8Form;
};

constexpr ImagePlace kOddArea = {3, 2, 4, 3, 0, 0, 4, 3};

DibSample OddSample(const RunBytes& data, const DibForm& form = kRle8Form) {
  return DibSample(form, {.width = 4, .height = 3, .seed = 4, .runs = data});
}

TEST(GdiOddRuns, WhatReachesBeyondARowIsCut) {
  if (!RunsUnderWine()) GTEST_SKIP() << "no platform promises anything for such data";
  const OddRuns cases[] = {
      {"a run that is too long", {6, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1}},
      {"no end of the bitmap", {4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 0}},
      {"an end of line before the end of the bitmap", {4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 0, 0, 1}},
      {"more rows than the image has", {4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 0, 4, 5, 0, 0, 0, 1}},
      {"a literal of four bits that is too long",
       {0, 8, 0x12, 0x34, 0x56, 0x78, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1},
       kRle4Form},
  };
  for (const OddRuns& c : cases) {
    const Witness witness;
    const DibSample dib = OddSample(c.data, c.form);
    EXPECT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = kOddArea})) << c.name;
  }
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
    const DibSample dib = OddSample(c.data);
    PaintImage(witness, {.dib = &dib, .area = kOddArea});
    ExpectDifference(kSkippedPixels, witness);

    const RGBQUAD zero = dib.info()->bmiColors[0];
    const BrushPair ground = SolidPair(witness, RGB(zero.rgbRed, zero.rgbGreen, zero.rgbBlue));
    PaintTransfer(witness, {.area = {.width = 43, .height = 19}, .rop = PATCOPY, .brush = &ground});
    EXPECT_TRUE(ImageAgrees(witness, {.dib = &dib, .area = kOddArea}));
  }
}

TEST(GdiOddRunsDifference, EndsOfRowsAndOverlongLiteralsAreReadDifferently) {
  const std::pair<Difference, RunBytes> cases[] = {
      {kRowWithoutEnd, {4, 1, 4, 2, 4, 3, 0, 1}},
      {kOverlongLiteral, {0, 6, 1, 2, 3, 4, 0, 0, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1}},
  };
  for (const auto& [why, data] : cases) {
    const Witness witness;
    const DibSample dib = OddSample(data);
    PaintImage(witness, {.dib = &dib, .area = kOddArea});
    ExpectDifference(why, witness);
  }
}

TEST(GdiOddRunsDifference, TopDownRunsAreTaken) {
  const Witness witness;
  DibSample dib = OddSample({4, 1, 0, 0, 4, 2, 0, 0, 4, 3, 0, 1});
  dib.header()->biHeight = -3;
  const ImagePair pair{.dib = &dib, .area = kOddArea};
  EXPECT_EQ(1u, PaintLibraryImage(witness, pair));
  EXPECT_EQ(0, PaintPlatformImage(witness, pair));
  ExpectDifference(kTopDownRuns, witness);

  const Witness upright;
  const DibSample twin = OddSample({4, 3, 0, 0, 4, 2, 0, 0, 4, 1, 0, 1});
  EXPECT_TRUE(ImageAgrees(upright, {.dib = &twin, .area = kOddArea}));
  EXPECT_TRUE(BandShows(witness.device(), BandImage(upright.device())));
}

}  // namespace
}  // namespace qnv::test
