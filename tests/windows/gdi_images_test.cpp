// Images of every form beside the platform's StretchDIBits.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "support/random_bytes.h"
#include "support/transfer_model.h"
#include "windows/differences.h"
#include "windows/image_pair.h"
#include "windows/transfer_pair.h"

namespace qnv::test {
namespace {

constexpr int32_t kWidth = 29;
constexpr int32_t kHeight = 13;

constexpr RowOrder kOrders[] = {RowOrder::kBottomUp, RowOrder::kTopDown};

// Wine finds the entry of a gray table by five bits of each component.
bool MatchedByFiveBits(const Witness& witness, const DibForm& form) {
  return witness.shape().depth == 8 && form.bitCount > 8 && RunsUnderWine();
}

testing::AssertionResult Agrees(const Witness& witness, const DibForm& form) {
  return MatchedByFiveBits(witness, form) ? witness.SameWithin(7) : witness.Same();
}

class GdiImages : public testing::TestWithParam<DibForm> {};

TEST_P(GdiImages, WholeImagesAgreeInEveryOrderAndMirror) {
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    Witness witness({.depth = depth, .left = 100, .top = 50});
    for (RowOrder order : kOrders) {
      const DibSample dib(GetParam(), kWidth, kHeight, order, 7, depth == 8);
      for (unsigned mirror = 0; mirror < 16; ++mirror) {
        SCOPED_TRACE(std::to_string(depth) + " bits, mirror " + std::to_string(mirror));
        witness.Reset(mirror);
        PaintBoth(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, 103, 52), mirror)});
        ASSERT_TRUE(Agrees(witness, GetParam()));
      }
    }
  }
}

TEST_P(GdiImages, PartsOfImagesAgree) {
  Witness witness;
  RandomBytes random(3);
  const auto below = [&random](int32_t limit) {
    return static_cast<int32_t>(random.Below(static_cast<uint32_t>(limit)));
  };
  for (RowOrder order : kOrders) {
    const DibSample dib(GetParam(), kWidth, kHeight, order, 8);
    for (unsigned i = 0; i < 48; ++i) {
      ImageArea area{below(20) - 5, below(14) - 4, 0, 0, below(20), below(9), 0, 0};
      area.dstWidth = area.srcWidth = 1 + below(kWidth - area.srcX);
      area.dstHeight = area.srcHeight = 1 + below(kHeight - area.srcY);
      if (area.dstX + area.dstWidth <= 0 || area.dstY + area.dstHeight <= 0) continue;
      SCOPED_TRACE("case " + std::to_string(i));
      PaintBoth(witness, {.dib = &dib, .area = Mirrored(area, i % 16)});
      ASSERT_TRUE(witness.Same());
    }
  }
}

TEST_P(GdiImages, WholeFactorsAgree) {
  Witness witness({.width = 131, .height = 61});
  for (RowOrder order : kOrders) {
    const DibSample dib(GetParam(), kWidth, kHeight, order, 9);
    for (int32_t across : {1, 2, 3, 5}) {
      for (int32_t down : {1, 2, 4}) {
        ImageArea area = WholeImage(dib, 3, 2);
        area.dstWidth *= across;
        area.dstHeight *= down;
        for (unsigned mirror : {0u, 1u, 2u, 3u}) {
          PaintBoth(witness, {.dib = &dib, .area = Mirrored(area, mirror)});
          ASSERT_TRUE(witness.Same()) << across << " x " << down << ", mirror " << mirror;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryForm, GdiImages, testing::ValuesIn(kDibForms));

constexpr DibForm kPlainForm{"24 bits", 24};

TEST(GdiImageClips, AgreeAlsoInTheMiddleOfAnEnlargedPixel) {
  Witness witness({.width = 131, .height = 61});
  for (int32_t factor : {1, 2, 3}) {
    for (unsigned mirror : {0u, 1u, 2u, 3u}) {
      const DibSample dib(kPlainForm, kWidth, kHeight, RowOrder::kBottomUp, 7);
      for (int32_t left = 0; left < 8; ++left) {
        for (int32_t top = 0; top < 6; ++top) {
          const BandRect clip{3 + left, 2 + top, 3 + 27 * factor - top, 2 + 12 * factor - left / 2};
          PaintBoth(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, 3, 2, factor), mirror), .clip = clip});
          ASSERT_TRUE(witness.Same()) << Describe(clip) << ", factor " << factor << ", mirror " << mirror;
        }
      }
    }
  }
}

TEST(GdiImageClips, ImagesThatStickOutOfTheBandAgree) {
  Witness witness;
  const DibSample dib(kPlainForm, kWidth, kHeight, RowOrder::kBottomUp, 7);
  for (int32_t factor : {1, 3}) {
    for (int32_t x = -25 * factor; x < 43; x += 9) {
      for (int32_t y = -12 * factor; y < 19; y += 5) {
        for (unsigned mirror : {0u, 3u}) {
          PaintBoth(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, x, y, factor), mirror)});
          ASSERT_TRUE(witness.Same()) << x << ", " << y << ", factor " << factor << ", mirror " << mirror;
        }
      }
    }
  }
}

