// What a band or a tag plane shows of text: its cells, put into a plane one by one and cut to what is to be seen.
#pragma once

#include <optional>
#include <string_view>

#include "support/transfer_model.h"
#include "text/font_builder.h"

namespace qnv::test {

inline constexpr BandRect kNowhere{};

// A cell without a background leaves its clear pixels alone.
struct CellColors {
  uint32_t text = kTextColor;
  std::optional<uint32_t> background = kBackColor;
};

inline CellColors ColorsOf(int16_t bkMode) {
  return bkMode == TRANSPARENT ? CellColors{.background = std::nullopt} : CellColors{};
}

inline void PutRect(PlaneImage* plane, const BandRect& rect, uint32_t color) {
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    for (int32_t x = rect.left; x < rect.right; ++x) plane->SetColor(x, y, color);
  }
}

// Puts in a cell with its corner at (column, row) of the plane, as far as it lies in `shown`.
inline void PutCell(PlaneImage* plane, std::string_view picture, int32_t width, int32_t column, int32_t row,
                    const BandRect& shown, const CellColors& colors = {}) {
  for (int32_t i = 0; i < static_cast<int32_t>(picture.size()); ++i) {
    const int32_t x = column + i % width;
    const int32_t y = row + i / width;
    if (x < shown.left || x >= shown.right || y < shown.top || y >= shown.bottom) continue;
    const bool set = picture[static_cast<std::size_t>(i)] == '#';
    if (set || colors.background) plane->SetColor(x, y, set ? colors.text : *colors.background);
  }
}

// The same with cells of the small font, side by side.
inline void PutText(PlaneImage* plane, std::string_view text, int32_t column, int32_t row, const BandRect& shown,
                    const CellColors& colors = {}) {
  for (char code : text) {
    const SmallGlyph& glyph = kSmallGlyphs[code - 'a'];
    PutCell(plane, glyph.picture, glyph.width, column, row, shown, colors);
    column += glyph.width;
  }
}

}  // namespace qnv::test
