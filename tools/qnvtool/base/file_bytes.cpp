// Little-endian numbers, and how files are called in messages.
#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

std::string DisplayName(const std::string& path) { return path == "-" ? "standard input" : path; }

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
