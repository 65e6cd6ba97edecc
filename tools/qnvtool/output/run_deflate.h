// A fast deflate encoder for data that consists of runs of equal bytes with little between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qnv::tool {

// Ends of a piece of a deflate stream.
enum class DeflateEnd {
  kByte,    // more follows, from the next byte on
  kStream,  // the stream ends
};

// Writes `size` bytes as one piece of a raw deflate stream to `result`, replacing what it holds, and returns their
// Adler-32 checksum. The piece refers to nothing before it. Decoders need no more than any deflate stream demands.
uint32_t DeflateRuns(const uint8_t* bytes, std::size_t size, DeflateEnd end, std::vector<uint8_t>& result);

}  // namespace qnv::tool
