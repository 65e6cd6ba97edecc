// Breaks paragraphs and makes page items of their lines.
#include "qnvtool/layout/text_lines.h"

#include <algorithm>
#include <string>

namespace qnv::tool {
namespace {

constexpr std::u32string_view kEllipsis = U"\u2026";

}  // namespace

TextLine MakeLine(std::u32string_view text, const ShapedText& shaped, const LinePart& part, const Font& font, int left,
                  int baseline) {
  LineRuns runs = shaped.Runs(part);
  TextLine line;
  line.left = left;
  line.baseline = baseline;
  line.breakExtra = runs.breakExtra;
  line.breakCount = runs.breakCount;
  line.runs = std::move(runs.runs);
  for (std::size_t i = part.begin; i < part.end; ++i) {
    if (IsBreakControl(text[i])) continue;
    line.text.push_back(text[i]);
    line.places.push_back(runs.places[i - part.begin]);
  }
  if (part.hyphen && !line.text.empty()) {
    const bool leftwards = line.places.back().left < line.places.front().left;
    line.text.push_back(kSoftHyphen);
    line.places.push_back({leftwards ? 0 : line.places.back().right, leftwards ? line.places.back().left : runs.width});
  }
  line.width = runs.width;
  line.ascent = font.ascent();
  line.descent = font.descent();
  return line;
}

TextLine MakeLine(std::u32string_view text, Font& font, int left, int baseline) {
  return MakeLine(text, *font.Shape(text, TextForm::kFlow), {0, text.size()}, font, left, baseline);
}

std::u32string CutTo(std::u32string_view text, Font& font, int width) {
  const std::unique_ptr<ShapedText> shaped = font.Shape(text, TextForm::kFlow);
  const int64_t room = int64_t{width} * kPixel;
  const int64_t ellipsis = font.Shape(kEllipsis, TextForm::kFlow)->advances()[0];
  int64_t used = 0;
  std::size_t kept = 0;  // characters that leave room for the ellipsis
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (shaped->breaks()[i] != LineBreak::kInside && used + ellipsis <= room) kept = i;
    used += shaped->advances()[i];
    if (used > room) return std::u32string(text.substr(0, kept)).append(kEllipsis);
  }
  return std::u32string(text);
}

Paragraph::Paragraph(std::u32string_view text, Font& font, int width)
    : text_(text), font_(font), width_(width), shaped_(font.Shape(text_, TextForm::kFlow)) {
  lines_ = BreakLines(text_, shaped_->advances(), shaped_->breaks(), font.Advance(U'-'), width * kPixel);
}

TextLine Paragraph::Line(std::size_t index, int left, int baseline, bool justify) const {
  const BrokenLine& broken = lines_[index];
  LinePart part{broken.begin, broken.end, broken.hyphen, 0, broken.spaces};
  if (justify && !broken.last) part.width = width_;
  TextLine line = MakeLine(text_, *shaped_, part, font_, left, baseline);
  if (rightToLeft()) line.left += width_ - line.width;
  return line;
}

}  // namespace qnv::tool
