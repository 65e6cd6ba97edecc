// The structure of a text file: paragraphs, headings, list items, lines to keep as they are, page breaks.
#pragma once

#include <string>
#include <vector>

namespace qnv::tool {

struct TextBlock {
  enum class Kind {
    kParagraph,
    kHeading,    // a line that begins with one to three '#' and a space; `level` counts the '#'
    kListItem,   // a line that begins with "- " or "* ", and the indented or plain lines after it
    kVerbatim,   // one line to be set as it is, in the font for listings
    kPageBreak,  // a form feed
  };
  Kind kind = Kind::kParagraph;
  int level = 0;
  int spaceBefore = 0;  // empty lines before a verbatim line
  std::u32string text;  // lines joined by single spaces; verbatim lines with tabs expanded to columns of 8
};

// `verbatim` makes every line a verbatim block, as listings want it. Otherwise an empty line ends a block, and a
// line indented by a tab or four spaces is verbatim.
std::vector<TextBlock> ParseTextBlocks(const std::u32string& text, bool verbatim);

}  // namespace qnv::tool
