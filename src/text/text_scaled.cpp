#include "device/scaled_raster_device.h"
#include "raster/mul_div.h"
#include "text/ext_text_out.h"

namespace qnv {

int32_t ScaledRasterDevice::ExtTextOut(const TextArguments& a) {
  // The edges of the band count with 16 bits here.
  const auto toPage = [this](int32_t v) { return MulDiv(static_cast<int16_t>(v), map_.a(), map_.b()); };
  const BandView band = Band();
  const Rect bandInPage{toPage(band.rect.left), toPage(band.rect.top), toPage(band.rect.right),
                        toPage(band.rect.bottom)};
  return ExtTextOutOn(*this, state_, band, Mapping(), bandInPage, IsGrayMode(), a);
}

}  // namespace qnv
