// A font at one size: the layout asks it for advances, the printer for raster-font records.
#pragma once

#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

#include "qnvtool/text/font_record.h"

namespace qnv::tool {

// The source of the glyphs, at one size.
class GlyphSource {
 public:
  virtual ~GlyphSource() = default;
  virtual int ascent() const = 0;      // pixels above the baseline, nominal
  virtual int descent() const = 0;     // pixels below it, positive
  virtual int lineHeight() const = 0;  // pixels from baseline to baseline
  virtual Glyph Load(char32_t code) = 0;
};

// Keeps two raster fonts: a one-byte font with all of Latin-1, made at once, and a two-byte font to which every other
// character is added when it is first used, with the next free code.
class Font {
 public:
  explicit Font(std::unique_ptr<GlyphSource> source);

  int ascent() const { return source_->ascent(); }
  int descent() const { return source_->descent(); }
  int lineHeight() const { return source_->lineHeight(); }

  static bool IsLatin(char32_t code) { return code >= kFirstLatin && code <= kLastLatin; }

  // Pixels from this character to the next.
  int Advance(char32_t code);

  // Code of a character in the two-byte font. Requires: !IsLatin(code). At most 65536 characters; further ones
  // share the last code.
  uint16_t WideCode(char32_t code);

  const FontRecord& latin() const { return latin_; }

  // The two-byte font with every character used so far; empty when there is none.
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
