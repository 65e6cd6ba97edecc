// Reads a raster font of the host: the record, the character table behind it, and the places of the glyphs. All of it
// is host memory without alignment; character codes of one-byte fonts are checked, those of two-byte fonts are not.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qnvdrv10.h"

namespace qnv {

class FontRecord {
 public:
  // fontBase: glyph offsets count from here. fontOffset: bytes from there to the record.
  FontRecord(const void* fontBase, uint16_t fontOffset)
      : base_(static_cast<const uint8_t*>(fontBase)), record_(base_ + fontOffset) {
    std::memcpy(&info_, record_, sizeof info_);
  }

  bool IsTwoByte() const { return (info_.dfType & 0x20) != 0; }
  bool IsVariablePitch() const { return (info_.dfPitchAndFamily & 1) != 0; }
  // Pixels.
  int32_t Height() const { return info_.dfPixHeight; }
  int32_t FixedWidth() const { return info_.dfPixWidth; }

  // The index of a one-byte code in the character table; a code outside the table gets that of the default character.
  uint16_t IndexOf(uint8_t code) const {
    const uint8_t mapped = code < info_.dfFirstChar || code > info_.dfLastChar
                               ? static_cast<uint8_t>(info_.dfDefaultChar + info_.dfFirstChar)
                               : code;
    return static_cast<uint8_t>(mapped - info_.dfFirstChar);
  }
  bool IsBreak(uint16_t index) const { return index == info_.dfBreakChar; }

  // Pixels.
  uint16_t TableWidth(uint16_t index) const { return Read<uint16_t>(Entry(index)); }
  // The widths of n one-byte characters, added up; the low 16 bits, which are all that any result shows. It is all that
  // a text beside the band needs, and documents have much more of that than of any other: every band gets the whole
  // page.
  uint16_t TableWidthOf(const uint8_t* string, int32_t n) const;
  // The bits of a glyph: columns of eight pixels, Height() bytes each, bit 0x80 leftmost.
  const uint8_t* Glyph(uint16_t index) const {
    const uint8_t* offset = Entry(index) + 2;
    return base_ + (HasShortTable() ? Read<uint16_t>(offset) : Read<uint32_t>(offset));
  }

 private:
  template <class T>
  static T Read(const uint8_t* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }

  // Entries are a 16-bit width and an offset: of 16 bits in a short table, of 32 bits in the other.
  bool HasShortTable() const { return info_.dfType == 0x200; }
  const uint8_t* Entry(uint16_t index) const {
    return HasShortTable() ? record_ + 49 + std::size_t{4} * index : record_ + 82 + std::size_t{6} * index;
  }

  const uint8_t* base_;
  const uint8_t* record_;
  FONTINFO info_;
};

}  // namespace qnv
