// Not destination.
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr TransferExample kExamples[] = {
    {"24 bits", 24, {0xAA, 0x0F, 0x33}, 0, {}, 0x000000, {0x55, 0xF0, 0xCC}},
    {"24 bits, black and white", 24, {0x00, 0xFF, 0x5C}, 0, {}, 0x000000, {0xFF, 0x00, 0xA3}},
    {"8 bits", 8, {0x0F}, 0, {}, 0x000000, {0xF0}},
    {"8 bits, mixed", 8, {0x5A}, 0, {}, 0x000000, {0xA5}},
};

TEST(BltDstInvert, Examples) { RunTransferExamples(DSTINVERT, kExamples); }

TEST(BltDstInvert, CommonRules) { CheckTransferOperation(DSTINVERT); }

}  // namespace
}  // namespace qnv::test
