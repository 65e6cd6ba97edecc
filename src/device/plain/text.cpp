// Text of the plain devices.
#include "device/plain/raster_device.h"
#include "text/ext_text_out.h"

namespace qnv {

int32_t RasterDevice::ExtTextOut(const TextArguments& a) {
  const BandView band = Band();
  const PlainMapping mapping;
  const TextTarget<PlainMapping> target{band, mapping, band.rect,
                                        UnclippedText(state_.description.width, state_.description.height), false};
  return ExtTextOutOn(state_.Paint(), target, a,
                      [this](const Rect& rect, const DRAWMODE& drawMode) { FillOpaqueRect(rect, drawMode); });
}

}  // namespace qnv
