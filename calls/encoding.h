// How numbers are stored in call files: little-endian, or in groups of seven bits with the lowest group first, where
// numbers with a sign are folded so that those near 0 are short.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace qnv::calls {

using Bytes = std::vector<uint8_t>;

constexpr uint64_t Fold(int64_t value) {
  return static_cast<uint64_t>(value) << 1 ^ static_cast<uint64_t>(value >> 63);
}
constexpr int64_t Unfold(uint64_t value) { return static_cast<int64_t>(value >> 1 ^ (0 - (value & 1))); }

inline constexpr std::size_t kMaxNumberBytes = 10;

// Writes a number and returns the place behind it. Requires: kMaxNumberBytes bytes.
inline uint8_t* PutNumber(uint8_t* at, uint64_t value) {
  for (; value >= 0x80; value >>= 7) *at++ = static_cast<uint8_t>(value | 0x80);
  *at++ = static_cast<uint8_t>(value);
  return at;
}

template <class T>
uint8_t* PutLittle(uint8_t* at, T value) {
  for (std::size_t i = 0; i < sizeof value; ++i) *at++ = static_cast<uint8_t>(value >> 8 * i);
  return at;
}

inline void AppendNumber(Bytes& bytes, uint64_t value) {
  uint8_t buffer[kMaxNumberBytes];
  bytes.insert(bytes.end(), buffer, PutNumber(buffer, value));
}

template <class T>
void AppendLittle(Bytes& bytes, T value) {
  uint8_t buffer[sizeof value];
  PutLittle(buffer, value);
  bytes.insert(bytes.end(), buffer, buffer + sizeof value);
}

template <class T>
T GetLittle(const uint8_t* at) {
  T value = 0;
  for (std::size_t i = 0; i < sizeof value; ++i) value = static_cast<T>(value | static_cast<T>(at[i]) << 8 * i);
  return value;
}

// Reads what the functions above write. After a read beyond the end, or of a number that is too long, `ok` is false and
// all further numbers are 0.
class ByteReader {
 public:
  ByteReader(const uint8_t* begin, std::size_t bytes) : begin_(begin), at_(begin), end_(begin + bytes) {}

  uint64_t Number() {
    uint64_t value = 0;
    for (uint32_t shift = 0; shift < 64; shift += 7) {
      if (at_ == end_) return Fail();
      const uint8_t byte = *at_++;
      if (shift == 63 && byte > 1) return Fail();
      value |= uint64_t{byte & 0x7Fu} << shift;
      if (byte < 0x80) return value;
    }
    return Fail();
  }
  int64_t SignedNumber() { return Unfold(Number()); }
  // A number of 32 bits.
  uint32_t Number32() {
    const uint64_t value = Number();
    return value <= UINT32_MAX ? static_cast<uint32_t>(value) : static_cast<uint32_t>(Fail());
  }
  uint8_t Byte() { return at_ == end_ ? static_cast<uint8_t>(Fail()) : *at_++; }
  template <class T>
  T Little() {
    const uint8_t* const at = Take(sizeof(T));
    return at == nullptr ? T{0} : GetLittle<T>(at);
  }
  // The next bytes; null beyond the end.
  const uint8_t* Take(uint64_t bytes) {
    if (!ok_ || bytes > Left()) {
      Fail();
      return nullptr;
    }
    const uint8_t* const at = at_;
    at_ += bytes;
    return at;
  }
  uint64_t Fail() {
    ok_ = false;
    at_ = end_;
    return 0;
  }
  bool ok() const { return ok_; }
  std::size_t Left() const { return static_cast<std::size_t>(end_ - at_); }
  std::size_t Position() const { return static_cast<std::size_t>(at_ - begin_); }

 private:
  const uint8_t *begin_, *at_, *end_;
  bool ok_ = true;
};

}  // namespace qnv::calls
