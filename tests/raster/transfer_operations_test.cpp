// The sixteen operations that have a function of their own: what each makes of the same seven pixels, and the rules
// that hold for all of them.
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr uint32_t kDSPDxax = 0x00E20746;
constexpr uint32_t kBrush = 0x00F03C81;

struct ExamplePixel {
  const char* name;
  uint16_t depth;
  PixelBytes before;
  uint8_t sourceBits;
  PixelBytes source;
};

constexpr std::size_t kPixelCount = 7;
constexpr ExamplePixel kPixels[kPixelCount] = {
    {"24-bit source, bytes exchanged", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}},
    {"24-bit source, other bytes", 24, {0x00, 0xFF, 0x5C}, 24, {0xF8, 0x0C, 0xA5}},
    {"bit 0 is the text color", 24, {0xAA, 0x0F, 0x33}, 1, {0x00}},
    {"bit 1 is the background color", 24, {0xAA, 0x0F, 0x33}, 1, {0x01}},
    {"8-bit source", 8, {0x0F}, 8, {0x35}},
    {"bit 0 is the low byte of the text color", 8, {0x0F}, 1, {0x00}},
    {"bit 1 is the low byte of the background color", 8, {0x0F}, 1, {0x01}},
};

// The band pixel that each of kPixels becomes. On an 8-bit band a solid brush gives its low byte, except in the three
// operations that take even a solid color from the prepared pattern: those see its bits 16..23.
struct Operation {
  const char* name;
  uint32_t rop;
  PixelBytes expected[kPixelCount];
};

