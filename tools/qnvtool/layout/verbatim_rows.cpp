// Places the stretches between tabs one after the other.
#include "qnvtool/layout/verbatim_rows.h"

#include <algorithm>

namespace qnv::tool {
namespace {

class RowCutter {
 public:
  RowCutter(Font& font, int64_t width, int64_t indent)
      : font_(font),
        stop_(std::max(int64_t{1}, int64_t{font.Advance(U' ')} * kTabColumns)),
        width_(width),
        indent_(indent) {
    line_.rows.emplace_back();
  }

  void Add(std::u32string_view text) {
    if (text.empty()) return;
    line_.stretches.push_back({std::u32string(text), font_.Shape(text, TextForm::kColumns)});
    const ShapedText& shaped = *line_.stretches.back().shaped;
    std::size_t begin = 0;
    int64_t x = x_;
    for (std::size_t at = 0; at < text.size();) {
      std::size_t next = at + 1;
      while (next < text.size() && shaped.breaks()[next] == LineBreak::kInside) ++next;
      const int64_t advance = shaped.advances()[at];
      // A row takes at least one cluster, whatever its width.
      const bool first = begin == at && line_.rows.back().empty();
      if (x + advance > width_ && advance > 0 && !first) {
        Place(begin, at);
        line_.rows.emplace_back();
        begin = at;
        x = x_ = indent_;
      }
      x += advance;
      at = next;
    }
    Place(begin, text.size());
    x_ = x;
  }

  void Tab() { x_ = (x_ / stop_ + 1) * stop_; }

  VerbatimLine Take() { return std::move(line_); }

 private:
  // Characters of the last stretch, from x_ in the last row.
  void Place(std::size_t begin, std::size_t end) {
    if (begin == end) return;
    line_.rows.back().push_back({line_.stretches.size() - 1, {begin, end}, x_});
  }

  Font& font_;
  const int64_t stop_;
  const int64_t width_;
  const int64_t indent_;
  int64_t x_ = 0;
  VerbatimLine line_;
};

}  // namespace

VerbatimLine CutIntoRows(std::u32string_view text, Font& font, int64_t width, int64_t indent) {
  RowCutter cutter(font, width, indent);
  for (std::size_t begin = 0;;) {
    const std::size_t tab = std::min(text.find(U'\t', begin), text.size());
    cutter.Add(text.substr(begin, tab - begin));
    if (tab == text.size()) return cutter.Take();
    cutter.Tab();
    begin = tab + 1;
  }
}

}  // namespace qnv::tool
