// Cuts the text of each line at its spaces.
#include "qnvtool/layout/page_words.h"

#include <algorithm>

namespace qnv::tool {
namespace {

bool IsSpace(char32_t c) { return c == U' ' || c == 0xA0 || c == 0x3000 || (c >= 0x2000 && c <= 0x200A); }

// Characters [begin, end) of the line.
PageWord WordOf(const TextLine& line, std::size_t begin, std::size_t end) {
  int left = line.places[begin].left;
  int right = line.places[begin].right;
  for (std::size_t i = begin; i < end; ++i) {
    left = std::min(left, line.places[i].left);
    right = std::max(right, line.places[i].right);
  }
  const bool rightToLeft = line.places[end - 1].left < line.places[begin].left;
  return {line.text.substr(begin, end - begin),
          line.left + left,
          line.baseline,
          right - left,
          line.ascent,
          line.descent,
          rightToLeft};
}

}  // namespace

std::vector<PageWord> WordsOf(const Page& page) {
  std::vector<PageWord> words;
  for (const auto& item : page.items) {
    const auto* const line = std::get_if<TextLine>(&item);
    if (line == nullptr) continue;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= line->text.size(); ++i) {
      if (i < line->text.size() && !IsSpace(line->text[i])) continue;
      if (begin < i) words.push_back(WordOf(*line, begin, i));
      begin = i + 1;
    }
  }
  return words;
}

}  // namespace qnv::tool
