// Options that several commands over call files have.
#pragma once

#include <string>

#include "qnvtool/cli/command_line.h"

namespace qnv::tool {

// A call file to read, as a positional argument.
Option CallFileArgument(std::string* path, const std::string& name = "file");

// --out: the call file to write.
Option CallFileOut(std::string* path);

// The library that makes the calls.
Option LibraryOption(std::string* path);
// Another one, with an option and a meaning of its own.
Option LibraryOption(std::string* path, const std::string& name, const std::string& help);

// --hash: of every drawing call.
Option HashOption(bool* given);

// --stored: blocks that are not compressed.
Option StoredOption(bool* given);

}  // namespace qnv::tool
