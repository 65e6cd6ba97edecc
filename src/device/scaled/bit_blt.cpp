// Bit-block transfers of the resolution-mapping device.
#include "raster/bit_blt.h"

#include "device/scaled/scaled_raster_device.h"

namespace qnv {

uint16_t ScaledRasterDevice::BitBlt(const BltArguments& a) {
  // Intended: unless the device is described with 24 bits, sources have one byte a pixel, which becomes all three bytes
  // of the band pixel.
  return BitBltKept(state_.Paint(), Band(), Mapping(), KeptTransfer{state_.Is24(), IsGrayMode()}, a);
}

}  // namespace qnv
