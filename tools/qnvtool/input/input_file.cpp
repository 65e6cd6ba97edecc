// Opens files, pipes and standard input, and reads them piece by piece.
#include "qnvtool/input/input_file.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/interruption.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/temporary_file.h"
#include "qnvtool/base/tool_error.h"
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace qnv::tool {
namespace {

[[noreturn]] void Unreadable(const std::string& name, const std::string& why) {
  throw ToolError(ExitCode::kBadInput, fmt::format("{}: {}", name, why));
}

using OpenFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// Files that stay open; a document may show more pictures than a program may have open files.
constexpr int kMaxOpen = 200;
std::atomic<int> openFiles = 0;

// A file that can be read at any place.
class RegularFile final : public InputFile {
 public:
  RegularFile(OpenFile file, std::string path, std::string name, uint64_t size)
      : InputFile(std::move(name), size), path_(std::move(path)), file_(std::move(file)) {
    if (path_ != "-" && openFiles >= kMaxOpen) file_ = nullptr;
    if (file_ != nullptr) ++openFiles;
  }
  ~RegularFile() override {
    if (file_ != nullptr) --openFiles;
  }

  std::size_t Read(uint64_t offset, void* to, std::size_t count) const override {
    const PhaseTimer timer(Phase::kReading);
    OpenFile again(nullptr, std::fclose);
    if (file_ == nullptr) again = OpenFile(std::fopen(path_.c_str(), "rb"), std::fclose);
    std::FILE* const file = file_ != nullptr ? file_.get() : again.get();
    const std::size_t got = file == nullptr ? count + 1 : ReadAt(file, offset, to, count);
    if (got > count) Unreadable(name(), std::strerror(errno));
    return got;
  }

 private:
  const std::string path_;
  OpenFile file_;
};

class CopiedFile final : public InputFile {
 public:
  CopiedFile(std::unique_ptr<TemporaryFile> copy, std::string name, uint64_t size)
      : InputFile(std::move(name), size), copy_(std::move(copy)) {}

  std::size_t Read(uint64_t offset, void* to, std::size_t count) const override {
    return copy_->Read(offset, to, count);
  }

 private:
  const std::unique_ptr<TemporaryFile> copy_;
};

class BytesInMemory final : public InputFile {
 public:
  BytesInMemory(Bytes bytes, std::string name) : InputFile(std::move(name), bytes.size()), bytes_(std::move(bytes)) {}

  std::size_t Read(uint64_t offset, void* to, std::size_t count) const override {
    if (offset >= bytes_.size()) return 0;
    const std::size_t got = std::min(count, bytes_.size() - static_cast<std::size_t>(offset));
    if (got != 0) std::memcpy(to, bytes_.data() + offset, got);
    return got;
  }

 private:
  const Bytes bytes_;
};

class FilePart final : public InputFile {
 public:
  FilePart(Input whole, uint64_t offset, uint64_t size)
      : InputFile(whole->name(), size), whole_(std::move(whole)), offset_(offset) {}

  std::size_t Read(uint64_t offset, void* to, std::size_t count) const override {
    if (offset >= size()) return 0;
    return whole_->Read(offset_ + offset, to, static_cast<std::size_t>(std::min<uint64_t>(count, size() - offset)));
  }

 private:
  const Input whole_;
  const uint64_t offset_;
};

// Standard input without the translation of line ends that Windows makes. It stays open.
OpenFile OpenStdin() {
#ifdef _WIN32
  _setmode(_fileno(stdin), _O_BINARY);
#endif
  return {stdin, [](std::FILE*) { return 0; }};
}

// The size of a regular file that is read from its beginning; -1 for all others.
int64_t RegularSize(std::FILE* file) {
#ifdef _WIN32
  struct _stati64 status;
  if (_fstati64(_fileno(file), &status) != 0 || (status.st_mode & _S_IFMT) != _S_IFREG) return -1;
  return _ftelli64(file) == 0 ? status.st_size : -1;
#else
  struct stat status;
  if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode) || ftello(file) != 0) return -1;
  return status.st_size == 0 ? -1 : status.st_size;  // files of /proc have no size
#endif
}

// Copies what is still to be read from `file`.
Input Copy(std::FILE* file, const std::string& name) {
  constexpr std::size_t kPiece = std::size_t{1} << 18;
  constexpr std::size_t kMaxInMemory = std::size_t{1} << 22;
  Bytes bytes;
  std::unique_ptr<TemporaryFile> copy;
  uint64_t size = 0;
  std::vector<uint8_t> piece(kPiece);
  for (;;) {
    const std::size_t got = std::fread(piece.data(), 1, piece.size(), file);
    if (got == 0) break;
    ThrowIfInterrupted();
    if (copy == nullptr && bytes.size() + got > kMaxInMemory) {
      copy = std::make_unique<TemporaryFile>(name);
      copy->Write(0, bytes.data(), bytes.size());
      bytes = {};
    }
    if (copy != nullptr) {
      copy->Write(size, piece.data(), got);
    } else {
      bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(got));
    }
    size += got;
  }
  if (std::ferror(file) != 0) Unreadable(name, fmt::format("cannot be read to its end: {}", std::strerror(errno)));
  if (size == 0) Unreadable(name, "is empty");
  if (copy == nullptr) return InputOf(std::move(bytes), name);
  return std::make_shared<const CopiedFile>(std::move(copy), name, size);
}

}  // namespace

Bytes InputFile::Head(std::size_t count) const {
  Bytes bytes(static_cast<std::size_t>(std::min<uint64_t>(count, size_)));
  bytes.resize(Read(0, bytes.data(), bytes.size()));
  return bytes;
}

Bytes InputFile::All(std::size_t limit, const char* what) const {
  if (size_ > limit) {
    Unreadable(name_, fmt::format("has {} bytes; {} may have {} at most", size_, what, limit));
  }
  return Head(limit);
}

Input OpenInput(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(PathOf(path), error)) Unreadable(path, "is a folder, not a file");
  const std::string name = DisplayName(path);
  OpenFile file = path == "-" ? OpenStdin() : OpenFile(std::fopen(path.c_str(), "rb"), std::fclose);
  if (file == nullptr) Unreadable(name, std::strerror(errno));
  const int64_t size = RegularSize(file.get());
  if (size < 0) return Copy(file.get(), name);
  if (size == 0) Unreadable(name, "is empty");
  return std::make_shared<const RegularFile>(std::move(file), path, name, static_cast<uint64_t>(size));
}

Input InputOf(Bytes bytes, std::string name) {
  return std::make_shared<const BytesInMemory>(std::move(bytes), std::move(name));
}

Input PartOf(Input whole, uint64_t offset, uint64_t size) {
  return std::make_shared<const FilePart>(std::move(whole), offset, size);
}

}  // namespace qnv::tool
