// The tag classes as images reach them: where a class takes the caller's tag an image writes 3, elsewhere it writes 1.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/tag_plane.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr uint32_t kBlack = 0;
constexpr uint32_t kRed = 0x000000FF;
constexpr uint8_t kOld = kOldTag;

struct Case {
  const char* name;
  uint32_t rop;
  uint32_t brush;
  std::array<uint8_t, 4> tags;  // of a white, a black, a red and a gray pixel
};

constexpr Case kCases[] = {
    {"SRCCOPY", SRCCOPY, kRed, {3, 3, 3, 3}},
    {"SRCCOPY's index in another code", 0x00CC0000, kRed, {3, 3, 3, 3}},
    {"NOTSRCCOPY", NOTSRCCOPY, kRed, {3, 3, 3, 3}},
    {"BLACKNESS", BLACKNESS, kRed, {3, 3, 3, 3}},
    {"WHITENESS", WHITENESS, kRed, {3, 3, 3, 3}},
    {"MERGECOPY", MERGECOPY, kRed, {3, 3, 3, 3}},
    {"all three, exclusive-or", 0x00960169, kRed, {3, 3, 3, 3}},
    {"SRCAND", SRCAND, kRed, {kOld, 3, 3, 3}},
    {"inverse of SRCAND", 0x007700E6, kRed, {kOld, 3, 3, 3}},
    {"MERGEPAINT", MERGEPAINT, kRed, {kOld, 3, 3, 3}},
    {"SRCERASE", SRCERASE, kRed, {kOld, 3, 3, 3}},
    {"SRCPAINT", SRCPAINT, kRed, {3, kOld, 3, 3}},
    {"NOTSRCERASE", NOTSRCERASE, kRed, {3, kOld, 3, 3}},
    {"source or not destination", 0x00DD0228, kRed, {3, kOld, 3, 3}},
    {"its inverse", 0x00220326, kRed, {3, kOld, 3, 3}},
    {"SRCINVERT", SRCINVERT, kRed, {kOld, kOld, kOld, kOld}},
    {"its inverse", 0x00990066, kRed, {kOld, kOld, kOld, kOld}},
    {"PATINVERT", PATINVERT, kRed, {kOld, kOld, kOld, kOld}},
    {"DSTINVERT", DSTINVERT, kRed, {kOld, kOld, kOld, kOld}},
    {"destination", 0x00AA0029, kRed, {kOld, kOld, kOld, kOld}},
    {"PATCOPY", PATCOPY, kRed, {1, 1, 1, 1}},
    {"not pattern", 0x000F0001, kBlack, {1, 1, 1, 1}},
    {"destination and pattern", 0x00A000C9, kRed, {1, 1, 1, 1}},
    {"destination and pattern, white", 0x00A000C9, kWhite, {kOld, kOld, kOld, kOld}},
    {"destination or not pattern", 0x00AF0229, kRed, {1, 1, 1, 1}},
    {"destination or not pattern, white", 0x00AF0229, kWhite, {kOld, kOld, kOld, kOld}},
    {"destination or pattern", 0x00FA0089, kRed, {1, 1, 1, 1}},
    {"destination or pattern, black", 0x00FA0089, kBlack, {kOld, kOld, kOld, kOld}},
    {"pattern or not destination", 0x00F50225, kWhite, {1, 1, 1, 1}},
    {"pattern or not destination, black", 0x00F50225, kBlack, {kOld, kOld, kOld, kOld}},
    {"source picks the destination", 0x00B8074A, kRed, {kOld, 1, 1, 1}},
    {"its inverse", 0x004703AA, kRed, {kOld, 1, 1, 1}},
    {"source picks the pattern", 0x00E20746, kRed, {1, kOld, 1, 1}},
    {"its inverse", 0x001D0000, kRed, {1, kOld, 1, 1}},
    {"destination or both", 0x00EA02E9, kRed, {1, kOld, 1, 1}},
    {"PATPAINT", PATPAINT, kRed, {1, 3, 3, 3}},
    {"PATPAINT, black brush", PATPAINT, kBlack, {kOld, 3, 3, 3}},
    {"inverse of PATPAINT", 0x00040000, kRed, {1, 3, 3, 3}},
    // Extended codes are tagged as SRCAND, whatever they paint.
    {"minimum", ROP_MINIMUM, kRed, {kOld, 3, 3, 3}},
    {"an extended code that paints nothing", 0x02000000, kRed, {kOld, 3, 3, 3}},
};

