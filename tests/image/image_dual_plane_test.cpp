// Images on the dual-plane device: the color plane as on a plain band, the tag plane by operation, source and brush.
#include <gtest/gtest.h>

#include "image/image_cases.h"
#include "support/tag_plane.h"
#include "support/tag_rules.h"

namespace qnv::test {
namespace {

// White, black, color and nearly white pixels; painted at column 1 of a 6 x 2 band, each row twice.
constexpr const char* kImage = "deab";

DeviceOptions DualOptions() { return {.width = 6, .height = 2, .tagPlane = true}; }
DeviceOptions PlainOptions() { return {.width = 6, .height = 2}; }

constexpr ImagePlace kPlace{1, 0, 4, 2, 0, 0, 4, 1};

PlaneImage FilledTags(const TestDevice& device, uint32_t tag) {
  PlaneImage tags = UntouchedTags(device);
  tags.FillBytes(static_cast<uint8_t>(tag));
  return tags;
}

// All 256 indices from a plane of graphics and from a plane of image tags, with three brushes.
TEST(ImageDualPlane, EveryIndex) {
  const std::string image = kImage;
  const Dib dib = PictureDib(4, kImage, {});
  for (uint32_t brushColor : {0xFFFFFFu, 0x000000u, 0x3050A0u}) {
    for (bool startWithImage : {false, true}) {
      for (uint32_t index = 0; index < 256; ++index) {
        TestDevice device(DualOptions());
        TestDevice plain(PlainOptions());
        device.Clear();
        plain.Clear();
        if (startWithImage) {
          MixTags(&device);
          device.band().Fill(0xFF);
        }
        const PhysicalBrush brush = SolidBrush(device.handle(), brushColor);
        const ImageSetup setup{.rop = index << 16, .brush = &brush};
        PlaneImage expected = TagImage(device);
        for (uint32_t row = 0; row < 2; ++row) {
          for (uint32_t x = 0; x < 4; ++x) {
            const uint32_t source = ImageColors()[static_cast<std::size_t>(image[x] - 'a')];
            const uint32_t before = expected.Color(x + 1, row) & 0xFF;
            expected.SetColor(x + 1, row, Gray(ImageTagAfter(TagRuleOf(index), source, brushColor, before)));
          }
        }
        EXPECT_EQ(1u, Stretch(device, dib, kPlace, setup)) << std::hex << index;
        EXPECT_EQ(1u, Stretch(plain, dib, kPlace, setup)) << std::hex << index;
        EXPECT_TRUE(SameImage(expected, TagImage(device)))
            << "tags, index " << std::hex << index << ", brush " << brushColor
            << (startWithImage ? ", from image tags" : ", from a cleared plane");
        EXPECT_TRUE(SameImage(BandImage(plain), BandImage(device))) << "color, index " << std::hex << index;
        EXPECT_TRUE(device.FencesIntact());
      }
    }
  }
}

// A plain copy tags its clipped rectangle whole, also where the source does not reach.
TEST(ImageDualPlane, CopyTagsTheClippedRectangle) {
  DualPlaneDevice device({.width = 9, .height = 4, .left = 10, .top = 20});
  device.Clear();
  device.SetOrigin(10, 19);
  const Dib dib = PictureDib(4, kFourByThree, {.bitCount = 8});
  EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 7, 3, 1, 0, 7, 3}, {.clip = {-5, 1, 6, 9}}));
  PlaneImage tags = FilledTags(device, QNV_TAG_GRAPHICS);
  for (uint32_t row = 0; row < 2; ++row) {
    for (uint32_t column = 1; column < 6; ++column) tags.SetColor(column, row, Gray(QNV_TAG_IMAGE));
  }
  EXPECT_TRUE(SameImage(tags, TagImage(device)));
  PlaneImage colors = UntouchedBand(device);
  colors.FillBytes(0xFF);
  EXPECT_TRUE(PlaneIs(BandImage(device), colors, ImageInks(device),
                      ".fgh....."
                      ".jkl....."));
  EXPECT_TRUE(device.FencesIntact());
}

