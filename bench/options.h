// The command line of qnvbench.
#pragma once

#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "bench_table.h"

namespace qnv::bench {

struct Options {
  std::string library;  // empty: the one beside the program
  std::string baseline;
  std::vector<std::pair<std::string, std::string>> levels;  // name, path
  std::string json;
  std::string csv;
  std::string compare;
  std::vector<std::string> tables;   // reports to be shown as tables
  std::vector<std::string> filters;  // a row is taken when one of them is found in its name
  std::vector<std::string> shapes;   // names; empty: all
  bool quick = false;
  bool detail = false;
  bool rival = true;
  bool list = false;
  bool help = false;
  bool selfTest = false;
  int samples = 0;  // 0: the plan's own
};

// Parses the arguments. False, with a sentence in `error`, for unknown options and for values that do not fit.
bool ParseOptions(int count, const char* const* arguments, Options& options, std::string& error);
void PrintHelp();

// Decides which rows a run takes. The patterns are compiled once.
class RowFilter {
 public:
  // False for a pattern that is no regular expression.
  bool Set(const Options& options, std::string& error);
  // Whether the row, or the shape, is to be measured.
  bool Takes(const Row& row) const;
  bool Takes(Shape shape) const;

 private:
  std::vector<std::regex> patterns_;
  std::vector<std::string> shapes_;
  bool detail_ = false;
};

}  // namespace qnv::bench
