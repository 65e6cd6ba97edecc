#include "picture_strips.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace qnv::tool {
namespace {

// With n source rows over r page rows, boundaries lie at multiples of r / n. Let m be n in lowest terms. Where m
// divides 65536 every step is exact. Where m is odd a boundary stays at least 1 / (2 m) away from every middle of a
// page row, and the steps err by less than (n + 2) / 65536 together.
bool IsStable(int sourceRows, int rows) {
  const int64_t n = std::max(sourceRows, 1);
  const int64_t m = n / std::gcd(n, int64_t{rows});
  if (65536 % m == 0) return true;
  return m % 2 == 1 && 2 * m * (n + 2) < 65536;
}

// Page row where source row `row` begins, halves downwards.
int Boundary(int row, int sourceRows, int top, int rows) {
  return top + static_cast<int>((int64_t{row} * rows * 2 + sourceRows) / (int64_t{sourceRows} * 2));
}

}  // namespace

std::vector<Strip> CutIntoStrips(int sourceRows, int top, int rows) {
  constexpr int kTallest = 127;
  std::vector<Strip> strips;
  int row = 0;
  while (row < sourceRows) {
    const int begin = Boundary(row, sourceRows, top, rows);
    const auto rowsOf = [&](int count) { return Boundary(row + count, sourceRows, top, rows) - begin; };
    int count = sourceRows - row;
    if (!IsStable(count, rowsOf(count))) {
      count = std::min(count, kTallest);
      while (!IsStable(count, rowsOf(count))) --count;  // a single row always is
    }
    if (rowsOf(count) > 0) strips.push_back({row, count, begin, rowsOf(count)});
    row += count;
  }
  return strips;
}

std::vector<Strip> CutAtKeptRows(int sourceRows, int top, int rows, const std::function<bool(int)>& isKept) {
  std::vector<Strip> strips;
  for (const Strip& strip : CutIntoStrips(sourceRows, top, rows)) {
    if (strip.rows <= strip.sourceRows) {
      strips.push_back(strip);
      continue;
    }
    for (int i = 0; i < strip.sourceRows; ++i) {
      int begin = Boundary(i, strip.sourceRows, strip.top, strip.rows);
      const int end = Boundary(i + 1, strip.sourceRows, strip.top, strip.rows);
      while (begin < end && !isKept(begin)) ++begin;
      if (begin < end) strips.push_back({strip.sourceTop + i, 1, begin, end - begin});
    }
  }
  return strips;
}

}  // namespace qnv::tool
