// Parses a text file line by line; a line starts a block, continues the last one, or ends it.
#include "qnvtool/layout/text_blocks.h"

#include <string_view>

namespace qnv::tool {
namespace {

constexpr std::size_t kTabColumns = 8;
constexpr std::size_t kVerbatimIndent = 4;

// Replaces tabs by spaces and removes spaces at the end.
std::u32string ExpandTabs(std::u32string_view line) {
  std::u32string result;
  for (const char32_t c : line) {
    if (c == '\t') {
      result.append(kTabColumns - result.size() % kTabColumns, ' ');
    } else {
      result.push_back(c);
    }
  }
  while (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

std::size_t Indent(std::u32string_view line) {
  const std::size_t first = line.find_first_not_of(U' ');
  return first == std::u32string_view::npos ? line.size() : first;
}

// 1 to 3 for a heading, else 0.
int HeadingLevel(std::u32string_view line) {
  const std::size_t marks = line.find_first_not_of(U'#');
  return marks >= 1 && marks <= 3 && line[marks] == ' ' ? static_cast<int>(marks) : 0;
}

// A hyphen, an asterisk or a bullet, then a space.
bool IsListItem(std::u32string_view line) {
  return line.size() > 2 && (line[0] == '-' || line[0] == '*' || line[0] == U'\u2022') && line[1] == ' ';
}

// Takes the file line by line; each line is looked at once.
class Parser {
 public:
  explicit Parser(bool verbatim) : verbatim_(verbatim) {}

  void Line(std::u32string_view raw) {
    const std::u32string line = ExpandTabs(raw);
    if (verbatim_) return Verbatim(line, 0);
    if (line.empty()) {
      open_ = false;
      ++emptyLines_;
      return;
    }
    const std::size_t indent = Indent(line);
    const std::u32string_view body = std::u32string_view(line).substr(indent);
    if (indent >= kVerbatimIndent && !open_) return Verbatim(line, kVerbatimIndent);
    if (const int level = indent == 0 ? HeadingLevel(body) : 0; level != 0) {
      const std::size_t text = body.find_first_not_of(U' ', static_cast<std::size_t>(level));
      Start(TextBlock::Kind::kHeading, body.substr(text));
      blocks_.back().level = level;
      open_ = false;
    } else if (IsListItem(body)) {
      Start(TextBlock::Kind::kListItem, body.substr(2));
    } else if (open_) {
      blocks_.back().text += U' ';
      blocks_.back().text += body;
    } else {
      Start(TextBlock::Kind::kParagraph, body);
    }
    emptyLines_ = 0;
  }

  void PageBreak() {
    blocks_.push_back({TextBlock::Kind::kPageBreak, 0, 0, {}});
    open_ = false;
    emptyLines_ = 0;
  }

  std::vector<TextBlock> Take() { return std::move(blocks_); }

 private:
  void Start(TextBlock::Kind kind, std::u32string_view text) {
    blocks_.push_back({kind, 0, 0, std::u32string(text)});
    open_ = true;
  }

  void Verbatim(const std::u32string& line, std::size_t indent) {
    blocks_.push_back({TextBlock::Kind::kVerbatim, 0, emptyLines_, line.substr(std::min(indent, line.size()))});
    open_ = false;
    emptyLines_ = 0;
  }

  const bool verbatim_;
  bool open_ = false;  // the next line may continue the last block
  int emptyLines_ = 0;
  std::vector<TextBlock> blocks_;
};

}  // namespace

std::vector<TextBlock> ParseTextBlocks(const std::u32string& text, bool verbatim) {
  Parser parser(verbatim);
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find_first_of(U"\n\f", begin), text.size());
    const bool formFeed = end < text.size() && text[end] == '\f';
    // A form feed alone on its line does not count as an empty line too.
    if (!formFeed || end > begin) parser.Line(std::u32string_view(text).substr(begin, end - begin));
    if (formFeed) parser.PageBreak();
    begin = end + 1;
    if (formFeed && begin < text.size() && text[begin] == '\n') ++begin;
  }
  return parser.Take();
}

}  // namespace qnv::tool
