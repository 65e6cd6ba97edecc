// The operations of transfers: what the sixteen with a function of their own and some of the others make of the same
// three pixels, the rules that hold for all of them, and all 256 with every source form and every kind of brush.
#include <gtest/gtest.h>

#include <iterator>

#include "support/device_classes.h"
#include "support/random_bytes.h"
#include "support/transfer_battery.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr uint32_t kPSDPxax = 0x00B8074A;
constexpr uint32_t kBrush = 0x00F03C81;

// What each operation makes of them is in the table below.
constexpr TransferExample kPixels[] = {
    {"24-bit source, bytes exchanged", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}, kBrush, {}},
    {"bit 1 is the background color", 24, {0xAA, 0x0F, 0x33}, 1, {0x01}, kBrush, {}},
    {"8-bit source", 8, {0x0F}, 8, {0x35}, kBrush, {}},
};

// The band pixel that each of kPixels becomes. On an 8-bit band a solid brush gives its low byte, except in MERGECOPY,
// PATPAINT and DSPDxax, which take even a solid color from the prepared pattern: those see its bits 16..23.
struct Operation {
  const char* name;
  uint32_t rop;
  PixelBytes expected[std::size(kPixels)];
};

constexpr Operation kOperations[] = {
    {"BLACKNESS", BLACKNESS, {{0x00, 0x00, 0x00}, {0x00, 0x00, 0x00}, {0x00}}},
    {"NOTSRCERASE", NOTSRCERASE, {{0x44, 0xD0, 0xCC}, {0x15, 0x30, 0x4C}, {0xC0}}},  // not (source or destination)
    {"NOTSRCCOPY", NOTSRCCOPY, {{0xCC, 0xDD, 0xEE}, {0x1F, 0x3F, 0x5F}, {0xCA}}},    // not source
    {"SRCERASE", SRCERASE, {{0x11, 0x20, 0x00}, {0x40, 0xC0, 0x80}, {0x30}}},        // source and not destination
    {"DSTINVERT", DSTINVERT, {{0x55, 0xF0, 0xCC}, {0x55, 0xF0, 0xCC}, {0xF0}}},      // not destination
    {"PATINVERT", PATINVERT, {{0x5A, 0x33, 0xB2}, {0x5A, 0x33, 0xB2}, {0x8E}}},      // pattern xor destination
    {"SRCINVERT", SRCINVERT, {{0x99, 0x2D, 0x22}, {0x4A, 0xCF, 0x93}, {0x3A}}},      // source xor destination
    {"SRCAND", SRCAND, {{0x22, 0x02, 0x11}, {0xA0, 0x00, 0x20}, {0x05}}},            // source and destination
    {"MERGEPAINT", MERGEPAINT, {{0xEE, 0xDF, 0xFF}, {0xBF, 0x3F, 0x7F}, {0xCF}}},    // not source or destination
    {"MERGECOPY", MERGECOPY, {{0x30, 0x20, 0x01}, {0xE0, 0x00, 0x80}, {0x30}}},      // pattern and source
    {"SRCCOPY", SRCCOPY, {{0x33, 0x22, 0x11}, {0xE0, 0xC0, 0xA0}, {0x35}}},
    {"SRCPAINT", SRCPAINT, {{0xBB, 0x2F, 0x33}, {0xEA, 0xCF, 0xB3}, {0x3F}}},  // source or destination
    {"PATCOPY", PATCOPY, {{0xF0, 0x3C, 0x81}, {0xF0, 0x3C, 0x81}, {0x81}}},
    {"PATPAINT", PATPAINT, {{0xFE, 0xFF, 0xFF}, {0xFF, 0x3F, 0xFF}, {0xFF}}},  // pattern or not source or destination
    {"WHITENESS", WHITENESS, {{0xFF, 0xFF, 0xFF}, {0xFF, 0xFF, 0xFF}, {0xFF}}},
    {"DSPDxax: the source chooses the pattern", 0x00E20746, {{0xB8, 0x2D, 0x23}, {0xEA, 0x0F, 0x93}, {0x3A}}},
    {"destination", 0x00AA0029, {{0xAA, 0x0F, 0x33}, {0xAA, 0x0F, 0x33}, {0x0F}}},
    // These have no function of their own.
    {"PSDPxax: the source chooses the destination", kPSDPxax, {{0xE2, 0x1E, 0x91}, {0xB0, 0x3C, 0x21}, {0x85}}},
    {"PDSxx: all three, exclusive-or", 0x00960169, {{0x69, 0x11, 0xA3}, {0xBA, 0xF3, 0x12}, {0xBB}}},
    {"DPna: destination and not pattern", 0x000A0329, {{0x0A, 0x03, 0x32}, {0x0A, 0x03, 0x32}, {0x0E}}},
    {"DSan: not (destination and source)", 0x007700E6, {{0xDD, 0xFD, 0xEE}, {0x5F, 0xFF, 0xDF}, {0xFA}}},
    {"Pn: not pattern", 0x000F0001, {{0x0F, 0xC3, 0x7E}, {0x0F, 0xC3, 0x7E}, {0x7E}}},
};

// What an operation does not read may also be missing.
TEST(TransferOperations, Examples) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    const bool usesSource = IndexUsesSource(static_cast<uint8_t>(operation.rop >> 16));
    for (std::size_t i = 0; i < std::size(kPixels); ++i) {
      TransferExample example = kPixels[i];
      example.expected = operation.expected[i];
      RunTransferExamples(operation.rop, {&example, 1});
      if (usesSource) continue;
      example.sourceBits = 0;
      RunTransferExamples(operation.rop, {&example, 1});
    }
  }
}

TEST(TransferOperations, OneBitExamples) {
  constexpr TransferExample kExamples[] = {
      {"bit 0 is the text color", 24, {0xAA, 0x0F, 0x33}, 1, {0}, kBrush, {0x12, 0x34, 0x56}},
      {"bit 0 is the low byte of the text color", 8, {0x0F}, 1, {0}, kBrush, {0x56}},
      {"bit 1 is the low byte of the background color", 8, {0x0F}, 1, {1}, kBrush, {0xA0}},
  };
  RunTransferExamples(SRCCOPY, kExamples);
}

TEST(TransferOperations, CommonRules) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    CheckTransferOperation(operation.rop);
  }
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
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalBrush hollow = BrushRecord(BS_HOLLOW);
  for (const DeviceOptions& options : DeviceClasses({.width = 8, .height = 2})) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    TransferCall call{.size = {8, 2}, .rop = 0x01000042, .brush = &hollow, .drawMode = &mode};
    EXPECT_TRUE(TransferPaintsNothing(device, call));
    call.rop = BLACKNESS;
    EXPECT_TRUE(TransferPaints(device, call, nullptr, {0, 0, 8, 2}));
  }
}

// Against the truth table, with every kind of brush.
void CheckAll(uint16_t depth, uint16_t resolution, const SourceForm& form) {
  constexpr int32_t kWidth = 37, kHeight = 9;
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

}  // namespace
}  // namespace qnv::test
