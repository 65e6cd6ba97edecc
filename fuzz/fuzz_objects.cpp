// Fuzz target: pens, brushes and pattern bitmaps on every device class. Realizes them from records of arbitrary
// content, then paints with the realized records or with records straight from the input.
#include "fuzz_input.h"

namespace {

using qnv::fuzz::Block;
using qnv::fuzz::Input;

PhysicalBrush Realised(Input& input, DeviceHandle* handle) {
  SourceBitmap bitmap;
  std::memset(&bitmap, 0, sizeof bitmap);
  bitmap.bmWidth = static_cast<int16_t>(input.Word());
  bitmap.bmHeight = static_cast<int16_t>(input.Word());
  bitmap.bmPlanes = input.Byte();
  bitmap.bmBitsPixel = input.Byte();
  bitmap.bmWidthBytes = input.Byte();
  // Eight rows of eight pixels are read, whatever size the bitmap states.
  const uint32_t rowBytes = bitmap.bmBitsPixel == 24 ? 24 : bitmap.bmBitsPixel == 8 ? 8 : 1;
  const Block pixels(input.Bytes(7u * bitmap.bmWidthBytes + rowBytes));
  if (input.Byte() != 0xFF) bitmap.bmBits = pixels.data();
  LogicalBrush logical;
  std::memset(&logical, 0, sizeof logical);
  const uint8_t style = input.Byte();
  logical.style = style == 0xFF ? input.Word() : style % 5;
  logical.colour = input.Long();
  if (logical.style == BS_PATTERN) logical.colour = style >= 0xF0 ? 0 : reinterpret_cast<uintptr_t>(&bitmap);
  logical.hatch = static_cast<int16_t>(input.Byte() < 0xF0 ? input.Byte() % 6 : input.Word());
  logical.background = input.Long();
  PhysicalBrush brush = qnv::fuzz::TakeBrush(input);
  const uint8_t kind = input.Byte();
  QNVRealizeObject(handle, kind == 0xFF ? input.Long() : OBJ_BRUSH, &logical, kind == 0xFE ? nullptr : &brush, nullptr);
  return brush;
}

PhysicalPen RealisedPen(Input& input, DeviceHandle* handle) {
  const LogicalPen logical{input.Word(), static_cast<int16_t>(input.Word()), static_cast<int16_t>(input.Word()),
                           input.Long()};
  PhysicalPen pen{input.Word(), 1, 1, input.Long()};
  const uint8_t kind = input.Byte();
  uint32_t object = kind == 0xFF ? input.Long() : OBJ_PEN;
  if ((object & 0xFFFF) == OBJ_BRUSH) object = OBJ_PEN;  // the records of a brush are larger than these
  QNVRealizeObject(handle, object, kind == 0xFE ? nullptr : &logical, &pen, nullptr);
  return pen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  Input input(data, size);
  const qnv::fuzz::FuzzDevice device(input);
  for (int i = 0; i < 4 && !input.empty(); ++i) {
    PhysicalBrush brush = Realised(input, device.handle());
    const uint8_t changes = input.Byte();
    if (changes & 1) brush.style = input.Word();
    if (changes & 2) brush.patternDepth = input.Word();
    if (changes & 4) brush.hatchScale[0] = input.Byte();
    if (changes & 8) brush.hatchScale[1] = input.Byte();
    const PhysicalPen pen = RealisedPen(input, device.handle());
    DRAWMODE mode = qnv::fuzz::TakeDrawMode(input);
    if (changes & 16) mode.Rop2 = static_cast<int16_t>(input.Word());
    const BandRect clip = input.Rect();
    const int32_t place[4] = {input.Coordinate(), input.Coordinate(), input.Coordinate(), input.Coordinate()};
    const uint32_t rop = input.Long();
    // There is no source bitmap: operations that need one paint nothing.
    QNVDevBitBlt(device.handle(), place[0], place[1], nullptr, 0, 0, place[2], place[3], rop,
                 changes & 32 ? nullptr : &brush, changes & 64 ? nullptr : &mode, &clip);
    const Block list(input.Bytes(std::size_t{2} * 9));
    QNVOutput(device.handle(), OS_ROW_SPANS, 4, reinterpret_cast<const int16_t*>(list.data()),
              changes & 128 ? &pen : nullptr, &brush, &mode, &clip);
  }
  return 0;
}
