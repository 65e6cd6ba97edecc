// Span output: decodes a span list of the host and paints its spans. Pen, brush and draw mode of the call determine the
// fill pattern.
//
//   paint    its fill pattern is prepared from the call and stays in force for later calls with a null draw mode
//   band     the memory to paint; for a resolution-mapping band its rectangle is in band pixels
//   scratch  work memory for the spans of one record
//   a        the call, in caller coordinates
//
// Both functions return 1 for a known style, -1 for an unknown one, and 0 for a null clip.
#pragma once

#include <cstdint>

#include "output/output_arguments.h"
#include "output/scratch_buffer.h"
#include "raster/band_view.h"
#include "raster/mappings.h"
#include "raster/paint_state.h"

namespace qnv {

// A plain band.
int16_t PaintOutput(const PaintState& paint, const BandView& band, ScratchBuffer& scratch, const OutputArguments& a);

// A band of the resolution-mapping device. regray: pixels become gray levels after they are written.
int16_t PaintOutputKept(const PaintState& paint, const BandView& band, const KeptMapping& mapping, bool regray,
                        ScratchBuffer& scratch, const OutputArguments& a);

}  // namespace qnv
