// `qnvtool print`.
#pragma once

#include "qnvtool/cli/command_line.h"
#include "qnvtool/job/print_job.h"

namespace qnv::tool {

// The command and its options, for a program that has these parts.
Command PrintCommand(const PrintParts& parts);

}  // namespace qnv::tool
