// Images on the dual-plane device: the colour plane as on a plain band, the tag plane by operation, source and brush.
#include <gtest/gtest.h>

#include "image/image_cases.h"
#include "output/dual_plane.h"

namespace qnv::test {
namespace {

// White, black, colour and nearly white pixels; painted at column 1 of a 6 x 2 band, each row twice.
constexpr const char* kImage = "deab";

DeviceOptions DualOptions() { return {.width = 6, .height = 2, .tagPlane = true}; }
DeviceOptions PlainOptions() { return {.width = 6, .height = 2}; }

constexpr ImagePlace kPlace{1, 0, 4, 2, 0, 0, 4, 1};

// What an index, or its inverse, does to the tags.
enum class Action {
  kFillImage,     // every pixel is an image's
  kFillGraphics,  // every pixel is graphics
  kNothing,
  kImageUnlessWhite,  // by the source pixel
  kImageUnlessBlack,
  kGraphicsUnlessWhite,
  kGraphicsUnlessBlack,
  kBrushUnlessWhite,  // graphics, by the brush
  kBrushUnlessBlack,
  kPatPaint,  // graphics by the brush unless black, then image by the source unless white
};

Action ActionOf(uint32_t index) {
  switch (index < 0x80 ? ~index & 0xFF : index) {
    case 0x88:
    case 0xBB: return Action::kImageUnlessWhite;
    case 0x99:
    case 0xA5:
    case 0xAA: return Action::kNothing;
    case 0xA0:
    case 0xAF: return Action::kBrushUnlessWhite;
    case 0xB8: return Action::kGraphicsUnlessWhite;
    case 0xDD:
    case 0xEE: return Action::kImageUnlessBlack;
    case 0xE2:
    case 0xEA: return Action::kGraphicsUnlessBlack;
    case 0xF0: return Action::kFillGraphics;
    case 0xF5:
    case 0xFA: return Action::kBrushUnlessBlack;
    case 0xFB: return Action::kPatPaint;
    default: return Action::kFillImage;
  }
}

uint32_t TagAfter(Action action, uint32_t source, uint32_t brush, uint32_t before) {
  constexpr uint32_t kWhite = 0xFFFFFF;
  switch (action) {
    case Action::kFillImage: return QNV_TAG_IMAGE;
    case Action::kFillGraphics: return QNV_TAG_GRAPHICS;
    case Action::kNothing: return before;
    case Action::kImageUnlessWhite: return source != kWhite ? QNV_TAG_IMAGE : before;
    case Action::kImageUnlessBlack: return source != 0 ? QNV_TAG_IMAGE : before;
    case Action::kGraphicsUnlessWhite: return source != kWhite ? QNV_TAG_GRAPHICS : before;
    case Action::kGraphicsUnlessBlack: return source != 0 ? QNV_TAG_GRAPHICS : before;
    case Action::kBrushUnlessWhite: return brush != kWhite ? QNV_TAG_GRAPHICS : before;
    case Action::kBrushUnlessBlack: return brush != 0 ? QNV_TAG_GRAPHICS : before;
    case Action::kPatPaint:
      if (source != kWhite) return QNV_TAG_IMAGE;
      return brush != 0 ? QNV_TAG_GRAPHICS : before;
  }
  return before;
}

PicturePlane FilledTags(const TestDevice& device, uint32_t tag) {
  PicturePlane tags = UntouchedTags(device);
  tags.bytes.assign(tags.bytes.size(), static_cast<uint8_t>(tag));
  return tags;
}

// All 256 indices from a plane of graphics and from a plane of image tags, with three brushes.
TEST(ImageDualPlane, EveryIndex) {
  const std::string image = kImage;
  const Dib dib = PictureDib(4, kImage, {});
  for (uint32_t brushColour : {0xFFFFFFu, 0x000000u, 0x3050A0u}) {
    for (bool startWithImage : {false, true}) {
      for (uint32_t index = 0; index < 256; ++index) {
        TestDevice device(DualOptions());
        TestDevice plain(PlainOptions());
        device.Clear();
        plain.Clear();
        if (startWithImage) {
          TagWholeBandAsImage(device);
          device.band().Fill(0xFF);
        }
        const PhysicalBrush brush = SolidBrush(device.handle(), brushColour);
        const ImageSetup setup{.rop = index << 16, .brush = &brush};
        PicturePlane expected = CurrentTags(device);
        for (uint32_t row = 0; row < 2; ++row) {
          for (uint32_t x = 0; x < 4; ++x) {
            const uint32_t source = ImageColours()[static_cast<std::size_t>(image[x] - 'a')];
            const uint32_t before = expected.Get(x + 1, row) & 0xFF;
            expected.Put(x + 1, row, Gray(TagAfter(ActionOf(index), source, brushColour, before)));
          }
        }
        EXPECT_EQ(1u, Stretch(device, dib, kPlace, setup)) << std::hex << index;
        EXPECT_EQ(1u, Stretch(plain, dib, kPlace, setup)) << std::hex << index;
        EXPECT_TRUE(SamePlane(expected, CurrentTags(device)))
            << "tags, index " << std::hex << index << ", brush " << brushColour
            << (startWithImage ? ", from image tags" : ", from a cleared plane");
        EXPECT_TRUE(SamePlane(CurrentBand(plain), CurrentBand(device))) << "colour, index " << std::hex << index;
        EXPECT_TRUE(device.FencesIntact());
      }
    }
  }
}

// A plain copy tags its clipped rectangle whole, also where the source does not reach.
TEST(ImageDualPlane, CopyTagsTheClippedRectangle) {
  TestDevice device({.width = 9, .height = 4, .left = 10, .top = 20, .tagPlane = true});
  device.Clear();
  device.SetOrigin(10, 19);
  const Dib dib = PictureDib(4, kFourByThree, {.bitCount = 8});
  EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 7, 3, 1, 0, 7, 3}, {.clip = {-5, 1, 6, 9}}));
  PicturePlane tags = FilledTags(device, QNV_TAG_GRAPHICS);
  for (uint32_t row = 0; row < 2; ++row) {
    for (uint32_t column = 1; column < 6; ++column) tags.Put(column, row, Gray(QNV_TAG_IMAGE));
  }
  EXPECT_TRUE(SamePlane(tags, CurrentTags(device)));
  PicturePlane colours = UntouchedBand(device);
  colours.bytes.assign(colours.bytes.size(), 0xFF);
  EXPECT_TRUE(PlaneIs(CurrentBand(device), colours, ImageInks(device),
                      ".fgh....."
                      ".jkl....."
                      "........."
                      "........."));
  EXPECT_TRUE(device.FencesIntact());
}

