// How a picture is cut into image transfers.
#pragma once

#include <functional>
#include <vector>

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
// The rasteriser steps through a transfer in 16.16 fixed point with a truncated step, counted from the first row
// that the band shows. In a tall transfer the error can move a row boundary across the middle of a page row, and
// not in every band alike: the page would depend on where the bands lie. Strips are cut so low that no boundary
// comes near enough to a middle. Strips that cover no page row are left out.
std::vector<Strip> CutIntoStrips(int sourceRows, int top, int rows);

// The same for a device that keeps only some page rows and paints an enlarged source row only when the first page
// row it covers is kept: strips that enlarge are cut into single source rows, each starting at a kept page row.
std::vector<Strip> CutAtKeptRows(int sourceRows, int top, int rows, const std::function<bool(int)>& isKept);

}  // namespace qnv::tool
