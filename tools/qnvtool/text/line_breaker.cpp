// Breaks lines greedily: a line takes as many characters as fit and then ends at the last place where it may.
#include "qnvtool/text/line_breaker.h"

namespace qnv::tool {
namespace {

constexpr char32_t kZeroWidthSpace = 0x200B;

// Characters beside which lines may end without a space.
bool IsIdeograph(char32_t c) {
  return (c >= 0x2E80 && c <= 0x9FFF) || (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFF01 && c <= 0xFF60) || (c >= 0x20000 && c <= 0x3FFFF);
}

// Closing punctuation of ideographic text stays on the line of what it closes.
bool MustFollow(char32_t c) {
  constexpr std::u32string_view kClosing = U"\u3001\u3002\uFF0C\uFF0E\uFF01\uFF1F\uFF09\u300D\u300F\u3011\u3009";
  return kClosing.find(c) != std::u32string_view::npos;
}

bool IsDash(char32_t c) { return c == '-' || c == 0x2010 || c == 0x2013 || c == 0x2014; }

// Whether a line may end between text[at - 1] and text[at], neither of which is a space.
bool BreakBefore(std::u32string_view text, std::size_t at) {
  const char32_t before = text[at - 1];
  const char32_t after = text[at];
  if (before == kSoftHyphen || before == kZeroWidthSpace) return true;
  if (IsDash(before)) return at >= 2 && text[at - 2] != ' ' && !IsDash(after);  // not after a minus sign
  return (IsIdeograph(before) || IsIdeograph(after)) && !MustFollow(after);
}

// Breaks one paragraph.
class Breaker {
 public:
  Breaker(std::u32string_view text, const std::vector<int32_t>& advances, const std::vector<LineBreak>& breaks,
          int hyphen, int maxWidth)
      : text_(text), advances_(advances), breaks_(breaks), hyphen_(hyphen), maxWidth_(maxWidth) {}

  std::vector<BrokenLine> Run() {
    std::size_t begin = SkipSpaces(0);
    while (begin < text_.size()) begin = SkipSpaces(TakeLine(begin));
    if (!lines_.empty()) lines_.back().last = true;
    return std::move(lines_);
  }

 private:
  std::size_t SkipSpaces(std::size_t at) const {
    while (at < text_.size() && IsPlainSpace(text_, breaks_, at)) ++at;
    return at;
  }

  // Appends the line that starts at `begin` and returns where it stopped.
  std::size_t TakeLine(std::size_t begin) {
    BrokenLine line{begin, begin, false, false, 0, 0};
    BrokenLine best = line;  // the longest prefix that ends where a line may end
    std::size_t at = begin;
    while (at < text_.size()) {
      if (at > begin && breaks_[at] == LineBreak::kAllowed) NoteBreak(best, line, at);
      const int32_t width = advances_[at];
      // What takes no room stays with the letter before it, even where that is wider than the line.
      if (!IsPlainSpace(text_, breaks_, at) && width > 0 && line.width + width > maxWidth_ && line.end > begin) break;
      line.width += width;
      if (IsPlainSpace(text_, breaks_, at)) ++line.spaces;
      do {
        ++at;
      } while (at < text_.size() && breaks_[at] == LineBreak::kInside);
      line.end = at;
    }
    // The rest of the paragraph, or the start of a word that is wider than the line.
    if (at == text_.size() || best.end == begin) {
      TrimEnd(line);
      best = line;
    }
    lines_.push_back(best);
    return best.end;
  }

  // line: the characters before `at`. Makes it the best line so far if it may end there.
  void NoteBreak(BrokenLine& best, const BrokenLine& line, std::size_t at) const {
    BrokenLine candidate = line;
    TrimEnd(candidate);
    if (text_[at - 1] == kSoftHyphen) {
      candidate.hyphen = true;
      candidate.width += hyphen_;
    }
    if (candidate.width <= maxWidth_ && candidate.end > candidate.begin) best = candidate;
  }

  // Takes spaces off the end of the line, with what takes no room behind them.
  void TrimEnd(BrokenLine& line) const {
    for (std::size_t end = line.end; end > line.begin; --end) {
      if (IsPlainSpace(text_, breaks_, end - 1)) {
        line.end = end - 1;
        --line.spaces;
        line.width -= advances_[line.end];
      } else if (advances_[end - 1] != 0) {
        break;
      }
    }
  }

  const std::u32string_view text_;
  const std::vector<int32_t>& advances_;
  const std::vector<LineBreak>& breaks_;
  const int hyphen_;
  const int maxWidth_;
  std::vector<BrokenLine> lines_;
};

}  // namespace

bool IsBreakControl(char32_t c) { return c == kSoftHyphen || c == kZeroWidthSpace || c == 0x2060 || c == 0xFEFF; }

bool IsPlainSpace(std::u32string_view text, const std::vector<LineBreak>& breaks, std::size_t at) {
  return text[at] == ' ' && (at + 1 == text.size() || breaks[at + 1] != LineBreak::kInside);
}

std::vector<LineBreak> PlainBreaks(std::u32string_view text) {
  std::vector<LineBreak> breaks(text.size(), LineBreak::kForbidden);
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] != ' ' && (text[at - 1] == ' ' || BreakBefore(text, at))) breaks[at] = LineBreak::kAllowed;
  }
  return breaks;
}

std::vector<BrokenLine> BreakLines(std::u32string_view text, const std::vector<int32_t>& advances,
                                   const std::vector<LineBreak>& breaks, int hyphen, int maxWidth) {
  return Breaker(text, advances, breaks, hyphen, maxWidth).Run();
}

}  // namespace qnv::tool
