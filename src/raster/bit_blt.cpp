#include "raster/bit_blt.h"

#include "device/raster_device.h"

namespace qnv {

uint16_t RasterDevice24::BitBlt(const BltArguments& a) {
  return BitBltOn(state_, BandOf(3), Format24{}, PlainMapping{}, false, a);
}

uint16_t RasterDevice8::BitBlt(const BltArguments& a) {
  return BitBltOn(state_, BandOf(1), Format8{}, PlainMapping{}, false, a);
}

}  // namespace qnv
