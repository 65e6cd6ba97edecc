#include "output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "tool_error.h"

namespace qnv::tool {

void CannotWrite(const std::string& path, const std::string& why) {
  throw ToolError(ExitCode::kCannotWrite, fmt::format("{}: cannot be written: {}", path, why));
}

OutputFile::OutputFile(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wb")) {
  if (file_ == nullptr) CannotWrite(path, std::strerror(errno));
}

OutputFile::~OutputFile() {
  if (file_ == nullptr) return;
  std::fclose(file_);
  // Only what this program made: a device or a pipe stays.
  std::error_code error;
  if (std::filesystem::is_regular_file(path_, error)) std::filesystem::remove(path_, error);
}

void OutputFile::Close() {
  std::FILE* const file = file_;
  if (std::fflush(file) != 0) CannotWrite(path_, std::strerror(errno));
  file_ = nullptr;
  if (std::fclose(file) != 0) CannotWrite(path_, std::strerror(errno));
}

}  // namespace qnv::tool
