// The plain devices: a band of 24 bits (blue, green, red) or 8 bits (gray) a pixel at the resolution of the page, so
// that a page pixel is a band pixel.
#pragma once

#include <cstdint>

#include "device/device.h"
#include "raster/band_view.h"

namespace qnv {

class RasterDevice : public Device {
 public:
  // Without a band: enough for GetDeviceInfo, not for drawing.
  explicit RasterDevice(const DeviceDescription& description);
  // buffer: memory of the band, owned by the host; null paints nothing.
  RasterDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer);

  void Enable(const BandRect& bandRect) override;
  int16_t Output(const OutputArguments& a) override;
  int32_t ExtTextOut(const TextArguments& a) override;
  uint16_t StretchDIBits(const ImageArguments& a) override;
  uint32_t Pixel(int32_t x, int32_t y, const PixelArguments& a) override;

  // Paints one row of an image by a transfer whose coordinates have the origin added and whose source pixels are in the
  // band's byte order.
  virtual void PaintImageRow(const BltArguments& row) = 0;

  // The band, seen in pixels of the described depth.
  BandView Band() const {
    const Rect rect = state_.buffer != nullptr ? Rect{state_.bandRect} : Rect{0, 0, 0, 0};
    return {state_.buffer, state_.stride, rect, DescribedBytes()};
  }
  // The band, seen in pixels of a depth; limited to what lies in memory of the described size.
  BandView BandOf(uint32_t bytesPerPixel) const {
    return bytesPerPixel == DescribedBytes() ? Band() : BandOfOtherDepth(bytesPerPixel);
  }

 protected:
  bool ConvertsToGray() const override { return state_.description.bitsPerPixel == 8; }
  uint8_t HatchScale() const override;
  void ClearBand() override;
  PixelReach Reach(const Rect& clip) const override;
  // Called before an image, or one row of it, is painted, with the transfer that does so; its coordinates have the
  // origin added. The dual-plane device writes tags here. False ends the image, whose result is then 0.
  virtual bool MarkImage(const BltArguments& /*a*/) { return true; }

  // Bytes a pixel.
  uint32_t DescribedBytes() const { return state_.Is24() ? 3 : 1; }

 private:
  BandView BandOfOtherDepth(uint32_t bytesPerPixel) const;
};

class RasterDevice24 : public RasterDevice {
 public:
  using RasterDevice::RasterDevice;
  uint16_t BitBlt(const BltArguments& a) override;
  void PaintImageRow(const BltArguments& row) override;
};

class RasterDevice8 : public RasterDevice {
 public:
  using RasterDevice::RasterDevice;
  uint16_t BitBlt(const BltArguments& a) override;
  void PaintImageRow(const BltArguments& row) override;
};

}  // namespace qnv
