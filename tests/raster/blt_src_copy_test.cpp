// The source, its bytes turned into the order of the band.
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr TransferExample kExamples[] = {
    {"24-bit source, bytes exchanged", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}, 0x000000, {0x33, 0x22, 0x11}},
    {"24-bit source, other bytes", 24, {0x00, 0xFF, 0x5C}, 24, {0xF8, 0x0C, 0xA5}, 0x000000, {0xA5, 0x0C, 0xF8}},
    {"bit 0 is the text colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x00}, 0x000000, {0x12, 0x34, 0x56}},
    {"bit 1 is the background colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x01}, 0x000000, {0xE0, 0xC0, 0xA0}},
    {"8-bit source", 8, {0x0F}, 8, {0x35}, 0x000000, {0x35}},
    {"bit 0 is the low byte of the text colour", 8, {0x0F}, 1, {0x00}, 0x000000, {0x56}},
    {"bit 1 is the low byte of the background colour", 8, {0x0F}, 1, {0x01}, 0x000000, {0xA0}},
};

TEST(BltSrcCopy, Examples) { RunTransferExamples(SRCCOPY, kExamples); }

TEST(BltSrcCopy, CommonRules) { CheckTransferOperation(SRCCOPY); }

}  // namespace
}  // namespace qnv::test
