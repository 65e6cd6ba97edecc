// Call files and libraries as commands name them.
#include "qnvtool/calls/call_input.h"

#include <fmt/core.h>

#include <cstdio>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {

calls::CallFile ReadCallFile(const std::string& path) {
  calls::CallFile file;
  const calls::CallFile::Status status = calls::CallFile::ReadFrom(path, &file);
  if (status.error == calls::FileError::kTruncated) {
    fmt::print(stderr, "{}: at byte {}: {}; the {} calls before it are used\n", path, status.offset, status.message,
               file.CallCount());
  } else if (status.error != calls::FileError::kNone) {
    throw ToolError(ExitCode::kBadInput, fmt::format("{}: at byte {}: {}", path, status.offset, status.message));
  }
  return file;
}

calls::CallFile ReadCallFile(const std::string& path, std::size_t first, std::size_t count) {
  calls::FileBytes bytes(path);
  calls::CallFile part;
  if (bytes.IsOpen() && calls::CallFile::ReadPart(bytes, first, count, &part).error == calls::FileError::kNone) {
    return part;
  }
  // Damage, too, is described by who reads the whole file.
  return ReadCallFile(path);
}

CalledLibrary OpenCalledLibrary(const std::string& path, const CallParts& parts) {
  CalledLibrary library;
  library.functions = path.empty() ? parts.linkedRasteriser() : LoadRasteriser(path);
  library.name = path.empty() ? "the built-in library" : path;
  return library;
}

calls::PlayReport Completed(calls::PlayReport report, const std::string& path) {
  if (!report.error.empty()) throw ToolError(ExitCode::kBadInput, fmt::format("{}: {}", path, report.error));
  return report;
}

std::string PlaceOf(const calls::CallFile& file, std::size_t call) {
  const calls::FileItem& item = file.CallItem(call);
  return fmt::format("block at {}, item at byte {}", item.blockOffset, item.position);
}

}  // namespace qnv::tool
