// How a program runs the command that its arguments name.
#pragma once

#include <CLI/CLI.hpp>

namespace qnv::tool {

// Returns the program's exit code; when it is not 0, one line on standard error says why.
int RunProgram(CLI::App& program, int argc, char** argv);

}  // namespace qnv::tool