constexpr Operation kOperations[] = {
    {"BLACKNESS: every pixel becomes 0",
     BLACKNESS,
     {{0x00, 0x00, 0x00}, {0x00, 0x00, 0x00}, {0x00, 0x00, 0x00}, {0x00, 0x00, 0x00}, {0x00}, {0x00}, {0x00}}},
    {"NOTSRCERASE: not (source or destination)",
     NOTSRCERASE,
     {{0x44, 0xD0, 0xCC}, {0x5A, 0x00, 0x03}, {0x45, 0xC0, 0x88}, {0x15, 0x30, 0x4C}, {0xC0}, {0xA0}, {0x50}}},
    {"NOTSRCCOPY: not source",
     NOTSRCCOPY,
     {{0xCC, 0xDD, 0xEE}, {0x5A, 0xF3, 0x07}, {0xED, 0xCB, 0xA9}, {0x1F, 0x3F, 0x5F}, {0xCA}, {0xA9}, {0x5F}}},
    {"SRCERASE: source and not destination",
     SRCERASE,
     {{0x11, 0x20, 0x00}, {0xA5, 0x00, 0xA0}, {0x10, 0x30, 0x44}, {0x40, 0xC0, 0x80}, {0x30}, {0x50}, {0xA0}}},
    {"DSTINVERT: not destination",
     DSTINVERT,
     {{0x55, 0xF0, 0xCC}, {0xFF, 0x00, 0xA3}, {0x55, 0xF0, 0xCC}, {0x55, 0xF0, 0xCC}, {0xF0}, {0xF0}, {0xF0}}},
    {"PATINVERT: pattern xor destination",
     PATINVERT,
     {{0x5A, 0x33, 0xB2}, {0xF0, 0xC3, 0xDD}, {0x5A, 0x33, 0xB2}, {0x5A, 0x33, 0xB2}, {0x8E}, {0x8E}, {0x8E}}},
    {"SRCINVERT: source xor destination; the pattern has no part in it",
     SRCINVERT,
     {{0x99, 0x2D, 0x22}, {0xA5, 0xF3, 0xA4}, {0xB8, 0x3B, 0x65}, {0x4A, 0xCF, 0x93}, {0x3A}, {0x59}, {0xAF}}},
    {"SRCAND: source and destination",
     SRCAND,
     {{0x22, 0x02, 0x11}, {0x00, 0x0C, 0x58}, {0x02, 0x04, 0x12}, {0xA0, 0x00, 0x20}, {0x05}, {0x06}, {0x00}}},
    {"MERGEPAINT: not source or destination",
     MERGEPAINT,
     {{0xEE, 0xDF, 0xFF}, {0x5A, 0xFF, 0x5F}, {0xEF, 0xCF, 0xBB}, {0xBF, 0x3F, 0x7F}, {0xCF}, {0xAF}, {0x5F}}},
    {"MERGECOPY: pattern and source, prepared even for a solid brush",
     MERGECOPY,
     {{0x30, 0x20, 0x01}, {0xA0, 0x0C, 0x80}, {0x10, 0x34, 0x00}, {0xE0, 0x00, 0x80}, {0x30}, {0x50}, {0xA0}}},
    {"SRCCOPY: the source, its bytes turned into the order of the band",
     SRCCOPY,
     {{0x33, 0x22, 0x11}, {0xA5, 0x0C, 0xF8}, {0x12, 0x34, 0x56}, {0xE0, 0xC0, 0xA0}, {0x35}, {0x56}, {0xA0}}},
    {"SRCPAINT: source or destination",
     SRCPAINT,
     {{0xBB, 0x2F, 0x33}, {0xA5, 0xFF, 0xFC}, {0xBA, 0x3F, 0x77}, {0xEA, 0xCF, 0xB3}, {0x3F}, {0x5F}, {0xAF}}},
    {"PATCOPY: the pattern",
     PATCOPY,
     {{0xF0, 0x3C, 0x81}, {0xF0, 0x3C, 0x81}, {0xF0, 0x3C, 0x81}, {0xF0, 0x3C, 0x81}, {0x81}, {0x81}, {0x81}}},
    {"PATPAINT: pattern or not source or destination, prepared even for a solid brush",
     PATPAINT,
     {{0xFE, 0xFF, 0xFF}, {0xFA, 0xFF, 0xDF}, {0xFF, 0xFF, 0xBB}, {0xFF, 0x3F, 0xFF}, {0xFF}, {0xFF}, {0xFF}}},
    {"WHITENESS: every pixel becomes all ones",
     WHITENESS,
     {{0xFF, 0xFF, 0xFF}, {0xFF, 0xFF, 0xFF}, {0xFF, 0xFF, 0xFF}, {0xFF, 0xFF, 0xFF}, {0xFF}, {0xFF}, {0xFF}}},
    {"kDSPDxax: where the source is 1 the pattern, elsewhere the destination, prepared even for a solid brush",
     kDSPDxax,
     {{0xB8, 0x2D, 0x23}, {0xA0, 0xFF, 0x84}, {0xB8, 0x3F, 0x21}, {0xEA, 0x0F, 0x93}, {0x3A}, {0x59}, {0xAF}}},
};

TEST(TransferOperations, Examples) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    for (std::size_t i = 0; i < kPixelCount; ++i) {
      const ExamplePixel& p = kPixels[i];
      const TransferExample example[] = {
          {p.name, p.depth, p.before, p.sourceBits, p.source, kBrush, operation.expected[i]}};
      RunTransferExamples(operation.rop, example);
    }
  }
}

// What an operation does not read may also be missing.
TEST(TransferOperations, ExamplesWithoutSource) {
  for (const Operation& operation : kOperations) {
    if (IndexUsesSource(static_cast<uint8_t>(operation.rop >> 16))) continue;
    SCOPED_TRACE(operation.name);
    const PixelBytes(&e)[kPixelCount] = operation.expected;
    const TransferExample examples[] = {{"24 bits", 24, kPixels[0].before, 0, {}, kBrush, e[0]},
                                        {"24 bits, black and white", 24, kPixels[1].before, 0, {}, kBrush, e[1]},
                                        {"8 bits", 8, kPixels[4].before, 0, {}, kBrush, e[4]}};
    RunTransferExamples(operation.rop, examples);
  }
}

TEST(TransferOperations, CommonRules) {
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    CheckTransferOperation(operation.rop);
  }
}

}  // namespace
}  // namespace qnv::test
