// Bit-block transfers of the plain devices.
#include "raster/bit_blt.h"

#include "device/plain/raster_device.h"

namespace qnv {

uint16_t RasterDevice24::BitBlt(const BltArguments& a) {
  return BitBlt24(state_.Paint(), BandOf(3), SourceOrder::kRedGreenBlue, a);
}

uint16_t RasterDevice8::BitBlt(const BltArguments& a) { return BitBlt8(state_.Paint(), BandOf(1), a); }

}  // namespace qnv
