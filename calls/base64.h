// Bytes as base64, for pages and answers that hold files.
#pragma once

#include <cstddef>
#include <string>

namespace qnv::calls {

// Appends the bytes with the usual digits, filled up with = to groups of four.
void AppendBase64(std::string& text, const void* bytes, std::size_t count);

}  // namespace qnv::calls
