#include "device/scaled_raster_device.h"
#include "raster/bit_blt.h"

namespace qnv {

uint16_t ScaledRasterDevice::BitBlt(const BltArguments& a) {
  return BitBltOn(state_, Band(), FormatScaled{state_.Is24()}, Mapping(), IsGrayMode(), a);
}

}  // namespace qnv
