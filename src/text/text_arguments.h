// The record of a text call's arguments.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// The arguments of ExtTextOut, as the host passes them; count, fontOffset and options are already cut to 16
// bits.
struct TextArguments {
  int32_t x, y;
  const BandRect* clip;
  const void* string;
  int16_t count;
  const void* fontBase;
  uint16_t fontOffset;
  DRAWMODE* drawMode;
  const void* textXForm;
  const int16_t* charWidths;
  const BandRect* opaqueRect;
  uint16_t options;
};

}  // namespace qnv
