// Text in any encoding that the system knows.
#pragma once

#include "qnvtool/text/text_decoder.h"

namespace qnv::tool {

// A decoder for an encoding that iconv knows by this name; null for any other name.
std::unique_ptr<TextDecoder> OpenIconvDecoder(const std::string& encoding);

}  // namespace qnv::tool