TEST(ImageDualPlane, RepeatedRowsAndDepths) {
  for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
    for (uint32_t rop : {SRCCOPY, 0x00CC0000u, NOTSRCCOPY}) {
      TestDevice device({.width = 9, .height = 5, .tagPlane = true});
      TestDevice plain({.width = 9, .height = 5});
      device.Clear();
      plain.Clear();
      const Dib dib = PictureDib(4, kFourByThree, {.bitCount = depth});
      EXPECT_EQ(1u, Stretch(device, dib, {-1, 1, 8, 9, 0, 0, 4, 3}, {.rop = rop}));
      EXPECT_EQ(1u, Stretch(plain, dib, {-1, 1, 8, 9, 0, 0, 4, 3}, {.rop = rop}));
      PicturePlane tags = FilledTags(device, QNV_TAG_GRAPHICS);
      for (uint32_t row = 1; row < 5; ++row) {
        for (uint32_t column = 0; column < 7; ++column) tags.Put(column, row, Gray(QNV_TAG_IMAGE));
      }
      EXPECT_TRUE(SamePlane(tags, CurrentTags(device))) << depth << " bits, rop " << std::hex << rop;
      EXPECT_TRUE(SamePlane(CurrentBand(plain), CurrentBand(device))) << depth << " bits, rop " << std::hex << rop;
    }
  }
}

// The minimum tags what is not white; other extended codes tag the same and paint nothing.
TEST(ImageDualPlane, ExtendedCodes) {
  struct Case {
    const char* name;
    uint32_t rop;
    const char* colours;  // 6 x 2
  };
  const Case cases[] = {
      {"minimum", ROP_MINIMUM,
       "..eab."
       "..eab."},
      {"unknown", 0x02000000,
       "......"
       "......"},
  };
  for (const Case& c : cases) {
    TestDevice device({.width = 6, .height = 2, .tagPlane = true, .fill = 0xFF});
    device.Clear();
    const Dib dib = PictureDib(4, kImage, {});
    EXPECT_EQ(1u, Stretch(device, dib, kPlace, {.rop = c.rop})) << c.name;
    EXPECT_TRUE(BandIs(device, ImageInks(device), c.colours)) << c.name;
    EXPECT_TRUE(PlaneIs(CurrentTags(device), FilledTags(device, QNV_TAG_GRAPHICS), {{'3', Gray(QNV_TAG_IMAGE)}},
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
    TestDevice device({.width = 6, .height = 2, .tagPlane = true});
    device.Clear();
    const PicturePlane colours = CurrentBand(device);
    const Dib dib = PictureDib(4, kImage, {});
    device.SetOrigin(1, 0);
    EXPECT_EQ(0u, Stretch(device, dib, {0, 0, 4, 2, 0, 0, 4, 1}, {.rop = rop, .brush = &brush})) << std::hex << rop;
    EXPECT_TRUE(SamePlane(FilledTags(device, QNV_TAG_GRAPHICS), CurrentTags(device))) << std::hex << rop;
    EXPECT_TRUE(SamePlane(colours, CurrentBand(device))) << std::hex << rop;
    // The origin is back: the next image lies where it says.
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 4, 1, 0, 0, 4, 1}));
    EXPECT_TRUE(PlaneIs(CurrentTags(device), FilledTags(device, QNV_TAG_GRAPHICS), {{'3', Gray(QNV_TAG_IMAGE)}},
                        ".3333."
                        "......"));
  }
}

// A device described with one byte a pixel has a colour plane of that size, and nothing goes past it.
TEST(ImageDualPlane, DescribedWithAnotherDepth) {
  const Dib dib = PictureDib(4, kFourByThree, {});
  for (uint16_t depth : {uint16_t{8}, uint16_t{16}}) {
    for (uint32_t rop : {SRCCOPY, SRCPAINT, NOTSRCCOPY, ROP_MINIMUM}) {
      // By source, only 24-bit rows can be tagged: such transfers are refused here.
      const bool bySource = rop == SRCPAINT || rop == ROP_MINIMUM;
      for (const ImagePlace& place : {ImagePlace{3, 1, 2, 3, 0, 0, 4, 3}, ImagePlace{-3, -2, 30, 20, 0, 0, 4, 3}}) {
        TestDevice device({.bitsPerPixel = depth, .width = 19, .height = 5, .tagPlane = true});
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
  EXPECT_TRUE(PlaneIs(CurrentTags(device), FilledTags(device, QNV_TAG_GRAPHICS), {{'3', Gray(QNV_TAG_IMAGE)}},
                      ".3..3."
                      ".3333."));
  device.Clear();
  EXPECT_TRUE(SamePlane(FilledTags(device, QNV_TAG_GRAPHICS), CurrentTags(device)));
}

}  // namespace
}  // namespace qnv::test
