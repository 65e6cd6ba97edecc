// Breaks a paragraph into lines.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "qnvtool/text/font.h"

namespace qnv::tool {

// Does not show unless a line ends at it.
inline constexpr char32_t kSoftHyphen = 0x00AD;

struct BrokenLine {
  std::size_t begin = 0;  // characters [begin, end) of the paragraph; spaces at both ends are left out
  std::size_t end = 0;
  bool hyphen = false;  // broken at a soft hyphen, which shows here
  bool last = false;    // last line of the paragraph: not justified
  int64_t width = 0;    // natural width with the hyphen
  int spaces = 0;       // spaces that may be widened
};

// Breaks a paragraph so that each line takes as much as fits into maxWidth. A word wider than the line is cut between
// clusters. advances, breaks: of the paragraph's characters, as in ShapedText; advances >= 0. hyphen: advance of the
// hyphen that shows where a line ends at a soft hyphen. All lengths are in the same unit. A paragraph without
// characters has no lines.
std::vector<BrokenLine> BreakLines(std::u32string_view text, const std::vector<int32_t>& advances,
                                   const std::vector<LineBreak>& breaks, int hyphen, int maxWidth);

// Where lines may end, without a library that knows all rules of Unicode: at spaces, after hyphens and dashes, at soft
// hyphens (U+00AD) and zero-width spaces, and around ideographs, but not at no-break spaces.
std::vector<LineBreak> PlainBreaks(std::u32string_view text);

// Whether there is a space without marks at text[at]. Only such spaces are left out at the ends of lines and widened.
bool IsPlainSpace(std::u32string_view text, const std::vector<LineBreak>& breaks, std::size_t at);

// Characters that control breaking and are never shown, apart from the hyphen at the end of a line.
bool IsBreakControl(char32_t c);

}  // namespace qnv::tool
