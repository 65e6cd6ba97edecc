// Reads the host's raster-font record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qnvdrv10.h"

namespace qnv {

class FontRecord {
 public:
  FontRecord(const void* fontBase, uint16_t fontOffset)
      : base_(static_cast<const uint8_t*>(fontBase)), record_(base_ + fontOffset) {
    std::memcpy(&info_, record_, sizeof info_);
  }

  bool IsTwoByte() const { return (info_.dfType & 0x20) != 0; }
  bool IsVariablePitch() const { return (info_.dfPitchAndFamily & 1) != 0; }
  int32_t Height() const { return info_.dfPixHeight; }
  int32_t FixedWidth() const { return info_.dfPixWidth; }

  // A one-byte code's entry in the character table: codes outside the table are shown as the default.
  uint16_t IndexOf(uint8_t code) const {
    const uint8_t mapped = code < info_.dfFirstChar || code > info_.dfLastChar
                               ? static_cast<uint8_t>(info_.dfDefaultChar + info_.dfFirstChar)
                               : code;
    return static_cast<uint8_t>(mapped - info_.dfFirstChar);
  }
  bool IsBreak(uint16_t index) const { return index == info_.dfBreakChar; }

  uint16_t TableWidth(uint16_t index) const { return Read<uint16_t>(Entry(index)); }
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

  bool HasShortTable() const { return info_.dfType == 0x200; }
  const uint8_t* Entry(uint16_t index) const {
    return HasShortTable() ? record_ + 49 + std::size_t{4} * index : record_ + 82 + std::size_t{6} * index;
  }

  const uint8_t* base_;
  const uint8_t* record_;
  FONTINFO info_;
};

}  // namespace qnv
