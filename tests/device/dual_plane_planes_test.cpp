// The two planes of a dual-plane device: when tags are written at all, and that both planes share band and origin.
#include <gtest/gtest.h>

#include "support/plane_image.h"
#include "support/tag_plane.h"
#include "support/test_device.h"
#include "support/text.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

constexpr DeviceOptions kDual{.width = 9, .height = 5, .tagPlane = true};

// One pixel of ink by each drawing call that is neither text nor image.
struct DrawingCase {
  const char* name;
  void (*draw)(const TestDevice& device, int32_t x, int32_t y);
};

void DrawPixel(const TestDevice& device, int32_t x, int32_t y) {
  const DRAWMODE mode = MakeDrawMode();
  QNVPixel(device.handle(), x, y, 0x010203, &mode, &kEverywhere);
}

void DrawPolyPixel(const TestDevice& device, int32_t x, int32_t y) {
  const DRAWMODE mode = MakeDrawMode();
  QNVPolyPixel(device.handle(), x, y, x, y, 0x010203, &mode, &kEverywhere);
}

void DrawSpan(const TestDevice& device, int32_t x, int32_t y) {
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalPen pen = SolidPen(device.handle(), 0x010203);
  const int16_t points[] = {0, static_cast<int16_t>(y), static_cast<int16_t>(x), static_cast<int16_t>(x + 1)};
  QNVOutput(device.handle(), OS_SCANLINES, 2, points, &pen, nullptr, &mode, &kEverywhere);
}

void DrawTransfer(const TestDevice& device, int32_t x, int32_t y) {
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalBrush brush = SolidBrush(device.handle(), 0x010203);
  EXPECT_EQ(1u, Transfer(device.handle(),
                         {.at = {x, y}, .size = {1, 1}, .rop = PATCOPY, .brush = &brush, .drawMode = &mode}));
}

constexpr DrawingCase kDrawings[] = {
    {"Pixel", DrawPixel}, {"PolyPixel", DrawPolyPixel}, {"Output", DrawSpan}, {"DevBitBlt", DrawTransfer}};

// What every call here has to leave in both planes.
struct Planes {
  explicit Planes(const TestDevice& device) : band(BandImage(device)), tags(TagImage(device)) {}
  void Draws(int32_t column, int32_t row, const PixelBytes& color = {1, 2, 3}) { band.Set(column, row, color); }
  void Tags(int32_t column, int32_t row, uint8_t tag = QNV_TAG_GRAPHICS) { tags.Set(column, row, {tag}); }
  testing::AssertionResult AreIn(const TestDevice& device) const {
    const testing::AssertionResult shown = BandShows(device, band);
    return shown ? TagsShow(device, tags) : shown;
  }

  PlaneImage band;
  PlaneImage tags;
};

// What a uniform plane really holds is not looked at: it is uniform when it is made and after every clear.
TEST(DualPlane, UniformPlaneIsNeverWritten) {
  for (const char* state : {"just made", "after a clear", "mixed, then cleared"}) {
    for (const DrawingCase& c : kDrawings) {
      SCOPED_TRACE(Text(c.name, ", ", state));
      TestDevice device(kDual);
      if (*state == 'm') MakeTagsMixed(&device, 2);
      if (*state != 'j') device.Clear();
      device.tags()->Fill(kOldTag);
      Planes expected(device);
      c.draw(device, 3, 2);
      expected.Draws(3, 2);
      EXPECT_TRUE(expected.AreIn(device));
    }
  }
}

// Once an image has been painted every drawing tags; both planes move together.
TEST(DualPlane, AfterAnImageEveryDrawingTags) {
  for (const DrawingCase& c : kDrawings) {
    SCOPED_TRACE(c.name);
    TestDevice device(kDual);
    MakeTagsMixed(&device, 1);
    Planes expected(device);
    c.draw(device, 8, 4);
    expected.Draws(8, 4);
    expected.Tags(8, 4);
    device.MoveBand(100, 50);
    device.SetOrigin(90, 40);
    c.draw(device, 12, 13);  // (102, 53) on the page
    expected.Draws(2, 3);
    expected.Tags(2, 3);
    c.draw(device, 9, 10);   // left of the band
    c.draw(device, 10, 9);   // above it
    c.draw(device, 19, 10);  // right of it
    c.draw(device, 10, 15);  // below it
    EXPECT_TRUE(expected.AreIn(device));
  }
}

