// `qnvtool print`.
#pragma once

#include <CLI/CLI.hpp>

#include "print_job.h"

namespace qnv::tool {

// Adds the command to the program; it runs when the command line names it.
void AddPrintCommand(CLI::App& program, const PrintParts& parts);

}  // namespace qnv::tool
