// Opens the call files and libraries that a command names.
#pragma once

#include <string>

#include "calls/call_file.h"
#include "calls/invoke.h"
#include "calls/player.h"
#include "qnvtool/calls/call_commands.h"

namespace qnv::tool {

// Reads a call file. Of a file that was cut off, what is complete is used, and one line on standard error says so.
// Throws ToolError (bad input) with the offset for every other defect.
calls::CallFile ReadCallFile(const std::string& path);
// At least the calls [first, first + count) of it, with what they name: of a file with an index no more than that.
calls::CallFile ReadCallFile(const std::string& path, std::size_t first, std::size_t count);

// A library by path, or the linked one for an empty path.
struct CalledLibrary {
  Rasteriser functions;
  std::string name;  // for messages
};
CalledLibrary OpenCalledLibrary(const std::string& path, const CallParts& parts);

// The report of a replay that came to its end. Throws ToolError (bad input) with the place where a file cannot be
// replayed.
calls::PlayReport Completed(calls::PlayReport report, const std::string& path);

// "block at 24, item at byte 7" of a call.
std::string PlaceOf(const calls::CallFile& file, std::size_t call);

}  // namespace qnv::tool
