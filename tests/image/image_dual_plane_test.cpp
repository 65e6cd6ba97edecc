// Images on the dual-plane device: the color plane as on a plain band, the tag plane by operation, source and brush.
#include <gtest/gtest.h>

#include "image/image_cases.h"
#include "support/tag_plane.h"
#include "support/tag_rules.h"

namespace qnv::test {
namespace {

constexpr DeviceOptions kDualOptions{.width = 7, .height = 2, .tagPlane = true, .fill = 0xFF};

// Colors, white and black, from column 1 on, the row twice.
constexpr ImagePlace kPlace{1, 0, 5, 2, 0, 0, 5, 1};
Dib FiveColors() { return LetterDib({5, 1}, {}); }

const PictureInks kImageTag = {{'3', Gray(QNV_TAG_IMAGE)}};

// The tag plane is all graphics, as a clear leaves it, but for the picture's '3'.
testing::AssertionResult ImageTagsAre(const TestDevice& device, std::string_view picture) {
  PlaneImage tags = TagImage(device);
  tags.FillBytes(QNV_TAG_GRAPHICS);
  return TagsShow(device, Drawn(tags, kImageTag, picture));
}

// All 256 indices from a plane of graphics and from a plane of image tags, with three brushes.
TEST(ImageDualPlane, EveryIndex) {
  const Dib dib = FiveColors();
  for (uint32_t brushColor : {0xFFFFFFu, 0x000000u, 0x3050A0u}) {
    for (bool mixed : {false, true}) {
      for (uint32_t index = 0; index < 256; ++index) {
        SCOPED_TRACE(testing::Message() << "index " << std::hex << index << ", brush " << brushColor
                                        << (mixed ? ", from mixed tags" : ", from a cleared plane"));
        TestDevice device(kDualOptions);
        TestDevice plain({.width = 7, .height = 2, .fill = 0xFF});
        device.Clear();
        if (mixed) MixTags(&device);
        const PhysicalBrush brush = SolidBrush(device.handle(), brushColor);
        const ImageSetup setup{.rop = index << 16, .brush = &brush};
        const PlaneImage expected = Changed(
            device, TagImage(device), ".abcde", "00", [&](uint32_t source, uint32_t before, uint32_t, uint32_t) {
              return Gray(ImageTagAfter(TagRuleOf(index), source, brushColor, before & 0xFF));
            });
        EXPECT_EQ(1u, Stretch(device, dib, kPlace, setup));
        EXPECT_EQ(1u, Stretch(plain, dib, kPlace, setup));
        EXPECT_TRUE(TagsShow(device, expected));
        EXPECT_TRUE(BandShows(device, BandImage(plain)));
      }
    }
  }
}

// A plain copy tags its clipped rectangle whole, also where the source does not reach.
TEST(ImageDualPlane, CopyTagsTheClippedRectangle) {
  DualPlaneDevice device({.width = 9, .height = 4, .left = 10, .top = 20});
  device.Clear();
  device.SetOrigin(10, 19);
  const Dib dib = PictureDib(4, "abcdefghijkl", {.bitCount = 8});
  EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 7, 3, 1, 0, 7, 3}, {.clip = {-5, 1, 6, 9}}));
  EXPECT_TRUE(ImageTagsAre(device, ".33333... .33333..."));
  PlaneImage colors = UntouchedBand(device);
  colors.FillBytes(0xFF);
  EXPECT_TRUE(PlaneIs(BandImage(device), colors, ImageInks(device), ".fgh..... .jkl....."));
}

TEST(ImageDualPlane, RepeatedRowsAndDepths) {
  for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
    for (uint32_t rop : {SRCCOPY, kCopyByTransfer, NOTSRCCOPY}) {
      DualPlaneDevice device({.width = 9, .height = 5});
      TestDevice plain({.width = 9, .height = 5});
      device.Clear();
      plain.Clear();
      const Dib dib = LetterDib({4, 3}, {.bitCount = depth});
      EXPECT_EQ(1u, Stretch(device, dib, {-1, 1, 8, 9, 0, 0, 4, 3}, {.rop = rop}));
      EXPECT_EQ(1u, Stretch(plain, dib, {-1, 1, 8, 9, 0, 0, 4, 3}, {.rop = rop}));
      EXPECT_TRUE(ImageTagsAre(device, "......... 3333333.. 3333333.. 3333333.. 3333333.."))
          << depth << " bits, rop " << std::hex << rop;
      EXPECT_TRUE(BandShows(device, BandImage(plain))) << depth << " bits, rop " << std::hex << rop;
    }
  }
}

