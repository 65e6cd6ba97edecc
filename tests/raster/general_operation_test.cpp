// Every index without an operation of its own, and every code that has anything in its upper byte.
#include <gtest/gtest.h>

#include "support/device_classes.h"
#include "support/random_bytes.h"
#include "support/transfer_battery.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr uint32_t kPSDPxax = 0x00B8074A;  // where the source is 1 the destination, elsewhere the pattern
constexpr uint32_t kPDSxx = 0x00960169;    // all three, exclusive-or
constexpr uint32_t kDPna = 0x000A0329;     // destination and not pattern
constexpr uint32_t kDSan = 0x007700E6;     // not (destination and source)
constexpr uint32_t kPn = 0x000F0001;       // not pattern

constexpr TransferExample kPSDPxaxExamples[] = {
    {"24-bit source", 24, {0xAA, 0x0F, 0x33}, 24, {0xFF, 0xF0, 0x00}, 0xF03C81, {0xF0, 0x0C, 0x33}},
    {"bit 0 is the text color", 24, {0xAA, 0x0F, 0x33}, 1, {0}, 0xF03C81, {0xE2, 0x0C, 0x93}},
    {"bit 1 is the background color", 24, {0xAA, 0x0F, 0x33}, 1, {1}, 0xF03C81, {0xB0, 0x3C, 0x21}},
    {"8-bit source, low byte of the brush", 8, {0x0F}, 8, {0xF0}, 0xF03C81, {0x01}},
    {"8 bits, bit 0", 8, {0x0F}, 1, {0}, 0xF03C81, {0x87}},
    {"8 bits, bit 1", 8, {0x0F}, 1, {1}, 0xF03C81, {0x01}},
};

constexpr TransferExample kPnExamples[] = {
    {"pattern alone", 24, {0xAA, 0x0F, 0x33}, 0, {}, 0xF03C81, {0x0F, 0xC3, 0x7E}},
    {"8 bits", 8, {0x0F}, 0, {}, 0xF03C81, {0x7E}},
};

constexpr TransferExample kDSanExamples[] = {
    {"24-bit source", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}, 0, {0xDD, 0xFD, 0xEE}},
    {"8-bit source", 8, {0x0F}, 8, {0x35}, 0, {0xFA}},
};

TEST(BltGeneral, Examples) {
  RunTransferExamples(kPSDPxax, kPSDPxaxExamples);
  RunTransferExamples(kPn, kPnExamples);
  RunTransferExamples(kDSan, kDSanExamples);
}

// A text color of 0 makes the pattern show through where the bit is 0.
TEST(BltGeneral, BlackTextLetsThePatternThrough) {
  TestDevice device({.width = 8, .height = 1, .fill = 0x3C});
  const uint8_t bits = 0b01010011;
  const SourceBitmap source{0, 8, 1, 2, 1, 1, &bits};
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalBrush brush = BrushRecord(BS_SOLID, 0x00010203);
  EXPECT_EQ(1u, Transfer(device.handle(),
                         {.source = &source, .size = {8, 1}, .rop = kPSDPxax, .brush = &brush, .drawMode = &mode}));
  EXPECT_TRUE(BandIs(device, {{'p', 0x00010203}}, "p.p.pp.."));
}

TEST(BltGeneral, CommonRules) {
  for (uint32_t rop : {kPSDPxax, kPDSxx, kDPna, kDSan, kPn}) {
    SCOPED_TRACE(rop);
    CheckTransferOperation(rop);
  }
}

// With a bit set in its upper byte every code is the general operation's, the sixteen common indices too. A solid color
// then comes from the brush, also for the three that otherwise take the prepared pattern.
TEST(BltGeneral, UpperByteOfTheCode) {
  for (uint16_t depth : kBandDepths) {
    TestDevice device({.bitsPerPixel = depth, .width = 20, .height = 3});
    const DRAWMODE mode = MakeDrawMode();
    const PhysicalBrush brush = BrushRecord(BS_SOLID, 0x00F03C81);
    const SourceImage source(depth == 24 ? kColorSource : kGraySource, 20, 3, 5);
    for (uint32_t upper : {0x01000000u, 0x80000000u, 0xFF000000u}) {
      for (uint32_t index = 0; index < 256; ++index) {
        SCOPED_TRACE(Text(depth, " bits, code ", upper, " + index ", index));
        FillWithNoise(&device.band(), index);
        const TransferCall call{
            .at = {1, 0}, .size = {18, 3}, .rop = upper | index << 16, .brush = &brush, .drawMode = &mode};
        ASSERT_TRUE(TransferPaints(device, call, &source, {1, 0, 19, 3}));
      }
    }
  }
}

// Such a code counts as one that uses the pattern, whatever its index: a hollow brush stops it.
TEST(BltGeneral, UpperByteCountsAsUsingThePattern) {
  TestDevice device({.width = 8, .height = 2});
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalBrush hollow = BrushRecord(BS_HOLLOW);
  TransferCall call{.size = {8, 2}, .rop = 0x01000042, .brush = &hollow, .drawMode = &mode};
  EXPECT_TRUE(TransferPaintsNothing(device, call));
  call.rop = BLACKNESS;
  EXPECT_TRUE(TransferPaints(device, call, nullptr, {0, 0, 8, 2}));
}

// Without a draw mode the hollow brush is not prepared; the operation itself has to notice it.
TEST(BltGeneral, HollowBrushReachedDirectly) {
  for (uint16_t depth : kBandDepths) {
    SCOPED_TRACE(depth);
    TestDevice device({.bitsPerPixel = depth, .width = 8, .height = 2});
    const DRAWMODE mode = MakeDrawMode();
    const PhysicalBrush hatched = HatchBrush(device.handle(), HS_CROSS, 0x010203);
    EXPECT_EQ(1u, Transfer(device.handle(), {.size = {8, 2}, .rop = kPn, .brush = &hatched, .drawMode = &mode}));
    const PhysicalBrush hollow = BrushRecord(BS_HOLLOW);
    EXPECT_TRUE(TransferPaintsNothing(device, {.size = {8, 2}, .rop = kPn, .brush = &hollow}));
  }
}

}  // namespace
}  // namespace qnv::test
