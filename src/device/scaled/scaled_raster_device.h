// The resolution-mapping device: drawing calls use page pixels at resolution A, the band holds pixels at resolution B,
// always three bytes each. A described depth of 0 selects gray mode, in which every painted pixel becomes gray.
#pragma once

#include <cstdint>

#include "device/device.h"
#include "raster/band_view.h"
#include "raster/coordinate_map.h"
#include "raster/mappings.h"

namespace qnv {

class ScaledRasterDevice : public Device {
 public:
  // Without a band and without mapping tables: enough for GetDeviceInfo, not for drawing.
  explicit ScaledRasterDevice(const DeviceDescription& description);
  ScaledRasterDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer);

  bool IsReady() const override { return Device::IsReady() && hasTables_; }
  void Enable(const BandRect& bandRect) override;
  int16_t Output(const OutputArguments& a) override;
  uint16_t BitBlt(const BltArguments& a) override;
  int32_t ExtTextOut(const TextArguments& a) override;
  uint16_t StretchDIBits(const ImageArguments& a) override;
  uint32_t Pixel(int32_t x, int32_t y, const PixelArguments& a) override;

 protected:
  bool ConvertsToGray() const override { return IsGrayMode(); }
  uint8_t HatchScale() const override { return 1; }
  void ClearBand() override;
  PixelReach Reach(const Rect& clip) const override;
  void RepeatPixel(int32_t x, int32_t y, uint64_t times, const PixelArguments& a) override;

 private:
  // In gray mode pixels are painted in color first and then replaced by their gray level.
  bool IsGrayMode() const { return state_.description.bitsPerPixel == 0; }

  // The band in its own pixels.
  BandView Band() const;
  // From page pixels to band pixels.
  KeptMapping Mapping() const { return {&map_}; }

  CoordinateMap map_;
  bool hasTables_ = false;  // map_ has been built
};

}  // namespace qnv