// The minimum tags what is not white; other extended codes tag the same and paint nothing.
TEST(ImageDualPlane, ExtendedCodes) {
  for (uint32_t rop : {ROP_MINIMUM, 0x02000000u}) {
    TestDevice device(kDualOptions);
    device.Clear();
    EXPECT_EQ(1u, Stretch(device, FiveColors(), kPlace, {.rop = rop}));
    EXPECT_TRUE(BandIs(device, ImageInks(device), rop == ROP_MINIMUM ? ".abcde. .abcde." : "......."));
    EXPECT_TRUE(ImageTagsAre(device, ".333.3. .333.3."));
  }
}

// A brush that cannot be tagged refuses the transfer before anything is painted.
TEST(ImageDualPlane, RefusedTransfers) {
  PhysicalBrush brush{};
  brush.style = 4;
  for (uint32_t rop : {PATPAINT, 0x00A00000u, 0x00FA0000u, 0x000A0000u}) {
    SCOPED_TRACE(rop);
    TestDevice device(kDualOptions);
    device.Clear();
    device.SetOrigin(1, 0);
    EXPECT_EQ(0u, Stretch(device, FiveColors(), {0, 0, 5, 2, 0, 0, 5, 1}, {.rop = rop, .brush = &brush}));
    EXPECT_TRUE(ImageTagsAre(device, "......."));
    EXPECT_TRUE(BandUntouched(device));
    // The origin is back: the next image lies where it says.
    EXPECT_EQ(1u, Stretch(device, FiveColors(), {0, 0, 4, 1, 0, 0, 4, 1}));
    EXPECT_TRUE(ImageTagsAre(device, ".3333.."));
  }
}

// A device described with one byte a pixel has a color plane of that size, and nothing goes past it.
TEST(ImageDualPlane, DescribedWithAnotherDepth) {
  const Dib dib = LetterDib({4, 3}, {});
  for (uint16_t depth : {uint16_t{8}, uint16_t{16}}) {
    for (uint32_t rop : {SRCCOPY, SRCPAINT, NOTSRCCOPY, ROP_MINIMUM}) {
      // By source, only 24-bit rows can be tagged: such transfers are refused here.
      const bool bySource = rop == SRCPAINT || rop == ROP_MINIMUM;
      for (const ImagePlace& place : {ImagePlace{3, 1, 2, 3, 0, 0, 4, 3}, ImagePlace{-3, -2, 30, 20, 0, 0, 4, 3}}) {
        DualPlaneDevice device({.bitsPerPixel = depth, .width = 19, .height = 5});
        EXPECT_EQ(bySource ? 0u : 1u, Stretch(device, dib, place, {.rop = rop}));
        EXPECT_TRUE(device.FencesIntact()) << depth << " bits, rop " << std::hex << rop;
      }
    }
  }
}

// From the first image on graphics are tagged again, until the next clear.
TEST(ImageDualPlane, GraphicsAfterAnImage) {
  TestDevice device(kDualOptions);
  device.Clear();
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x0000FF};
  const DRAWMODE mode = MakeDrawMode();
  const int16_t line[4] = {0, 0, 2, 4};
  EXPECT_EQ(1u, Stretch(device, FiveColors(), kPlace));
  EXPECT_EQ(1u, QNVOutput(device.handle(), OS_SCANLINES, 2, line, &pen, nullptr, &mode, &kEverywhere) & 0xFFFF);
  EXPECT_TRUE(ImageTagsAre(device, ".3..33. .33333."));
  device.Clear();
  EXPECT_TRUE(ImageTagsAre(device, "......."));
}

}  // namespace
}  // namespace qnv::test
