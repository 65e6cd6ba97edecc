// Call files without compression, for readers that have none.
#pragma once

#include "calls/encoding.h"

namespace qnv::calls {

// Writes a copy of a file to *copy in which every block is stored, with an index of its own. Of a file that was cut
// off, the complete blocks, and no index. False for files that cannot be read otherwise.
bool CopyStored(const uint8_t* bytes, std::size_t count, Bytes* copy);

}  // namespace qnv::calls
