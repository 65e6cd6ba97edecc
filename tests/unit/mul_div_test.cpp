#include "raster/mul_div.h"

#include <gtest/gtest.h>

namespace qnv {
namespace {

struct Case {
  const char* name;
  int32_t value, numerator, denominator;
  int32_t expected;
};

constexpr Case kCases[] = {
    {"exact", 10, 720, 360, 20},
    {"half goes up", 19, 360, 720, 10},
    {"below half", 1, 1, 3, 0},
    {"above half", 2, 1, 3, 1},
    {"negative half goes away from zero", -19, 360, 720, -10},
    {"negative below half", -1, 1, 3, 0},
    {"negative divisor", 19, 360, -720, -10},
    {"both negative", -19, 360, -720, 10},
    {"zero divisor", 5, 5, 0, -1},
    {"zero over zero", 0, 0, 0, -1},
    {"product beyond 32 bits", INT32_MAX, 1000, 1000, INT32_MAX},
    {"overflow", INT32_MAX, 2, 1, -1},
    {"negative overflow", INT32_MIN, 2, 1, -1},
    {"by zero numerator", 12345, 0, 7, 0},
    {"most negative quotient", INT32_MIN + 1, 1, 1, INT32_MIN + 1},
    {"one below it is an overflow", -32768, 65536, 1, -1},
    {"largest quotient", INT32_MAX, 1, 1, INT32_MAX},
};

TEST(MulDiv, RoundsHalvesAwayFromZero) {
  for (const Case& c : kCases) EXPECT_EQ(PortableMulDiv(c.value, c.numerator, c.denominator), c.expected) << c.name;
}

// On Windows this holds our function against the kernel's own.
TEST(MulDiv, EqualsThePlatformsOwn) {
  for (const Case& c : kCases) EXPECT_EQ(MulDiv(c.value, c.numerator, c.denominator), c.expected) << c.name;
  constexpr int32_t kValues[] = {0,         1,
                                 -1,        2,
                                 -2,        3,
                                 -3,        7,
                                 359,       360,
                                 719,       720,
                                 -720,      1439,
                                 32767,     -32768,
                                 65535,     65536,
                                 1000003,   -999983,
                                 46341,     99999999,
                                 -99999999, INT32_MAX - 1,
                                 INT32_MAX, INT32_MIN + 1};
  for (const int32_t value : kValues) {
    for (const int32_t numerator : kValues) {
      for (const int32_t denominator : kValues) {
        ASSERT_EQ(MulDiv(value, numerator, denominator), PortableMulDiv(value, numerator, denominator))
            << value << " * " << numerator << " / " << denominator;
      }
    }
  }
}

}  // namespace
}  // namespace qnv
