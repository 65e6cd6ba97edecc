// A device with fenced band memory, as a host would set it up. Every call goes through the exported functions.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "qnvdrv10.h"
#include "support/fenced_buffer.h"

namespace qnv::test {

// The no-op clip of a host: wide enough for every page, still a real rectangle.
inline constexpr BandRect kEverywhere{-100000, -100000, 100000, 100000};

// The page position of a band's first pixel.
struct BandCorner {
  int32_t left = 0;
  int32_t top = 0;
};

struct DeviceOptions {
  uint16_t kind = QNV_KIND_RASTER;
  uint16_t bitsPerPixel = 24;
  uint32_t width = 64;
  uint32_t height = 32;
  uint16_t resolutionA = 360;
  uint16_t resolutionB = 360;
  int32_t left = 0;  // page position of the band's first pixel
  int32_t top = 0;
  bool tagPlane = false;
  uint8_t fill = 0xCC;
};

class TestDevice {
 public:
  explicit TestDevice(const DeviceOptions& options);
  ~TestDevice();
  TestDevice(const TestDevice&) = delete;
  TestDevice& operator=(const TestDevice&) = delete;

  DeviceHandle* handle() const { return handle_; }
  const DeviceOptions& options() const { return options_; }
  uint32_t stride() const { return stride_; }
  int bytesPerPixel() const { return bytesPerPixel_; }
  uint32_t tagStride() const { return (options_.width + 3) & ~3u; }

  FencedBuffer& band() { return *band_; }
  FencedBuffer* tags() { return tags_.get(); }                // null without a tag plane
  const uint8_t* Pixel(uint32_t column, uint32_t row) const;  // band-relative
  std::vector<uint8_t> BandBytes() const;
  std::vector<uint8_t> TagBytes() const;

  void SetOrigin(int32_t x, int32_t y);
  void MoveBand(int32_t left, int32_t top);  // keeps the band's size
  void Clear();

  // True while neither plane has been written outside its memory.
  bool FencesIntact() const;

 private:
  DeviceOptions options_;
  uint32_t stride_ = 0;
  int bytesPerPixel_ = 3;
  std::unique_ptr<FencedBuffer> band_;
  std::unique_ptr<FencedBuffer> tags_;
  DeviceHandle* handle_ = nullptr;
};

// The device classes with rules of their own: axes that may be scaled, and a second plane that says what each pixel is.
struct ScaledDevice : TestDevice {
  explicit ScaledDevice(DeviceOptions options) : TestDevice((options.kind = QNV_KIND_SCALED, options)) {}
};
struct DualPlaneDevice : TestDevice {
  explicit DualPlaneDevice(DeviceOptions options) : TestDevice((options.tagPlane = true, options)) {}
};

// Black text on white, copy pen, opaque background; the tests change what they need.
struct DrawModeOptions {
  int rop2 = R2_COPYPEN;
  int bkMode = OPAQUE;
  uint32_t background = 0x00FFFFFF;
  uint32_t text = 0;
};
DRAWMODE MakeDrawMode(const DrawModeOptions& options = {});

// A brush record that no device has realised: any style, any color with its top byte, cells of 0.
PhysicalBrush BrushRecord(int style, uint32_t color = 0, int scale = 1);

PhysicalBrush SolidBrush(DeviceHandle* handle, uint32_t color);
PhysicalBrush HatchBrush(DeviceHandle* handle, int16_t hatch, uint32_t color, uint32_t background = 0);
PhysicalBrush PatternBrush(DeviceHandle* handle, const SourceBitmap& bitmap);
PhysicalPen SolidPen(DeviceHandle* handle, uint32_t color);

}  // namespace qnv::test
