// A font made of arithmetic, so that tests of text need no font file.
#pragma once

#include <memory>

#include "qnvtool/text/font_shelf.h"
#include "qnvtool/text/plain_font.h"

namespace qnv::test {

// Glyphs are boxes with a pattern of their own inside; a space is empty. Widths differ from character to character.
class SyntheticFont final : public tool::GlyphSource {
 public:
  explicit SyntheticFont(int size) : size_(size) {}

  int ascent() const override { return size_; }
  int descent() const override { return size_ / 3; }
  int lineHeight() const override { return size_ * 3 / 2; }

  tool::Glyph Load(char32_t code) override {
    tool::Glyph glyph;
    glyph.advance = size_ / 2 + static_cast<int>(code % 5);
    if (code == ' ' || code == 0xA0) return glyph;
    glyph.left = code % 7 == 0 ? -1 : 1;
    glyph.columns = glyph.advance - 2;
    glyph.top = size_ - static_cast<int>(code % 3);
    glyph.rows = size_;
    const auto stride = static_cast<std::size_t>(glyph.columns + 7) / 8;
    glyph.bits.resize(stride * static_cast<std::size_t>(glyph.rows));
    for (int row = 0; row < glyph.rows; ++row) {
      for (int column = 0; column < glyph.columns; ++column) {
        const bool frame = row == 0 || column == 0 || row == glyph.rows - 1 || column == glyph.columns - 1;
        if (!frame && (static_cast<uint32_t>(row * 5 + column * 3) + code) % 4 != 0) continue;
        auto& byte = glyph.bits[static_cast<std::size_t>(row) * stride + static_cast<std::size_t>(column) / 8];
        byte = static_cast<uint8_t>(byte | 0x80 >> column % 8);
      }
    }
    return glyph;
  }

 private:
  const int size_;
};

// A shelf of such fonts at `dpi`.
inline tool::FontShelf SyntheticShelf(int dpi) {
  return tool::FontShelf([dpi](tool::FontRole role, double points) {
    const int size = static_cast<int>(points * dpi / 72) + static_cast<int>(role);
    return std::make_unique<tool::PlainFont>(std::make_unique<SyntheticFont>(size < 3 ? 3 : size));
  });
}

}  // namespace qnv::test
