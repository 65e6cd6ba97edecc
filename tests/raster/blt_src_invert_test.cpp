// Source xor destination; the pattern has no part in it.
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr TransferExample kExamples[] = {
    {"24-bit source, bytes exchanged", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}, 0x000000, {0x99, 0x2D, 0x22}},
    {"24-bit source, other bytes", 24, {0x00, 0xFF, 0x5C}, 24, {0xF8, 0x0C, 0xA5}, 0x000000, {0xA5, 0xF3, 0xA4}},
    {"bit 0 is the text colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x00}, 0x000000, {0xB8, 0x3B, 0x65}},
    {"bit 1 is the background colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x01}, 0x000000, {0x4A, 0xCF, 0x93}},
    {"8-bit source", 8, {0x0F}, 8, {0x35}, 0x000000, {0x3A}},
    {"bit 0 is the low byte of the text colour", 8, {0x0F}, 1, {0x00}, 0x000000, {0x59}},
    {"bit 1 is the low byte of the background colour", 8, {0x0F}, 1, {0x01}, 0x000000, {0xAF}},
};

TEST(BltSrcInvert, Examples) { RunTransferExamples(SRCINVERT, kExamples); }

TEST(BltSrcInvert, CommonRules) { CheckTransferOperation(SRCINVERT); }

}  // namespace
}  // namespace qnv::test
