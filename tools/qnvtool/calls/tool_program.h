// The program qnvtool, of the parts that it has on a system.
#pragma once

#include <string>

#include "qnvtool/calls/call_commands.h"
#include "qnvtool/job/print_options.h"

namespace qnv::tool {

// Runs the command that is asked for. Returns the program's exit code.
int RunTool(const PrintParts& print, const CallParts& calls, const std::string& version, int argc, char** argv);

}  // namespace qnv::tool
