// A raster operation combined with a pattern: for each row of the pattern up to four mask tiles, which row kernels
// apply to source and band. A row's tiles are made when the row is first needed.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/fill_pattern.h"
#include "raster/rop3.h"
#include "raster/rows/row_kernels.h"
#include "raster/rows/tile.h"

namespace qnv {

class PatternMasks {
 public:
  // index: the ternary operation. pattern: null stands for a pattern of zeros; otherwise it must outlive this object
  // and not change. useMask: cells of a hatch that are not painted leave the band alone.
  PatternMasks(uint8_t index, const FillPattern* pattern, bool useMask, uint32_t bytesPerPixel)
      : recipe_(kRopRecipes[index]),
        pattern_(pattern),
        useMask_(useMask),
        needs_(useMask || RopUsesSource(index) || RopUsesDestination(index)
                   ? (RopUsesSource(index) ? Needs::kFour : Needs::kTwo)
                   : Needs::kOne),
        bytesPerPixel_(bytesPerPixel),
        width_(pattern != nullptr ? pattern->width : 1u),
        height_(pattern != nullptr ? pattern->height : 1u) {}

  PatternMasks(const PatternMasks&) = delete;
  PatternMasks& operator=(const PatternMasks&) = delete;

  // Whether the pattern has no cells, so that nothing is painted.
  bool IsEmpty() const { return width_ == 0 || height_ == 0; }

  bool IsOneCell() const { return width_ == 1 && height_ == 1; }

  // The masks of an operation that reads no pattern.
  ByteMasks WithoutPattern() const {
    return {recipe_.and1.fixed, recipe_.and2.fixed, recipe_.xor1.fixed, recipe_.xor2.fixed};
  }

  // The pattern row of row y, and the byte offset of column x within a tile row. Both are remainders that are not
  // negative for negative coordinates either.
  uint32_t RowOf(int32_t y) const { return Remainder(y, height_); }
  std::size_t PhaseOf(int32_t x) const { return std::size_t{Remainder(x, width_)} * bytesPerPixel_; }

  // The masks of a pattern row (see RowOf) from a phase (see PhaseOf) on. Only those that the operation needs are
  // filled in: xor2 always, and2 when it reads source or band or has a mask, and1 and xor1 when it reads the source.
  TileMasks At(uint32_t row, std::size_t phase) {
    if ((madeRows_ >> row & 1) == 0) MakeRow(row);
    const RowTiles& tiles = rows_[row];
    return {tiles.and1.bytes + phase, tiles.and2.bytes + phase, tiles.xor1.bytes + phase, tiles.xor2.bytes + phase};
  }

 private:
  // How many of the masks in the order xor2, and2, and1, xor1 are made.
  enum class Needs : uint8_t { kOne, kTwo, kFour };

  struct RowTiles {
    Tile and2, xor2, and1, xor1;
  };

  // Periods are powers of two.
  static uint32_t Remainder(int32_t value, uint32_t period) { return static_cast<uint32_t>(value) & (period - 1); }

  void MakeRow(uint32_t row);
  void ApplyMask(RowTiles* tiles, const PatternRow& cells) const;

  const RopRecipe recipe_;
  const FillPattern* const pattern_;
  const bool useMask_;
  const Needs needs_;
  const uint32_t bytesPerPixel_;
  const uint32_t width_, height_;
  uint32_t madeRows_ = 0;  // bit r: rows_[r] is filled in
  RowTiles rows_[kMaxPeriod];
};

}  // namespace qnv
