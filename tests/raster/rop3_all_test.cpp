// All 256 ternary operations, with every source form and every kind of brush, against the truth table.
#include <gtest/gtest.h>

#include "support/device_classes.h"
#include "support/random_bytes.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr int32_t kWidth = 37;
constexpr int32_t kHeight = 9;

void CheckAll(uint16_t depth, uint16_t resolution, const SourceForm& form) {
  TestDevice device({.bitsPerPixel = depth, .width = kWidth + 6, .height = kHeight + 2, .resolutionA = resolution});
  const SourceImage source(form, kWidth + 5, kHeight, 34, 2);
  struct NamedBrush {
    const char* name;
    PhysicalBrush brush;
    int bkMode;
  };
  DeviceHandle* handle = device.handle();
  const SourceImage color(kColorSource, 8, 8, 31);
  const SourceImage gray(kGraySource, 8, 8, 32);
  const SourceImage oneBit(kOneBitSource, 8, 8, 33);
  const NamedBrush brushes[] = {
      {"solid brush", SolidBrush(handle, 0x00804C1F), OPAQUE},
      {"hatched brush, opaque", HatchBrush(handle, HS_DIAGCROSS, 0x00336699, 0x00AA5500), OPAQUE},
      {"hatched brush, transparent", HatchBrush(handle, HS_FDIAGONAL, 0x00336699, 0x00AA5500), TRANSPARENT},
      {"24-bit pattern brush", PatternBrush(handle, *color.record()), OPAQUE},
      {"8-bit pattern brush", PatternBrush(handle, *gray.record()), OPAQUE},
      {"one-bit pattern brush", PatternBrush(handle, *oneBit.record()), OPAQUE},
  };
  for (const NamedBrush& b : brushes) {
    const DRAWMODE mode = MakeDrawMode({.bkMode = b.bkMode, .background = 0x005A3CF0, .text = 0x00C3A50F});
    for (uint32_t index = 0; index < 256; ++index) {
      SCOPED_TRACE(Text(form.name, ", ", b.name, ", index ", index, ", ", depth, " bits"));
      FillWithNoise(&device.band(), index);
      const TransferCall call{.at = {3, 1},
                              .from = {5, 0},
                              .size = {kWidth, kHeight},
                              .rop = index << 16,
                              .brush = &b.brush,
                              .drawMode = &mode};
      ASSERT_TRUE(TransferPaints(device, call, &source, {3, 1, 3 + kWidth, 1 + kHeight}, {5, 0}));
    }
  }
}

TEST(Rop3All, ColorSourceOnColorBand) { CheckAll(24, 360, kColorSource); }
TEST(Rop3All, OneBitSourceOnColorBand) { CheckAll(24, 360, kOneBitSource); }
TEST(Rop3All, GraySourceOnGrayBand) { CheckAll(8, 360, kGraySource); }
TEST(Rop3All, OneBitSourceOnGrayBand) { CheckAll(8, 360, kOneBitSource); }
TEST(Rop3All, DoubledPatternCells) { CheckAll(24, 720, kColorSource); }

// The index whose truth table is the destination itself leaves everything alone, whatever the other arguments.
TEST(Rop3All, DestinationIsNoOperation) {
  for (uint16_t depth : kBandDepths) {
    for (uint32_t rop : {0x00AA0029u, 0x00AA0000u, 0x00AAFFFFu}) {
      TestDevice device({.bitsPerPixel = depth, .width = 9, .height = 3});
      EXPECT_TRUE(TransferPaintsNothing(device, {.size = {9, 3}, .rop = rop})) << depth << " bits, " << rop;
    }
  }
}

}  // namespace
}  // namespace qnv::test
