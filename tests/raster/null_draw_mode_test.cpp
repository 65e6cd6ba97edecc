// Without a draw mode the pattern of the call before stays in force: its cells, its operation, its having nothing to
// paint. What an operation takes from the brush itself is the new brush's all the same.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "support/random_bytes.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr uint32_t kSourcePicksPattern = 0x00E20746;
constexpr uint32_t kNotPattern = 0x000F0001;
constexpr int32_t kSide = 19;
constexpr TransferSize kAll{kSide, kSide};
constexpr BandRect kWhole{0, 0, kSide, kSide};
constexpr uint32_t kPatternCodes[] = {PATCOPY, PATINVERT, MERGECOPY, PATPAINT, kSourcePicksPattern, kNotPattern};

class KeptPattern : public testing::TestWithParam<uint16_t> {
 protected:
  // Paints over the whole band; whatever it paints, the pattern is prepared.
  void Prepare(const PhysicalBrush& brush, const DRAWMODE& mode = MakeDrawMode()) {
    EXPECT_EQ(1u, Transfer(device_.handle(), {.size = kAll, .rop = PATCOPY, .brush = &brush, .drawMode = &mode}));
  }

  // A call without a draw mode that paints with `painting`; null for nothing.
  testing::AssertionResult Paints(uint32_t rop, const PhysicalBrush* brush, const PhysicalBrush* painting) {
    const DRAWMODE mode = MakeDrawMode();
    return TransferLeaves(device_, {.size = kAll, .rop = rop, .brush = brush}, &source_, [&](PlaneImage* expected) {
      if (painting != nullptr) PaintExpected(expected, kWhole, 0, 0, {rop, &source_, painting, &mode});
    });
  }

  TestDevice device_{{.bitsPerPixel = GetParam(), .width = kSide, .height = kSide}};
  const SourceImage source_{GetParam() == 24 ? kColorSource : kGraySource, kSide, kSide, 22};
  const SourceImage bitmap_{kColorSource, 8, 8, 21};
  const PhysicalBrush hatched_ = HatchBrush(device_.handle(), HS_DIAGCROSS, 0x00112233, 0x00445566);
  const PhysicalBrush pattern_ = PatternBrush(device_.handle(), *bitmap_.record());
  const PhysicalBrush solid_ = SolidBrush(device_.handle(), 0x00778899);
  const PhysicalBrush hollow_ = BrushRecord(BS_HOLLOW);
};

INSTANTIATE_TEST_SUITE_P(Depths, KeptPattern, testing::ValuesIn(kBandDepths));

TEST_P(KeptPattern, TransfersKeepTheOlderPattern) {
  struct Case {
    const char* name;
    uint32_t rop;
    const PhysicalBrush* brush;  // of the call without a draw mode
    const PhysicalBrush* painting;
  };
  const Case cases[] = {
      {"PATCOPY, hatched brush", PATCOPY, &hatched_, &pattern_},
      {"PATCOPY, hollow brush", PATCOPY, &hollow_, &pattern_},
      {"PATCOPY, solid brush: its own color", PATCOPY, &solid_, &solid_},
      {"PATINVERT, hatched brush", PATINVERT, &hatched_, &pattern_},
      {"PATINVERT, hollow brush", PATINVERT, &hollow_, &pattern_},
      {"PATINVERT, solid brush", PATINVERT, &solid_, &solid_},
      {"general, hatched brush", kNotPattern, &hatched_, &pattern_},
      {"general, hollow brush: nothing", kNotPattern, &hollow_, nullptr},
      {"general, solid brush", kNotPattern, &solid_, &solid_},
      {"MERGECOPY, hatched brush", MERGECOPY, &hatched_, &pattern_},
      {"MERGECOPY, solid brush: still the older pattern", MERGECOPY, &solid_, &pattern_},
      {"MERGECOPY, hollow brush", MERGECOPY, &hollow_, &pattern_},
      {"MERGECOPY, no brush", MERGECOPY, nullptr, &pattern_},
      {"PATPAINT, solid brush", PATPAINT, &solid_, &pattern_},
      {"PATPAINT, no brush", PATPAINT, nullptr, &pattern_},
      {"source picks the pattern, solid brush", kSourcePicksPattern, &solid_, &pattern_},
      {"source picks the pattern, no brush", kSourcePicksPattern, nullptr, &pattern_},
      {"PATCOPY, no brush: nothing", PATCOPY, nullptr, nullptr},
      {"PATINVERT, no brush: nothing", PATINVERT, nullptr, nullptr},
      {"general, no brush: nothing", kNotPattern, nullptr, nullptr},
  };
  Prepare(pattern_);
  for (const Case& c : cases) {
    FillWithNoise(&device_.band(), 23);
    EXPECT_TRUE(Paints(c.rop, c.brush, c.painting)) << c.name;
  }
}

