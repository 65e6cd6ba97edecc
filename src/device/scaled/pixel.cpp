// Single pixels of the resolution-mapping device: the clip applies in page pixels, the band in band pixels.
#include "device/scaled/scaled_raster_device.h"
#include "raster/single_pixel.h"

namespace qnv {

uint32_t ScaledRasterDevice::Pixel(int32_t x, int32_t y, const PixelArguments& a) {
  if (a.clip == nullptr) return 0;
  const int32_t xPage = WrapAdd(x, state_.origin.x);
  const int32_t yPage = WrapAdd(y, state_.origin.y);
  if (!Contains(Shifted(*a.clip, state_.origin.x, state_.origin.y), xPage, yPage)) return 0;
  const int32_t xBand = map_.MapToBand(xPage);
  const int32_t yBand = map_.MapToBand(yPage);
  const BandView band = Band();
  if (!Contains(band.rect, xBand, yBand)) return 0;
  uint8_t* pixel = band.At(xBand, yBand);
  if (a.drawMode == nullptr) return ReadPixel(pixel, band.bytesPerPixel);
  WritePixel(pixel, band.bytesPerPixel, a.color, static_cast<uint16_t>(a.drawMode->Rop2));
  if (IsGrayMode()) state_.rows->image->RegrayRow24(pixel, 1);
  return 0;
}

PixelReach ScaledRasterDevice::Reach(const Rect& clip) const {
  return {Shifted(clip, state_.origin.x, state_.origin.y), Band().rect, &map_};
}

void ScaledRasterDevice::RepeatPixel(int32_t x, int32_t y, uint64_t times, const PixelArguments& a) {
  if (!IsGrayMode()) return Device::RepeatPixel(x, y, times, a);
  // Each write turns the gray level of the pixel into another that depends on the old one only. As soon as a level has
  // occurred before, the sequence repeats, and whole periods can be left out.
  uint16_t seenAt[256] = {};  // the last write that resulted in a level, 0: none
  for (uint64_t time = 1; time <= times; ++time) {
    Pixel(x, y, a);
    uint16_t& seen = seenAt[Pixel(x, y, PixelArguments{0, nullptr, a.clip}) & 0xFF];
    if (seen != 0 && times - time > 256) {
      const uint64_t period = time - seen;
      times = time + (times - time) % period;
    }
    seen = static_cast<uint16_t>(time);
  }
}

}  // namespace qnv
