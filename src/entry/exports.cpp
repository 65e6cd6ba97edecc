// The thirteen exported functions. Each checks the handle, cuts arguments of 16 bits to their low half, and calls the
// device.

#include <cstdlib>

#include "entry/device_factory.h"
#include "entry/device_handle.h"
#include "qnvdrv10.h"

#if defined(_WIN32)
#define QNV_VISIBLE
#else
#define QNV_VISIBLE __attribute__((visibility("default")))
#endif

// 32-bit hosts may call with a stack aligned to four bytes only, but vector registers are saved at aligned addresses.
#if defined(__i386__)
#define QNV_ENTRY extern "C" QNV_VISIBLE __attribute__((force_align_arg_pointer))
#else
#define QNV_ENTRY extern "C" QNV_VISIBLE
#endif

using namespace qnv;

namespace {

// What calls with a 16-bit result return for a bad handle. Intended: only the low half of the result is 0, the upper
// half is that of the handle.
uint32_t BadHandle16(const DeviceHandle* handle) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle)) & 0xFFFF0000u;
}

// Arguments of 16 bits occupy a slot of 32, whose upper half may hold anything.
uint16_t Low16(uint32_t slot) { return static_cast<uint16_t>(slot); }

}  // namespace

// ---- Devices

QNV_ENTRY DeviceHandle* QNVEnable(const DeviceDescription* description, const BandRect* bandRect, void* buffer,
                                  void* secondBuffer) {
  if (description == nullptr || bandRect == nullptr) return nullptr;
  // The handle first: without memory for it no device has to be taken down again.
  auto* const handle = static_cast<DeviceHandle*>(std::malloc(sizeof(DeviceHandle)));
  if (handle == nullptr) return nullptr;
  Device* device = MakeDevice(*description, *bandRect, buffer, secondBuffer);
  if (device == nullptr) {
    std::free(handle);
    return nullptr;
  }
  handle->magic = kHandleMagic;
  handle->device = device;
  return handle;
}

QNV_ENTRY void QNVDisable(DeviceHandle* handle) {
  if (!IsValid(handle)) return;
  delete handle->device;
  std::free(handle);
}

QNV_ENTRY uint32_t QNVGetDeviceInfo(const DeviceDescription* description, DeviceSize* result) {
  uint32_t written = 0;
  if (description == nullptr || !ReportDeviceInfo(*description, result, &written)) return 0;
  return written;
}

QNV_ENTRY uint32_t QNVControl(DeviceHandle* handle, uint32_t code, const void* data, void* /*extra*/) {
  if (!IsValid(handle)) return BadHandle16(handle);
  return handle->device->Control(Low16(code), data);
}

// ---- Colors, pens and brushes

QNV_ENTRY uint32_t QNVColorInfo(DeviceHandle* handle, uint32_t color, uint32_t* result) {
  if (!IsValid(handle)) return 0;
  return handle->device->ColorInfo(color, result);
}

QNV_ENTRY uint32_t QNVRealizeObject(DeviceHandle* handle, uint32_t kind, const void* input, void* output,
                                    const void* /*extra*/) {
  if (!IsValid(handle)) return 0;
  return handle->device->RealizeObject(kind, input, output);
}

// ---- Drawing

QNV_ENTRY uint32_t QNVPixel(DeviceHandle* handle, int32_t x, int32_t y, uint32_t color, const DRAWMODE* drawMode,
                            const BandRect* clip) {
  if (!IsValid(handle)) return 0;
  return handle->device->Pixel(x, y, PixelArguments{color, drawMode, clip});
}

QNV_ENTRY uint32_t QNVPolyPixel(DeviceHandle* handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color,
                                const DRAWMODE* drawMode, const BandRect* clip) {
  if (!IsValid(handle)) return 0;
  return handle->device->PolyPixel(x1, y1, x2, y2, PixelArguments{color, drawMode, clip});
}

QNV_ENTRY uint32_t QNVDevBitBlt(DeviceHandle* handle, int32_t destX, int32_t destY, const SourceBitmap* source,
                                int32_t srcX, int32_t srcY, int32_t width, int32_t height, uint32_t rop,
                                const PhysicalBrush* brush, const DRAWMODE* drawMode, const BandRect* clip) {
  if (!IsValid(handle)) return BadHandle16(handle);
  return handle->device->BitBlt(
      BltArguments{destX, destY, source, srcX, srcY, width, height, rop, brush, drawMode, clip});
}

QNV_ENTRY uint32_t QNVOutput(DeviceHandle* handle, uint32_t style, uint32_t count, const int16_t* points,
                             const PhysicalPen* pen, const PhysicalBrush* brush, const DRAWMODE* drawMode,
                             const BandRect* clip) {
  if (!IsValid(handle)) return BadHandle16(handle);
  const int16_t result =
      handle->device->Output(OutputArguments{Low16(style), Low16(count), points, pen, brush, drawMode, clip});
  return static_cast<uint16_t>(result);
}

QNV_ENTRY int32_t QNVDevExtTextOut(DeviceHandle* handle, int32_t x, int32_t y, const BandRect* clip, const void* string,
                                   int32_t count, const void* fontBase, uint32_t fontOffset, DRAWMODE* drawMode,
                                   const void* textXForm, const int16_t* charWidths, const BandRect* opaqueRect,
                                   uint32_t options) {
  if (!IsValid(handle)) return 0;
  return handle->device->ExtTextOut(TextArguments{x, y, clip, string, static_cast<int16_t>(count), fontBase,
                                                  Low16(fontOffset), drawMode, textXForm, charWidths, opaqueRect,
                                                  Low16(options)});
}

QNV_ENTRY uint32_t QNVStretchDIBits(DeviceHandle* handle, uint32_t get, int32_t dstX, int32_t dstY, int32_t dstWidth,
                                    int32_t dstHeight, int32_t srcX, int32_t srcY, int32_t srcWidth, int32_t srcHeight,
                                    const void* bits, const void* bitmapInfo, const void* conversionInfo, uint32_t rop,
                                    const PhysicalBrush* brush, const DRAWMODE* drawMode, const BandRect* clip) {
  if (!IsValid(handle)) return BadHandle16(handle);
  return handle->device->StretchDIBits(ImageArguments{Low16(get), dstX, dstY, dstWidth, dstHeight, srcX, srcY, srcWidth,
                                                      srcHeight, bits, bitmapInfo, conversionInfo, rop, brush, drawMode,
                                                      clip});
}

QNV_ENTRY uint32_t QNVDevSetDIBitsToDevice(DeviceHandle* handle, int32_t x, int32_t y, uint32_t startScan,
                                           uint32_t numScans, const BandRect* clip, const DRAWMODE* drawMode,
                                           const void* bits, const void* bitmapInfo, const void* conversionInfo) {
  if (!IsValid(handle)) return BadHandle16(handle);
  return handle->device->SetDIBitsToDevice(x, y, startScan, numScans, clip, drawMode, bits, bitmapInfo, conversionInfo);
}
