// The results of a run, and the forms in which they are written: text, JSON, CSV, Markdown.
#pragma once

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace qnv::bench {

// The result of a row.
struct RowResult {
  std::string name;
  std::string shape;
  double bestNs = 0;  // of one run
  double medianNs = 0;
  double calls = 1;  // of the library in one run; 0 when they are of different kinds
  double bytes = 0;
  double sourceBytes = 0;
  double items = 0;
  std::string limit;       // kind; empty when the row has none
  double limitRate = 0;    // GB/s
  double combineRate = 0;  // of destination ^= source; 0 unless the row changes the band by a source of its depth
  std::vector<std::pair<std::string, double>> levels;  // time of another build of the library, ns
  double plainNs = 0;                                  // of the baseline; 0 without one
  std::string rival;
  double rivalNs = 0;
  bool rivalSame = false;  // it paints the same picture, byte for byte
  std::string note;

  double Rate() const { return bestNs > 0 ? bytes / bestNs : 0; }  // GB/s of destination bytes
  double SourceRate() const { return bestNs > 0 ? sourceBytes / bestNs : 0; }
  double Share() const { return limitRate > 0 ? Rate() / limitRate : 0; }
  double Gain() const { return bestNs > 0 ? plainNs / bestNs : 0; }
  double RivalRatio() const { return bestNs > 0 ? rivalNs / bestNs : 0; }  // above 1: the rival is slower
};

// The result of a limit.
struct LimitResult {
  std::string shape;
  int bytesPerPixel = 0;
  std::string kind;
  std::string loop;
  double rate = 0;       // GB/s, before the rows
  double rateAtEnd = 0;  // after them: how steady the machine was
};

// A figure made of several rows.
struct DerivedResult {
  std::string name;
  double value = 0;
};

struct Report {
  std::string cpu;
  std::string compiler;
  std::string platform;
  std::string library;
  std::string baseline;
  bool quick = false;
  int faults = 0;  // rows that painted nothing, or not what another build paints
  std::vector<LimitResult> limits;
  std::vector<RowResult> rows;
  std::vector<DerivedResult> derived;
};

std::string CpuName();
std::string CompilerName();
std::string PlatformName();

// These print text while the run continues.
void PrintHeading(const Report& report);
void PrintLimits(const Report& report);
void PrintRowHeading();
void PrintRow(const RowResult& row);
void PrintDerived(const Report& report);

std::string ReportToJson(const Report& report);
// Reads limits, rows and derived figures; false when the text is no report.
bool ReportFromJson(const std::string& text, Report& report, std::string& error);
bool WriteTextFile(const std::string& path, const std::string& text);
bool ReadTextFile(const std::string& path, std::string& text);

std::string ReportToCsv(const Report& report);

// The tables of the document, one group of columns for each report.
std::string ReportsToMarkdown(const std::vector<Report>& reports);

// Prints every row that both reports have, with the change of its best time.
void PrintComparison(const Report& before, const Report& now);

double GeometricMean(const std::vector<double>& values);
// The figures that combine several rows.
std::vector<DerivedResult> DeriveFigures(const std::vector<RowResult>& rows);

}  // namespace qnv::bench
