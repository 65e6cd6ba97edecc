// Single pixels on every device class: reading, all binary raster operations, gray mode, and the tags of the dual-plane
// device. Writing is clipped by the common rule: laws/clipping_test.cpp.
#include <gtest/gtest.h>

#include "support/clip_cases.h"
#include "support/tag_rules.h"

namespace qnv::test {
namespace {

uint32_t WritePixel(const TestDevice& device, int32_t x, int32_t y, uint32_t color, int rop2 = R2_COPYPEN) {
  const DRAWMODE mode = MakeDrawMode({.rop2 = rop2});
  return QNVPixel(device.handle(), x, y, color, &mode, &kEverywhere);
}

uint32_t ReadPixel(const TestDevice& device, int32_t x, int32_t y, const BandRect* clip = &kEverywhere) {
  return QNVPixel(device.handle(), x, y, 0x12345678, nullptr, clip);
}

// What is written in one order is read in the other. The pixel holds the last bytes of the band: no fourth one may be
// fetched. Reading is no drawing: nothing is grayed or tagged.
TEST(Pixel, ReadsAndWritesInOppositeOrders) {
  for (const DeviceOptions& options : DeviceClasses({.width = 4, .height = 2})) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    if (options.tagPlane) MixTags(&device);
    const bool threeBytes = device.bytesPerPixel() == 3;
    PlaneImage band = BandImage(device);
    band.Set(3, 1, {0x11, 0x22, 0x33});
    LoadBand(&device, band);
    EXPECT_EQ(threeBytes ? 0x00332211u : 0x00111111u, ReadPixel(device, 3, 1));
    EXPECT_TRUE(BandShows(device, band)) << "reading writes nothing";
    if (options.tagPlane) {
      EXPECT_TRUE(TagsMarked(device, ""));
    }
    if (options.bitsPerPixel == 0) continue;
    EXPECT_EQ(0u, WritePixel(device, 3, 1, 0xAA332211));
    band.Set(3, 1, threeBytes ? PixelBytes{0x33, 0x22, 0x11} : PixelBytes{0x11});
    EXPECT_TRUE(BandShows(device, band));
    EXPECT_EQ(threeBytes ? 0x00112233u : 0x00111111u, ReadPixel(device, 3, 1));
  }
}

TEST(Pixel, ReadingIsClippedAsWritingIs) {
  for (const DeviceOptions& options : DeviceClasses(kClipBand)) {
    for (const ClipCase& c : kClipCases) {
      SCOPED_TRACE(Text(c.name, ", ", Describe(options)));
      PlacedDevice device(options, c.place);
      device.band().Fill(0x5A);
      const int32_t columnOfZero = c.place.originX - c.place.left;
      const int32_t rowOfZero = c.place.originY - c.place.top;
      for (int32_t y = c.figure.top; y < c.figure.bottom; ++y) {
        for (int32_t x = c.figure.left; x < c.figure.right; ++x) {
          const int32_t column = x + columnOfZero;
          const int32_t row = y + rowOfZero;
          const bool inside =
              column >= c.painted.left && column < c.painted.right && row >= c.painted.top && row < c.painted.bottom;
          ASSERT_EQ(inside ? 0x005A5A5Au : 0u, ReadPixel(device, x, y, &c.clip)) << x << ", " << y;
        }
      }
      EXPECT_EQ(0u, ReadPixel(device, c.place.left - c.place.originX, c.place.top - c.place.originY, nullptr));
    }
  }
}

// With d = 1010 and s = 1100 a code's result is the code less one, bit by bit; here in both halves of the byte.
struct Rop2Result {
  int code;
  uint8_t result;  // of d = 0xAA, s = 0xCC
};

constexpr Rop2Result kRop2[] = {
    {R2_BLACK, 0x00},
    {R2_NOTMERGEPEN, 0x11},
    {R2_MASKNOTPEN, 0x22},
    {R2_NOTCOPYPEN, 0x33},
    {R2_MASKPENNOT, 0x44},
    {R2_NOT, 0x55},
    {R2_XORPEN, 0x66},
    {R2_NOTMASKPEN, 0x77},
    {R2_MASKPEN, 0x88},
    {R2_NOTXORPEN, 0x99},
    {R2_NOP, 0xAA},
    {R2_MERGENOTPEN, 0xBB},
    {R2_COPYPEN, 0xCC},
    {R2_MERGEPENNOT, 0xDD},
    {R2_MERGEPEN, 0xEE},
    {R2_WHITE, 0xFF},
    // Codes outside the numbering count with the low four bits of the code less one.
    {0, 0xFF},
    {17, 0x00},
    {29, 0xCC},
    {0x010D, 0xCC},
    {0xFFFF, 0xEE},
    {0x8000, 0xFF},
};

TEST(Pixel, EveryBinaryOperation) {
  std::vector<DeviceOptions> classes = DeviceClasses({.width = 5, .height = 3});
  classes.push_back({.kind = QNV_KIND_SCALED, .bitsPerPixel = 8, .width = 5, .height = 3});
  for (const DeviceOptions& options : classes) {
    for (const Rop2Result& c : kRop2) {
      SCOPED_TRACE(Text("code ", c.code, ", ", Describe(options)));
      TestDevice device(options);
      PlaneImage expected = BandImage(device);
      expected.Set(4, 2, {0xAA, 0xAA, 0xAA});
      LoadBand(&device, expected);
      EXPECT_EQ(0u, WritePixel(device, 4, 2, 0x00CCCCCC, c.code));
      expected.Set(4, 2, {c.result, c.result, c.result});
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

// Each byte of a pixel meets its own byte of the color; gray mode then grays what it wrote.
TEST(Pixel, OperationsActByteByByte) {
  for (const DeviceOptions& options : DeviceClasses({.width = 4, .height = 2})) {
    if (options.bitsPerPixel == 8) continue;
    for (const Rop2Result& c : kRop2) {
      SCOPED_TRACE(Text("code ", c.code, ", ", Describe(options)));
      TestDevice device(options);
      PlaneImage expected = BandImage(device);
      expected.Set(3, 1, {0xAA, 0x0A, 0xA0});
      LoadBand(&device, expected);
      EXPECT_EQ(0u, WritePixel(device, 3, 1, 0x00CCC00C, c.code));
      const uint8_t index = IndexOfRop2(c.code);
      expected.Set(3, 1, {c.result, Rop3Byte(index, 0, 0xC0, 0x0A), Rop3Byte(index, 0, 0x0C, 0xA0)});
      if (options.bitsPerPixel == 0) expected.SetColor(3, 1, Regrayed(expected.Color(3, 1)));
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

// Nothing but the first word of a draw mode is looked at: here it is all there is.
TEST(Pixel, ReadsOnlyTheOperationOfTheDrawMode) {
  TestDevice device({.width = 4, .height = 1});
  PlaneImage expected = BandImage(device);
  const FencedInput mode({R2_COPYPEN, 0});
  QNVPixel(device.handle(), 1, 0, 0x00010203, static_cast<const DRAWMODE*>(mode.data()), &kEverywhere);
  expected.Set(1, 0, {1, 2, 3});
  EXPECT_TRUE(BandShows(device, expected));
}

// Gray mode, by hand: a color that the host has not converted. Blue, first in memory, has the weight of red.
TEST(Pixel, GrayModeLevels) {
  struct Case {
    const char* name;
    uint32_t color;
    uint8_t level;
  };
  constexpr Case kGrays[] = {
      {"red", 0x000000FF, 28},
      {"green", 0x0000FF00, 150},
      {"blue", 0x00FF0000, 76},
      {"white", 0x00FFFFFF, 255},
      {"black", 0, 0},
      {"a gray", 0x00808080, 128},
      {"truncated", 0x00010000, 0},
      {"mixed", 0x00102030, 28},  // (16 * 30 + 32 * 59 + 48 * 11) / 100
  };
  for (const Case& c : kGrays) {
    SCOPED_TRACE(c.name);
    ScaledDevice device({.bitsPerPixel = 0, .width = 4, .height = 2});
    PlaneImage expected = BandImage(device);
    EXPECT_EQ(0u, WritePixel(device, 2, 1, c.color));
    expected.Set(2, 1, {c.level, c.level, c.level});
    EXPECT_TRUE(BandShows(device, expected));
    EXPECT_EQ(Gray(c.level), ReadPixel(device, 2, 1));
  }
}

// The scaled device clips at page resolution. Half the resolution, band of 6 x 4 at (10, 20), origin (2, 4).
TEST(Pixel, ClippedBeforeScaling) {
  struct Case {
    const char* name;
    int32_t x;
    int32_t y;
    BandRect clip;
    bool inside;
    int32_t column = 0;
    int32_t row = 0;
  };
  constexpr Case kCases[] = {
      {"top left of the band", 18, 36, kEverywhere, true, 0, 0},
      {"rounds up into the band", 17, 35, kEverywhere, true, 0, 0},  // 19 / 2 and 39 / 2
      {"rounds up below the band", 28, 43, kEverywhere, false},      // 47 / 2 is 24
      {"last column and row", 28, 42, kEverywhere, true, 5, 3},
      {"left of the band", 16, 36, kEverywhere, false},
      {"clip of this page pixel", 20, 38, {20, 38, 21, 39}, true, 1, 1},
      {"clip ends before its column", 20, 38, {0, 0, 20, 100}, false},
      {"clip begins after its column", 20, 38, {21, 0, 100, 100}, false},
      {"clip ends above its row", 20, 38, {0, 0, 100, 38}, false},
      {"clip begins below its row", 20, 38, {0, 39, 100, 100}, false},
      // The neighbor that shares the band pixel lies in the clip, this one does not.
      {"clip is not widened to band pixels", 20, 38, {19, 37, 20, 38}, false},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    ScaledDevice device({.width = 6, .height = 4, .resolutionA = 720, .resolutionB = 360, .left = 10, .top = 20});
    device.SetOrigin(2, 4);
    PlaneImage expected = BandImage(device);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(0u, QNVPixel(device.handle(), c.x, c.y, 0x00010203, &mode, &c.clip));
    if (c.inside) expected.Set(c.column, c.row, {1, 2, 3});
    EXPECT_TRUE(BandShows(device, expected));
    EXPECT_EQ(c.inside ? 0x00030201u : 0u, ReadPixel(device, c.x, c.y, &c.clip));
  }
}

// The tag goes only where ink can replace what was there. Colors are compared whole: with a top byte neither white nor
// black is the paper's any more.
TEST(Pixel, TagRuleOfEveryOperation) {
  // Codes that are none of the sixteen wrap around, and always mark.
  std::vector<Rop2Marking> codes(std::begin(kRop2Markings), std::end(kRop2Markings));
  codes.push_back({"0", 0, Marking::kAlways});
  codes.push_back({"17", 17, Marking::kAlways});
  for (const Rop2Marking& r : codes) {
    for (uint32_t color : {0x00FFFFFFu, 0u, 0x00FFFFFEu, 0x00000001u, 0x01FFFFFFu, 0x01000000u}) {
      SCOPED_TRACE(Text(r.name, ", color ", color));
      DualPlaneDevice device({.width = 5, .height = 3});
      MakeTagsMixed(&device, static_cast<uint64_t>(r.code));
      PlaneImage band = BandImage(device);
      FillExpected(&band, {3, 1, 4, 2}, BrushRecord(BS_SOLID, color), MakeDrawMode({.rop2 = r.code}));
      EXPECT_EQ(0u, WritePixel(device, 3, 1, color, r.code));
      EXPECT_TRUE(BandShows(device, band));
      EXPECT_TRUE(TagsMarked(device, Marks(r.marking, color) ? "..... ...1." : ""));
    }
  }
}

// The tag of a pixel is a filled rectangle of one: four zeros do not clip it, and its clip is widened to where it
// begins left of or above zero. The color is clipped as ever.
TEST(Pixel, TagsArePutPastSuchClips) {
  for (const BandRect& clip : {BandRect{0, 0, 0, 0}, BandRect{0, 0, 9, 9}, BandRect{1, 1, 9, 9}}) {
    SCOPED_TRACE(Describe(clip));
    DualPlaneDevice device({.width = 5, .height = 3, .left = -2, .top = -1});
    MixTags(&device);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(0u, QNVPixel(device.handle(), -2, -1, 0x00010203, &mode, &clip));
    EXPECT_EQ(0u, QNVPixel(device.handle(), 0, 0, 0x00010203, &mode, &clip));
    EXPECT_TRUE(TagsMarked(device, clip.left == 0 ? "1.... ..1.." : ""));
    EXPECT_TRUE(BandIs(device, {{'c', 0x00010203}}, clip.right == 9 && clip.left == 0 ? "..... ..c.." : ""));
  }
}

}  // namespace
}  // namespace qnv::test
