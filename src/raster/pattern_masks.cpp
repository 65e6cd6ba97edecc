// Makes the mask tiles of a pattern row: the row as a tile, then each of the masks that the operation needs from it.
#include "raster/pattern_masks.h"

namespace qnv {
namespace {

// One mask of an operation over a pattern tile; `out` may be the pattern.
void Complete(Tile* out, const Tile& pattern, OpenMask mask) {
  for (std::size_t i = 0; i < sizeof out->bytes; ++i) {
    out->bytes[i] = static_cast<uint8_t>((pattern.bytes[i] & mask.open) ^ mask.fixed);
  }
}

}  // namespace

void PatternMasks::MakeRow(uint32_t row) {
  madeRows_ |= 1u << row;
  RowTiles& tiles = rows_[row];
  // Without a pattern one cell of zeros.
  const PatternRow cells = pattern_ != nullptr ? ReadPatternRow(*pattern_, row) : PatternRow{{0}, {UINT32_MAX}};
  Tile& pattern = tiles.xor2;  // the pattern itself first; replaced by its mask last
  MakeTile(&pattern, cells.colors, width_, bytesPerPixel_);
  if (needs_ != Needs::kOne) Complete(&tiles.and2, pattern, recipe_.and2);
  if (needs_ == Needs::kFour) {
    Complete(&tiles.and1, pattern, recipe_.and1);
    Complete(&tiles.xor1, pattern, recipe_.xor1);
  }
  if (recipe_.xor2.open != 0xFF || recipe_.xor2.fixed != 0) Complete(&tiles.xor2, pattern, recipe_.xor2);
  if (useMask_) ApplyMask(&tiles, cells);
}

// Cells that are not painted get the masks that keep the band: and2 = 0xFF, xor2 = 0.
void PatternMasks::ApplyMask(RowTiles* tiles, const PatternRow& cells) const {
  Tile painted;
  MakeTile(&painted, cells.painted, width_, bytesPerPixel_);
  for (std::size_t i = 0; i < sizeof painted.bytes; ++i) {
    tiles->and2.bytes[i] = static_cast<uint8_t>(tiles->and2.bytes[i] | ~painted.bytes[i]);
    tiles->xor2.bytes[i] = static_cast<uint8_t>(tiles->xor2.bytes[i] & painted.bytes[i]);
  }
}

}  // namespace qnv
