// Bytes in memory, and little-endian fields of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qnv::tool {

using Bytes = std::vector<uint8_t>;

// The name of a file in messages, "-" being standard input.
std::string DisplayName(const std::string& path);

// Little-endian fields. Requires: offset + the size of the field <= bytes.size().
uint16_t U16At(const Bytes& bytes, std::size_t offset);
uint32_t U32At(const Bytes& bytes, std::size_t offset);
inline int32_t I32At(const Bytes& bytes, std::size_t offset) { return static_cast<int32_t>(U32At(bytes, offset)); }

// Append little-endian fields.
void AppendU16(Bytes& bytes, uint32_t value);
void AppendU32(Bytes& bytes, uint32_t value);

}  // namespace qnv::tool
