// Cuts pictures so that the page does not depend on where its bands lie.
#include "qnvtool/paint/picture_strips.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace qnv::tool {
namespace {

// Whether the rasteriser finds the same row boundaries from every start. With n source rows over r page rows the
// boundaries lie at multiples of r / n; let m be n / gcd(n, r), the denominator of the reduced fraction. If m divides
// 65536, every step is exact. If m is odd, every boundary is at least 1 / (2 m) away from the middle of a page row, and
// the errors of all steps together are less than (n + 2) / 65536.
bool IsStable(int sourceRows, int rows) {
  const int64_t n = std::max(sourceRows, 1);
  const int64_t m = n / std::gcd(n, int64_t{rows});
  if (65536 % m == 0) return true;
  return m % 2 == 1 && 2 * m * (n + 2) < 65536;
}

// The page row where source row `row` begins, rounded.
int Boundary(int row, int sourceRows, int top, int rows) {
  return top + static_cast<int>((int64_t{row} * rows * 2 + sourceRows) / (int64_t{sourceRows} * 2));
}

}  // namespace

// Takes as many rows as are stable at once; a single row always is.
std::vector<Strip> CutIntoStrips(int sourceRows, int top, int rows, int maxRows) {
  constexpr int kMaxRows = 127;
  maxRows = std::max(maxRows, kMaxRows);
  std::vector<Strip> strips;
  int row = 0;
  while (row < sourceRows) {
    const int begin = Boundary(row, sourceRows, top, rows);
    const auto rowsOf = [&](int count) { return Boundary(row + count, sourceRows, top, rows) - begin; };
    int count = std::min(sourceRows - row, maxRows);
    if (!IsStable(count, rowsOf(count))) {
      count = std::min(count, kMaxRows);
      while (!IsStable(count, rowsOf(count))) --count;  // a single row always is
    }
    if (rowsOf(count) > 0) strips.push_back({row, count, begin, rowsOf(count)});
    row += count;
  }
  return strips;
}

std::vector<Strip> CutAtKeptRows(int sourceRows, int top, int rows, const std::function<bool(int)>& isKept,
                                 int maxRows) {
  std::vector<Strip> strips;
  for (const Strip& strip : CutIntoStrips(sourceRows, top, rows, maxRows)) {
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
