// Parses a text file line by line; a line starts a block, continues the last one, or ends it.
#include "qnvtool/layout/text_blocks.h"

#include <algorithm>
#include <string_view>

namespace qnv::tool {
namespace {

constexpr std::size_t kIndentTab = 8;
constexpr std::size_t kVerbatimIndent = 4;

// Replaces the tabs before the first other character by spaces, up to columns of 8.
std::u32string ExpandIndent(std::u32string_view line) {
  std::u32string result;
  std::size_t at = 0;
  for (; at < line.size() && (line[at] == ' ' || line[at] == '\t'); ++at) {
    result.append(line[at] == ' ' ? 1 : kIndentTab - result.size() % kIndentTab, ' ');
  }
  return result.append(line.substr(at));
}

std::u32string_view TrimEnd(std::u32string_view line) {
  const std::size_t last = line.find_last_not_of(U" \t");
  return line.substr(0, last == std::u32string_view::npos ? 0 : last + 1);
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

// Letters between which there are no spaces: ideographs, kana, and their punctuation.
bool IsUnspaced(char32_t c) {
  return (c >= 0x2E80 && c <= 0x312F) || (c >= 0x31A0 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF01 && c <= 0xFF60) || (c >= 0x20000 && c <= 0x3FFFF);
}

}  // namespace

void TextBlockParser::Add(const TextPiece& piece) {
  const bool continues = midLine_;
  midLine_ = piece.end == TextPiece::End::kBound;
  if (continues) {
    Continue(piece);
  } else if (piece.end != TextPiece::End::kFormFeed || !piece.text.empty()) {
    // A form feed alone on its line is no empty line too.
    Line(piece);
  }
  if (piece.end == TextPiece::End::kFormFeed) PageBreak(piece.line);
}

void TextBlockParser::Line(const TextPiece& piece) {
  const std::u32string_view raw = midLine_ ? std::u32string_view(piece.text) : TrimEnd(piece.text);
  verbatimLine_ = false;
  if (verbatim_) return Verbatim(std::u32string(raw), piece, false);
  const std::u32string line = ExpandIndent(raw);
  if (line.empty()) {
    Close();
    ++emptyLines_;
    return;
  }
  const std::size_t indent = Indent(line);
  const std::u32string_view body = std::u32string_view(line).substr(indent);
  if (indent >= kVerbatimIndent && !open_) return Verbatim(line.substr(kVerbatimIndent), piece, false);
  if (const int level = indent == 0 ? HeadingLevel(body) : 0; level != 0) {
    const std::size_t text = body.find_first_not_of(U' ', static_cast<std::size_t>(level));
    Start(TextBlock::Kind::kHeading, body.substr(text), piece.line);
    current_.level = level;
    Close();
  } else if (IsListItem(body)) {
    Start(TextBlock::Kind::kListItem, body.substr(2), piece.line);
  } else if (open_) {
    const bool unspaced = !current_.text.empty() && IsUnspaced(current_.text.back()) && IsUnspaced(body.front());
    if (!unspaced) Extend(U" ");
    Extend(body);
  } else {
    Start(TextBlock::Kind::kParagraph, body, piece.line);
  }
  emptyLines_ = 0;
}

// The rest of a line that came in several pieces.
void TextBlockParser::Continue(const TextPiece& piece) {
  const std::u32string_view text = midLine_ ? std::u32string_view(piece.text) : TrimEnd(piece.text);
  if (text.empty()) return;
  if (open_) {
    Extend(text);
  } else if (verbatimLine_) {
    Verbatim(std::u32string(text), piece, true);
  } else {
    Start(TextBlock::Kind::kParagraph, text, piece.line);
  }
}

void TextBlockParser::Start(TextBlock::Kind kind, std::u32string_view text, int64_t line) {
  Close();
  current_ = {kind, 0, 0, std::u32string(text), line, false};
  open_ = true;
}

// Appends to the open block. One that has become too long goes on as a paragraph.
void TextBlockParser::Extend(std::u32string_view text) {
  if (current_.text.size() + text.size() > kMaxParagraph) {
    const int64_t line = current_.line;
    Start(TextBlock::Kind::kParagraph, {}, line);
  }
  // Tabs inside a paragraph are spaces like its line ends.
  current_.text += text;
}

void TextBlockParser::Verbatim(std::u32string text, const TextPiece& piece, bool continues) {
  Close();
  verbatimLine_ = true;
  finished_.push_back({TextBlock::Kind::kVerbatim, 0, emptyLines_, std::move(text), piece.line, continues});
  emptyLines_ = 0;
}

void TextBlockParser::PageBreak(int64_t line) {
  Close();
  finished_.push_back({TextBlock::Kind::kPageBreak, 0, 0, {}, line, false});
  emptyLines_ = 0;
}

void TextBlockParser::Close() {
  if (!open_) return;
  std::replace(current_.text.begin(), current_.text.end(), U'\t', U' ');
  finished_.push_back(std::move(current_));
  open_ = false;
}

void TextBlockParser::Finish() { Close(); }

bool TextBlockParser::Next(TextBlock& block) {
  if (finished_.empty()) return false;
  block = std::move(finished_.front());
  finished_.pop_front();
  return true;
}

std::vector<TextBlock> ParseTextBlocks(const std::u32string& text, bool verbatim) {
  std::size_t begin = 0;
  TextReader reader(
      [&](uint8_t* to, std::size_t capacity) {
        const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
        const std::size_t count = std::min(capacity, text.size() * sizeof(char32_t) - begin);
        std::copy_n(bytes + begin, count, to);
        begin += count;
        return count;
      },
      OpenBuiltInDecoder("UTF-32LE"), "text");
  TextBlockParser parser(verbatim);
  for (TextPiece piece; reader.Next(piece);) parser.Add(piece);
  parser.Finish();
  std::vector<TextBlock> blocks;
  for (TextBlock block; parser.Next(block);) blocks.push_back(std::move(block));
  return blocks;
}

}  // namespace qnv::tool
