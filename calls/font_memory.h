// Remembers which glyphs of a font are in the file, so that a text names the font and adds only what is new.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "calls/call_writer.h"
#include "calls/memory_reads.h"

namespace qnv::calls {

class FontMemory {
 public:
  // The number of an image that holds all that the text reads of its font; 0 when it cannot be kept.
  uint32_t ImageFor(const Slots& slots, const TextShape& shape, CallWriter& writer);

 private:
  struct Glyph {
    bool hasEntry = false, hasBits = false;
    uint8_t entry[6];
    GlyphRange range;
    std::vector<uint8_t> bits;
  };
  struct Font {
    uint8_t record[kFontRecordBytes];
    uint32_t image = 0;
    std::vector<std::unique_ptr<Glyph>> glyphs;  // by index
  };
  // By address of the base and offset of the record.
  struct Key {
    uintptr_t base;
    uint32_t offset;
    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const { return static_cast<std::size_t>(key.base) * 31 + key.offset; }
  };
  // Adds what the file lacks to pieces_. False when memory that is in the file has changed since.
  bool Collect(Font& font, const Slots& slots, const TextShape& shape, CallWriter& writer, bool* kept);

  std::unordered_map<Key, Font, KeyHash> fonts_;
  std::vector<ImagePiece> pieces_;
};

}  // namespace qnv::calls
