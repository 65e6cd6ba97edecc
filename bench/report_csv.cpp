// A report as CSV: one line for each row.
#include "report.h"

namespace qnv::bench {
namespace {

std::string Number(double value) {
  char digits[40];
  std::snprintf(digits, sizeof digits, "%.6g", value);
  return digits;
}

}  // namespace

std::string ReportToCsv(const Report& report) {
  std::string out =
      "row,shape,best_ns,median_ns,calls,bytes,source_bytes,items,gb_per_s,source_gb_per_s,limit,limit_gb_per_s,share,"
      "combine_gb_per_s,plain_ns,gain,rival,rival_ns,rival_ratio";
  // All rows have been measured with the same builds.
  if (!report.rows.empty()) {
    for (const auto& level : report.rows.front().levels) out += "," + level.first + "_ns";
  }
  out += "\n";
  for (const RowResult& row : report.rows) {
    out += row.name + "," + row.shape;
    for (const double value :
         {row.bestNs, row.medianNs, row.calls, row.bytes, row.sourceBytes, row.items, row.Rate(), row.SourceRate()}) {
      out += "," + Number(value);
    }
    out += "," + row.limit;
    for (const double value : {row.limitRate, row.Share(), row.combineRate, row.plainNs, row.Gain()}) {
      out += "," + Number(value);
    }
    out += "," + row.rival + "," + Number(row.rivalNs) + "," + Number(row.RivalRatio());
    for (const auto& level : row.levels) out += "," + Number(level.second);
    out += "\n";
  }
  return out;
}

}  // namespace qnv::bench
