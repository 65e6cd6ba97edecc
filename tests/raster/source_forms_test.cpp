// Which source bytes belong to a pixel: one bit, three bytes, one byte, and everything that is neither.
#include <gtest/gtest.h>

#include "support/device_classes.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

struct FormCase {
  SourceForm form;
  uint16_t depth;  // of the band
};

// On a color band every source but a one-bit one is three bytes a pixel. On a gray band the first pixel's place is
// scaled by the depth and the rest follows byte by byte.
constexpr FormCase kForms[] = {
    {{"one bit, one plane", 1, 1, 0}, 24},
    {{"24 bits", 1, 24, 3}, 24},
    {{"32 bits read as three bytes", 1, 32, 4}, 24},
    {{"8 bits read as three bytes", 1, 8, 3}, 24},
    {{"4 bits read as three bytes", 1, 4, 3}, 24},
    {{"one bit in three planes is no one-bit source", 3, 1, 3}, 24},
    {{"one bit in no plane", 0, 1, 3}, 24},
    {{"one plane of no bits", 1, 0, 3}, 24},
    {{"one bit, one plane", 1, 1, 0}, 8},
    {{"8 bits", 1, 8, 1}, 8},
    {{"8 bits in three planes", 3, 8, 1}, 8},
    {{"24 bits are not converted", 1, 24, 3}, 8},
    {{"32 bits are not converted", 1, 32, 4}, 8},
    {{"16 bits are not converted", 1, 16, 2}, 8},
    {{"4 bits begin at half the column", 1, 4, 1}, 8},
    {{"one bit in three planes begins at an eighth", 3, 1, 1}, 8},
    {{"no bits begin at the row's first byte", 1, 0, 1}, 8},
};

TEST(SourceForms, EveryDepthAndPhase) {
  const DRAWMODE mode = MakeDrawMode({.background = 0x00AABBCC, .text = 0x00112233});
  for (const FormCase& c : kForms) {
    TestDevice device({.bitsPerPixel = c.depth, .width = 40, .height = 3});
    const SourceImage source(c.form, 45, 4, c.form.bitsPixel);
    for (int32_t srcX = 0; srcX <= 17; ++srcX) {
      SCOPED_TRACE(Text(c.form.name, ", ", c.depth, "-bit band, from ", srcX));
      const TransferCall call{.at = {2, 0}, .from = {srcX, 1}, .size = {23, 3}, .rop = SRCCOPY, .drawMode = &mode};
      ASSERT_TRUE(TransferPaints(device, call, &source, {2, 0, 25, 3}, {srcX, 1}));
    }
  }
}

// Rows may lie further apart than a signed 16-bit number can say, closer than their pixels need, or all be the same
// one.
TEST(SourceForms, AnyDistanceOfRows) {
  for (int rowBytes : {0, 15, 32768, 40000, 65535}) {
    TestDevice device({.width = 10, .height = 3});
    const SourceImage source(kColorSource, 10, 4, 7, rowBytes - 30);
    const TransferCall call{.from = {0, 1}, .size = {10, 3}, .rop = SRCCOPY};
    EXPECT_TRUE(TransferPaints(device, call, &source, {0, 0, 10, 3}, {0, 1})) << rowBytes;
  }
}

TEST(SourceForms, WidestSource) {
  TestDevice device({.width = 20, .height = 2});
  const SourceImage source(kOneBitSource, 32767, 2, 9);
  const DRAWMODE mode = MakeDrawMode({.text = 0x00112233});
  const TransferCall call{.from = {32755, 0}, .size = {20, 2}, .rop = SRCCOPY, .drawMode = &mode};
  EXPECT_TRUE(TransferPaints(device, call, &source, {0, 0, 12, 2}, {32755, 0}));
}

// A size that is not positive holds no pixel; its bits are not looked at.
TEST(SourceForms, EmptySources) {
  constexpr int16_t kSizes[][2] = {{0, 4}, {4, 0}, {-4, 4}, {4, -4}, {-32768, 4}};
  const DRAWMODE mode = MakeDrawMode();
  for (const auto& [width, height] : kSizes) {
    for (uint16_t depth : kBandDepths) {
      SCOPED_TRACE(Text(width, " x ", height, ", ", depth, " bits"));
      TestDevice device({.bitsPerPixel = depth, .width = 8, .height = 8});
      const SourceBitmap source{0, width, height, 8, 1, 1, nullptr};
      for (int32_t at : {-4, 0, 4}) {
        EXPECT_EQ(1u,
                  Transfer(device.handle(),
                           {.source = &source, .from = {at, at}, .size = {8, 8}, .rop = SRCCOPY, .drawMode = &mode}));
        EXPECT_TRUE(BandUntouched(device));
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
