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
  Tile& cells = tiles.xor2;  // completed last, in place
  MakeTile(&cells, pattern_ != nullptr ? pattern_->cells[row] : kNoPattern, width_, bytesPerPixel_);
  if (needs_ != Needs::kOne) Complete(&tiles.and2, cells, recipe_.and2);
  if (needs_ == Needs::kFour) {
    Complete(&tiles.and1, cells, recipe_.and1);
    Complete(&tiles.xor1, cells, recipe_.xor1);
  }
  if (recipe_.xor2.open != 0xFF || recipe_.xor2.fixed != 0) Complete(&tiles.xor2, cells, recipe_.xor2);
  if (useMask_) ApplyMask(row);
}

void PatternMasks::ApplyMask(uint32_t row) {
  RowTiles& tiles = rows_[row];
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
