// Sets characters one after the other.
#include "qnvtool/text/plain_font.h"

#include <algorithm>

#include "qnvtool/text/line_breaker.h"

namespace qnv::tool {
namespace {

constexpr char32_t kNoBreakSpace = 0xA0;
constexpr std::size_t kMaxRunLength = 30000;  // the rasteriser counts characters in 16 bits
constexpr int kMaxGap = 32767;

class PlainText final : public ShapedText {
 public:
  PlainText(PlainFont& font, std::u32string_view text) : font_(font), text_(text) {
    for (const char32_t c : text) advances_.push_back(IsBreakControl(c) ? 0 : font.CellOf(c) * kPixel);
    breaks_ = PlainBreaks(text);
  }

  LineRuns Runs(const LinePart& part) const override {
    LineRuns line;
    for (std::size_t i = part.begin; i < part.end; ++i) {
      if (IsBreakControl(text_[i])) continue;
      font_.Append(line.runs, text_[i]);
      line.width += advances_[i] / kPixel;
    }
    if (part.hyphen) {
      font_.Append(line.runs, U'-');
      line.width += font_.CellOf(U'-');
    }
    if (part.width > line.width && part.spaces > 0) {
      line.breakExtra = std::min(part.width - line.width, kMaxGap);
      line.breakCount = part.spaces;
      line.width += line.breakExtra;
    }
    line.places = Places(part, line);
    return line;
  }

 private:
  // Spreads the extra pixels over the spaces as the rasteriser does.
  std::vector<CharacterPlace> Places(const LinePart& part, const LineRuns& line) const {
    std::vector<CharacterPlace> places;
    int x = 0;
    int error = 1;
    for (std::size_t i = part.begin; i < part.end; ++i) {
      const int left = x;
      x += advances_[i] / kPixel;
      places.push_back({left, x});
      if (text_[i] != ' ' || line.breakCount == 0) continue;
      x += line.breakExtra / line.breakCount;
      error -= line.breakExtra % line.breakCount;
      if (error < 1) {
        ++x;
        error += line.breakCount;
      }
    }
    return places;
  }

  PlainFont& font_;
  const std::u32string text_;
};

}  // namespace

PlainFont::PlainFont(std::unique_ptr<GlyphSource> source) : source_(std::move(source)) {
  std::vector<Glyph> glyphs;
  for (char32_t code = kFirstLatin; code <= kLastLatin; ++code) {
    const bool control = code >= 0x7F && code < kNoBreakSpace;
    // A soft hyphen that is shown is a hyphen; many fonts leave it empty.
    glyphs.push_back(control ? Glyph{} : source_->Load(code == kSoftHyphen ? U'-' : code));
    latinCells_[code - kFirstLatin] = CellWidth(glyphs.back());
  }
  latin_ = std::make_shared<const FontRecord>(MakeOneByteRecord(glyphs, ascent(), descent()));
}

std::unique_ptr<ShapedText> PlainFont::Shape(std::u32string_view text, TextForm) {
  return std::make_unique<PlainText>(*this, text);
}

int PlainFont::CellOf(char32_t code) {
  if (IsLatin(code)) return latinCells_[code - kFirstLatin];
  return WideOf(code).cell;
}

// A new character is rendered and gets the next code.
const PlainFont::Wide& PlainFont::WideOf(char32_t code) {
  const auto known = wide_.find(code);
  if (known != wide_.end()) return known->second;
  if (sheet_ == nullptr || sheet_->full()) sheet_ = std::make_shared<GlyphSheet>(ascent(), descent());
  Glyph glyph = source_->Load(code);
  const int cell = CellWidth(glyph);
  return wide_.emplace(code, Wide{sheet_, sheet_->Add(std::move(glyph)), cell}).first->second;
}

void PlainFont::Append(std::vector<TextRun>& runs, char32_t code) {
  const bool isLatin = IsLatin(code);
  const Wide* const wide = isLatin ? nullptr : &WideOf(code);
  const bool fits = !runs.empty() && runs.back().codes.empty() == isLatin &&
                    (isLatin || runs.back().sheet == wide->sheet) &&
                    std::max(runs.back().latin.size(), runs.back().codes.size()) < kMaxRunLength;
  if (!fits) runs.emplace_back();
  TextRun& run = runs.back();
  if (isLatin) {
    run.oneByte = latin_;
    run.latin.push_back(static_cast<char>(code));
  } else {
    run.sheet = wide->sheet;
    run.codes.push_back(wide->code);
    run.widths.push_back(static_cast<int16_t>(wide->cell));
  }
}

}  // namespace qnv::tool
