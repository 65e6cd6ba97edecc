// Cuts a picture into strips, each painted by one image transfer.
#pragma once

#include <functional>
#include <vector>

#include "qnvtool/base/geometry.h"

namespace qnv::tool {

// Rows of the picture, counted from its top, and the page rows they are stretched over.
struct Strip {
  int sourceTop = 0;
  int sourceRows = 0;
  int top = 0;
  int rows = 0;
  bool operator==(const Strip&) const = default;
};

// Cuts sourceRows rows that are to cover the page rows top .. top + rows - 1 into strips for one transfer each.
//
// The rasteriser advances through a transfer in 16.16 fixed point, by a truncated step, from the first row that the
// band shows. In a tall transfer the error can move a row boundary across the middle of a page row in some bands and
// not in others, so that the page would depend on where the bands lie. The strips are so low that this cannot happen.
// Strips that cover no page row are left out.
//
// No strip has more than maxRows source rows, which are all in memory when it is painted, or 127 if that is more.
std::vector<Strip> CutIntoStrips(int sourceRows, int top, int rows, int maxRows = kMaxSide);

// The same for a device that keeps only some page rows and paints an enlarged source row only when the first page
// row it covers is kept: strips that enlarge are cut into single source rows, each starting at a kept page row.
std::vector<Strip> CutAtKeptRows(int sourceRows, int top, int rows, const std::function<bool(int)>& isKept,
                                 int maxRows = kMaxSide);

}  // namespace qnv::tool
