// A font at one size, as the layout and the printer see it.
#pragma once

#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

#include "font_record.h"

namespace qnv::tool {

// Where glyphs come from.
class GlyphSource {
 public:
  virtual ~GlyphSource() = default;
  virtual int ascent() const = 0;   // pixels above the baseline, nominal
  virtual int descent() const = 0;  // pixels below it, positive
  virtual int lineHeight() const = 0;
  virtual Glyph Load(char32_t code) = 0;
};

// Keeps two raster fonts: a one-byte one with all of Latin-1, made at once, and a two-byte one that grows by the
// other characters that are asked for, each under the next free code.
class Font {
 public:
  explicit Font(std::unique_ptr<GlyphSource> source);

  int ascent() const { return source_->ascent(); }
  int descent() const { return source_->descent(); }
  int lineHeight() const { return source_->lineHeight(); }

  static bool IsLatin(char32_t code) { return code >= kFirstLatin && code <= kLastLatin; }

  // Pixels from this character to the next.
  int Advance(char32_t code);

  // Code of a character in the two-byte font. Requires: !IsLatin(code). At most 65536 characters; the ones after
  // that share the last code.
  uint16_t WideCode(char32_t code);

  const FontRecord& latin() const { return latin_; }

  // The two-byte font with every character asked for so far; empty when there is none.
  const FontRecord& Wide();

 private:
  std::unique_ptr<GlyphSource> source_;
  FontRecord latin_;
  std::array<int, kLastLatin - kFirstLatin + 1> latinAdvances_{};
  std::vector<Glyph> wideGlyphs_;
  std::unordered_map<char32_t, uint16_t> wideCodes_;
  FontRecord wide_;
  std::size_t wideBuilt_ = 0;  // glyphs in wide_
};

}  // namespace qnv::tool
