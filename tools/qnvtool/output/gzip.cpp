// Calls zlib.
#include "qnvtool/output/gzip.h"

#include <zlib.h>

#include <algorithm>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {

std::vector<uint8_t> Gzip(const void* bytes, std::size_t count) {
  constexpr int kGzip = 16;  // added to the size of the window
  z_stream stream{};
  std::vector<uint8_t> out;
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + kGzip, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw ToolError(ExitCode::kCannotWrite, "there is no memory to compress the page");
  }
  // zlib counts in 32 bits.
  constexpr std::size_t kPiece = std::size_t{1} << 30;
  uint8_t buffer[65536];
  const auto* at = static_cast<const uint8_t*>(bytes);
  int result = Z_OK;
  do {
    const std::size_t piece = std::min(count, kPiece);
    stream.next_in = const_cast<Bytef*>(at);
    stream.avail_in = static_cast<uInt>(piece);
    at += piece;
    count -= piece;
    do {
      stream.next_out = buffer;
      stream.avail_out = sizeof buffer;
      result = deflate(&stream, count == 0 ? Z_FINISH : Z_NO_FLUSH);
      out.insert(out.end(), buffer, stream.next_out);
    } while (stream.avail_out == 0);
  } while (count != 0);
  deflateEnd(&stream);
  if (result != Z_STREAM_END) throw ToolError(ExitCode::kCannotWrite, "the page cannot be compressed");
  return out;
}

}  // namespace qnv::tool
