// The error that ends a command: one line for the user and the exit code of the program.
#pragma once

#include <stdexcept>
#include <string>

namespace qnv::tool {

enum class ExitCode : int {
  kOk = 0,
  kUsage = 1,        // the command line names something that does not exist, or its options do not fit together
  kBadInput = 2,     // an input file cannot be read or is not what it says
  kCannotWrite = 3,  // a result file cannot be written
  kLibrary = 4,      // the rasteriser cannot be loaded, or refuses a call
  kDiffers = 5,      // what was compared is not the same
};

class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace qnv::tool
