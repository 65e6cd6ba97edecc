// The pattern.
#include <gtest/gtest.h>

#include "support/transfer_battery.h"

namespace qnv::test {
namespace {

constexpr TransferExample kExamples[] = {
    {"solid brush, high byte first", 24, {0xAA, 0x0F, 0x33}, 0, {}, 0xF03C81, {0xF0, 0x3C, 0x81}},
    {"over black and white", 24, {0x00, 0xFF, 0x5C}, 0, {}, 0xF03C81, {0xF0, 0x3C, 0x81}},
    {"8 bits, low byte of the brush colour", 8, {0x0F}, 0, {}, 0xF03C81, {0x81}},
};

TEST(BltPatCopy, Examples) { RunTransferExamples(PATCOPY, kExamples); }

TEST(BltPatCopy, CommonRules) { CheckTransferOperation(PATCOPY); }

}  // namespace
}  // namespace qnv::test
