// Single pixels of the plain devices: a band pixel is a page pixel.
#include "device/plain/raster_device.h"
#include "raster/single_pixel.h"

namespace qnv {

uint32_t RasterDevice::Pixel(int32_t x, int32_t y, const PixelArguments& a) {
  if (a.clip == nullptr) return 0;
  const int32_t xDevice = WrapAdd(x, state_.origin.x);
  const int32_t yDevice = WrapAdd(y, state_.origin.y);
  const BandView band = Band();
  if (!Contains(band.rect, xDevice, yDevice)) return 0;
  if (!Contains(Shifted(*a.clip, state_.origin.x, state_.origin.y), xDevice, yDevice)) return 0;
  uint8_t* pixel = band.At(xDevice, yDevice);
  if (a.drawMode == nullptr) return ReadPixel(pixel, band.bytesPerPixel);
  WritePixel(pixel, band.bytesPerPixel, a.color, static_cast<uint16_t>(a.drawMode->Rop2));
  return 0;
}

// Points are band pixels, so clip and band limit them together.
PixelReach RasterDevice::Reach(const Rect& clip) const {
  Rect limits;
  RectIntersect(limits, Shifted(clip, state_.origin.x, state_.origin.y), Band().rect);
  return {limits, limits, nullptr};
}

}  // namespace qnv
