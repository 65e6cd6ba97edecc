// What every transfer operation has to pass, whatever its function of destination, source and pattern is.
#pragma once

#include <cstdint>
#include <span>

#include "support/transfer_model.h"

namespace qnv::test {

// One pixel through one operation, with every byte written out. Text is 0x123456, the background 0xE0C0A0.
struct TransferExample {
  const char* name;
  uint16_t depth;       // of the band, bits
  PixelBytes before;    // band pixel, in memory order
  uint8_t sourceBits;   // 24, 8 or 1; 0 for no source
  PixelBytes source;    // in memory order; of a one-bit source the first says which bit
  uint32_t brush;       // color of a solid brush as the record holds it
  PixelBytes expected;  // band pixel
};

void RunTransferExamples(uint32_t rop, std::span<const TransferExample> examples);

// Widths, phases, a large area, arguments that are null or must not be read, extents, and the low word of the code.
void CheckTransferOperation(uint32_t rop);

}  // namespace qnv::test
