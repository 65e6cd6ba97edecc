// Measures the rows of a run: limits first, then row by row, all builds of the library and the rival in turn.
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

// Prints what it finds as it goes on.
void RunRows(const Options& options, const RowFilter& filter, const Libraries& libraries, Report& report);

}  // namespace qnv::bench
