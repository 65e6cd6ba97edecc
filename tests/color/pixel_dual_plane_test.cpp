// Single pixels on the dual-plane device: the color plane as ever, the tag only where ink can replace what was there.
#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "support/plane_image.h"
#include "support/tag_plane.h"
#include "support/tag_rules.h"
#include "support/test_device.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

// Codes that are none of the sixteen wrap around, and always mark.
std::vector<Rop2Marking> AllCodes() {
  std::vector<Rop2Marking> codes(std::begin(kRop2Markings), std::end(kRop2Markings));
  codes.push_back({"0", 0, Marking::kAlways});
  codes.push_back({"17", 17, Marking::kAlways});
  return codes;
}

struct ColorCase {
  const char* name;
  uint32_t color;
};

constexpr ColorCase kColors[] = {
    {"white", 0x00FFFFFF},
    {"black", 0},
    {"nearly white", 0x00FFFFFE},
    {"nearly black", 0x00000001},
    // Compared whole: with a top byte neither is the paper's color any more.
    {"white with a top byte", 0x01FFFFFF},
    {"black with a top byte", 0x01000000},
};

TEST(PixelDualPlane, TagRuleOfEveryOperation) {
  for (const Rop2Marking& r : AllCodes()) {
    for (const ColorCase& c : kColors) {
      SCOPED_TRACE(std::string(r.name) + ", " + c.name);
      DualPlaneDevice device({.width = 5, .height = 3});
      MakeTagsMixed(&device, static_cast<uint64_t>(r.code));
      PlaneImage band = BandImage(device);
      PlaneImage tags = TagImage(device);
      DRAWMODE mode = MakeDrawMode();
      mode.Rop2 = r.code;
      EXPECT_EQ(0u, QNVPixel(device.handle(), 3, 1, c.color, &mode, &kEverywhere));
      const uint8_t index = static_cast<uint8_t>(((r.code - 1) & 15) * 0x11);
      const PixelBytes pen = BandBytesOf(c.color);
      const uint8_t* old = band.At(3, 1);
      band.Set(
          3, 1,
          {Rop3Byte(index, 0, pen[0], old[0]), Rop3Byte(index, 0, pen[1], old[1]), Rop3Byte(index, 0, pen[2], old[2])});
      if (Marks(r.marking, c.color)) tags.Set(3, 1, {1, 0, 0});
      EXPECT_TRUE(BandShows(device, band));
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

TEST(PixelDualPlane, ReadingTagsNothing) {
  DualPlaneDevice device({.width = 5, .height = 3});
  MakeTagsMixed(&device, 4);
  PlaneImage band = BandImage(device);
  band.Set(4, 2, {0x11, 0x22, 0x33});
  LoadBand(&device, band);
  const PlaneImage tags = TagImage(device);
  EXPECT_EQ(0x00332211u, QNVPixel(device.handle(), 4, 2, 0x00123456, nullptr, &kEverywhere));
  EXPECT_TRUE(BandShows(device, band));
  EXPECT_TRUE(TagsShow(device, tags));
}

TEST(PixelDualPlane, UniformPlaneIsLeftAlone) {
  DualPlaneDevice device({.width = 5, .height = 3});
  device.Clear();
  PlaneImage band = BandImage(device);
  const PlaneImage tags = TagImage(device);
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(0u, QNVPixel(device.handle(), 4, 2, 0x00010203, &mode, &kEverywhere));
  band.Set(4, 2, {1, 2, 3});
  EXPECT_TRUE(BandShows(device, band));
  EXPECT_TRUE(TagsShow(device, tags));
}

struct ClipCase {
  const char* name;
  int32_t x;
  int32_t y;
  BandRect clip;
  bool inside;
};

// Band of 5 x 3 at (10, 20), origin (4, 6).
constexpr ClipCase kClips[] = {
    {"top left", 6, 14, kEverywhere, true},
    {"bottom right", 10, 16, kEverywhere, true},
    {"left of the band", 5, 14, kEverywhere, false},
    {"above the band", 6, 13, kEverywhere, false},
    {"right of the band", 11, 16, kEverywhere, false},
    {"below the band", 10, 17, kEverywhere, false},
    {"clip of this one pixel", 8, 15, {8, 15, 9, 16}, true},
    {"clip ends before it", 8, 15, {0, 0, 8, 16}, false},
    {"clip begins after it", 8, 15, {9, 0, 20, 20}, false},
    {"clip ends above it", 8, 15, {0, 0, 20, 15}, false},
    {"clip begins below it", 8, 15, {0, 16, 20, 20}, false},
};

TEST(PixelDualPlane, BothPlanesAreClippedAlike) {
  for (const ClipCase& c : kClips) {
    SCOPED_TRACE(c.name);
    DualPlaneDevice device({.width = 5, .height = 3, .left = 10, .top = 20});
    MakeTagsMixed(&device, 5);
    device.SetOrigin(4, 6);
    PlaneImage band = BandImage(device);
    PlaneImage tags = TagImage(device);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(0u, QNVPixel(device.handle(), c.x, c.y, 0x00010203, &mode, &c.clip));
    if (c.inside) {
      band.Set(c.x - 6, c.y - 14, {1, 2, 3});
      tags.Set(c.x - 6, c.y - 14, {1, 0, 0});
    }
    EXPECT_TRUE(BandShows(device, band));
    EXPECT_TRUE(TagsShow(device, tags));
  }
}

TEST(PixelDualPlane, NullClipIsRefused) {
  DualPlaneDevice device({.width = 5, .height = 3});
  MakeTagsMixed(&device, 6);
  const PlaneImage band = BandImage(device);
  const PlaneImage tags = TagImage(device);
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(0u, QNVPixel(device.handle(), 1, 1, 0x00010203, &mode, nullptr));
  EXPECT_EQ(0u, QNVPixel(device.handle(), 1, 1, 0, nullptr, nullptr));
  EXPECT_TRUE(BandShows(device, band));
  EXPECT_TRUE(TagsShow(device, tags));
}

}  // namespace
}  // namespace qnv::test
