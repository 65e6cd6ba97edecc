// A font that sets each character by its own glyph, from left to right. It needs no library of the system.
#pragma once

#include <array>
#include <unordered_map>

#include "qnvtool/text/font.h"

namespace qnv::tool {

// The source of the glyphs, at one size.
class GlyphSource {
 public:
  virtual ~GlyphSource() = default;
  virtual int ascent() const = 0;
  virtual int descent() const = 0;
  virtual int lineHeight() const = 0;
  virtual Glyph Load(char32_t code) = 0;
};

// Latin-1 is set with a one-byte record that is made at once, so that the rasteriser places and justifies it. Every
// other character gets a code of a sheet when it is first used.
class PlainFont final : public Font {
 public:
  explicit PlainFont(std::unique_ptr<GlyphSource> source);

  int ascent() const override { return source_->ascent(); }
  int descent() const override { return source_->descent(); }
  int lineHeight() const override { return source_->lineHeight(); }
  std::unique_ptr<ShapedText> Shape(std::u32string_view text, TextForm form) override;

  static bool IsLatin(char32_t code) { return code >= kFirstLatin && code <= kLastLatin; }

  // Pixels from this character to the next.
  int CellOf(char32_t code);

  // Appends a character to the last run, or to a new one where the record changes.
  void Append(std::vector<TextRun>& runs, char32_t code);

  const std::shared_ptr<const FontRecord>& latin() const { return latin_; }

 private:
  struct Wide {
    std::shared_ptr<GlyphSheet> sheet;
    uint16_t code = 0;
    int cell = 0;
  };
  const Wide& WideOf(char32_t code);

  std::unique_ptr<GlyphSource> source_;
  std::shared_ptr<const FontRecord> latin_;
  std::array<int, kLastLatin - kFirstLatin + 1> latinCells_{};
  std::shared_ptr<GlyphSheet> sheet_;  // the one that is filled
  std::unordered_map<char32_t, Wide> wide_;
};

}  // namespace qnv::tool
