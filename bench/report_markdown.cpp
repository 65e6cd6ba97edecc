// Reports as the tables of docs/benchmarks.md, several side by side.
#include <algorithm>
#include <regex>

#include "report.h"

namespace qnv::bench {
namespace {

// A table of the document: the rows that it shows, by shape and by a regular expression over their names.
struct Section {
  const char* title;
  const char* shape;
  const char* pattern;
  bool calls;  // nanoseconds of a call instead of a rate
};

// The tables in the order of the document.
constexpr Section kSections[] = {
    {"Fills and raster operations of the pen, 1200 x 128", "band1200",
     "^(fill|patcopy|patinvert|invert|blackness|whiteness|rop2_(xor|mask|merge|not|notcopy))_.*(bgr24|gray8)$", false},
    {"Transfers from a source, 1200 x 128", "band1200", "^(src|notsrc|mergepaint|rop_).*(bgr24|gray8)$", false},
    {"Text, 1200 x 128", "band1200", "^text_.*(bgr24|gray8)$", false},
    {"Images copied, 1200 x 128", "band1200", "^stretch_.*_fwd_.*_copy_(bgr24|gray8)$", false},
    {"Images mirrored, and under other codes, 1200 x 128", "band1200",
     "^stretch_.*(_fwd_1to1_(rop|min)|_mirror_1to1_copy)_(bgr24|gray8)$", false},
    {"Special devices, 1200 x 128", "band1200", "_(scaled|scaledgray|dual|dualmarked)$", false},
    {"Fills and copies beyond the cache, 4960 x 128", "band4960",
     "^(fill_solid|fill_p8|invert|srccopy_.*|srcand_.*|stretch_24_fwd_1to1_copy)_(bgr24|gray8)$", false},
    {"Small calls", "call", "^(pixel|span|output|patblt|invert|srccopy|glyph)_.*(bgr24|gray8)$", true},
    {"Clipped-away work", "call", "^skip_.*(bgr24|scaled)$", true},
    {"Small calls on the special devices", "call",
     "^(pixel|span_7|output_one_span|patblt_8x8|glyph_opaque_8x16)_(scaled|scaledgray|dual|dualmarked)$", true},
};

std::string Number(double value, int decimals) {
  char text[40];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

std::string Ratio(double value) { return value > 0 ? Number(value, value < 10 ? 1 : 0) + "x" : "-"; }

// The cells of one report in the line of a row: rate or time, gain, and ratio to the rival.
std::string Cells(const RowResult* row, bool calls) {
  if (row == nullptr) return " - | - | - |";
  std::string cells = " ";
  if (calls) {
    cells += Number(row->calls > 0 ? row->bestNs / row->calls : row->bestNs, 1) + " ns";
  } else {
    cells += Number(row->Rate(), 1);
    if (row->Share() > 0) cells += " (" + Number(row->Share(), 2) + ")";
    if (row->items > 0) cells += ", " + Number(row->items / row->bestNs * 1e3, 0) + " M/s";
  }
  return cells + " | " + Ratio(row->Gain()) + " | " + Ratio(row->RivalRatio()) + " |";
}

const RowResult* Find(const Report& report, const std::string& name, const std::string& shape) {
  const auto found = std::find_if(report.rows.begin(), report.rows.end(),
                                  [&](const RowResult& row) { return row.name == name && row.shape == shape; });
  return found == report.rows.end() ? nullptr : &*found;
}

// A table with the rows that the first report has; other reports may lack some of them.
void AddSection(const Section& section, const std::vector<Report>& reports, std::string& out) {
  const std::regex pattern(section.pattern, std::regex::extended);
  std::string lines;
  for (const RowResult& row : reports.front().rows) {
    if (row.shape != section.shape || !std::regex_search(row.name, pattern)) continue;
    lines += "| `" + row.name + "` |";
    for (const Report& report : reports) lines += Cells(Find(report, row.name, row.shape), section.calls);
    lines += "\n";
  }
  if (lines.empty()) return;
  out += std::string("### ") + section.title + "\n\n| row |";
  std::string rule = "|---|";
  for (const Report& report : reports) {
    out += " " + report.platform + (section.calls ? "" : " GB/s (share)") + " | gain | rival |";
    rule += "---|---|---|";
  }
  out += "\n" + rule + "\n" + lines + "\n";
}

void AddLimits(const std::vector<Report>& reports, std::string& out) {
  out +=
      "### Limits\n\n| platform | shape | bytes a pixel | kind | GB/s | best loop | at the end |\n"
      "|---|---|---|---|---|---|---|\n";
  for (const Report& report : reports) {
    for (const LimitResult& limit : report.limits) {
      out += "| " + report.platform + " | " + limit.shape + " | " + std::to_string(limit.bytesPerPixel) + " | " +
             limit.kind + " | " + Number(limit.rate, 1) + " | " + limit.loop + " | " + Number(limit.rateAtEnd, 1) +
             " |\n";
    }
  }
  out += "\n";
}

void AddFigures(const std::vector<Report>& reports, std::string& out) {
  out += "### Figures made of several rows\n\n| platform | figure | value |\n|---|---|---|\n";
  for (const Report& report : reports) {
    for (const DerivedResult& figure : report.derived) {
      out += "| " + report.platform + " | " + figure.name + " | " + Number(figure.value, 3) + " |\n";
    }
  }
}

}  // namespace

std::string ReportsToMarkdown(const std::vector<Report>& reports) {
  std::string out;
  for (const Report& report : reports) {
    out += "- " + report.platform + ": " + report.library + ", " + report.compiler + ", " + report.cpu +
           (report.quick ? ", a quick run: expect noise" : "") + "\n";
  }
  out += "\n";
  AddLimits(reports, out);
  for (const Section& section : kSections) AddSection(section, reports, out);
  AddFigures(reports, out);
  return out;
}

}  // namespace qnv::bench
