// The arguments of a call of QNVDevExtTextOut as one record.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// As the host passes them, except that count, fontOffset and options are cut to 16 bits.
struct TextArguments {
  int32_t x, y;          // top left of the first character cell, caller coordinates
  const BandRect* clip;  // may be null
  const void* string;
  int16_t count;  // characters; 0 and below measure
  const void* fontBase;
  uint16_t fontOffset;  // bytes from fontBase to the FONTINFO
  DRAWMODE* drawMode;
  const void* textXForm;      // not read
  const int16_t* charWidths;  // advance of each character; may be null
  const BandRect* opaqueRect;
  uint16_t options;  // ETO_...
};

}  // namespace qnv
