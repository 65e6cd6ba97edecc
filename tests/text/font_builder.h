// Raster fonts as a host would hand them over, drawn in the tests as pictures.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/plane_image.h"

namespace qnv::test {

enum class TableForm { kShort, kLong };

// A font block that ends where its last glyph ends, at an unreadable page where the platform offers one.
class Font {
 public:
  Font(const std::vector<uint8_t>& bytes, uint16_t offset) : memory_(bytes), offset_(offset) {}
  const void* base() const { return memory_.data(); }
  uint16_t offset() const { return offset_; }
  bool Unchanged() const { return memory_.Unchanged(); }

 private:
  FencedInput memory_;
  uint16_t offset_;
};

struct FontShape {
  int16_t height = 4;
  uint8_t firstChar = 'a';
  uint8_t lastChar = 'a';
  uint8_t defaultChar = 0;  // relative to firstChar
  uint8_t breakChar = 0;    // relative to firstChar
  bool variablePitch = true;
  int16_t fixedWidth = 0;
  TableForm table = TableForm::kLong;
  bool twoByte = false;
  uint16_t offset = 0;    // of the font record from the block's base
  uint16_t typeBits = 0;  // put into the type besides those of the table and the character size
};

class FontBuilder {
 public:
  explicit FontBuilder(const FontShape& shape) : shape_(shape) {}

  // The glyph of a code (for two-byte fonts: of a table index): `shape.height` rows of `width` letters, '#' set. The
  // table says `width` too unless another is given.
  FontBuilder& Glyph(uint16_t code, int width, std::string_view picture, int tableWidth = -1) {
    EXPECT_EQ(static_cast<std::size_t>(width * shape_.height), picture.size()) << "glyph picture of another size";
    std::vector<uint8_t> bits(static_cast<std::size_t>((width + 7) / 8 * shape_.height), 0);
    for (int row = 0; row < shape_.height; ++row) {
      for (int column = 0; column < width; ++column) {
        if (picture[static_cast<std::size_t>(row * width + column)] == '#') {
          bits[static_cast<std::size_t>(column / 8 * shape_.height + row)] |=
              static_cast<uint8_t>(0x80 >> (column % 8));
        }
      }
    }
    glyphs_[Index(code)] = {static_cast<uint16_t>(tableWidth < 0 ? width : tableWidth), bits};
    return *this;
  }

  Font Build() const {
    const bool shortForm = shape_.table == TableForm::kShort && !shape_.twoByte;
    const std::size_t entryBytes = shortForm ? 4 : 6;
    const std::size_t entries = shape_.twoByte ? glyphs_.rbegin()->first + 1u
                                               : static_cast<std::size_t>(shape_.lastChar - shape_.firstChar + 1);
    // Whatever the library must not take for a glyph is all ones.
    std::vector<uint8_t> bytes(shape_.offset + (shortForm ? 49u : 82u) + entries * entryBytes, 0xFF);
    uint8_t* record = bytes.data() + shape_.offset;
    Put16(record, static_cast<uint16_t>((shape_.twoByte ? 0x20 : 0) | (shortForm ? 0x200 : 0) | shape_.typeBits));
    Put16(record + 20, static_cast<uint16_t>(shape_.fixedWidth));
    Put16(record + 22, static_cast<uint16_t>(shape_.height));
    record[24] = shape_.variablePitch ? 0x31 : 0x30;
    record[29] = shape_.firstChar;
    record[30] = shape_.lastChar;
    record[31] = shape_.defaultChar;
    record[32] = shape_.breakChar;
    for (const auto& [index, glyph] : glyphs_) {
      uint8_t* entry = bytes.data() + shape_.offset + (shortForm ? 49 : 82) + index * entryBytes;
      Put16(entry, glyph.width);
      const std::size_t at = bytes.size();
      Put16(entry + 2, static_cast<uint16_t>(at));
      if (!shortForm) Put16(entry + 4, static_cast<uint16_t>(at >> 16));
      bytes.insert(bytes.end(), glyph.bits.begin(), glyph.bits.end());
    }
    return Font(bytes, shape_.offset);
  }

 private:
  struct Entry {
    uint16_t width = 0;
    std::vector<uint8_t> bits;
  };
  static void Put16(uint8_t* at, uint16_t value) {
    at[0] = static_cast<uint8_t>(value);
    at[1] = static_cast<uint8_t>(value >> 8);
  }
  std::size_t Index(uint16_t code) const {
    return shape_.twoByte ? code : static_cast<std::size_t>(code - shape_.firstChar);
  }

