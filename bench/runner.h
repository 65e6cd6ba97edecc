// Measures the rows of a run: the limits first, then each row with all builds of the library and the rival in turn.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "library.h"
#include "options.h"
#include "report.h"

namespace qnv::bench {

struct Libraries {
  std::unique_ptr<Library> main;
  std::unique_ptr<Library> baseline;  // may be null
  std::vector<std::pair<std::string, std::unique_ptr<Library>>> levels;
};

// Measures the rows that the filter takes, prints each result at once, and adds it to the report.
void RunRows(const Options& options, const RowFilter& filter, const Libraries& libraries, Report& report);

}  // namespace qnv::bench
