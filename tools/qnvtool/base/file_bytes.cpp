// Reads whole files and little-endian numbers.
#include "qnvtool/base/file_bytes.h"

#include <fmt/core.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/tool_error.h"
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxFileBytes = std::size_t{1} << 30;

[[noreturn]] void Fail(const std::string& path, const char* why) {
  throw ToolError(ExitCode::kBadInput, fmt::format("{}: {}", path, why));
}

// Standard input without the translation of line ends that Windows makes.
std::FILE* OpenStdin() {
#ifdef _WIN32
  _setmode(_fileno(stdin), _O_BINARY);
#endif
  return stdin;
}

int CloseUnlessStdin(std::FILE* file) { return file == stdin ? 0 : std::fclose(file); }

}  // namespace

std::string DisplayName(const std::string& path) { return path == "-" ? "standard input" : path; }

Bytes ReadFile(const std::string& name) {
  const PhaseTimer timer(Phase::kReading);
  std::error_code error;
  if (std::filesystem::is_directory(name, error)) Fail(name, "is a folder, not a file");
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(name == "-" ? OpenStdin() : std::fopen(name.c_str(), "rb"),
                                                             CloseUnlessStdin);
  const std::string path = DisplayName(name);
  if (file == nullptr) Fail(path, std::strerror(errno));
  Bytes bytes;
  std::size_t used = 0;
  for (;;) {
    bytes.resize(std::max<std::size_t>(bytes.size() * 2, 1 << 16));
    const std::size_t got = std::fread(bytes.data() + used, 1, bytes.size() - used, file.get());
    used += got;
    if (used > kMaxFileBytes) Fail(path, "is larger than one gigabyte");
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
