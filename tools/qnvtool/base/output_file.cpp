// Writes files under a temporary name, or none, and renames them when they are complete.
#include "qnvtool/base/output_file.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/tool_error.h"

#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

namespace qnv::tool {
namespace {

namespace fs = std::filesystem;

// The file that a chain of symbolic links leads to, which need not exist.
fs::path FollowLinks(fs::path path) {
  constexpr int kMaxLinks = 40;
  std::error_code error;
  for (int i = 0; i < kMaxLinks && fs::is_symlink(path, error); ++i) {
    const fs::path next = fs::read_symlink(path, error);
    if (error) break;
    path = path.parent_path() / next;  // an absolute one replaces the folder
  }
  return path;
}

// Standard output for binary data. Refuses a terminal, which would interpret some bytes as commands.
std::FILE* StdoutForBinary() {
#ifdef _WIN32
  const bool terminal = _isatty(_fileno(stdout)) != 0;
  _setmode(_fileno(stdout), _O_BINARY);
#else
  const bool terminal = isatty(STDOUT_FILENO) != 0;
#endif
  if (!terminal) return stdout;
  throw ToolError(ExitCode::kUsage, "-: standard output is a terminal; redirect it or name a file");
}

// Makes the temporary names of two programs different.
int ProcessId() {
#ifdef _WIN32
  return _getpid();
#else
  return getpid();
#endif
}

}  // namespace

void CannotWrite(const std::string& path, const std::string& why) {
  throw ToolError(ExitCode::kCannotWrite, fmt::format("{}: cannot be written: {}", path, why));
}

void OutputFile::Write(const void* bytes, std::size_t size) {
  const PhaseTimer timer(Phase::kWriting);
  if (std::fwrite(bytes, 1, size, file_) != size) Fail();
}

void OutputFile::Fail() const { CannotWrite(path_, std::strerror(errno)); }

OutputFile::OutputFile(const std::string& path) : path_(path == "-" ? "standard output" : path) {
  if (path == "-") {
    file_ = StdoutForBinary();
    return;
  }
  std::error_code error;
  const fs::file_status status = fs::status(PathOf(path), error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    file_ = std::fopen(path.c_str(), "wb");
  } else {
    OpenBesideTarget();
  }
  if (file_ == nullptr) Fail();
}

// Opens a file in the folder of the target. On failure file_ stays null and errno says why.
void OutputFile::OpenBesideTarget() {
  const fs::path target = FollowLinks(PathOf(path_));
  target_ = FileNameOf(target);
  const std::string name = fmt::format(".{}.{}.part", FileNameOf(target.filename()), ProcessId());
  unfinished_ = FileNameOf(target.parent_path() / PathOf(name));
#ifndef _WIN32
  struct stat old;
  const bool replaces = stat(target_.c_str(), &old) == 0;
  if (replaces && access(target_.c_str(), W_OK) != 0) return;  // a file protected from writing stays
  const std::string folder = target.has_parent_path() ? target.parent_path().string() : ".";
  int descriptor = -1;
#ifdef O_TMPFILE
  // The file gets its name through /proc.
  if (access("/proc/self/fd", X_OK) == 0) descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
#endif
  if (descriptor < 0) {
    descriptor = open(unfinished_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    isNamed_ = descriptor >= 0;
  }
  if (descriptor < 0) return;
  if (replaces) static_cast<void>(fchmod(descriptor, old.st_mode & 07777));
  file_ = fdopen(descriptor, "w+b");
  if (file_ == nullptr) close(descriptor);
#else
  file_ = std::fopen(unfinished_.c_str(), "w+b");
  isNamed_ = file_ != nullptr;
#endif
}

OutputFile::~OutputFile() {
  if (file_ != nullptr && file_ != stdout) std::fclose(file_);
  std::error_code error;
  if (isNamed_) fs::remove(PathOf(unfinished_), error);
}

void OutputFile::Close() {
  const PhaseTimer timer(Phase::kWriting);
  if (std::fflush(file_) != 0) Fail();
  if (file_ == stdout) return;
  bool isDone = false;
#ifndef _WIN32
  if (!target_.empty() && !isNamed_) {
    const std::string descriptor = fmt::format("/proc/self/fd/{}", fileno(file_));
    const auto link = [&](const std::string& name) {
      return linkat(AT_FDCWD, descriptor.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    if (link(target_)) {
      isDone = true;
    } else {                        // only renaming replaces a file
      unlink(unfinished_.c_str());  // left by a process of the same number
      if (!link(unfinished_)) Fail();
      isNamed_ = true;
    }
  }
#endif
  std::FILE* const file = file_;
  file_ = nullptr;
  if (std::fclose(file) != 0) Fail();
  if (target_.empty() || isDone) return;
  std::error_code error;
  fs::rename(PathOf(unfinished_), PathOf(target_), error);
  if (error) CannotWrite(path_, error.message());
  isNamed_ = false;
}

}  // namespace qnv::tool
