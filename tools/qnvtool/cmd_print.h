// `qnvtool print`.
#pragma once

#include <CLI/CLI.hpp>

namespace qnv::tool {

// Adds the command to the program; it runs when the command line names it.
void AddPrintCommand(CLI::App& program);

}  // namespace qnv::tool
