// Compresses bytes in memory in the form of gzip.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qnv::tool {

// Throws ToolError (cannot write) without memory.
std::vector<uint8_t> Gzip(const void* bytes, std::size_t count);

}  // namespace qnv::tool
