// Span output: decodes the host's span lists and paints them with the fill that pen, brush and draw mode come to.
//
//   paint    the fill pattern is prepared from the call and stays in force afterwards
//   scratch  work memory for the spans of a record
//
// Both return 1 for a style that is understood, -1 for an unknown one, 0 without a clip.
#pragma once

#include <cstdint>

#include "output/output_arguments.h"
#include "output/scratch_buffer.h"
#include "raster/band_view.h"
#include "raster/mappings.h"
#include "raster/paint_state.h"

namespace qnv {

int16_t PaintOutput(const PaintState& paint, const BandView& band, ScratchBuffer& scratch, const OutputArguments& a);

// The resolution-mapping device. regray: pixels that are written become gray levels.
int16_t PaintOutputKept(const PaintState& paint, const BandView& band, const KeptMapping& mapping, bool regray,
                        ScratchBuffer& scratch, const OutputArguments& a);

}  // namespace qnv
