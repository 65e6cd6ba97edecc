// Reads and writes a nameless file at any place.
#include "qnvtool/base/temporary_file.h"

#include <fcntl.h>
#include <fmt/core.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

#include "qnvtool/base/tool_error.h"
#ifndef _WIN32
#include <unistd.h>
#endif

namespace qnv::tool {
namespace {

#ifdef _WIN32
std::FILE* OpenNameless() { return std::tmpfile(); }

bool Seek(std::FILE* file, uint64_t offset) { return _fseeki64(file, static_cast<__int64>(offset), SEEK_SET) == 0; }
#else
// A file in this folder, or null.
std::FILE* OpenIn(const std::string& folder) {
  std::string name = folder + "/qnvtool-XXXXXX";
  const int descriptor = mkstemp(name.data());
  if (descriptor < 0) return nullptr;
  unlink(name.c_str());
  std::FILE* const file = fdopen(descriptor, "w+b");
  if (file == nullptr) close(descriptor);
  return file;
}

// /var/tmp comes before /tmp, which is often a disk in memory.
std::FILE* OpenNameless() {
  const char* const chosen = std::getenv("TMPDIR");
  if (chosen != nullptr && *chosen != '\0') return OpenIn(chosen);
  std::FILE* const file = OpenIn("/var/tmp");
  return file != nullptr ? file : OpenIn("/tmp");
}
#endif

}  // namespace

TemporaryFile::TemporaryFile(std::string what) : what_(std::move(what)), file_(OpenNameless()) {
  if (file_ == nullptr) Fail();
  std::setvbuf(file_, nullptr, _IONBF, 0);  // callers read and write large pieces
}

TemporaryFile::~TemporaryFile() { std::fclose(file_); }

void TemporaryFile::Fail() const {
  throw ToolError(ExitCode::kCannotWrite, fmt::format("{}: no temporary file: {}", what_, std::strerror(errno)));
}

#ifdef _WIN32
// Threads take turns, because place and access are two calls.
std::mutex& FileTurn() {
  static std::mutex turn;
  return turn;
}

void TemporaryFile::Write(uint64_t offset, const void* from, std::size_t count) {
  const std::lock_guard<std::mutex> lock(FileTurn());
  if (!Seek(file_, offset) || std::fwrite(from, 1, count, file_) != count) Fail();
}

std::size_t ReadAt(std::FILE* file, uint64_t offset, void* to, std::size_t count) {
  const std::lock_guard<std::mutex> lock(FileTurn());
  if (!Seek(file, offset)) return count + 1;
  const std::size_t got = std::fread(to, 1, count, file);
  return std::ferror(file) != 0 ? count + 1 : got;
}
#else
void TemporaryFile::Write(uint64_t offset, const void* from, std::size_t count) {
  const char* next = static_cast<const char*>(from);
  while (count != 0) {
    const ssize_t wrote = pwrite(fileno(file_), next, count, static_cast<off_t>(offset));
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote <= 0) Fail();
    next += wrote;
    offset += static_cast<uint64_t>(wrote);
    count -= static_cast<std::size_t>(wrote);
  }
}

std::size_t ReadAt(std::FILE* file, uint64_t offset, void* to, std::size_t count) {
  char* const first = static_cast<char*>(to);
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = pread(fileno(file), first + done, count - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return count + 1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}
#endif

std::size_t TemporaryFile::Read(uint64_t offset, void* to, std::size_t count) const {
  const std::size_t got = ReadAt(file_, offset, to, count);
  if (got > count) Fail();
  return got;
}

}  // namespace qnv::tool