// Having nothing to paint is kept as well, even against a solid brush. An operation without a pattern does not care.
TEST_P(KeptPattern, NothingToPaintIsKept) {
  Prepare(hollow_);
  for (uint32_t rop : kPatternCodes) {
    for (const PhysicalBrush* brush : {&solid_, &hatched_, &pattern_}) EXPECT_TRUE(Paints(rop, brush, nullptr)) << rop;
  }
  EXPECT_TRUE(Paints(BLACKNESS, &solid_, &solid_));
}

// A device that has never seen a draw mode has a pattern of no cells; only a solid brush's own color can paint.
TEST_P(KeptPattern, FirstCallHasNoPattern) {
  for (uint32_t rop : kPatternCodes) {
    for (const PhysicalBrush* brush : {&hatched_, &pattern_}) EXPECT_TRUE(Paints(rop, brush, nullptr)) << rop;
    const bool ownColor = rop == PATCOPY || rop == PATINVERT || rop == kNotPattern;
    EXPECT_TRUE(Paints(rop, &solid_, ownColor ? &solid_ : nullptr)) << rop;
  }
}

// A hollow brush leaves the cells of the pattern before it; a later call may make them visible only with a new one.
TEST_P(KeptPattern, HollowBrushReplacesTheStyleAlone) {
  Prepare(pattern_);
  Prepare(hollow_);
  EXPECT_TRUE(Paints(PATCOPY, &pattern_, nullptr));
  Prepare(solid_);
  EXPECT_TRUE(Paints(MERGECOPY, &pattern_, &solid_));
}

// Transfers and spans share one pattern, and the binary operation goes with it.
TEST(NullDrawMode, SpansKeepPatternAndOperation) {
  TestDevice device({.width = 8, .height = 1});
  const PhysicalPen red{PS_SOLID, 1, 1, 0x0000FF};
  const PhysicalPen green{PS_SOLID, 1, 1, 0x00FF00};
  const PhysicalBrush blue = BrushRecord(BS_SOLID, 0xFF0000);
  const PhysicalBrush hollow = BrushRecord(BS_HOLLOW);
  const DRAWMODE copy = MakeDrawMode();
  const DRAWMODE invert = MakeDrawMode({.rop2 = R2_NOT});
  EXPECT_EQ(1u, PaintRow(device, 0, 1, 0, {.pen = &red})) << "nothing prepared yet";
  EXPECT_TRUE(BandUntouched(device));
  PaintRow(device, 1, 2, 0, {.pen = &red, .drawMode = &copy});
  PaintRow(device, 2, 3, 0, {.pen = &green});
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}}, ".rr.....")) << "color kept";
  PaintRow(device, 3, 4, 0, {.brush = &hollow, .drawMode = &copy});
  EXPECT_EQ(1u, PaintRow(device, 4, 5, 0, {.pen = &green})) << "a hollow fill is kept too";
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}}, ".rr....."));
  EXPECT_EQ(1u, Transfer(device.handle(), {.size = {1, 1}, .rop = PATCOPY, .brush = &blue, .drawMode = &invert}));
  PaintRow(device, 0, 2, 0, {.pen = &green});
  PaintRow(device, 6, 7, 0, {.pen = &red});
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}, {'i', 0x333333}, {'y', 0x00FFFF}, {'c', 0xFFFF00}}, "ycr...i."))
      << "the operation of a transfer's draw mode is kept as well";
}

// And the other way round: what spans have prepared, a pattern copy without a draw mode paints.
TEST(NullDrawMode, TransfersPaintWhatSpansPrepared) {
  TestDevice device({.width = 5, .height = 1});
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x00010203};
  const PhysicalBrush hatched = HatchBrush(device.handle(), HS_CROSS, 0x00112233);
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(1u, PaintRow(device, 0, 1, 0, {.pen = &pen, .drawMode = &mode}));
  EXPECT_EQ(1u, Transfer(device.handle(), {.size = {5, 1}, .rop = PATCOPY, .brush = &hatched}));
  EXPECT_TRUE(BandIs(device, {{'p', 0x00010203}}, "ppppp"));
}

}  // namespace
}  // namespace qnv::test
