// Several pages on one sheet: in which cells they go, and at which size they are laid out.
//
// A page for a cell is laid out like any other, on paper of the full size but at a lower resolution, so that it has the
// pixels that the cell has room for. Then its items are only moved.
#pragma once

#include <vector>

#include "qnvtool/layout/page.h"
#include "qnvtool/layout/paper.h"

namespace qnv::tool {

class Imposition {
 public:
  // `count` pages of the paper on each sheet: 1, 2, 4, 6 or 9. Sheets with 2 and 6 pages are turned, so that the pages
  // on them stand upright. Throws ToolError (usage) as MakeSheet does.
  Imposition(const Paper& paper, int dpi, double marginMm, int count);

  int count() const { return static_cast<int>(cells_.size()); }
  int width() const { return width_; }  // of a sheet, pixels
  int height() const { return height_; }
  // The sheet that pages are laid out on.
  const Sheet& pageSheet() const { return pageSheet_; }

  // Adds page `index`, 0 to count - 1, of a sheet to it: moved into its cell, the rows first, from the left.
  void Place(Page&& page, int index, Page& sheet) const;

 private:
  int width_ = 0;
  int height_ = 0;
  Sheet pageSheet_;
  struct Cell {
    int left, top;  // of the page within the sheet
  };
  std::vector<Cell> cells_;
};

// Moves everything on a page.
void Move(Page& page, int right, int down);

}  // namespace qnv::tool
