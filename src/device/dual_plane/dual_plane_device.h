// The dual-plane device: a color band and, in a second buffer, a tag plane of one byte a pixel that tells
// what was painted last: images (QNV_TAG_IMAGE) or anything else (QNV_TAG_GRAPHICS). Each drawing call first
// writes the tags and then goes unchanged to the color band.
#pragma once

#include <cstdint>

#include "device/dual_plane/tag_device.h"
#include "device/plain/raster_device.h"

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
  uint32_t Pixel(int32_t x, int32_t y, const PixelArguments& a) override;
  void PaintImageRow(const BltArguments& row) override;
  uint16_t Control(uint16_t code, const void* data) override;

 protected:
  void ClearBand() override;
  PixelReach Reach(const Rect& clip) const override;
  // Images are marked with the image tag.
  bool MarkImage(const BltArguments& a) override;

 private:
  // Each of these marks what a call paints; nothing is marked while the plane holds the graphics tag alone. False when
  // it cannot be told what is painted: the call is to be refused then.
  bool TagOutput(const OutputArguments& a);
  bool TagText(const TextArguments& a);
  bool TagTransfer(const BltArguments& a);

  bool planeUniform_ = true;
  RasterDevice24* colorDevice_ = nullptr;  // owned
  TagDevice* tagDevice_ = nullptr;         // owned
  uint8_t* tagBuffer_ = nullptr;           // the host's
};

}  // namespace qnv
