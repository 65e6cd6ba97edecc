// Not source.
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr TransferExample kExamples[] = {
    {"24-bit source, bytes exchanged", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}, 0x000000, {0xCC, 0xDD, 0xEE}},
    {"24-bit source, other bytes", 24, {0x00, 0xFF, 0x5C}, 24, {0xF8, 0x0C, 0xA5}, 0x000000, {0x5A, 0xF3, 0x07}},
    {"bit 0 is the text colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x00}, 0x000000, {0xED, 0xCB, 0xA9}},
    {"bit 1 is the background colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x01}, 0x000000, {0x1F, 0x3F, 0x5F}},
    {"8-bit source", 8, {0x0F}, 8, {0x35}, 0x000000, {0xCA}},
    {"bit 0 is the low byte of the text colour", 8, {0x0F}, 1, {0x00}, 0x000000, {0xA9}},
    {"bit 1 is the low byte of the background colour", 8, {0x0F}, 1, {0x01}, 0x000000, {0x5F}},
};

TEST(BltNotSrcCopy, Examples) { RunTransferExamples(NOTSRCCOPY, kExamples); }

TEST(BltNotSrcCopy, CommonRules) { CheckTransferOperation(NOTSRCCOPY); }

}  // namespace
}  // namespace qnv::test
