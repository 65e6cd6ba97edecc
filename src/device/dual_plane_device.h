// The dual-plane device: a colour band and, in a second buffer, a tag plane of one byte a pixel that tells
// what was painted last: images (QNV_TAG_IMAGE) or anything else (QNV_TAG_GRAPHICS). Each drawing call first
// writes the tags and then goes unchanged to the colour band.
#pragma once

#include <cstdint>

#include "device/raster_device.h"

namespace qnv {

class DualPlaneDevice : public RasterDevice24 {
 public:
  // Without bands: knows its size and nothing else.
  explicit DualPlaneDevice(const DeviceDescription& description);
  DualPlaneDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer, void* secondBuffer);
  ~DualPlaneDevice() override;

  bool IsReady() const override;
  int16_t Output(const OutputArguments& a) override;
  uint16_t BitBlt(const BltArguments& a) override;
  int32_t ExtTextOut(const TextArguments& a) override;
  uint16_t StretchDIBits(const ImageArguments& a) override;
  uint32_t Pixel(int32_t x, int32_t y, const PixelArguments& a) override;
  uint16_t Control(uint16_t code, const void* data) override;

  // Tags what a transfer paints, with the image tag when imageFlag is not 0. 0 when that cannot be told: the
  // transfer must not be painted then either.
  uint16_t TagBlt(const BltArguments& a, uint16_t imageFlag);

 protected:
  void ClearBand() override;

 private:
  // Nothing is marked while the tag plane holds but the graphics tag. False: the call is to be refused.
  bool TagOutput(const OutputArguments& a);
  bool TagText(const TextArguments& a);

  bool planeUniform_ = true;
  RasterDevice24* colourDevice_ = nullptr;  // owned
  RasterDevice8* tagDevice_ = nullptr;      // owned
};

}  // namespace qnv
