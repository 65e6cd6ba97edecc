#include "device/scaled_raster_device.h"
#include "output/output.h"

namespace qnv {

int16_t ScaledRasterDevice::Output(const OutputArguments& a) {
  return OutputOn(state_, Band(), Mapping(), IsGrayMode(), a);
}

}  // namespace qnv
