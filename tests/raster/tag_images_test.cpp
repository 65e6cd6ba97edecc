// The tag classes as images reach them: where a class takes the caller's tag an image writes 3, elsewhere it writes 1.
#include <gtest/gtest.h>

#include <array>

#include "support/tag_plane.h"
#include "support/text.h"

namespace qnv::test {
namespace {

struct TagImageCase {
  const char* name;
  uint32_t rop;
  uint32_t brush;
  std::array<uint8_t, 4> tags;  // of a white, a black, a red and a gray pixel
};

constexpr TagImageCase kTagImageCases[] = {
    {"SRCCOPY", SRCCOPY, 0xFF, {3, 3, 3, 3}},
    {"SRCCOPY's index in another code", 0x00CC0000, 0xFF, {3, 3, 3, 3}},
    {"NOTSRCCOPY", NOTSRCCOPY, 0xFF, {3, 3, 3, 3}},
    {"BLACKNESS", BLACKNESS, 0xFF, {3, 3, 3, 3}},
    {"WHITENESS", WHITENESS, 0xFF, {3, 3, 3, 3}},
    {"MERGECOPY", MERGECOPY, 0xFF, {3, 3, 3, 3}},
    {"all three, exclusive-or", 0x00960169, 0xFF, {3, 3, 3, 3}},
    {"SRCAND", SRCAND, 0xFF, {kOldTag, 3, 3, 3}},
    {"inverse of SRCAND", 0x007700E6, 0xFF, {kOldTag, 3, 3, 3}},
    {"MERGEPAINT", MERGEPAINT, 0xFF, {kOldTag, 3, 3, 3}},
    {"SRCERASE", SRCERASE, 0xFF, {kOldTag, 3, 3, 3}},
    {"SRCPAINT", SRCPAINT, 0xFF, {3, kOldTag, 3, 3}},
    {"NOTSRCERASE", NOTSRCERASE, 0xFF, {3, kOldTag, 3, 3}},
    {"source or not destination", 0x00DD0228, 0xFF, {3, kOldTag, 3, 3}},
    {"its inverse", 0x00220326, 0xFF, {3, kOldTag, 3, 3}},
    {"SRCINVERT", SRCINVERT, 0xFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"its inverse", 0x00990066, 0xFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"PATINVERT", PATINVERT, 0xFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"DSTINVERT", DSTINVERT, 0xFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"destination", 0x00AA0029, 0xFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"PATCOPY", PATCOPY, 0xFF, {1, 1, 1, 1}},
    {"not pattern", 0x000F0001, 0, {1, 1, 1, 1}},
    {"destination and pattern", 0x00A000C9, 0xFF, {1, 1, 1, 1}},
    {"destination and pattern, white", 0x00A000C9, 0xFFFFFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"destination or not pattern", 0x00AF0229, 0xFF, {1, 1, 1, 1}},
    {"destination or not pattern, white", 0x00AF0229, 0xFFFFFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"destination or pattern", 0x00FA0089, 0xFF, {1, 1, 1, 1}},
    {"destination or pattern, black", 0x00FA0089, 0, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"pattern or not destination", 0x00F50225, 0xFFFFFF, {1, 1, 1, 1}},
    {"pattern or not destination, black", 0x00F50225, 0, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"source picks the destination", 0x00B8074A, 0xFF, {kOldTag, 1, 1, 1}},
    {"its inverse", 0x004703AA, 0xFF, {kOldTag, 1, 1, 1}},
    {"source picks the pattern", 0x00E20746, 0xFF, {1, kOldTag, 1, 1}},
    {"its inverse", 0x001D0000, 0xFF, {1, kOldTag, 1, 1}},
    {"destination or both", 0x00EA02E9, 0xFF, {1, kOldTag, 1, 1}},
    {"PATPAINT", PATPAINT, 0xFF, {1, 3, 3, 3}},
    {"PATPAINT, black brush", PATPAINT, 0, {kOldTag, 3, 3, 3}},
    {"inverse of PATPAINT", 0x00040000, 0xFF, {1, 3, 3, 3}},
    // Extended codes are tagged as SRCAND, whatever they paint.
    {"minimum", ROP_MINIMUM, 0xFF, {kOldTag, 3, 3, 3}},
    {"an extended code that paints nothing", 0x02000000, 0xFF, {kOldTag, 3, 3, 3}},
};

// Two equal rows of four pixels: white, black, red, gray; blue, green and red in memory.
constexpr uint8_t kTagPixels[24] = {0xFF, 0xFF, 0xFF, 0, 0, 0, 0x00, 0x00, 0xFF, 0x80, 0x80, 0x80,
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
  return QNVStretchDIBits(device.handle(), 0, x, y, 4, 2, 0, 0, 4, 2, kTagPixels, &header, nullptr, rop, &brush, &mode,
                          &clip) &
         0xFFFF;
}

TEST(TagImages, EveryClass) {
  for (bool uniform : {false, true}) {
    for (const TagImageCase& c : kTagImageCases) {
      SCOPED_TRACE(Text(c.name, uniform ? ", uniform plane" : ""));
      DualPlaneDevice device({.width = 9, .height = 5, .left = 20, .top = 10});
      TestDevice plain({.width = 9, .height = 5, .left = 20, .top = 10});
      if (!uniform) MakeTagsMixed(&device, 1);
      device.tags()->Fill(kOldTag);
      LoadBand(&plain, BandImage(device));
      const PhysicalBrush brush = BrushRecord(BS_SOLID, c.brush);
      PlaneImage tags = TagImage(device);
      // An image ends the uniform state before any tag is decided on, so both starts give the same tags.
      EXPECT_EQ(1u, PaintImage(device, 23, 11, c.rop, brush, kEverywhere));
      EXPECT_EQ(1u, PaintImage(plain, 23, 11, c.rop, brush, kEverywhere));
      for (int32_t i = 0; i < 4; ++i) tags.Fill({3 + i, 1, 4 + i, 3}, {c.tags[static_cast<std::size_t>(i)]});
      EXPECT_TRUE(TagsShow(device, tags));
      EXPECT_TRUE(BandShows(device, BandImage(plain))) << "against a plain device";
      // The plane counts as mixed now, even where the class marked nothing.
      const DRAWMODE mode = MakeDrawMode();
      QNVPixel(device.handle(), 20, 10, 0x00123456, &mode, &kEverywhere);
      tags.Set(0, 0, {QNV_TAG_GRAPHICS});
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
    PlaneImage tags = TagImage(device);
    const BandRect clip{21, 8, 24, 12};  // (23, 9) .. (26, 13) on the page; the image is at (22, 9)
    EXPECT_EQ(1u, PaintImage(device, 20, 8, rop, BrushRecord(BS_SOLID, 0xFF), clip));
    // Left: page columns 23, 24 and 25 hold the image's black, red and gray; page row 10 is the band's first.
    tags.Fill({3, 0, 6, 1}, {QNV_TAG_IMAGE});
    EXPECT_TRUE(TagsShow(device, tags));
  }
}

}  // namespace
}  // namespace qnv::test
