// The resolution-mapping device: calls come in page pixels of resolution A, the band is kept at resolution B,
// always three bytes a pixel. A described depth of 0 is its gray mode.
#pragma once

#include <cstdint>

#include "device/device.h"
#include "raster/band_view.h"
#include "raster/coordinate_map.h"
#include "raster/mappings.h"

namespace qnv {

class ScaledRasterDevice : public Device {
 public:
  // Without a band and without mapping tables: knows its size and nothing else.
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
  // What is written becomes gray in place afterwards.
  bool IsGrayMode() const { return state_.description.bitsPerPixel == 0; }

  BandView Band() const;
  KeptMapping Mapping() const { return {&map_}; }

  CoordinateMap map_;
  bool hasTables_ = false;
};

}  // namespace qnv
