// The self-test of qnvbench: tables of names, options and files that are taken or refused.
#include "self_test.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <string>

#include "bench_memory.h"
#include "bench_table.h"
#include "memory_limits.h"
#include "options.h"
#include "page_calls.h"
#include "report.h"

namespace qnv::bench {
namespace {

int checks = 0;
int failures = 0;

// Counts a check and prints `what` when it fails.
void Expect(bool good, const std::string& what) {
  ++checks;
  if (good) return;
  ++failures;
  std::fprintf(stderr, "self-test: %s\n", what.c_str());
}

void TestRowNames() {
  struct Case {
    const char* name;
    const char* operation;  // null: refused
    const char* source;
    Band band;
  };
  constexpr Case kCases[] = {
      {"fill_solid_bgr24", "fill", "solid", Band::kBgr24},
      {"invert_gray8", "invert", "", Band::kGray8},
      {"rop2_xor_solid_gray8", "rop2_xor", "solid", Band::kGray8},
      {"rop_b8_rgb24_pattern_bgr24", "rop_b8", "rgb24_pattern", Band::kBgr24},
      {"srccopy_gray8_gray8", "srccopy", "gray8", Band::kGray8},
      {"stretch_rle8_mirror_x1.37_min_scaledgray", "stretch_rle8_mirror_x1.37_min", "", Band::kScaledGray},
      {"solid_hatch_dual", "solid", "hatch", Band::kDual},  // something is left for the operation
      {"page_50_bands_dualmarked", "page_50_bands", "", Band::kDualMarked},
      {"", nullptr, nullptr, Band::kBgr24},
      {"bgr24", nullptr, nullptr, Band::kBgr24},
      {"_bgr24", nullptr, nullptr, Band::kBgr24},
      {"fill_solid", nullptr, nullptr, Band::kBgr24},
      {"fill_solid_bgr25", nullptr, nullptr, Band::kBgr24},
      {"fill_solid_bgr24_", nullptr, nullptr, Band::kBgr24},
      {"fill__solid_bgr24", nullptr, nullptr, Band::kBgr24},
  };
  for (const Case& c : kCases) {
    RowName parts;
    const bool good = ParseRowName(c.name, parts);
    Expect(good == (c.operation != nullptr), std::string("row name '") + c.name + "' taken or refused wrongly");
    if (!good || c.operation == nullptr) continue;
    Expect(parts.operation == c.operation && parts.source == c.source && parts.band == c.band,
           std::string("row name '") + c.name + "' taken apart wrongly");
    Expect(ComposeRowName(parts) == c.name, std::string("row name '") + c.name + "' does not come together again");
  }
}

// Names are unique and say what the rows paint, and the rows that the document shows exist.
void TestTable() {
  std::set<std::string> names;
  for (const Row& row : AllRows()) {
    RowName parts;
    Expect(names.insert(row.name).second, row.name + " is there twice");
    Expect(ParseRowName(row.name, parts) && ComposeRowName(parts) == row.name, row.name + " is no row name");
    Expect(parts.band == row.spec.band, row.name + " names another band than it paints");
    Expect(!row.shapes.empty(), row.name + " has no shape");
  }
  for (const char* name : {"fill_solid_bgr24", "invert_bgr24", "rop2_xor_solid_gray8", "rop2_mask_hatch_bgr24",
                           "patcopy_p16_bgr24", "srccopy_mono_bgr24", "rop_all_rgb24_pattern_bgr24",
                           "text_opaque_8x16_bgr24", "stretch_rle8_mirror_third_min_gray8", "pixel_bgr24",
                           "span_30_gray8", "patblt_8x8_scaled", "output_one_span_dualmarked", "page_50_bands_bgr24"}) {
    Expect(names.count(name) == 1, std::string(name) + " is missing");
  }
}

// The number of rows that a filter takes; -1 when it is refused.
int CountTaken(const Options& options) {
  RowFilter filter;
  std::string error;
  if (!filter.Set(options, error)) return -1;
  int taken = 0;
  for (const Row& row : AllRows()) taken += filter.Takes(row) ? 1 : 0;
  return taken;
}

void TestFilter() {
  Options options;
  options.filters = {"^fill_solid_(bgr24|gray8)$"};
  Expect(CountTaken(options) == 2, "a filter with two alternatives takes two rows");
  options.filters.push_back("^invert_bgr24$");
  Expect(CountTaken(options) == 3, "a second filter adds its row");
  options.filters = {"no such row"};
  Expect(CountTaken(options) == 0, "a filter that fits nothing takes nothing");
  options.filters = {"^rop_01_rgb24"};
  Expect(CountTaken(options) == 0, "details are left out");
  options.detail = true;
  Expect(CountTaken(options) == 1, "details are shown on request");
  options.filters = {"fill_(solid"};
  Expect(CountTaken(options) == -1, "a broken expression is refused");

  options = {};
  options.shapes = {"tile"};
  RowFilter filter;
  std::string error;
  Expect(filter.Set(options, error) && filter.Takes(Shape::kTile) && !filter.Takes(Shape::kPage),
         "a shape is taken, the others are not");
}

void TestOptions() {
  struct Case {
    std::vector<const char*> arguments;
    bool good;
  };
  const Case cases[] = {
      {{"qnvbench"}, true},
      {{"qnvbench", "--quick", "--filter", "fill", "--filter=invert"}, true},
      {{"qnvbench", "--shape", "tile,band1200"}, true},
      {{"qnvbench", "--shape", "tile,circle"}, false},
      {{"qnvbench", "--level", "sse2=some.so"}, true},
      {{"qnvbench", "--level", "some.so"}, false},
      {{"qnvbench", "--samples", "2"}, false},
      {{"qnvbench", "--samples", "many"}, false},
      {{"qnvbench", "--json"}, false},
      {{"qnvbench", "--speed", "high"}, false},
      {{"qnvbench", "fill"}, false},
  };
  for (const Case& c : cases) {
    Options options;
    std::string error;
    const bool good = ParseOptions(static_cast<int>(c.arguments.size()), c.arguments.data(), options, error);
    Expect(good == c.good, std::string("options ending in '") + c.arguments.back() + "'");
    Expect(good || !error.empty(), "refused options say why");
  }
}

// Texts that are no JSON are told from those that are no report.
void TestJson() {
  const char* const kGood[] = {
      "null",
      " true ",
      "-12.5e2",
      "\"a\\\"\\\\\\n\\u00e4\"",
      "[]",
      "{}",
      "[1, [2, {\"a\": [false]}]]",
      "{\"a\": 1, \"b\": \"x\"}",
  };
  const char* const kBad[] = {
      "", "tru", "1 2", "[1,]", "[1", "{\"a\" 1}", "{a: 1}", "\"open", "\"\\x\"", "\"\\u12\"", "1.2.3", "-", "{\"a\":}",
  };
  const auto errorOf = [](const std::string& text) {
    Report report;
    std::string error;
    Expect(!ReportFromJson(text, report, error), "not refused: " + text);
    return error;
  };
  for (const char* text : kGood) {
    Expect(errorOf(text) == "not a report of this program", std::string("refused for another reason: ") + text);
  }
  for (const char* text : kBad) {
    Expect(errorOf(text).find("parse error") != std::string::npos, std::string("taken for JSON: ") + text);
  }
  Expect(errorOf(std::string(100000, '[')).find("parse error") != std::string::npos, "endless nesting is refused");
}

void TestReport() {
  Report report;
  report.cpu = "a \"processor\"";
  report.platform = "linux-x64";
  report.quick = true;
  RowResult row;
  row.name = "fill_solid_bgr24";
  row.shape = "band1200";
  row.bestNs = 12345.5;
  row.medianNs = 13000;
  row.bytes = 460800;
  row.limit = "store";
  row.limitRate = 50;
  row.plainNs = 24691;
  row.rival = "gdi";
  row.rivalNs = 99999;
  row.levels = {{"sse2", 15000}};
  row.note = "back\\slash, \"\xC3\xA4\"\n";
  report.rows = {row};
  report.limits = {{"band1200", 3, "store", "avx2", 50, 49}};
  report.derived = {{"a mean", 1.5}};
  Report again;
  std::string error;
  Expect(ReportFromJson(ReportToJson(report), again, error), "a report is read back: " + error);
  Expect(again.rows.size() == 1 && again.rows[0].name == row.name && again.rows[0].shape == row.shape &&
             again.rows[0].bestNs == row.bestNs && again.rows[0].rivalNs == row.rivalNs &&
             again.rows[0].note == row.note && again.rows[0].levels == row.levels && again.limits.size() == 1 &&
             again.limits[0].loop == "avx2" && again.limits[0].rateAtEnd == 49 && again.derived.size() == 1 &&
             again.derived[0].name == "a mean" && again.derived[0].value == 1.5 && again.cpu == report.cpu &&
             again.quick,
         "a report keeps its figures");
  Expect(std::fabs(again.rows[0].Gain() - 2) < 1e-9, "gain is the plain time over the best time");
  Expect(std::fabs(again.rows[0].Share() - 460800 / 12345.5 / 50) < 1e-9, "share is the rate over the limit");
  for (const char* text : {"{}", "[]", "{\"program\": \"qnvbench\", \"format\": 9}",
                           "{\"program\": \"qnvbench\", \"format\": 1, \"rows\": [{\"name\": \"fill\"}]}",
                           "{\"program\": \"qnvbench\", \"format\": 1, \"rows\": [{\"name\": 7}]}"}) {
    Report refused;
    Expect(!ReportFromJson(text, refused, error) && !error.empty(), std::string("not refused as a report: ") + text);
  }
  const std::string table = ReportsToMarkdown({report, report});
  Expect(table.find("| `fill_solid_bgr24` | 37.3 (0.75)") != std::string::npos, "a row stands in the table");
  const std::string csv = ReportToCsv(report);
  const std::size_t lineEnd = csv.find('\n');
  const auto commas = [](const std::string& line) { return std::count(line.begin(), line.end(), ','); };
  Expect(commas(csv.substr(0, lineEnd)) == commas(csv.substr(lineEnd)), "a CSV line has a value for every column");
}

// Every loop must write all of its bytes and no others: a loop that leaves bytes out would be too fast.
void TestLimitLoops() {
  constexpr std::size_t kSize = 400;
  for (const LimitLoop& loop : LimitLoops()) {
    if (!loop.available()) continue;
    bool right = true;
    for (std::size_t count = 32; count <= 300; count += 1 + count / 16) {
      for (std::size_t start = 1; start < 70; start += 9) {
        uint8_t before[kSize], after[kSize], source[kSize];
        FillRandom(before, kSize, count);
        FillRandom(source, kSize, start);
        std::copy(before, before + kSize, after);
        loop.run(after + start, source + start, count);
        for (std::size_t i = 0; i < kSize; ++i) {
          const bool inside = i >= start && i < start + count;
          uint8_t expected = before[i];
          if (inside && loop.kind == LimitKind::kStore) expected = 0x5A;
          if (inside && loop.kind == LimitKind::kCopy) expected = source[i];
          if (inside && loop.kind == LimitKind::kReadModifyWrite) expected = static_cast<uint8_t>(before[i] ^ 0x5A);
          if (inside && loop.kind == LimitKind::kCombine) expected = static_cast<uint8_t>(before[i] ^ source[i]);
          right = right && after[i] == expected;
        }
      }
    }
    Expect(right, std::string("limit loop ") + LimitName(loop.kind) + ", " + loop.name);
  }
}

// The recorded page lies beside the program and can be put in place for every kind of device that has page rows.
void TestPage() {
  // 60 boxes, a photograph, 40 figures and 60 lines of text.
  constexpr std::size_t kCalls = 60 + 1 + 40 + 60;
  for (const Row& row : AllRows()) {
    if (row.spec.operation != Operation::kPage) continue;
    std::string error;
    const std::unique_ptr<PageCalls> page = PageCalls::Read(row.spec.band, error);
    Expect(page != nullptr, row.name + ": " + error);
    if (page != nullptr) Expect(page->count() == kCalls, row.name + " makes another number of calls");
  }
}

}  // namespace

bool SelfTest() {
  checks = failures = 0;
  TestRowNames();
  TestTable();
  TestFilter();
  TestOptions();
  TestJson();
  TestReport();
  TestLimitLoops();
  TestPage();
  std::printf("self-test: %d checks, %d failed\n", checks, failures);
  return failures == 0;
}

}  // namespace qnv::bench