// Two equal rows of four pixels: white, black, red, gray; blue, green and red in memory.
constexpr uint8_t kPixels[24] = {0xFF, 0xFF, 0xFF, 0, 0, 0, 0x00, 0x00, 0xFF, 0x80, 0x80, 0x80,
                                 0xFF, 0xFF, 0xFF, 0, 0, 0, 0x00, 0x00, 0xFF, 0x80, 0x80, 0x80};

uint32_t PaintImage(const TestDevice& device, int32_t x, int32_t y, uint32_t rop, const PhysicalBrush& brush,
                    const BandRect& clip) {
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = 4;
  header.biHeight = 2;
  header.biPlanes = 1;
  header.biBitCount = 24;
  const DRAWMODE mode = MakeDrawMode();
  return QNVStretchDIBits(device.handle(), 0, x, y, 4, 2, 0, 0, 4, 2, kPixels, &header, nullptr, rop, &brush, &mode,
                          &clip) &
         0xFFFF;
}

PhysicalBrush Solid(uint32_t color) {
  PhysicalBrush brush{};
  brush.hatchScale[0] = brush.hatchScale[1] = 1;
  brush.colour = color;
  return brush;
}

TEST(TagImages, EveryClass) {
  for (bool uniform : {false, true}) {
    for (const Case& c : kCases) {
      SCOPED_TRACE(std::string(c.name) + (uniform ? ", uniform plane" : ""));
      DualPlaneDevice device({.width = 9, .height = 5, .left = 20, .top = 10});
      TestDevice plain({.width = 9, .height = 5, .left = 20, .top = 10});
      if (uniform) {
        device.tags()->Fill(kOldTag);
      } else {
        MakeTagsMixed(&device, 1);
      }
      LoadBand(&plain, BandImage(device));
      const PhysicalBrush brush = Solid(c.brush);
      PlaneImage tags = TagImage(device);
      // An image ends the uniform state before any tag is decided on, so both starts give the same tags.
      EXPECT_EQ(1u, PaintImage(device, 23, 11, c.rop, brush, kEverywhere));
      EXPECT_EQ(1u, PaintImage(plain, 23, 11, c.rop, brush, kEverywhere));
      for (int32_t row = 1; row < 3; ++row) {
        for (int32_t i = 0; i < 4; ++i) tags.Set(3 + i, row, {c.tags[static_cast<std::size_t>(i)], 0, 0});
      }
      EXPECT_TRUE(TagsShow(device, tags));
      EXPECT_TRUE(BandShows(device, BandImage(plain))) << "against a plain device";
      // The plane counts as mixed now, even where the class marked nothing.
      const DRAWMODE mode = MakeDrawMode();
      QNVPixel(device.handle(), 20, 10, 0x00123456, &mode, &kEverywhere);
      tags.Set(0, 0, {1, 0, 0});
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

// The clip is the image's own; tags follow it, and so do those of an image that the band cuts.
TEST(TagImages, ClippedWithTheImage) {
  for (uint32_t rop : {SRCCOPY, SRCAND, ROP_MINIMUM}) {
    SCOPED_TRACE(rop);
    DualPlaneDevice device({.width = 9, .height = 5, .left = 20, .top = 10});
    MakeTagsMixed(&device, 2);
    device.SetOrigin(2, 1);
    const PhysicalBrush brush = Solid(kRed);
    PlaneImage tags = TagImage(device);
    const BandRect clip{21, 8, 24, 12};                          // (23, 9) .. (26, 13) on the page
    EXPECT_EQ(1u, PaintImage(device, 20, 8, rop, brush, clip));  // at (22, 9)
    // Left: page columns 23, 24 and 25 hold the image's black, red and gray; page row 10 is the band's first.
    tags.Fill({3, 0, 6, 1}, {3, 0, 0});
    EXPECT_TRUE(TagsShow(device, tags));
  }
}

}  // namespace
}  // namespace qnv::test
