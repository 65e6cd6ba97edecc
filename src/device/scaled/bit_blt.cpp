#include "raster/bit_blt.h"

#include "device/scaled/scaled_raster_device.h"

namespace qnv {

uint16_t ScaledRasterDevice::BitBlt(const BltArguments& a) {
  // Intended: a source byte serves for all three of a pixel unless the device is described with 24 bits.
  return BitBltKept(state_.Paint(), Band(), Mapping(), KeptTransfer{state_.Is24(), IsGrayMode()}, a);
}

}  // namespace qnv
