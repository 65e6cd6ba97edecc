// Splits the characters of a line into runs of the one-byte and the two-byte font.
#include "qnvtool/layout/text_lines.h"

#include <algorithm>
#include <string>

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxRun = 30000;  // characters are counted in 16 bits
constexpr int kMaxGap = 32767;

// Appends a character to the last run, or to a new one where the font changes.
void Append(std::vector<TextRun>& runs, char32_t c, const std::shared_ptr<Font>& font) {
  const bool latin = Font::IsLatin(c);
  const bool fits = !runs.empty() && runs.back().codes.empty() == latin &&
                    std::max(runs.back().latin.size(), runs.back().codes.size()) < kMaxRun;
  if (!fits) runs.push_back({font, {}, {}, {}});
  TextRun& run = runs.back();
  if (latin) {
    run.latin.push_back(static_cast<char>(c));
  } else {
    run.codes.push_back(font->WideCode(c));
    run.widths.push_back(static_cast<int16_t>(font->Advance(c)));
  }
}

}  // namespace

AdvanceOf AdvancesOf(Font& font) {
  return [&font](char32_t c) { return font.Advance(c); };
}

int TextWidth(std::u32string_view text, Font& font) {
  int width = 0;
  for (const char32_t c : text) width += IsBreakControl(c) ? 0 : font.Advance(c);
  return width;
}

TextLine MakeLine(std::u32string_view text, const std::shared_ptr<Font>& font, int left, int baseline) {
  TextLine line;
  line.left = left;
  line.baseline = baseline;
  for (const char32_t c : text) {
    if (!IsBreakControl(c)) Append(line.runs, c, font);
  }
  return line;
}

TextLine MakeLine(std::u32string_view paragraph, const BrokenLine& broken, const std::shared_ptr<Font>& font, int left,
                  int baseline, int width) {
  std::u32string text(paragraph.substr(broken.begin, broken.end - broken.begin));
  if (broken.hyphen) text.push_back('-');
  TextLine line = MakeLine(text, font, left, baseline);
  if (width > broken.width && !broken.last && broken.spaces > 0) {
    line.breakExtra = std::min(width - broken.width, kMaxGap);
    line.breakCount = broken.spaces;
  }
  return line;
}

}  // namespace qnv::tool
