// Half-open rectangles: intersection, and what counts as empty.
#include "raster/rect.h"

#include <gtest/gtest.h>

namespace qnv::test {
namespace {

bool Same(const Rect& a, const Rect& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

TEST(Rect, SetStoresTheFourEdges) {
  Rect out{};
  RectSet(out, -1, 2, INT32_MAX, INT32_MIN);
  EXPECT_TRUE(Same(out, {-1, 2, INT32_MAX, INT32_MIN}));
}

TEST(Rect, Intersection) {
  constexpr Rect kEmpty{0, 0, 0, 0};
  const struct {
    const char* name;
    Rect a, b, both;
  } cases[] = {
      {"overlap", {1, 2, 10, 20}, {5, -3, 30, 9}, {5, 2, 10, 9}},
      {"one within the other", {-9, -9, 9, 9}, {-1, -2, 3, 4}, {-1, -2, 3, 4}},
      {"one pixel", {0, 0, 5, 5}, {4, 4, 9, 9}, {4, 4, 5, 5}},
      {"touching columns", {0, 0, 5, 5}, {5, 0, 9, 5}, kEmpty},
      {"touching rows", {0, 0, 5, 5}, {0, 5, 5, 9}, kEmpty},
      {"inverted columns", {5, 0, 0, 5}, {0, 0, 9, 9}, kEmpty},
      {"inverted rows", {0, 5, 5, 0}, {0, 0, 9, 9}, kEmpty},
      {"all numbers", {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, {7, 8, 9, 10}, {7, 8, 9, 10}},
  };
  for (const auto& c : cases) {
    Rect out{3, 3, 3, 3};
    EXPECT_EQ(RectIntersect(out, c.a, c.b), !Same(c.both, kEmpty)) << c.name;
    EXPECT_TRUE(Same(out, c.both)) << c.name;
    // The result may lie in either of them.
    Rect first = c.a, second = c.b;
    RectIntersect(first, first, c.b);
    RectIntersect(second, c.a, second);
    EXPECT_TRUE(Same(first, c.both) && Same(second, c.both)) << c.name;
  }
}

}  // namespace
}  // namespace qnv::test
