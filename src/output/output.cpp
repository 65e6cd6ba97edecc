#include "output/output.h"

#include "device/raster_device.h"

namespace qnv {

int16_t RasterDevice::Output(const OutputArguments& a) { return OutputOn(state_, Band(), PlainMapping{}, false, a); }

}  // namespace qnv
