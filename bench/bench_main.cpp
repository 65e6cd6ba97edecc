// qnvbench measures how fast a built library is, also in relation to the speed of the memory. This file chooses what a
// run does: measure, compare, list, print tables.
#include <cstdio>

#include "options.h"
#include "report.h"
#include "runner.h"
#include "self_test.h"

namespace qnv::bench {
namespace {

// Prints a message and returns the exit code.
int Fail(const std::string& message, int code) {
  std::fprintf(stderr, "qnvbench: %s\n", message.c_str());
  return code;
}

// Prints the names of the rows that the filter takes, with their shapes.
void PrintList(const RowFilter& filter) {
  for (const Row& row : AllRows()) {
    if (!filter.Takes(row)) continue;
    std::string shapes;
    for (const Shape shape : row.shapes) {
      if (filter.Takes(shape)) shapes += std::string(" ") + Info(shape).name;
    }
    if (!shapes.empty()) std::printf("%-42s%s\n", row.name.c_str(), shapes.c_str());
  }
}

// Null, after a message, when the library cannot be opened.
std::unique_ptr<Library> OpenOrComplain(const std::string& path) {
  std::string error;
  std::unique_ptr<Library> library = Library::Open(path, error);
  if (library == nullptr) Fail(path + ": " + error, 1);
  return library;
}

// Opens the library, the baseline and the levels.
bool OpenLibraries(const Options& options, Libraries& libraries) {
  libraries.main = OpenOrComplain(options.library.empty() ? Library::DefaultPath() : options.library);
  if (libraries.main == nullptr) return false;
  if (!options.baseline.empty()) {
    libraries.baseline = OpenOrComplain(options.baseline);
    if (libraries.baseline == nullptr) return false;
  }
  for (const auto& [name, path] : options.levels) {
    libraries.levels.push_back({name, OpenOrComplain(path)});
    if (libraries.levels.back().second == nullptr) return false;
  }
  return true;
}

bool ReadReport(const std::string& path, Report& report, std::string& error) {
  std::string text;
  if (!ReadTextFile(path, text)) {
    error = "cannot be read";
    return false;
  }
  return ReportFromJson(text, report, error);
}

// A run: measures the chosen rows, prints and writes the report. Returns the exit code.
int Measure(const Options& options, const RowFilter& filter) {
  // Read the old report first, so that a wrong file is reported before the long run and not after it.
  Report before;
  std::string error;
  if (!options.compare.empty() && !ReadReport(options.compare, before, error)) {
    return Fail(options.compare + ": " + error, 1);
  }
  Libraries libraries;
  if (!OpenLibraries(options, libraries)) return 1;
  Report report;
  report.cpu = CpuName();
  report.compiler = CompilerName();
  report.platform = PlatformName();
  report.library = libraries.main->fileName();
  if (libraries.baseline != nullptr) report.baseline = libraries.baseline->fileName();
  report.quick = options.quick;
  PrintHeading(report);
  RunRows(options, filter, libraries, report);
  if (report.rows.empty()) return Fail("no row has been chosen", 2);
  PrintLimits(report);
  PrintDerived(report);
  if (!options.compare.empty()) PrintComparison(before, report);
  if (!options.json.empty() && !WriteTextFile(options.json, ReportToJson(report))) {
    return Fail(options.json + ": cannot be written", 1);
  }
  if (!options.csv.empty() && !WriteTextFile(options.csv, ReportToCsv(report))) {
    return Fail(options.csv + ": cannot be written", 1);
  }
  return report.faults == 0 ? 0 : Fail(std::to_string(report.faults) + " faults, see above", 1);
}

// Prints earlier reports in Markdown.
int PrintTables(const std::vector<std::string>& paths) {
  std::vector<Report> reports;
  for (const std::string& path : paths) {
    Report report;
    std::string error;
    if (!ReadReport(path, report, error)) return Fail(path + ": " + error, 1);
    reports.push_back(std::move(report));
  }
  std::fputs(ReportsToMarkdown(reports).c_str(), stdout);
  return 0;
}

int Main(int count, const char* const* arguments) {
  Options options;
  std::string error;
  if (!ParseOptions(count, arguments, options, error)) return Fail(error + " (--help lists the options)", 2);
  if (options.help) {
    PrintHelp();
    return 0;
  }
  if (options.selfTest) return SelfTest() ? 0 : 1;
  if (!options.tables.empty()) return PrintTables(options.tables);
  RowFilter filter;
  if (!filter.Set(options, error)) return Fail(error, 2);
  if (options.list) {
    PrintList(filter);
    return 0;
  }
  return Measure(options, filter);
}

}  // namespace
}  // namespace qnv::bench

int main(int count, char** arguments) { return qnv::bench::Main(count, arguments); }
