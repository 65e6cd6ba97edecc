// Breaks a paragraph into lines.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace qnv::tool {

// Does not show unless a line ends at it.
inline constexpr char32_t kSoftHyphen = 0x00AD;

// Advance of a character in pixels.
using AdvanceOf = std::function<int(char32_t)>;

struct BrokenLine {
  std::size_t begin = 0;  // characters [begin, end) of the paragraph; spaces at both ends are left out
  std::size_t end = 0;
  bool hyphen = false;  // broken at a soft hyphen, which shows here
  bool last = false;    // last line of the paragraph: not justified
  int width = 0;        // natural width with the hyphen, pixels
  int spaces = 0;       // spaces that may be widened
};

// Breaks a paragraph so that each line takes as much as fits into maxWidth pixels. Lines end at spaces, after hyphens
// and dashes, at soft hyphens (U+00AD) and zero-width spaces, and around ideographs, but not at no-break spaces. A word
// wider than the line is cut between characters. Requires: advances >= 0. A paragraph without characters has no lines.
std::vector<BrokenLine> BreakLines(std::u32string_view text, const AdvanceOf& advance, int maxWidth);

// Characters that control breaking and are never shown, apart from the hyphen at the end of a line.
bool IsBreakControl(char32_t c);

}  // namespace qnv::tool
