// Without a draw mode the pattern of the call before stays in force: its cells, its operation, its having nothing to
// paint. What an operation takes from the brush itself is the new brush's all the same.
#include <gtest/gtest.h>

#include <string>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/transfer_call.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

constexpr uint32_t kDSPDxax = 0x00E20746;
constexpr uint32_t kPn = 0x000F0001;
constexpr int32_t kSize = 19;

struct Brushes {
  PhysicalBrush hatched;
  PhysicalBrush pattern;
  PhysicalBrush solid;
  PhysicalBrush hollow;
};

Brushes Make(DeviceHandle* handle) {
  const SourceImage bitmap(kColorSource, 8, 8, 21);
  Brushes brushes{HatchBrush(handle, HS_DIAGCROSS, 0x00112233, 0x00445566), PatternBrush(handle, *bitmap.record()),
                  SolidBrush(handle, 0x00778899), PhysicalBrush{}};
  brushes.hollow.style = BS_HOLLOW;
  return brushes;
}

// Paints over the whole band; whatever it paints, the pattern is prepared.
void Prepare(const TestDevice& device, const PhysicalBrush* brush, const DRAWMODE& mode) {
  EXPECT_EQ(1u, Transfer(device.handle(), {.size = {kSize, kSize}, .rop = PATCOPY, .brush = brush, .drawMode = &mode}));
}

struct Case {
  const char* name;
  uint32_t rop;
  const PhysicalBrush Brushes::*brush;  // of the call without a draw mode; null for no brush
  bool solidColor;                      // paints the brush's own color instead of the older pattern
  bool painted;
};

const Case kCases[] = {
    {"PATCOPY, hatched brush: the older pattern", PATCOPY, &Brushes::hatched, false, true},
    {"PATCOPY, hollow brush: the older pattern", PATCOPY, &Brushes::hollow, false, true},
    {"PATCOPY, solid brush: its own color", PATCOPY, &Brushes::solid, true, true},
    {"PATINVERT, hatched brush", PATINVERT, &Brushes::hatched, false, true},
    {"PATINVERT, hollow brush", PATINVERT, &Brushes::hollow, false, true},
    {"PATINVERT, solid brush", PATINVERT, &Brushes::solid, true, true},
    {"general, hatched brush", kPn, &Brushes::hatched, false, true},
    {"general, hollow brush: nothing", kPn, &Brushes::hollow, false, false},
    {"general, solid brush", kPn, &Brushes::solid, true, true},
    {"MERGECOPY, hatched brush", MERGECOPY, &Brushes::hatched, false, true},
    {"MERGECOPY, solid brush: still the older pattern", MERGECOPY, &Brushes::solid, false, true},
    {"MERGECOPY, hollow brush", MERGECOPY, &Brushes::hollow, false, true},
    {"MERGECOPY, no brush", MERGECOPY, nullptr, false, true},
    {"PATPAINT, solid brush", PATPAINT, &Brushes::solid, false, true},
    {"PATPAINT, no brush", PATPAINT, nullptr, false, true},
    {"DSPDxax, solid brush", kDSPDxax, &Brushes::solid, false, true},
    {"DSPDxax, no brush", kDSPDxax, nullptr, false, true},
    {"PATCOPY, no brush: nothing", PATCOPY, nullptr, false, false},
    {"PATINVERT, no brush: nothing", PATINVERT, nullptr, false, false},
    {"general, no brush: nothing", kPn, nullptr, false, false},
};

