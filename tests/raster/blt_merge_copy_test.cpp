// Pattern and source; the pattern is the prepared one even for a solid brush.
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr TransferExample kExamples[] = {
    {"24-bit source, bytes exchanged", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}, 0xF03C81, {0x30, 0x20, 0x01}},
    {"24-bit source, other bytes", 24, {0x00, 0xFF, 0x5C}, 24, {0xF8, 0x0C, 0xA5}, 0xF03C81, {0xA0, 0x0C, 0x80}},
    {"bit 0 is the text colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x00}, 0xF03C81, {0x10, 0x34, 0x00}},
    {"bit 1 is the background colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x01}, 0xF03C81, {0xE0, 0x00, 0x80}},
    {"8-bit source, bits 16..23 of the brush colour", 8, {0x0F}, 8, {0x35}, 0xF03C81, {0x30}},
    {"bit 0 is the low byte of the text colour", 8, {0x0F}, 1, {0x00}, 0xF03C81, {0x50}},
    {"bit 1 is the low byte of the background colour", 8, {0x0F}, 1, {0x01}, 0xF03C81, {0xA0}},
};

TEST(BltMergeCopy, Examples) { RunTransferExamples(MERGECOPY, kExamples); }

TEST(BltMergeCopy, CommonRules) { CheckTransferOperation(MERGECOPY); }

}  // namespace
}  // namespace qnv::test
