// The operations that are the same for every device class: realising objects, colors, escapes, rectangles of pixels,
// unscaled images, and the opaque rectangle of text.
#include "device/device.h"

#include <algorithm>
#include <cstring>

#include "color/color_forms.h"
#include "color/pens_and_brushes.h"

namespace qnv {

uint32_t Device::GetDeviceInfo(DeviceSize* result) const {
  if (result == nullptr) return 0;
  *result = state_.deviceSize;
  return sizeof *result;
}

uint32_t Device::ColorInfo(uint32_t color, uint32_t* result) const {
  const uint32_t physical = PhysicalColor(color, ConvertsToGray());
  if (result != nullptr) std::memcpy(result, &physical, sizeof physical);
  return physical;
}

uint32_t Device::RealizeObject(uint32_t kind, const void* input, void* output) {
  switch (kind & 0xFFFF) {
    case OBJ_PEN: {
      // Without output the call asks for the size of the record.
      if (output == nullptr) return sizeof(PhysicalPen);
      if (input == nullptr) return 0;
      const auto& pen = *static_cast<const LogicalPen*>(input);
      return RealizePen(pen, ColorInfo(pen.colour, nullptr), static_cast<PhysicalPen*>(output));
    }
    case OBJ_BRUSH:
      if (output == nullptr) return sizeof(PhysicalBrush);
      if (input == nullptr) return 0;
      return RealizeBrush(*static_cast<const LogicalBrush*>(input), BrushRules{ConvertsToGray(), HatchScale()},
                          static_cast<PhysicalBrush*>(output));
    default: return 0;
  }
}

uint32_t Device::PolyPixel(int32_t x1, int32_t y1, int32_t x2, int32_t y2, const PixelArguments& a) {
  if (a.clip == nullptr || a.drawMode == nullptr) return 0;  // nothing is written
  // The host's rectangle may have 2^64 pixels: only those that can change the band are visited.
  const PixelReach reach = Reach(*a.clip);
  const PixelAxis columns{reach.limits.left, reach.limits.right, reach.band.left, reach.band.right, reach.map};
  const PixelAxis rows{reach.limits.top, reach.limits.bottom, reach.band.top, reach.band.bottom, reach.map};
  const Origin origin = state_.origin;
  int32_t x, y;
  int64_t xCount, yCount;
  for (SeenPoints seenRows(rows, std::min(y1, y2), std::max(y1, y2), origin.y); seenRows.Next(&y, &yCount);) {
    for (SeenPoints seen(columns, std::min(x1, x2), std::max(x1, x2), origin.x); seen.Next(&x, &xCount);) {
      RepeatPixel(WrapSubtract(x, origin.x), WrapSubtract(y, origin.y),
                  static_cast<uint64_t>(yCount) * static_cast<uint64_t>(xCount), a);
    }
  }
  return 0;
}

void Device::RepeatPixel(int32_t x, int32_t y, uint64_t times, const PixelArguments& a) {
  // For each bit a binary operation sets, clears, keeps or inverts it. Writing a pixel three times therefore gives the
  // same bits as writing it once, four times the same as twice, and so on.
  for (uint64_t left = times > 2 ? 2 - times % 2 : times; left != 0; --left) Pixel(x, y, a);
}

uint16_t Device::SetDIBitsToDevice(int32_t x, int32_t y, uint32_t startScan, uint32_t numScans, const BandRect* clip,
                                   const DRAWMODE* drawMode, const void* bits, const void* bitmapInfo,
                                   const void* conversionInfo) {
  if (bitmapInfo == nullptr) return 0;
  int32_t width;  // biWidth; the whole header is checked by StretchDIBits
  std::memcpy(&width, static_cast<const uint8_t*>(bitmapInfo) + 4, sizeof width);
  // The same extents for source and destination: unscaled.
  const int32_t rows = static_cast<int32_t>(numScans);
  return StretchDIBits(ImageArguments{0, x, y, width, rows, 0, static_cast<int32_t>(startScan), width, rows, bits,
                                      bitmapInfo, conversionInfo, SRCCOPY, nullptr, drawMode, clip});
}

uint16_t Device::Control(uint16_t code, const void* data) {
  switch (code) {
    case QNV_SET_ORIGIN:
      if (data == nullptr) return 0;
      std::memcpy(&state_.origin, data, sizeof state_.origin);
      return 1;
    case QNV_SET_BAND_RECT:
      if (data == nullptr) return 0;
      std::memcpy(&state_.bandRect, data, sizeof state_.bandRect);
      return 1;
    case QNV_CLEAR_BAND: ClearBand(); return 1;
    default: return 0;
  }
}

void Device::FillOpaqueRect(const Rect& rect, const DRAWMODE& drawMode) {
  const Rect visible{MaxOf(rect.left, 0), MaxOf(rect.top, 0), rect.right, rect.bottom};
  // Clips that leave nothing of the rectangle end here.
  if (visible.left >= visible.right || visible.top >= visible.bottom) return;
  const LogicalBrush logical{BS_SOLID, drawMode.bkColor, 0, 0};
  PhysicalBrush brush;
  RealizeObject(OBJ_BRUSH, &logical, &brush);
  BitBlt(BltArguments{visible.left, visible.top, nullptr, 0, 0, visible.right - visible.left,
                      visible.bottom - visible.top, PATCOPY, &brush, &drawMode, &visible});
}

void ClearWords(uint8_t* buffer, int32_t words, uint32_t height, uint8_t value) {
  if (buffer == nullptr || words <= 0) return;
  std::memset(buffer, value, static_cast<std::size_t>(words) * height * 4);
}

}  // namespace qnv
