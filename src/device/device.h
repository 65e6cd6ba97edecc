// The interface of every device class, and the operations that are the same for all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "device/band_state.h"
#include "image/image_arguments.h"
#include "output/output_arguments.h"
#include "qnvdrv10.h"
#include "raster/blt_arguments.h"
#include "raster/poly_pixel.h"
#include "text/text_arguments.h"

namespace qnv {

// Arguments of Pixel, which PolyPixel repeats.
struct PixelArguments {
  uint32_t color;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

class Device {
 public:
  virtual ~Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  // The C heap, here and wherever memory is taken: the C++ runtime's allocator brings its exceptions along, which are
  // as large as the library, and a static library without it links into plain C programs. Null without memory.
  static void* operator new(std::size_t bytes) noexcept { return std::malloc(bytes); }
  static void operator delete(void* memory) noexcept { std::free(memory); }

  // False when the device could not get its memory; it must not be used then.
  virtual bool IsReady() const { return state_.scratch.HasMemory(); }

  uint32_t GetDeviceInfo(DeviceSize* result) const;
  virtual void Enable(const BandRect& bandRect) = 0;
  virtual uint32_t RealizeObject(uint32_t kind, const void* input, void* output);
  uint32_t ColorInfo(uint32_t color, uint32_t* result) const;
  virtual int16_t Output(const OutputArguments& a) = 0;
  virtual uint16_t BitBlt(const BltArguments& a) = 0;
  virtual int32_t ExtTextOut(const TextArguments& a) = 0;
  virtual uint16_t StretchDIBits(const ImageArguments& a) = 0;
  virtual uint32_t Pixel(int32_t x, int32_t y, const PixelArguments& a) = 0;
  uint32_t PolyPixel(int32_t x1, int32_t y1, int32_t x2, int32_t y2, const PixelArguments& a);
  uint16_t SetDIBitsToDevice(int32_t x, int32_t y, uint32_t startScan, uint32_t numScans, const BandRect* clip,
                             const DRAWMODE* drawMode, const void* bits, const void* bitmapInfo,
                             const void* conversionInfo);
  virtual uint16_t Control(uint16_t code, const void* data);

 protected:
  explicit Device(const DeviceDescription& description) { state_.description = description; }

  // The device's logical colors become gray levels.
  virtual bool ConvertsToGray() const = 0;
  virtual uint8_t HatchScale() const = 0;
  virtual void ClearBand() = 0;
  // What PolyPixel has to visit; more than can be seen does no harm.
  virtual PixelReach Reach(const Rect& clip) const = 0;
  // Writes one pixel so many times.
  virtual void RepeatPixel(int32_t x, int32_t y, uint64_t times, const PixelArguments& a);

  // Fills a rectangle of caller coordinates with the draw mode's background color, by the device's own brush and
  // transfer. What lies left of or above 0 is cut off first; the rest is its own clip.
  void FillOpaqueRect(const Rect& rect, const DRAWMODE& drawMode);

  BandState state_;
};

// Fills the first `words` * height * 4 bytes of a buffer; the products are the host's own, and nothing is
// written when they come out negative.
void ClearWords(uint8_t* buffer, int32_t words, uint32_t height, uint8_t value);

}  // namespace qnv
