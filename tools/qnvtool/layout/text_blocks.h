// The structure of a text file: paragraphs, headings, list items, lines to keep as they are, page breaks.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "qnvtool/text/text_reader.h"

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
  int spaceBefore = 0;     // empty lines before a verbatim line
  std::u32string text;     // lines joined by single spaces; of verbatim lines with tabs, but no spaces at the end
  int64_t line = 0;        // number of the line in the file, from 1; of a paragraph that of its first line
  bool continues = false;  // a verbatim block that continues a line too long for one block
};

// Takes a text piece by piece and gives its blocks, holding no more than one unfinished block.
class TextBlockParser {
 public:
  // Longer paragraphs are continued in another block.
  static constexpr std::size_t kMaxParagraph = std::size_t{1} << 18;

  // `verbatim` makes every line a verbatim block, as listings want it. Otherwise an empty line ends a block, and a
  // line indented by a tab or four spaces is verbatim.
  explicit TextBlockParser(bool verbatim) : verbatim_(verbatim) {}

  void Add(const TextPiece& piece);
  void Finish();  // no further piece follows

  // Takes the next finished block; false when there is none yet.
  bool Next(TextBlock& block);

 private:
  void Line(const TextPiece& piece);
  void Continue(const TextPiece& piece);
  void Start(TextBlock::Kind kind, std::u32string_view text, int64_t line);
  void Extend(std::u32string_view text);
  void Verbatim(std::u32string text, const TextPiece& piece, bool continues);
  void PageBreak(int64_t line);
  void Close();

  const bool verbatim_;
  bool midLine_ = false;       // the last piece ended at its bound
  bool verbatimLine_ = false;  // the last line was a verbatim block
  bool open_ = false;          // current_ may be continued by the next line
  TextBlock current_;
  int emptyLines_ = 0;
  std::deque<TextBlock> finished_;
};

// The blocks of a whole text.
std::vector<TextBlock> ParseTextBlocks(const std::u32string& text, bool verbatim);

}  // namespace qnv::tool
