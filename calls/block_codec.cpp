// Blocks by zstd where the build has it.
#include "calls/block_codec.h"

#ifdef QNV_ZSTD
#include <zstd.h>
#endif

namespace qnv::calls {

#ifdef QNV_ZSTD

namespace {
// Records of calls repeat what came shortly before; the fastest level finds that.
constexpr int kLevel = 1;
}  // namespace

bool HasZstd() { return true; }

Codec CompressBlock(const Bytes& raw, Bytes* stored) {
  stored->resize(ZSTD_compressBound(raw.size()));
  const std::size_t bytes = ZSTD_compress(stored->data(), stored->size(), raw.data(), raw.size(), kLevel);
  if (ZSTD_isError(bytes) != 0 || bytes >= raw.size()) {
    *stored = raw;
    return Codec::kStored;
  }
  stored->resize(bytes);
  return Codec::kZstd;
}

#else

bool HasZstd() { return false; }

Codec CompressBlock(const Bytes& raw, Bytes* stored) {
  *stored = raw;
  return Codec::kStored;
}

#endif

bool DecompressBlock(Codec codec, const uint8_t* stored, std::size_t storedBytes, std::size_t rawBytes, Bytes* raw) {
  if (codec == Codec::kStored) {
    if (storedBytes != rawBytes) return false;
    raw->assign(stored, stored + storedBytes);
    return true;
  }
#ifdef QNV_ZSTD
  if (codec == Codec::kZstd) {
    // The frame names its size too: memory is taken only when both agree.
    if (ZSTD_getFrameContentSize(stored, storedBytes) != rawBytes) return false;
    raw->resize(rawBytes);
    return ZSTD_decompress(raw->data(), rawBytes, stored, storedBytes) == rawBytes;
  }
#endif
  return false;
}

}  // namespace qnv::calls
