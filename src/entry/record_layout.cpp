// Proves at compile time that the records of the interface have the sizes and offsets that hosts are compiled against.
// They are fixed for pointers of four bytes; builds with larger pointers prove nothing here.

#include <cstddef>

#include "entry/device_handle.h"
#include "qnvdrv10.h"

namespace qnv {
namespace {

// A template, so that the discarded part is not evaluated where pointers are larger.
template <std::size_t kPointer>
constexpr bool LayoutsHold() {
  if constexpr (kPointer != 4) return true;
  bool holds = true;
  const auto expect = [&holds](std::size_t actual, std::size_t published) { holds = holds && actual == published; };

  // Devices.
  expect(sizeof(DeviceHandle), 6);
  expect(offsetof(DeviceHandle, device), 2);

  expect(sizeof(DeviceDescription), 16);
  expect(offsetof(DeviceDescription, bitsPerPixel), 2);
  expect(offsetof(DeviceDescription, resolutionA), 4);
  expect(offsetof(DeviceDescription, width), 6);
  expect(offsetof(DeviceDescription, height), 10);
  expect(offsetof(DeviceDescription, resolutionB), 14);

  expect(sizeof(BandRect), 16);
  expect(offsetof(BandRect, top), 4);
  expect(offsetof(BandRect, right), 8);
  expect(offsetof(BandRect, bottom), 12);
  expect(sizeof(DeviceSize), 8);
  expect(sizeof(DrawingOrigin), 8);

  // Drawing calls.
  expect(sizeof(DRAWMODE), 42);
  expect(offsetof(DRAWMODE, bkMode), 2);
  expect(offsetof(DRAWMODE, bkColor), 4);
  expect(offsetof(DRAWMODE, TextColor), 8);
  expect(offsetof(DRAWMODE, TBreakExtra), 12);
  expect(offsetof(DRAWMODE, BreakExtra), 14);
  expect(offsetof(DRAWMODE, BreakErr), 16);
  expect(offsetof(DRAWMODE, BreakRem), 18);
  expect(offsetof(DRAWMODE, BreakCount), 20);
  expect(offsetof(DRAWMODE, CharacterExtra), 22);
  expect(offsetof(DRAWMODE, LbkColor), 24);
  expect(offsetof(DRAWMODE, LTextColor), 28);

  expect(sizeof(SourceBitmap), 14);
  expect(offsetof(SourceBitmap, bmWidth), 2);
  expect(offsetof(SourceBitmap, bmHeight), 4);
  expect(offsetof(SourceBitmap, bmWidthBytes), 6);
  expect(offsetof(SourceBitmap, bmPlanes), 8);
  expect(offsetof(SourceBitmap, bmBitsPixel), 9);
  expect(offsetof(SourceBitmap, bmBits), 10);

  // Pens and brushes.
  expect(sizeof(LogicalPen), 10);
  expect(offsetof(LogicalPen, colour), 6);
  expect(sizeof(PhysicalPen), 10);
  expect(offsetof(PhysicalPen, colour), 6);

  expect(sizeof(LogicalBrush), 12);
  expect(offsetof(LogicalBrush, colour), 2);
  expect(offsetof(LogicalBrush, hatch), 6);
  expect(offsetof(LogicalBrush, background), 8);
  expect(sizeof(PhysicalBrush), 268);
  expect(offsetof(PhysicalBrush, hatch), 2);
  expect(offsetof(PhysicalBrush, patternDepth), 4);
  expect(offsetof(PhysicalBrush, hatchScale), 6);
  expect(offsetof(PhysicalBrush, colour), 8);
  expect(offsetof(PhysicalBrush, cells), 12);

  // Fonts and images.
  expect(sizeof(FONTINFO), 33);
  expect(offsetof(FONTINFO, dfPixWidth), 20);
  expect(offsetof(FONTINFO, dfPixHeight), 22);
  expect(offsetof(FONTINFO, dfPitchAndFamily), 24);
  expect(offsetof(FONTINFO, dfFirstChar), 29);
  expect(offsetof(FONTINFO, dfLastChar), 30);
  expect(offsetof(FONTINFO, dfDefaultChar), 31);
  expect(offsetof(FONTINFO, dfBreakChar), 32);

  expect(sizeof(BITMAPINFOHEADER), 40);
  expect(offsetof(BITMAPINFOHEADER, biWidth), 4);
  expect(offsetof(BITMAPINFOHEADER, biHeight), 8);
  expect(offsetof(BITMAPINFOHEADER, biPlanes), 12);
  expect(offsetof(BITMAPINFOHEADER, biBitCount), 14);
  expect(offsetof(BITMAPINFOHEADER, biCompression), 16);
  expect(offsetof(BITMAPINFOHEADER, biClrUsed), 32);
  return holds;
}

static_assert(LayoutsHold<sizeof(void*)>());

}  // namespace
}  // namespace qnv
