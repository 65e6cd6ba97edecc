// Spans of the plain devices.
#include "output/output.h"

#include "device/plain/raster_device.h"

namespace qnv {

int16_t RasterDevice::Output(const OutputArguments& a) {
  return PaintOutput(state_.Paint(), Band(), state_.scratch, a);
}

}  // namespace qnv
