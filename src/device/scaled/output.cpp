// Spans of the resolution-mapping device.
#include "output/output.h"

#include "device/scaled/scaled_raster_device.h"

namespace qnv {

int16_t ScaledRasterDevice::Output(const OutputArguments& a) {
  return PaintOutputKept(state_.Paint(), Band(), Mapping(), IsGrayMode(), state_.scratch, a);
}

}  // namespace qnv