TEST(ImageDualPlane, RepeatedRowsAndDepths) {
  for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
    for (uint32_t rop : {SRCCOPY, 0x00CC0000u, NOTSRCCOPY}) {
      DualPlaneDevice device({.width = 9, .height = 5});
      TestDevice plain({.width = 9, .height = 5});
      device.Clear();
      plain.Clear();
      const Dib dib = PictureDib(4, kFourByThree, {.bitCount = depth});
      EXPECT_EQ(1u, Stretch(device, dib, {-1, 1, 8, 9, 0, 0, 4, 3}, {.rop = rop}));
      EXPECT_EQ(1u, Stretch(plain, dib, {-1, 1, 8, 9, 0, 0, 4, 3}, {.rop = rop}));
      PlaneImage tags = FilledTags(device, QNV_TAG_GRAPHICS);
      for (uint32_t row = 1; row < 5; ++row) {
        for (uint32_t column = 0; column < 7; ++column) tags.SetColor(column, row, Gray(QNV_TAG_IMAGE));
      }
      EXPECT_TRUE(SameImage(tags, TagImage(device))) << depth << " bits, rop " << std::hex << rop;
      EXPECT_TRUE(SameImage(BandImage(plain), BandImage(device))) << depth << " bits, rop " << std::hex << rop;
    }
  }
}

// The minimum tags what is not white; other extended codes tag the same and paint nothing.
TEST(ImageDualPlane, ExtendedCodes) {
  struct Case {
    const char* name;
    uint32_t rop;
    const char* colors;  // 6 x 2
  };
  const Case cases[] = {
      {"minimum", ROP_MINIMUM,
       "..eab."
       "..eab."},
      {"unknown", 0x02000000, "......"},
  };
  for (const Case& c : cases) {
    DualPlaneDevice device({.width = 6, .height = 2, .fill = 0xFF});
    device.Clear();
    const Dib dib = PictureDib(4, kImage, {});
    EXPECT_EQ(1u, Stretch(device, dib, kPlace, {.rop = c.rop})) << c.name;
    EXPECT_TRUE(BandIs(device, ImageInks(device), c.colors)) << c.name;
    EXPECT_TRUE(PlaneIs(TagImage(device), FilledTags(device, QNV_TAG_GRAPHICS), {{'3', Gray(QNV_TAG_IMAGE)}},
                        "..333."
                        "..333."))
        << c.name;
  }
}

// A brush that cannot be tagged refuses the transfer before anything is painted.
TEST(ImageDualPlane, RefusedTransfers) {
  PhysicalBrush brush{};
  brush.style = 4;
  for (uint32_t rop : {PATPAINT, 0x00A00000u, 0x00FA0000u, 0x000A0000u}) {
    DualPlaneDevice device({.width = 6, .height = 2});
    device.Clear();
    const PlaneImage colors = BandImage(device);
    const Dib dib = PictureDib(4, kImage, {});
    device.SetOrigin(1, 0);
    EXPECT_EQ(0u, Stretch(device, dib, {0, 0, 4, 2, 0, 0, 4, 1}, {.rop = rop, .brush = &brush})) << std::hex << rop;
    EXPECT_TRUE(SameImage(FilledTags(device, QNV_TAG_GRAPHICS), TagImage(device))) << std::hex << rop;
    EXPECT_TRUE(SameImage(colors, BandImage(device))) << std::hex << rop;
    // The origin is back: the next image lies where it says.
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 4, 1, 0, 0, 4, 1}));
    EXPECT_TRUE(
        PlaneIs(TagImage(device), FilledTags(device, QNV_TAG_GRAPHICS), {{'3', Gray(QNV_TAG_IMAGE)}}, ".3333."));
  }
}

// A device described with one byte a pixel has a color plane of that size, and nothing goes past it.
TEST(ImageDualPlane, DescribedWithAnotherDepth) {
  const Dib dib = PictureDib(4, kFourByThree, {});
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
  TestDevice device(DualOptions());
  device.Clear();
  const Dib dib = PictureDib(4, kImage, {});
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x0000FF};
  const DRAWMODE mode = MakeDrawMode();
  const int16_t line[4] = {0, 0, 2, 4};
  EXPECT_EQ(1u, Stretch(device, dib, kPlace));
  EXPECT_EQ(1u, QNVOutput(device.handle(), OS_SCANLINES, 2, line, &pen, nullptr, &mode, &kEverywhere) & 0xFFFF);
  EXPECT_TRUE(PlaneIs(TagImage(device), FilledTags(device, QNV_TAG_GRAPHICS), {{'3', Gray(QNV_TAG_IMAGE)}},
                      ".3..3."
                      ".3333."));
  device.Clear();
  EXPECT_TRUE(SameImage(FilledTags(device, QNV_TAG_GRAPHICS), TagImage(device)));
}

}  // namespace
}  // namespace qnv::test
