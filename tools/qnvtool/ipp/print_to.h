// Prints files on a printer: asks it, paints the pages as it takes them, and sends them.
#pragma once

#include <string>

#include "qnvtool/ipp/job_plan.h"
#include "qnvtool/job/print_job.h"

namespace qnv::tool {

struct PrinterOptions {
  std::string address;     // ipp://...
  std::string deviceName;  // value of --device; empty: as the printer takes it
  int dpi = 0;             // value of --dpi
  bool hasPaper = false;   // --paper was given, and is in the options of the job
  bool wait = true;
};

// The document is written to a temporary file first, so that a job whose files cannot be used sends nothing.
void PrintTo(const PrinterOptions& printer, PrintOptions options, const PrintParts& parts);

}  // namespace qnv::tool
