// Makes page items of lines of text.
#pragma once

#include <memory>
#include <string_view>

#include "qnvtool/layout/page.h"
#include "qnvtool/text/line_breaker.h"

namespace qnv::tool {

// A part of a text as a line that begins at `left`.
TextLine MakeLine(std::u32string_view text, const ShapedText& shaped, const LinePart& part, const Font& font, int left,
                  int baseline);

// A whole text as one line in one font with its natural width.
TextLine MakeLine(std::u32string_view text, Font& font, int left, int baseline);

// Shortens a text to a width in pixels, with an ellipsis at the end.
std::u32string CutTo(std::u32string_view text, Font& font, int width);

// A paragraph broken into lines of at most `width` pixels.
class Paragraph {
 public:
  Paragraph(std::u32string_view text, Font& font, int width);

  std::size_t lines() const { return lines_.size(); }
  bool rightToLeft() const { return shaped_->rightToLeft(); }

  // A line between the edges left and left + width, at the edge where its paragraph begins. Justified lines reach
  // from edge to edge, except the last one.
  TextLine Line(std::size_t index, int left, int baseline, bool justify) const;

 private:
  const std::u32string text_;
  const Font& font_;
  const int width_;
  std::unique_ptr<ShapedText> shaped_;
  std::vector<BrokenLine> lines_;
};

}  // namespace qnv::tool
