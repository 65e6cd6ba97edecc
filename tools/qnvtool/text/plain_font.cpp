// Builds the raster fonts of one outline font: Latin-1 at once, other characters as they are used.
#include "qnvtool/text/font.h"

#include <algorithm>

#include "qnvtool/text/line_breaker.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxWideGlyphs = 65536;
constexpr char32_t kNoBreakSpace = 0xA0;

}  // namespace

Font::Font(std::unique_ptr<GlyphSource> source) : source_(std::move(source)) {
  std::vector<Glyph> glyphs;
  for (char32_t code = kFirstLatin; code <= kLastLatin; ++code) {
    const bool control = code >= 0x7F && code < kNoBreakSpace;
    // A soft hyphen that is shown is a hyphen; many fonts leave it empty.
    glyphs.push_back(control ? Glyph{} : source_->Load(code == kSoftHyphen ? U'-' : code));
    latinAdvances_[code - kFirstLatin] = CellWidth(glyphs.back());
  }
  latin_ = MakeOneByteRecord(glyphs, ascent(), descent());
}

int Font::Advance(char32_t code) {
  if (IsLatin(code)) return latinAdvances_[code - kFirstLatin];
  return CellWidth(wideGlyphs_[WideCode(code)]);
}

// A new character is rendered and gets the next code; the record is built again when it is next used.
uint16_t Font::WideCode(char32_t code) {
  const auto known = wideCodes_.find(code);
  if (known != wideCodes_.end()) return known->second;
  if (wideGlyphs_.size() == kMaxWideGlyphs) return static_cast<uint16_t>(kMaxWideGlyphs - 1);
  const auto index = static_cast<uint16_t>(wideGlyphs_.size());
  wideGlyphs_.push_back(source_->Load(code));
  wideCodes_.emplace(code, index);
  return index;
}

const FontRecord& Font::Wide() {
  if (wideBuilt_ != wideGlyphs_.size()) {
    wide_ = MakeTwoByteRecord(wideGlyphs_, ascent(), descent());
    wideBuilt_ = wideGlyphs_.size();
  }
  return wide_;
}

}  // namespace qnv::tool
