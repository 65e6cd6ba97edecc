// Where a device that draws at one resolution and keeps its band at another puts things.
#include "reference/band_model.h"

namespace qnv::reference {

ResolutionMap::ResolutionMap(int from, int to) : from_(from), to_(to) {
  constexpr int64_t kUnset = -1;
  kept_.assign(static_cast<std::size_t>(from) + 1, kUnset);
  for (int j = 0; j < to; ++j) {
    const uint64_t product = static_cast<uint64_t>(j) * static_cast<uint64_t>(from);
    const uint64_t divisor = static_cast<uint64_t>(to);
    const uint64_t nearest = product / divisor + (product % divisor > divisor / 2 ? 1 : 0);
    kept_[static_cast<std::size_t>(nearest)] = j;
  }
}

int ResolutionMap::Kept(int value) const {
  if (value < 0) return -1;
  return kept_[static_cast<std::size_t>(value % from_)] < 0 ? -1 : ToBand(value);
}

int ResolutionMap::TextColumn(int column) const {
  const int64_t entry = kept_[static_cast<std::size_t>(FloorMod(column, from_))];
  return entry < 0 ? kDropped : FloorDiv(column, from_) * to_ + static_cast<int>(entry);
}

Rect BandModel::CallerBand() const {
  if (!scaled()) return rect_;
  return {map_->ToPage(rect_.left), map_->ToPage(rect_.top), map_->ToPage(rect_.right), map_->ToPage(rect_.bottom)};
}

bool BandModel::Kept(int x, int y, Spot* spot) const {
  *spot = {x, y};
  if (scaled()) *spot = {map_->Kept(x), map_->Kept(y)};
  // Rounding may place a kept pixel one past the band: it is dropped too.
  return spot->column >= 0 && spot->row >= 0 && spot->column < rect_.right - rect_.left &&
         spot->row < rect_.bottom - rect_.top;
}

bool BandModel::MapTextPixel(int x, int y, Spot* spot) const {
  if (scaled()) {
    x = map_->TextColumn(x);
    y = map_->ToBand(y);
  }
  if (x == ResolutionMap::kDropped || !Contains(rect_, x, y)) return false;
  *spot = {x - rect_.left, y - rect_.top};
  return true;
}

uint32_t BandModel::ScaledCopy(ImageWalk& walk) {
  const int left = walk.left();
  while (!walk.AtEnd()) {
    const ImageWalk::Row row = walk.Next();
    if (row.count == 0) continue;
    int firstColumn = -1;
    Spot last{-1, -1};
    for (int x = 0; x < walk.columns(); ++x) {
      Spot spot;
      if (!Kept(left + x, walk.top() + row.first, &spot)) continue;
      const Rgb color = row.pixels[static_cast<std::size_t>(x)].value_or(Rgb{0, 0, 0});
      Put(spot.column, spot.row, uint32_t{color.red} << 16 | uint32_t{color.green} << 8 | color.blue);
      if (firstColumn < 0) firstColumn = spot.column;
      last = spot;
    }
    // A source row whose first row the band does not keep is lost with all its rows.
    if (firstColumn < 0) continue;
    for (int i = 1; i < row.count; ++i) {
      const int copyRow = map_->Kept(walk.top() + row.first + i);
      if (copyRow < 0 || copyRow >= rect_.bottom - rect_.top) continue;
      CopyColumns(firstColumn, last.column + 1, last.row, copyRow);
    }
  }
  return 1;
}

}  // namespace qnv::reference
