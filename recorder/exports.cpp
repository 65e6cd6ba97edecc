// The thirteen functions as the library exports them. Each passes its call on unchanged; when something is recorded, by
// way of the recorder. And what hosts can ask of the recorder itself.
#include <cstddef>
#include <utility>

#include "recorder/session.h"

#if defined(_WIN32)
#define QNV_VISIBLE
#else
#define QNV_VISIBLE __attribute__((visibility("default")))
#endif
// 32-bit hosts may call with a stack aligned to four bytes only.
#if defined(__i386__)
#define QNV_ENTRY extern "C" QNV_VISIBLE __attribute__((force_align_arg_pointer))
#else
#define QNV_ENTRY extern "C" QNV_VISIBLE
#endif

namespace qnv::recorder {
namespace {

using calls::Function;

template <class R, class... P, class... A>
R Pass(R (*calls::Functions::*member)(P...), Function function, A... arguments) {
  const Session& session = CurrentSession();
  if (session.capture == nullptr) [[likely]] {
    return session.isLoaded ? (session.functions.*member)(arguments...) : R();
  }
  calls::Slots slots;
  std::size_t i = 0;
  ((slots.at[i++] = calls::ToSlot(arguments)), ...);
  const uintptr_t result = RecordedCall(session, function, slots);
  if constexpr (std::is_void_v<R>) {
    return;
  } else {
    return calls::FromSlot<R>(result);
  }
}

}  // namespace
}  // namespace qnv::recorder

using qnv::calls::Function;
using qnv::calls::Functions;
using qnv::recorder::Pass;

QNV_ENTRY uint32_t QNVRecOnFinding(QNVFindingCallback* callback, void* context) {
  return qnv::recorder::SetFindingCallback(callback, context) ? 1 : 0;
}

QNV_ENTRY DeviceHandle* QNVEnable(const DeviceDescription* description, const BandRect* bandRect, void* buffer,
                                  void* secondBuffer) {
  return Pass(&Functions::enable, Function::kEnable, description, bandRect, buffer, secondBuffer);
}

QNV_ENTRY void QNVDisable(DeviceHandle* handle) { Pass(&Functions::disable, Function::kDisable, handle); }

QNV_ENTRY uint32_t QNVGetDeviceInfo(const DeviceDescription* description, DeviceSize* result) {
  return Pass(&Functions::getDeviceInfo, Function::kGetDeviceInfo, description, result);
}

QNV_ENTRY uint32_t QNVControl(DeviceHandle* handle, uint32_t code, const void* data, void* extra) {
  return Pass(&Functions::control, Function::kControl, handle, code, data, extra);
}

QNV_ENTRY uint32_t QNVColorInfo(DeviceHandle* handle, uint32_t colour, uint32_t* result) {
  return Pass(&Functions::colorInfo, Function::kColorInfo, handle, colour, result);
}

QNV_ENTRY uint32_t QNVRealizeObject(DeviceHandle* handle, uint32_t kind, const void* input, void* output,
                                    const void* extra) {
  return Pass(&Functions::realizeObject, Function::kRealizeObject, handle, kind, input, output, extra);
}

QNV_ENTRY uint32_t QNVPixel(DeviceHandle* handle, int32_t x, int32_t y, uint32_t colour, const DRAWMODE* drawMode,
                            const BandRect* clip) {
  return Pass(&Functions::pixel, Function::kPixel, handle, x, y, colour, drawMode, clip);
}

QNV_ENTRY uint32_t QNVPolyPixel(DeviceHandle* handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t colour,
                                const DRAWMODE* drawMode, const BandRect* clip) {
  return Pass(&Functions::polyPixel, Function::kPolyPixel, handle, x1, y1, x2, y2, colour, drawMode, clip);
}

QNV_ENTRY uint32_t QNVDevBitBlt(DeviceHandle* handle, int32_t destX, int32_t destY, const SourceBitmap* source,
                                int32_t srcX, int32_t srcY, int32_t width, int32_t height, uint32_t rop,
                                const PhysicalBrush* brush, const DRAWMODE* drawMode, const BandRect* clip) {
  return Pass(&Functions::bitBlt, Function::kDevBitBlt, handle, destX, destY, source, srcX, srcY, width, height, rop,
              brush, drawMode, clip);
}

QNV_ENTRY uint32_t QNVOutput(DeviceHandle* handle, uint32_t style, uint32_t count, const int16_t* points,
                             const PhysicalPen* pen, const PhysicalBrush* brush, const DRAWMODE* drawMode,
                             const BandRect* clip) {
  return Pass(&Functions::output, Function::kOutput, handle, style, count, points, pen, brush, drawMode, clip);
}

QNV_ENTRY int32_t QNVDevExtTextOut(DeviceHandle* handle, int32_t x, int32_t y, const BandRect* clip, const void* string,
                                   int32_t count, const void* fontBase, uint32_t fontOffset, DRAWMODE* drawMode,
                                   const void* textXForm, const int16_t* charWidths, const BandRect* opaqueRect,
                                   uint32_t options) {
  return Pass(&Functions::extTextOut, Function::kDevExtTextOut, handle, x, y, clip, string, count, fontBase, fontOffset,
              drawMode, textXForm, charWidths, opaqueRect, options);
}

QNV_ENTRY uint32_t QNVStretchDIBits(DeviceHandle* handle, uint32_t get, int32_t dstX, int32_t dstY, int32_t dstWidth,
                                    int32_t dstHeight, int32_t srcX, int32_t srcY, int32_t srcWidth, int32_t srcHeight,
                                    const void* bits, const void* bitmapInfo, const void* conversionInfo, uint32_t rop,
                                    const PhysicalBrush* brush, const DRAWMODE* drawMode, const BandRect* clip) {
  return Pass(&Functions::stretchDIBits, Function::kStretchDIBits, handle, get, dstX, dstY, dstWidth, dstHeight, srcX,
              srcY, srcWidth, srcHeight, bits, bitmapInfo, conversionInfo, rop, brush, drawMode, clip);
}

QNV_ENTRY uint32_t QNVDevSetDIBitsToDevice(DeviceHandle* handle, int32_t x, int32_t y, uint32_t startScan,
                                           uint32_t numScans, const BandRect* clip, const DRAWMODE* drawMode,
                                           const void* bits, const void* bitmapInfo, const void* conversionInfo) {
  return Pass(&Functions::setDIBitsToDevice, Function::kDevSetDIBitsToDevice, handle, x, y, startScan, numScans, clip,
              drawMode, bits, bitmapInfo, conversionInfo);
}
