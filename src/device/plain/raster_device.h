// The plain devices: a 24-bit or an 8-bit band, painted pixel for pixel.
#pragma once

#include <cstdint>

#include "device/device.h"
#include "raster/band_view.h"

namespace qnv {

class RasterDevice : public Device {
 public:
  // Without a band: knows its size and nothing else.
  explicit RasterDevice(const DeviceDescription& description);
  // buffer: the host's, may be null.
  RasterDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer);

  void Enable(const BandRect& bandRect) override;
  int16_t Output(const OutputArguments& a) override;
  int32_t ExtTextOut(const TextArguments& a) override;
  uint16_t StretchDIBits(const ImageArguments& a) override;
  uint32_t Pixel(int32_t x, int32_t y, const PixelArguments& a) override;

  // Paints a row of an image as a transfer: coordinates with the origin added, source pixels in the band's order.
  virtual void PaintImageRow(const BltArguments& row) = 0;

  // The band in pixels of the described depth ...
  BandView Band() const { return BandOf(DescribedBytes()); }
  // ... or of another: then only so much of it as the described memory holds.
  BandView BandOf(uint32_t bytesPerPixel) const;

 protected:
  bool ConvertsToGray() const override { return state_.description.bitsPerPixel == 8; }
  uint8_t HatchScale() const override;
  void ClearBand() override;
  PixelReach Reach(const Rect& clip) const override;
  // Called before a part of an image is painted, with the transfer that stands for it: coordinates with the origin
  // added. False refuses the image.
  virtual bool MarkImage(const BltArguments& /*a*/) { return true; }

  uint32_t DescribedBytes() const { return state_.Is24() ? 3 : 1; }
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
