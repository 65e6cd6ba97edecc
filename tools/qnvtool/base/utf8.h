// Decodes UTF-8 text files.
#pragma once

#include <string>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// Decodes a text file. A byte order mark is dropped, CR LF and CR become LF, other control characters but tab and
// form feed are dropped. Throws ToolError (bad input), naming `name` and the byte, for a zero byte (a binary file)
// and for anything that is not well-formed UTF-8.
std::u32string DecodeTextFile(const Bytes& file, const std::string& name);

}  // namespace qnv::tool
