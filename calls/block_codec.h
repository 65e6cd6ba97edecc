// Compresses the blocks of a call file.
#pragma once

#include "calls/encoding.h"
#include "calls/file_format.h"

namespace qnv::calls {

// Whether blocks that are compressed by zstd can be read and written.
bool HasZstd();

// Compresses a block, or copies it where that is not possible or not shorter. Returns how.
Codec CompressBlock(const Bytes& raw, Bytes* stored);

// False for data that are damaged, do not have `rawBytes` bytes, or have a codec that this build does not read.
bool DecompressBlock(Codec codec, const uint8_t* stored, std::size_t storedBytes, std::size_t rawBytes, Bytes* raw);

}  // namespace qnv::calls
