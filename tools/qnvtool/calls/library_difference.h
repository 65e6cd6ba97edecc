// Finds the first call of a file after which two libraries differ.
#pragma once

#include <functional>
#include <string>

#include "calls/call_file.h"
#include "calls/invoke.h"

namespace qnv::tool {

struct LibraryDifference {
  bool found = false;
  std::size_t call = 0;
  std::string what;
  std::string error;  // the file cannot be replayed
};

// Compares the results of all calls, and the bands. First only at the ends of bands; in the band where they differ,
// after every call.
LibraryDifference CompareLibraries(const calls::CallFile& file, const calls::Functions& first,
                                   const calls::Functions& second,
                                   const std::function<bool(std::size_t call)>& keep = {});

}  // namespace qnv::tool
