// Cuts a line of a listing into rows: tabs lead to columns, and what does not fit continues on the next row.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qnvtool/text/font.h"

namespace qnv::tool {

// A stretch of a line without tabs.
struct VerbatimStretch {
  std::u32string text;
  std::unique_ptr<ShapedText> shaped;
};

// A part of a stretch in a row; x counts 1/64 pixels from the row's start.
struct VerbatimPart {
  std::size_t stretch = 0;
  LinePart part;
  int64_t x = 0;
};

struct VerbatimLine {
  std::vector<VerbatimStretch> stretches;
  std::vector<std::vector<VerbatimPart>> rows;  // at least one
};

// width: of a row, in 1/64 pixels. indent: where rows that continue others begin. Tab stops are kTabColumns advances of
// a space apart.
inline constexpr int kTabColumns = 8;
VerbatimLine CutIntoRows(std::u32string_view text, Font& font, int64_t width, int64_t indent);

}  // namespace qnv::tool
