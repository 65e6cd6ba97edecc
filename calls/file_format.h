// The parts of a call file, as docs/call-format.md describes them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv::calls {

inline constexpr uint8_t kFileMagic[8] = {'Q', 'N', 'V', 'C', 'A', 'L', 'L', 'S'};
inline constexpr uint8_t kBlockMagic[4] = {'Q', 'B', 'L', 'K'};
inline constexpr uint8_t kFooterMagic[8] = {'Q', 'N', 'V', 'I', 'N', 'D', 'E', 'X'};
inline constexpr uint32_t kFileVersion = 1;

inline constexpr std::size_t kFileHeaderBytes = 24;
inline constexpr std::size_t kBlockHeaderBytes = 24;
inline constexpr std::size_t kFooterBytes = 16;
// A block is closed when it has grown to this.
inline constexpr std::size_t kBlockBytes = std::size_t{256} << 10;
// One that claims to be larger is damaged.
inline constexpr uint32_t kMaxBlockBytes = uint32_t{1} << 30;

enum class BlockKind : uint8_t { kItems = 1, kIndex = 2 };
enum class Codec : uint8_t { kStored = 0, kZstd = 1 };

enum class ItemKind : uint8_t { kBlob = 1, kImage = 2, kBand = 3, kCall = 4, kNote = 5, kFinding = 128 };
// Kinds from here on may be skipped by readers that do not know them.
inline constexpr uint8_t kFirstOptionalItem = 128;

// How a pointer argument is stored.
enum class PointerTag : uint8_t {
  kNull = 0,
  kUnread = 1,  // not null, and the call does not read through it; or memory that the call writes
  kBlob = 2,    // a blob, and the distance from the pointer to the first byte of the blob
  kImage = 3,   // an image: memory of which only pieces are known
  kRows = 4,    // a blob of rows without what lies between them
  kRecord = 5,  // a record that holds a pointer: the blob of its other fields, then the pointer
};

// What follows the arguments of a call.
enum CallFlags : uint32_t {
  kHasOutput = 1,      // blob of what the call wrote
  kHasBandBefore = 2,  // hash of the band before the call
  kHasTagsBefore = 4,
  kHasBandAfter = 8,
  kHasTagsAfter = 16,
  kIncomplete = 32,  // memory that the call reads was too large to keep
};

}  // namespace qnv::calls