  FontShape shape_;
  std::map<std::size_t, Entry> glyphs_;
};

// The alphabet of most tests: a box, a bar, a slash wider than one glyph column, and a space that breaks lines.
struct SmallGlyph {
  char code;
  int width;
  std::string_view picture;  // four rows
};

inline constexpr SmallGlyph kSmallGlyphs[] = {
    {'a', 3,
     "###"
     "#.#"
     "#.#"
     "###"},
    {'b', 1,
     "#"
     "#"
     "."
     "#"},
    {'c', 10,
     "#........#"
     ".##....##."
     "...####..."
     "........##"},
    {'d', 2,
     ".."
     ".."
     ".."
     ".."},
};

inline FontBuilder SmallFont(FontShape shape = {}) {
  shape.height = 4;
  shape.firstChar = 'a';
  shape.lastChar = 'd';
  shape.breakChar = 'd' - 'a';
  FontBuilder builder(shape);
  for (const SmallGlyph& glyph : kSmallGlyphs)
    builder.Glyph(static_cast<uint8_t>(glyph.code), glyph.width, glyph.picture);
  return builder;
}

inline constexpr uint32_t kTextColor = 0x00102030;
inline constexpr uint32_t kBackColor = 0x00A0B0C0;

// What a draw mode adds to the advances of a text.
struct Spacing {
  int16_t breakExtra = 0;
  int16_t breakCount = 0;
  int16_t breakError = 0;
  int16_t characterExtra = 0;
};

inline DRAWMODE TextMode(int16_t bkMode = TRANSPARENT, const Spacing& spacing = {}) {
  DRAWMODE mode = MakeDrawMode();
  mode.bkMode = bkMode;
  mode.TextColor = kTextColor;
  mode.bkColor = kBackColor;
  mode.TBreakExtra = spacing.breakExtra;
  mode.BreakCount = spacing.breakCount;
  mode.BreakErr = spacing.breakError;
  mode.CharacterExtra = spacing.characterExtra;
  return mode;
}

// Letters of text pictures: 'T' text, 'B' cell background. An 8-bit band takes the color's bits 16..23.
inline PictureInks TextInks() { return {{'T', kTextColor}, {'B', kBackColor}}; }

struct TextSetup {
  const BandRect* clip = &kEverywhere;
  const int16_t* charWidths = nullptr;
  const BandRect* opaqueRect = nullptr;
  uint32_t options = 0;
};

// The call. The string lies fenced.
inline int32_t ShowText(const TestDevice& device, int32_t x, int32_t y, const std::vector<uint8_t>& bytes,
                        int32_t count, const Font& font, DRAWMODE& mode, const TextSetup& setup) {
  const FencedInput string(bytes);
  const int32_t result =
      QNVDevExtTextOut(device.handle(), x, y, setup.clip, string.data(), count, font.base(), font.offset(), &mode,
                       nullptr, setup.charWidths, setup.opaqueRect, setup.options);
  EXPECT_TRUE(string.Unchanged() && font.Unchanged()) << "input was written";
  return result;
}

// One-byte text, and the same measured.
inline int32_t DrawTextAt(const TestDevice& device, int32_t x, int32_t y, std::string_view text, const Font& font,
                          DRAWMODE& mode, const TextSetup& setup = {}) {
  return ShowText(device, x, y, {text.begin(), text.end()}, static_cast<int32_t>(text.size()), font, mode, setup);
}

inline int32_t MeasureText(const TestDevice& device, std::string_view text, const Font& font, DRAWMODE& mode,
                           const TextSetup& setup = {}) {
  return ShowText(device, 0, 0, {text.begin(), text.end()}, -static_cast<int32_t>(text.size()), font, mode, setup);
}

// Two-byte text; `count` may be negative to measure.
inline int32_t TwoByteText(const TestDevice& device, int32_t x, int32_t y, const std::vector<uint16_t>& codes,
                           int32_t count, const Font& font, DRAWMODE& mode, const TextSetup& setup = {}) {
  std::vector<uint8_t> bytes;
  for (uint16_t code : codes) {
    bytes.push_back(static_cast<uint8_t>(code));
    bytes.push_back(static_cast<uint8_t>(code >> 8));
  }
  return ShowText(device, x, y, bytes, count, font, mode, setup);
}

// The value of a measuring call.
inline constexpr int32_t Extent(int32_t height, int32_t advance) {
  return static_cast<int32_t>(static_cast<uint32_t>(height) << 16 | (static_cast<uint32_t>(advance) & 0xFFFF));
}

}  // namespace qnv::test
