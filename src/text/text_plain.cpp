#include "device/raster_device.h"
#include "text/ext_text_out.h"

namespace qnv {

int32_t RasterDevice::ExtTextOut(const TextArguments& a) {
  const BandView band = Band();
  return ExtTextOutOn(*this, state_, band, PlainMapping{}, band.rect, false, a);
}

}  // namespace qnv
