// What every transfer operation has to pass, whatever its function of destination, source and pattern is.
#pragma once

#include <cstdint>
#include <span>

#include "support/transfer_model.h"

namespace qnv::test {

// One pixel through one operation, with every byte written out.
struct TransferExample {
  const char* name;
  uint16_t depth;       // of the band, bits
  PixelBytes before;    // band pixel, in memory order
  uint8_t sourceBits;   // 24, 8 or 1; 0 for no source
  PixelBytes source;    // in memory order; of a one-bit source the first says which bit
  uint32_t brush;       // color of a solid brush as the record holds it
  PixelBytes expected;  // band pixel
};

// The draw mode of the examples.
inline constexpr uint32_t kExampleText = 0x00123456;
inline constexpr uint32_t kExampleBackground = 0x00E0C0A0;

void RunTransferExamples(uint32_t rop, std::span<const TransferExample> examples);

// Widths 0..70 at changing phases of band and source, every source form and brush style that the index reads.
void CheckWidthsAndPhases(uint32_t rop);

// A band larger than any cache block, odd in every direction.
void CheckLargeArea(uint32_t rop);

// Arguments that the index has no use for may be anything, even addresses of nothing.
void CheckUnreadArguments(uint32_t rop);

// Null arguments that it does use: nothing is painted, the result is 1.
void CheckNullArguments(uint32_t rop);

// Extents that are empty or turned, and the low word of the code.
void CheckExtentsAndCode(uint32_t rop);

// All of the above.
void CheckTransferOperation(uint32_t rop);

}  // namespace qnv::test
