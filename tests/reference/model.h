// A second, slow library to compare the real one with: every operation done one pixel at a time, straight from
// the rules, with no code in common with the library. A model owns copies of the planes it paints.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "qnvdrv10.h"

namespace qnv::reference {

// The memory of one band. Reads and writes are checked: a model that leaves its plane stops the program.
class Plane {
 public:
  // Null bytes stand for a null buffer.
  Plane(const std::vector<uint8_t>* bytes, uint32_t stride, int bytesPerPixel)
      : stride_(stride), bytesPerPixel_(bytesPerPixel), present_(bytes != nullptr) {
    if (present_) bytes_ = *bytes;
  }

  bool present() const { return present_; }  // false for a null buffer, which takes no paint
  const std::vector<uint8_t>& bytes() const { return bytes_; }
  uint32_t stride() const { return stride_; }
  int bytesPerPixel() const { return bytesPerPixel_; }

  // A pixel with its first byte in bits 0..7.
  uint32_t Read(int column, int row) const;
  void Write(int column, int row, uint32_t value);
  void FillStart(std::size_t count, uint8_t value);
  void SetBytes(const std::vector<uint8_t>& bytes);

 private:
  std::size_t Offset(int column, int row) const;

  std::vector<uint8_t> bytes_;
  uint32_t stride_;
  int bytesPerPixel_;
  bool present_;
};

// The arguments of the long calls, named and ordered as the exported functions have them.
struct BlitArgs {
  int32_t destX, destY;
  const SourceBitmap* source;
  int32_t srcX, srcY, width, height;
  uint32_t rop;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

struct OutputArgs {
  uint32_t style, count;
  const int16_t* points;
  const PhysicalPen* pen;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

struct TextArgs {
  int32_t x, y;
  const BandRect* clip;
  const void* string;
  int32_t count;
  const void* fontBase;
  uint32_t fontOffset;
  DRAWMODE* drawMode;
  const int16_t* charWidths;
  const BandRect* opaqueRect;
  uint32_t options;
};

struct ImageArgs {
  uint32_t get;
  int32_t dstX, dstY, dstWidth, dstHeight, srcX, srcY, srcWidth, srcHeight;
  const void* bits;
  const void* bitmapInfo;
  uint32_t rop;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

class Model {
 public:
  virtual ~Model() = default;

  virtual const Plane& band() const = 0;
  virtual const Plane* tags() const { return nullptr; }
  // The host has painted into its planes by itself. The sizes are those of the planes.
  virtual void SetContents(const std::vector<uint8_t>& band, const std::vector<uint8_t>& tags) = 0;

  virtual uint32_t Control(uint32_t code, const void* data) = 0;
  virtual uint32_t ColorInfo(uint32_t color) const = 0;
  virtual uint32_t RealizeObject(uint32_t kind, const void* input, void* output) const = 0;
  virtual uint32_t Pixel(int32_t x, int32_t y, uint32_t color, const DRAWMODE* drawMode, const BandRect* clip) = 0;
  virtual uint32_t BitBlt(const BlitArgs& args) = 0;
  virtual uint32_t Output(const OutputArgs& args) = 0;
  virtual int32_t ExtTextOut(const TextArgs& args) = 0;
  virtual uint32_t StretchDIBits(const ImageArgs& args) = 0;

  uint32_t PolyPixel(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color, const DRAWMODE* drawMode,
                     const BandRect* clip);
  uint32_t SetDIBitsToDevice(int32_t x, int32_t y, uint32_t startScan, uint32_t numScans, const BandRect* clip,
                             const DRAWMODE* drawMode, const void* bits, const void* bitmapInfo);
};

// Null where the library must refuse. `band` and `tags` are the buffers' contents, null for a null buffer.
std::unique_ptr<Model> MakeModel(const DeviceDescription* description, const BandRect* bandRect,
                                 const std::vector<uint8_t>* band, const std::vector<uint8_t>* tags);

uint32_t GetDeviceInfo(const DeviceDescription* description, DeviceSize* result);

}  // namespace qnv::reference
