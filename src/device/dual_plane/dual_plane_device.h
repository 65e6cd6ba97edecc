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
  // Without bands: enough for GetDeviceInfo, not for drawing.
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
  // Tags the destination of an image with QNV_TAG_IMAGE.
  bool MarkImage(const BltArguments& a) override;

 private:
  // Each of these tags the pixels that a call is about to paint. Nothing is done while no image has
  // been painted since the last clear, because every tag is the graphics tag then.
  // False when the pixels cannot be determined, as for an unknown brush style: the call is then refused.
  bool TagOutput(const OutputArguments& a);
  bool TagText(const TextArguments& a);
  bool TagTransfer(const BltArguments& a);

  bool planeUniform_ = true;               // no image since the last clear: every tag is QNV_TAG_GRAPHICS
  RasterDevice24* colorDevice_ = nullptr;  // paints the color band; owned
  TagDevice* tagDevice_ = nullptr;         // paints the tag plane; owned
  uint8_t* tagBuffer_ = nullptr;           // memory of the tag plane, owned by the host
};

}  // namespace qnv
