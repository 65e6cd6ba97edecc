// Text of the resolution-mapping device: laid out and clipped in page pixels.
#include "device/scaled/scaled_raster_device.h"
#include "raster/mul_div.h"
#include "text/ext_text_out.h"

namespace qnv {

int32_t ScaledRasterDevice::ExtTextOut(const TextArguments& a) {
  // Intended: only the low 16 bits of the edges of the band are used here.
  const auto toPage = [this](int32_t v) { return MulDiv(static_cast<int16_t>(v), map_.a(), map_.b()); };
  const BandView band = Band();
  const KeptMapping mapping = Mapping();
  const Rect bandInPage{toPage(band.rect.left), toPage(band.rect.top), toPage(band.rect.right),
                        toPage(band.rect.bottom)};
  const TextTarget<KeptMapping> target{
      band, mapping, bandInPage, UnclippedText(state_.description.width, state_.description.height), IsGrayMode()};
  return ExtTextOutOn(state_.Paint(), target, a,
                      [this](const Rect& rect, const DRAWMODE& drawMode) { FillOpaqueRect(rect, drawMode); });
}

}  // namespace qnv