TEST(DualPlane, ImagesTagWithThree) {
  TestDevice device(kDual);
  device.Clear();
  Planes expected(device);
  EXPECT_EQ(1u, PaintOnePixelImage(device.handle(), 4, 1));
  expected.Draws(4, 1, {0x10, 0x20, 0x30});
  expected.Tags(4, 1, QNV_TAG_IMAGE);
  EXPECT_TRUE(expected.AreIn(device));
  // Overpainted by graphics it is no image any more.
  DrawPixel(device, 4, 1);
  expected.Draws(4, 1);
  expected.Tags(4, 1);
  EXPECT_TRUE(expected.AreIn(device));
}

// An image that is clipped away whole paints nothing and leaves the plane as uniform as it was.
TEST(DualPlane, ClippedImageLeavesThePlaneUniform) {
  TestDevice device(kDual);
  device.Clear();
  EXPECT_EQ(0u, PaintOnePixelImage(device.handle(), 9, 5));
  device.tags()->Fill(kOldTag);
  Planes expected(device);
  DrawPixel(device, 3, 2);
  expected.Draws(3, 2);
  EXPECT_TRUE(expected.AreIn(device));
}

// A description of another depth still makes a dual-plane device. Whatever its rows then mean, they lie inside
// stride x height of that depth.
TEST(DualPlane, OtherDepthsStayInsideTheirPlanes) {
  for (uint16_t bits : {uint16_t{8}, uint16_t{16}, uint16_t{32}, uint16_t{0}}) {
    for (bool mixed : {false, true}) {
      SCOPED_TRACE(Text(bits, " bits", mixed ? ", tags mixed" : ""));
      DualPlaneDevice device({.bitsPerPixel = bits, .width = 9, .height = 5});
      if (mixed) PaintOnePixelImage(device.handle(), 0, 0);
      for (const DrawingCase& c : kDrawings) {
        for (int32_t y = -1; y <= 5; ++y) {
          for (int32_t x = -1; x <= 9; ++x) c.draw(device, x, y);
        }
        EXPECT_TRUE(device.FencesIntact()) << c.name;
      }
      const DRAWMODE mode = MakeDrawMode();
      const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, 0x123456);
      const int16_t record[] = {2, -50, 50, -50, 50, 2};
      QNVOutput(device.handle(), OS_BANDED_SPANS, 1, record, nullptr, &brush, &mode, &kEverywhere);
      EXPECT_TRUE(device.FencesIntact()) << "spans";
      const uint8_t pixels[12 * 3 * 8] = {};
      const SourceBitmap source{0, 12, 8, 36, 1, 24, pixels};
      const uint8_t bitRows[2 * 8] = {0x5A, 0xA5, 0xFF, 0x00};
      const SourceBitmap oneBit{0, 12, 8, 2, 1, 1, bitRows};
      for (uint32_t index = 0; index < 256; ++index) {
        for (const SourceBitmap* s : {&source, &oneBit}) {
          Transfer(
              device.handle(),
              {.at = {-1, -1}, .source = s, .size = {12, 8}, .rop = index << 16, .brush = &brush, .drawMode = &mode});
        }
      }
      EXPECT_TRUE(device.FencesIntact()) << "transfers";
      for (int32_t y = -1; y <= 5; ++y) {
        for (int32_t x = -1; x <= 9; ++x) PaintOnePixelImage(device.handle(), x, y);
      }
      EXPECT_TRUE(device.FencesIntact()) << "images";
    }
  }
}

}  // namespace
}  // namespace qnv::test
