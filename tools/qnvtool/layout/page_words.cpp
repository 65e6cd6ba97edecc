// Takes what the lines of a page say.
#include "qnvtool/layout/page_words.h"

namespace qnv::tool {

std::vector<PageWord> WordsOf(const Page& page) {
  std::vector<PageWord> words;
  for (const auto& item : page.items) {
    const auto* const line = std::get_if<TextLine>(&item);
    if (line == nullptr || line->text.find_first_not_of(U" \u00A0") == std::u32string::npos) continue;
    words.push_back({line->text, line->left, line->baseline, line->width, line->ascent, line->descent});
  }
  return words;
}

}  // namespace qnv::tool
