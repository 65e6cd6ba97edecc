// Not (source or destination).
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr TransferExample kExamples[] = {
    {"24-bit source, bytes exchanged", 24, {0xAA, 0x0F, 0x33}, 24, {0x11, 0x22, 0x33}, 0x000000, {0x44, 0xD0, 0xCC}},
    {"24-bit source, other bytes", 24, {0x00, 0xFF, 0x5C}, 24, {0xF8, 0x0C, 0xA5}, 0x000000, {0x5A, 0x00, 0x03}},
    {"bit 0 is the text colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x00}, 0x000000, {0x45, 0xC0, 0x88}},
    {"bit 1 is the background colour", 24, {0xAA, 0x0F, 0x33}, 1, {0x01}, 0x000000, {0x15, 0x30, 0x4C}},
    {"8-bit source", 8, {0x0F}, 8, {0x35}, 0x000000, {0xC0}},
    {"bit 0 is the low byte of the text colour", 8, {0x0F}, 1, {0x00}, 0x000000, {0xA0}},
    {"bit 1 is the low byte of the background colour", 8, {0x0F}, 1, {0x01}, 0x000000, {0x50}},
};

TEST(BltNotSrcErase, Examples) { RunTransferExamples(NOTSRCERASE, kExamples); }

TEST(BltNotSrcErase, CommonRules) { CheckTransferOperation(NOTSRCERASE); }

}  // namespace
}  // namespace qnv::test
