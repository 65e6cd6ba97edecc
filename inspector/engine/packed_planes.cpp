// Packs rows: a number of bytes as they are, then a number of equal bytes and which, and so on.
#include "inspector/engine/packed_planes.h"

#include <bit>
#include <cstring>

#include "calls/encoding.h"

namespace qnv::inspector {
namespace {

constexpr std::size_t kGroupBytes = std::size_t{32} << 10;
// Shorter runs are kept as they are.
constexpr std::size_t kMinRun = 64;

uint64_t EightAt(const uint8_t* at) {
  uint64_t eight;
  std::memcpy(&eight, at, sizeof eight);
  return eight;
}

}  // namespace

// Looks at eight bytes at a time: this runs over whole bands again and again while a file is opened.
RowGroup::RowGroup(const uint8_t* bytes, std::size_t count) {
  std::size_t kept = 0;
  const auto flush = [&](std::size_t end, std::size_t run) {
    calls::AppendNumber(packed_, end - kept);
    packed_.insert(packed_.end(), bytes + kept, bytes + end);
    calls::AppendNumber(packed_, run);
    if (run != 0) packed_.push_back(bytes[end]);
    kept = end + run;
  };
  packed_.reserve(count / 4);
  for (std::size_t at = 0; at + 8 <= count;) {
    const uint64_t eight = EightAt(bytes + at);
    std::size_t end = at + 8;
    if (eight == std::rotl(eight, 8)) {
      while (end + 8 <= count && EightAt(bytes + end) == eight) end += 8;
      if (end - at >= kMinRun) flush(at, end - at);
    }
    at = end;
  }
  if (kept != count) flush(count, 0);
  if (packed_.size() >= count) {
    isPacked_ = false;
    packed_.assign(bytes, bytes + count);
  }
  packed_.shrink_to_fit();
}

void RowGroup::Unpack(uint8_t* out) const {
  if (!isPacked_) {
    if (!packed_.empty()) std::memcpy(out, packed_.data(), packed_.size());
    return;
  }
  calls::ByteReader reader(packed_.data(), packed_.size());
  while (reader.Left() != 0) {
    const auto kept = static_cast<std::size_t>(reader.Number());
    const uint8_t* const bytes = reader.Take(kept);
    if (kept != 0) std::memcpy(out, bytes, kept);
    out += kept;
    const auto run = static_cast<std::size_t>(reader.Number());
    if (run != 0) std::memset(out, reader.Byte(), run);
    out += run;
  }
}

GroupLayout GroupLayout::Of(std::size_t planeBytes, std::size_t stride) {
  GroupLayout layout;
  layout.planeBytes = planeBytes;
  layout.stride = stride == 0 ? 1 : stride;
  layout.groupBytes = layout.stride * (kGroupBytes > layout.stride ? kGroupBytes / layout.stride : 1);
  return layout;
}

}  // namespace qnv::inspector
