// One bit-block transfer, made by the library and by the platform.
#pragma once

#include <windows.h>

#include <cstdint>

#include "windows/paired_objects.h"

namespace qnv::test {

struct TransferArea {
  int32_t destX = 0;  // page coordinates
  int32_t destY = 0;
  int32_t srcX = 0;
  int32_t srcY = 0;
  int32_t width = 0;
  int32_t height = 0;
};

struct TransferPair {
  TransferArea area;
  uint32_t rop = SRCCOPY;
  const SourcePair* source = nullptr;
  const BrushPair* brush = nullptr;
  BandRect clip = kEverywhere;
};

// Paints on both pictures. The witness has been told `mode` already. The platform gets a source only where the
// operation reads one, as it asks for.
void PaintBoth(const Witness& witness, const TransferPair& pair, const DRAWMODE& mode);

// The code as the platform publishes it where it has a name for it; the library and today's GDI read the index alone.
uint32_t CodeOf(uint8_t index);

}  // namespace qnv::test
