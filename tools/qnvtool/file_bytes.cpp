#include "file_bytes.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "tool_error.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 30;

[[noreturn]] void Fail(const std::string& path, const char* why) {
  throw ToolError(ExitCode::kBadInput, fmt::format("{}: {}", path, why));
}

}  // namespace

Bytes ReadFile(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) Fail(path, "is a folder, not a file");
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (file == nullptr) Fail(path, std::strerror(errno));
  Bytes bytes;
  std::size_t used = 0;
  for (;;) {
    bytes.resize(std::max<std::size_t>(bytes.size() * 2, 1 << 16));
    const std::size_t got = std::fread(bytes.data() + used, 1, bytes.size() - used, file.get());
    used += got;
    if (used > kLargestFile) Fail(path, "is larger than one gigabyte");
    if (got == 0) break;
  }
  if (std::ferror(file.get()) != 0) Fail(path, "cannot be read to its end");
  if (used == 0) Fail(path, "is empty");
  bytes.resize(used);
  return bytes;
}

uint16_t U16At(const Bytes& bytes, std::size_t offset) {
  return static_cast<uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

uint32_t U32At(const Bytes& bytes, std::size_t offset) {
  return uint32_t{U16At(bytes, offset)} | uint32_t{U16At(bytes, offset + 2)} << 16;
}

void AppendU16(Bytes& bytes, uint32_t value) {
  bytes.push_back(static_cast<uint8_t>(value));
  bytes.push_back(static_cast<uint8_t>(value >> 8));
}

void AppendU32(Bytes& bytes, uint32_t value) {
  AppendU16(bytes, value);
  AppendU16(bytes, value >> 16);
}

}  // namespace qnv::tool
