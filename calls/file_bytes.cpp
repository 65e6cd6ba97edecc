// Files are sought with 64-bit offsets on every system.
#include "calls/file_bytes.h"

namespace qnv::calls {
namespace {

bool Seek(std::FILE* file, uint64_t offset, int from) {
#ifdef _WIN32
  return _fseeki64(file, static_cast<long long>(offset), from) == 0;
#else
  return fseeko(file, static_cast<off_t>(offset), from) == 0;
#endif
}

}  // namespace

FileBytes::FileBytes(const std::string& path) : file_(std::fopen(path.c_str(), "rb")) {
  if (file_ == nullptr || !Seek(file_, 0, SEEK_END)) return;
#ifdef _WIN32
  const long long end = _ftelli64(file_);
#else
  const off_t end = ftello(file_);
#endif
  isOpen_ = end >= 0;
  size_ = isOpen_ ? static_cast<uint64_t>(end) : 0;
}

FileBytes::~FileBytes() {
  if (file_ != nullptr) std::fclose(file_);
}

const uint8_t* FileBytes::At(uint64_t offset, std::size_t count) {
  static constexpr uint8_t kNothing = 0;
  if (offset > size_ || count > size_ - offset) return nullptr;
  if (count == 0) return &kNothing;
  if (file_ == nullptr) return memory_ + offset;
  if (buffer_.size() < count) buffer_.resize(count);
  if (!Seek(file_, offset, SEEK_SET) || std::fread(buffer_.data(), 1, count, file_) != count) return nullptr;
  return buffer_.data();
}

}  // namespace qnv::calls
