#include "raster/pattern_masks.h"

namespace qnv {
namespace {

void Complete(Tile* out, const Tile& pattern, OpenMask mask) {
  for (std::size_t i = 0; i < sizeof out->bytes; ++i) {
    out->bytes[i] = static_cast<uint8_t>((pattern.bytes[i] & mask.open) ^ mask.fixed);
  }
}

}  // namespace

void PatternMasks::MakeRow(uint32_t row) {
  madeRows_ |= 1u << row;
  RowTiles& tiles = rows_[row];
  constexpr uint32_t kNoPattern[1] = {0};
  Tile cells;
  MakeTile(&cells, pattern_ != nullptr ? pattern_->cells[row] : kNoPattern, width_, bytesPerPixel_);
  Complete(&tiles.and2, cells, recipe_.and2);
  Complete(&tiles.xor2, cells, recipe_.xor2);
  if (usesSource_) {
    Complete(&tiles.and1, cells, recipe_.and1);
    Complete(&tiles.xor1, cells, recipe_.xor1);
  }
  if (!useMask_) return;
  uint32_t painted[kMaxPeriod];
  for (uint32_t i = 0; i < width_; ++i) painted[i] = pattern_->mask[row][i] != 0 ? 0xFFFFFFFF : 0;
  Tile mask;
  MakeTile(&mask, painted, width_, bytesPerPixel_);
  for (std::size_t i = 0; i < sizeof mask.bytes; ++i) {
    tiles.and2.bytes[i] = static_cast<uint8_t>(tiles.and2.bytes[i] | ~mask.bytes[i]);
    tiles.xor2.bytes[i] = static_cast<uint8_t>(tiles.xor2.bytes[i] & mask.bytes[i]);
  }
}

}  // namespace qnv
