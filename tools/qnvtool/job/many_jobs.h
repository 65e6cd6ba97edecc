// Prints many jobs in one run.
#pragma once

#include <string>
#include <vector>

#include "qnvtool/job/print_options.h"

namespace qnv::tool {

struct ListedJob {
  std::string name = {};  // for messages and the table
  int line = 0;           // of the manifest; 0: none
  PrintOptions options;
  std::string key;           // stands for everything that the job is asked for
  bool isElsewhere = false;  // printed by another run; only its names count
};

struct RunOptions {
  int threads = 0;  // 0: one for each core
  bool keepGoing = false;
  bool quiet = false;
  std::string report;               // file; empty: none
  std::vector<std::string> inputs;  // files that the run itself reads, such as its manifest
  std::string newFolder;            // is made before the first job is painted; empty: none
};

// Adds the files of a job to its key, which stood for its other options, and makes a short word of it.
void FinishKey(ListedJob& job);

// Prints the jobs, as many at a time as there are threads, and a table of them. First every job is laid out and all
// names are worked out: nothing is written when an output is a file that any of the jobs reads or writes or, without
// keepGoing, when a job cannot be printed. Jobs that the report says are done are left out. A job that fails later has
// no outputs; without keepGoing none is begun after it. Throws the ToolError of the run, and Interrupted.
void PrintMany(const std::vector<ListedJob>& jobs, const RunOptions& run, const PrintParts& parts);

}  // namespace qnv::tool