TEST(NullDrawMode, TransfersKeepTheOlderPattern) {
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    for (const Case& c : kCases) {
      SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(bits) + " bits");
      TestDevice device({.bitsPerPixel = bits, .width = kSize, .height = kSize});
      const Brushes brushes = Make(device.handle());
      const SourceImage source(bits == 24 ? kColorSource : kGraySource, kSize, kSize, 22);
      const DRAWMODE mode = MakeDrawMode();
      Prepare(device, &brushes.pattern, mode);
      FillWithNoise(&device.band(), 23);
      PlaneImage expected = BandImage(device);
      const PhysicalBrush* brush = c.brush == nullptr ? nullptr : &(brushes.*c.brush);
      EXPECT_EQ(1u, Transfer(device.handle(),
                             {.source = source.record(), .size = {kSize, kSize}, .rop = c.rop, .brush = brush}));
      if (c.painted) {
        const PhysicalBrush& painting = c.solidColor ? brushes.solid : brushes.pattern;
        PaintExpected(&expected, {0, 0, kSize, kSize}, 0, 0, {c.rop, &source, &painting, &mode});
      }
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

// Having nothing to paint is kept as well, even against a solid brush.
TEST(NullDrawMode, NothingToPaintIsKept) {
  for (uint32_t rop : {PATCOPY, PATINVERT, MERGECOPY, PATPAINT, kDSPDxax, kPn}) {
    SCOPED_TRACE(rop);
    TestDevice device({.width = kSize, .height = kSize});
    const Brushes brushes = Make(device.handle());
    const SourceImage source(kColorSource, kSize, kSize, 24);
    Prepare(device, &brushes.hollow, MakeDrawMode());
    const PlaneImage before = BandImage(device);
    for (const PhysicalBrush* brush : {&brushes.solid, &brushes.hatched, &brushes.pattern}) {
      EXPECT_EQ(1u, Transfer(device.handle(),
                             {.source = source.record(), .size = {kSize, kSize}, .rop = rop, .brush = brush}));
    }
    EXPECT_TRUE(BandShows(device, before));
    // An operation without a pattern does not care.
    EXPECT_EQ(1u, Transfer(device.handle(), {.size = {kSize, kSize}, .rop = BLACKNESS}));
    PlaneImage expected = before;
    expected.Fill({0, 0, kSize, kSize}, {0, 0, 0});
    EXPECT_TRUE(BandShows(device, expected));
  }
}

// A device that has never seen a draw mode has a pattern of no cells; only a solid brush's own color can paint.
TEST(NullDrawMode, FirstCallHasNoPattern) {
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    for (uint32_t rop : {PATCOPY, PATINVERT, MERGECOPY, PATPAINT, kDSPDxax, kPn}) {
      SCOPED_TRACE(std::to_string(rop) + ", " + std::to_string(bits) + " bits");
      TestDevice device({.bitsPerPixel = bits, .width = kSize, .height = kSize});
      const Brushes brushes = Make(device.handle());
      const SourceImage source(bits == 24 ? kColorSource : kGraySource, kSize, kSize, 25);
      PlaneImage expected = BandImage(device);
      for (const PhysicalBrush* brush : {&brushes.hatched, &brushes.pattern}) {
        EXPECT_EQ(1u, Transfer(device.handle(),
                               {.source = source.record(), .size = {kSize, kSize}, .rop = rop, .brush = brush}));
        EXPECT_TRUE(BandShows(device, expected));
      }
      EXPECT_EQ(1u, Transfer(device.handle(),
                             {.source = source.record(), .size = {kSize, kSize}, .rop = rop, .brush = &brushes.solid}));
      if (rop == PATCOPY || rop == PATINVERT || rop == kPn) {
        PaintExpected(&expected, {0, 0, kSize, kSize}, 0, 0, {rop, &source, &brushes.solid, nullptr});
      }
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

// A hollow brush leaves the cells of the pattern before it; a later call may make them visible only with a new one.
TEST(NullDrawMode, HollowBrushReplacesTheStyleAlone) {
  TestDevice device({.width = kSize, .height = kSize});
  const Brushes brushes = Make(device.handle());
  const DRAWMODE mode = MakeDrawMode();
  Prepare(device, &brushes.pattern, mode);
  Prepare(device, &brushes.hollow, mode);
  const PlaneImage before = BandImage(device);
  EXPECT_EQ(1u, Transfer(device.handle(), {.size = {kSize, kSize}, .rop = PATCOPY, .brush = &brushes.pattern}));
  EXPECT_TRUE(BandShows(device, before));
  Prepare(device, &brushes.solid, mode);
  PlaneImage expected = before;
  expected.Fill({0, 0, kSize, kSize}, {0x77, 0x88, 0x99});
  EXPECT_TRUE(BandShows(device, expected));
}

// Transfers and spans share one pattern, and the binary operation goes with it.
TEST(NullDrawMode, SpansKeepPatternAndOperation) {
  TestDevice device({.width = kSize, .height = kSize});
  const Brushes brushes = Make(device.handle());
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = R2_XORPEN;
  Prepare(device, &brushes.solid, mode);
  device.band().Fill(0x0F);
  PlaneImage expected = BandImage(device);
  const int16_t points[] = {0, 3, 2, 9};
  EXPECT_EQ(1u, QNVOutput(device.handle(), OS_SCANLINES, 2, points, nullptr, nullptr, nullptr, &kEverywhere) & 0xFFFF);
  expected.Fill({2, 3, 9, 4}, {0x77 ^ 0x0F, 0x88 ^ 0x0F, 0x99 ^ 0x0F});
  EXPECT_TRUE(BandShows(device, expected));
}

// And the other way round: what spans have prepared, a pattern copy without a draw mode paints.
TEST(NullDrawMode, TransfersPaintWhatSpansPrepared) {
  TestDevice device({.width = kSize, .height = kSize});
  const Brushes brushes = Make(device.handle());
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalPen pen = SolidPen(device.handle(), 0x00010203);
  const int16_t points[] = {0, 0, 0, 1};
  EXPECT_EQ(1u, QNVOutput(device.handle(), OS_SCANLINES, 2, points, &pen, nullptr, &mode, &kEverywhere) & 0xFFFF);
  EXPECT_EQ(1u, Transfer(device.handle(), {.size = {kSize, kSize}, .rop = PATCOPY, .brush = &brushes.hatched}));
  PlaneImage expected = BandImage(device);
  expected.Fill({0, 0, kSize, kSize}, {1, 2, 3});
  EXPECT_TRUE(BandShows(device, expected));
}

}  // namespace
}  // namespace qnv::test
