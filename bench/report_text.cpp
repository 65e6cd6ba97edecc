// Reports as text for a terminal.
#include <algorithm>
#include <cstring>

#include "report.h"

namespace qnv::bench {
namespace {

// A value, or a dash where there is none.
void PrintCell(double value, int width, int decimals, const char* unit = "") {
  if (value > 0) {
    std::printf(" %*.*f%s", width, decimals, value, unit);
  } else {
    std::printf(" %*s%*s", width, "-", static_cast<int>(std::strlen(unit)), "");
  }
}

}  // namespace

void PrintHeading(const Report& report) {
  std::printf("%s, %s, %s, %s%s\n", report.library.c_str(), report.platform.c_str(), report.cpu.c_str(),
              report.compiler.c_str(), report.quick ? ", quick: expect noise" : "");
}

void PrintLimits(const Report& report) {
  if (report.limits.empty()) return;
  std::printf("\nlimits of this machine, best loop of each kind\n");
  for (const LimitResult& limit : report.limits) {
    std::printf("  %-9s %d bytes a pixel  %-8s %7.2f GB/s  (%s)", limit.shape.c_str(), limit.bytesPerPixel,
                limit.kind.c_str(), limit.rate, limit.loop.c_str());
    if (limit.rateAtEnd > 0) std::printf("  at the end %7.2f", limit.rateAtEnd);
    std::printf("\n");
  }
  std::fflush(stdout);
}

void PrintRowHeading() {
  std::printf("\n%-42s %-9s %11s %7s %8s %7s %6s %8s %6s %6s\n", "row", "shape", "ns", "median", "GB/s", "of", "share",
              "M items", "gain", "rival");
  std::fflush(stdout);
}

// One line: time, median, rate, share of the limit, gain, ratio to the rival, and levels.
void PrintRow(const RowResult& row) {
  std::printf("%-42s %-9s", row.name.c_str(), row.shape.c_str());
  PrintCell(row.calls > 0 ? row.bestNs / row.calls : row.bestNs, 11, 1);
  PrintCell(row.bestNs > 0 ? row.medianNs / row.bestNs : 0, 6, 2, "x");
  PrintCell(row.Rate(), 8, 2);
  std::printf(" %7s", row.limit.empty() ? "-" : row.limit.c_str());
  PrintCell(row.Share(), 6, 2);
  PrintCell(row.bestNs > 0 ? row.items / row.bestNs * 1e3 : 0, 8, 1);
  PrintCell(row.Gain(), 5, 1, "x");
  PrintCell(row.RivalRatio(), 5, 1, "x");
  std::printf("%s", row.rivalSame ? "=" : " ");
  for (const auto& [level, ns] : row.levels) {
    std::printf("  %s %.2fx", level.c_str(), row.bestNs > 0 ? (row.plainNs > 0 ? row.plainNs : row.bestNs) / ns : 0);
  }
  if (row.combineRate > 0) std::printf("  (of combine %.2f)", row.Rate() / row.combineRate);
  if (!row.note.empty()) std::printf("  %s", row.note.c_str());
  std::printf("\n");
  std::fflush(stdout);
}

void PrintDerived(const Report& report) {
  if (report.derived.empty()) return;
  std::printf("\n");
  for (const DerivedResult& figure : report.derived) std::printf("%-60s %8.3f\n", figure.name.c_str(), figure.value);
}

void PrintComparison(const Report& before, const Report& now) {
  std::printf("\n%-42s %-9s %12s %12s %8s\n", "row", "shape", "ns before", "ns now", "faster");
  std::vector<double> ratios;
  for (const RowResult& row : now.rows) {
    const auto old = std::find_if(before.rows.begin(), before.rows.end(), [&](const RowResult& candidate) {
      return candidate.name == row.name && candidate.shape == row.shape;
    });
    if (old == before.rows.end() || old->bestNs <= 0 || row.bestNs <= 0) continue;
    ratios.push_back(old->bestNs / row.bestNs);
    std::printf("%-42s %-9s %12.1f %12.1f %7.2fx%s\n", row.name.c_str(), row.shape.c_str(), old->bestNs, row.bestNs,
                ratios.back(), ratios.back() < 0.95 ? "  slower" : "");
  }
  if (ratios.empty()) {
    std::printf("no row in common\n");
  } else {
    std::printf("%zu rows, geometric mean %.3fx\n", ratios.size(), GeometricMean(ratios));
  }
}

}  // namespace qnv::bench
