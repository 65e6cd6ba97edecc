// The interface of every device class, one function for each drawing call of the host, and the operations that are the
// same for all classes. Coordinates are the caller's: page pixels before the origin is added.
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

// The arguments of Pixel besides its coordinates. PolyPixel passes the same ones for every pixel.
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

  // Devices, like all memory of the library, come from the C heap. The C++ allocator would pull in the runtime's
  // exception code, which is as large as the library, and would keep the static library out of plain C programs.
  // `new` returns null when there is no memory.
  static void* operator new(std::size_t bytes) noexcept { return std::malloc(bytes); }
  static void operator delete(void* memory) noexcept { std::free(memory); }

  // False when a constructor could not get its memory. Such a device must only be deleted.
  virtual bool IsReady() const { return state_.scratch.HasMemory(); }

  // Writes the size at resolution B and returns the bytes written, 0 for a null result.
  uint32_t GetDeviceInfo(DeviceSize* result) const;
  // Called once before any drawing call: sets the place of the band and computes its stride.
  virtual void Enable(const BandRect& bandRect) = 0;

  // Pens, brushes and colors, see QNVRealizeObject and QNVColorInfo.
  virtual uint32_t RealizeObject(uint32_t kind, const void* input, void* output);
  uint32_t ColorInfo(uint32_t color, uint32_t* result) const;

  // The drawing calls. Results are those of the exported functions of the same names.
  virtual int16_t Output(const OutputArguments& a) = 0;
  virtual uint16_t BitBlt(const BltArguments& a) = 0;
  virtual int32_t ExtTextOut(const TextArguments& a) = 0;
  virtual uint16_t StretchDIBits(const ImageArguments& a) = 0;
  virtual uint32_t Pixel(int32_t x, int32_t y, const PixelArguments& a) = 0;
  uint32_t PolyPixel(int32_t x1, int32_t y1, int32_t x2, int32_t y2, const PixelArguments& a);
  uint16_t SetDIBitsToDevice(int32_t x, int32_t y, uint32_t startScan, uint32_t numScans, const BandRect* clip,
                             const DRAWMODE* drawMode, const void* bits, const void* bitmapInfo,
                             const void* conversionInfo);

  // Escapes: origin, place of the band, clearing.
  virtual uint16_t Control(uint16_t code, const void* data);

 protected:
  explicit Device(const DeviceDescription& description) { state_.description = description; }

  // Whether logical colors become gray levels when they are realised.
  virtual bool ConvertsToGray() const = 0;
  // Band pixels that a cell of a realised hatch or pattern covers, in both directions.
  virtual uint8_t HatchScale() const = 0;
  virtual void ClearBand() = 0;
  // The points that PolyPixel has to visit. It may include points that Pixel then clips away.
  virtual PixelReach Reach(const Rect& clip) const = 0;
  // Has the effect of calling Pixel `times` times with the same arguments.
  virtual void RepeatPixel(int32_t x, int32_t y, uint64_t times, const PixelArguments& a);

  // Fills a rectangle, in caller coordinates, with the draw mode's background color: a PATCOPY transfer with a brush
  // that this device realises. The part left of or above 0 is cut off first, and the rest is also the transfer's clip.
  void FillOpaqueRect(const Rect& rect, const DRAWMODE& drawMode);

  BandState state_;
};

// Fills the first words * height * 4 bytes of a buffer with a value. words: 32-bit words of a row, as computed from the
// description with wrapping sums; nothing is written when it is negative or the buffer null.
void ClearWords(uint8_t* buffer, int32_t words, uint32_t height, uint8_t value);

}  // namespace qnv
