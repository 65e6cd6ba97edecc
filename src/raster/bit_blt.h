// The bit-block transfer: combines source bitmap, fill pattern and band over a rectangle by a ternary raster operation.
// There is one function for each kind of band. All of them return 1, also when nothing was painted.
//
//   paint  its fill pattern is prepared from brush and draw mode of the call and stays in force for later calls
//   band   the memory to paint; for a resolution-mapping band its rectangle is in band pixels
//   a      the call, in caller coordinates. With a null clip nothing is painted and the fill pattern stays as it is; a
//          clip of four zeros after the origin is added does not limit.
#pragma once

#include <cstdint>

#include "raster/band_view.h"
#include "raster/blt_arguments.h"
#include "raster/mappings.h"
#include "raster/paint_state.h"

namespace qnv {

// The byte order of source pixels of three bytes.
enum class SourceOrder : uint8_t {
  kRedGreenBlue,  // bitmaps of the host
  kBlueGreenRed,  // rows of an image that were converted for the band
};

// A 24-bit band. Sources have one bit or three bytes a pixel.
uint16_t BitBlt24(const PaintState& paint, const BandView& band, SourceOrder order, const BltArguments& a);

// An 8-bit band. Sources have one bit or whole bytes a pixel, of which the first is the gray level.
uint16_t BitBlt8(const PaintState& paint, const BandView& band, const BltArguments& a);

// How the resolution-mapping device transfers.
struct KeptTransfer {
  bool threeByteSources;  // sources hold red, green and blue; else one byte, which serves for all three
  bool regray;            // pixels become gray levels after they are written
};

// A 24-bit band of the resolution-mapping device: page pixels that the mapping drops are not painted.
uint16_t BitBltKept(const PaintState& paint, const BandView& band, const KeptMapping& mapping,
                    const KeptTransfer& transfer, const BltArguments& a);

}  // namespace qnv
