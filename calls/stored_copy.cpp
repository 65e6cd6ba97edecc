// Decompresses the blocks of a file one by one. The items stay as they are; only the places of the blocks in the index
// change.
#include "calls/stored_copy.h"

#include "calls/block_codec.h"
#include "calls/file_format.h"
#include "calls/hash.h"

namespace qnv::calls {
namespace {

void AppendBlock(Bytes& out, uint8_t kind, const Bytes& data) {
  const std::size_t header = out.size();
  out.insert(out.end(), kBlockMagic, kBlockMagic + sizeof kBlockMagic);
  AppendLittle(out, kind);
  AppendLittle(out, static_cast<uint8_t>(Codec::kStored));
  AppendLittle(out, uint16_t{0});
  AppendLittle(out, static_cast<uint32_t>(data.size()));
  AppendLittle(out, static_cast<uint32_t>(data.size()));
  AppendLittle(out, Hash64(data.data(), data.size(), Hash64(out.data() + header, 16)));
  out.insert(out.end(), data.begin(), data.end());
}

// The index with the blocks at these places.
bool MoveIndex(const Bytes& index, const std::vector<uint64_t>& places, Bytes* moved) {
  ByteReader reader(index.data(), index.size());
  for (int i = 0; i < 3; ++i) AppendNumber(*moved, reader.Number());  // calls, blobs, images
  const uint64_t count = reader.Number();
  if (!reader.ok() || count != places.size()) return false;
  AppendNumber(*moved, count);
  for (const uint64_t place : places) {
    reader.Number();
    AppendNumber(*moved, place);
    for (int i = 0; i < 3; ++i) AppendNumber(*moved, reader.Number());  // first call, blob and image
  }
  return reader.ok();
}

}  // namespace

bool CopyStored(const uint8_t* bytes, std::size_t count, Bytes* copy) {
  copy->clear();
  if (count < kFileHeaderBytes) {
    copy->assign(bytes, bytes + count);
    return true;
  }
  copy->assign(bytes, bytes + kFileHeaderBytes);
  std::vector<uint64_t> places;
  for (std::size_t at = kFileHeaderBytes; count - at >= kBlockHeaderBytes;) {
    const uint8_t* const header = bytes + at;
    const uint32_t stored = GetLittle<uint32_t>(header + 8), raw = GetLittle<uint32_t>(header + 12);
    if (std::memcmp(header, kBlockMagic, sizeof kBlockMagic) != 0 || raw > kMaxBlockBytes) return false;
    if (count - at - kBlockHeaderBytes < stored) return true;
    Bytes data;
    if (!DecompressBlock(static_cast<Codec>(header[5]), header + kBlockHeaderBytes, stored, raw, &data)) return false;
    if (header[4] == static_cast<uint8_t>(BlockKind::kIndex)) {
      Bytes index;
      const uint64_t place = copy->size();
      if (!MoveIndex(data, places, &index)) return false;
      AppendBlock(*copy, header[4], index);
      AppendLittle(*copy, place);
      copy->insert(copy->end(), kFooterMagic, kFooterMagic + sizeof kFooterMagic);
      return true;
    }
    places.push_back(copy->size());
    AppendBlock(*copy, header[4], data);
    at += kBlockHeaderBytes + stored;
  }
  return true;
}

}  // namespace qnv::calls