TEST(GdiImageRops, EveryCodeAgrees) {
  Witness witness({.width = 61, .height = 40});
  const DibSample dib(kPlainForm, kWidth, kHeight, RowOrder::kBottomUp, 7);
  const BrushPair brushes[] = {SolidPair(witness, 0x00405060), ColorPatternPair(witness, 3)};
  for (const BrushPair& brush : brushes) {
    for (uint32_t i = 0; i < 256; ++i) {
      const uint8_t index = static_cast<uint8_t>(i);
      const bool threeOperands = IndexUsesPattern(index) && IndexUsesSource(index);
      const bool tiled = brush.library.style != BS_SOLID;
      for (int32_t factor : {1, 2}) {
        // See kPatternWithSource.
        const bool aligned = tiled && threeOperands && RunsUnderWine();
        const ImageArea area = aligned ? WholeImage(dib, 0, 8, factor) : WholeImage(dib, 3, 5, factor);
        witness.Reset(i);
        PaintBoth(witness, {.dib = &dib, .area = area, .rop = CodeOf(index), .brush = &brush});
        ASSERT_TRUE(witness.Same()) << brush.name << ", index " << i << ", factor " << factor;
      }
    }
  }
}

TEST(GdiImageRops, TheCommonCodesAgreeForEveryForm) {
  Witness witness;
  for (const DibForm& form : kDibForms) {
    for (RowOrder order : kOrders) {
      const DibSample dib(form, kWidth, kHeight, order, 7);
      for (uint32_t rop : {SRCPAINT, SRCAND, SRCINVERT, SRCERASE, NOTSRCCOPY, NOTSRCERASE, MERGEPAINT}) {
        PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2), .rop = rop});
        ASSERT_TRUE(witness.Same()) << form.name << std::hex << rop;
      }
    }
  }
}

TEST(GdiImageFields, WiderAndNarrowerFieldsAgree) {
  const uint32_t masks[][3] = {{0x00E0, 0x001C, 0x0003}, {0x3F00, 0x00C0, 0x003F}, {0xFF00, 0x00F0, 0x000F},
                               {0x7000, 0x0700, 0x0070}, {0xFC00, 0x03F0, 0x000F}, {0x007F, 0x3F80, 0xC000},
                               {0x001F, 0x03E0, 0x7C00}, {0x3F80, 0x007F, 0xC000}};
  Witness witness;
  for (const auto& mask : masks) {
    const DibForm form{"fields", 16, BI_BITFIELDS, {mask[0], mask[1], mask[2]}};
    const DibSample dib(form, kWidth, kHeight, RowOrder::kBottomUp, 7);
    PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
    EXPECT_TRUE(witness.Same()) << std::hex << mask[0] << ", " << mask[1] << ", " << mask[2];
  }
}

TEST(GdiImageFactors, BrokenFactorsAgreeWithWine) {
  if (!RunsUnderWine()) GTEST_SKIP() << kBrokenFactor.name << ": no platform promises which pixels are doubled";
  Witness witness({.width = 131, .height = 61});
  const DibSample dib(kPlainForm, kWidth, kHeight, RowOrder::kBottomUp, 7);
  for (int32_t width = kWidth; width < 3 * kWidth; width += 2) {
    for (int32_t height : {13, 14, 17, 20, 25, 31, 38}) {
      PaintBoth(witness, {.dib = &dib, .area = {3, 2, width, height, 0, 0, kWidth, kHeight}});
      EXPECT_TRUE(witness.Same()) << width << " x " << height;
    }
  }
}

}  // namespace
}  // namespace qnv::test
