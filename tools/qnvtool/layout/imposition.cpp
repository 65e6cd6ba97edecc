// Divides sheets into cells and moves pages there.
#include "qnvtool/layout/imposition.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace qnv::tool {
namespace {

struct Grid {
  int columns, rows;
  bool turned;  // the sheet lies on its side when the page stands, and the other way round
};

Grid GridOf(int count) {
  switch (count) {
    case 2: return {2, 1, true};
    case 4: return {2, 2, false};
    case 6: return {3, 2, true};
    case 9: return {3, 3, false};
    default: return {1, 1, false};
  }
}

void MoveRect(Rect& rect, int right, int down) {
  rect = {rect.left + right, rect.top + down, rect.right + right, rect.bottom + down};
}

struct Mover {
  int right, down;

  void operator()(TextLine& line) const {
    line.left += right;
    line.baseline += down;
  }
  void operator()(Figure& figure) const {
    figure.region.top += down;
    for (SpanRow& row : figure.region.rows) {
      for (Span& span : row) span = {span.left + right, span.right + right};
    }
  }
  void operator()(Picture& picture) const {
    MoveRect(picture.place, right, down);
    MoveRect(picture.clip, right, down);
  }
};

}  // namespace

Imposition::Imposition(const Paper& paper, int dpi, double marginMm, int count) {
  Grid grid = GridOf(count);
  // On paper that lies on its side the pages of a turned sheet lie above each other.
  if (grid.turned && paper.widthMm > paper.heightMm) std::swap(grid.columns, grid.rows);
  const Paper sheetPaper = grid.turned ? Paper{paper.heightMm, paper.widthMm} : paper;
  const Sheet sheet = MakeSheet(sheetPaper, dpi, 0);
  width_ = sheet.width;
  height_ = sheet.height;
  const double cellWidth = static_cast<double>(width_) / grid.columns;
  const double cellHeight = static_cast<double>(height_) / grid.rows;
  const double factor =
      std::min({1.0, cellWidth / PixelsFromMm(paper.widthMm, dpi), cellHeight / PixelsFromMm(paper.heightMm, dpi)});
  pageSheet_ = MakeSheet(paper, std::max(1, static_cast<int>(dpi * factor)), marginMm);
  for (int row = 0; row < grid.rows; ++row) {
    for (int column = 0; column < grid.columns; ++column) {
      cells_.push_back({static_cast<int>(std::lround(column * cellWidth + (cellWidth - pageSheet_.width) / 2)),
                        static_cast<int>(std::lround(row * cellHeight + (cellHeight - pageSheet_.height) / 2))});
    }
  }
}

void Imposition::Place(Page&& page, int index, Page& sheet) const {
  const Cell& cell = cells_[static_cast<std::size_t>(index)];
  Move(page, cell.left, cell.top);
  sheet.width = width_;
  sheet.height = height_;
  sheet.items.insert(sheet.items.end(), std::make_move_iterator(page.items.begin()),
                     std::make_move_iterator(page.items.end()));
}

void Move(Page& page, int right, int down) {
  for (auto& item : page.items) std::visit(Mover{right, down}, item);
}

}  // namespace qnv::tool
