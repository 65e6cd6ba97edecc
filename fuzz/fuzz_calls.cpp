// Fuzz target: sequences of calls on one device, whose state one call leaves to the next.
#include "fuzz_input.h"

namespace {

using qnv::fuzz::Input;

// An escape, or an unknown code.
void CallControl(Input& input, DeviceHandle* handle) {
  const uint32_t code = 0x2000u + input.Byte() % 4;
  BandRect data = input.Rect();
  if (code == QNV_SET_BAND_RECT) {
    // A band of one pixel anywhere: it must not become larger than its memory.
    data.left = static_cast<int16_t>(data.left);
    data.top = static_cast<int16_t>(data.top);
    data.right = data.left + 1;
    data.bottom = data.top + 1;
  }
  QNVControl(handle, code, input.Byte() == 0 ? nullptr : &data, nullptr);
}

// A pixel anywhere, and a rectangle of few pixels near the band.
void CallPixels(Input& input, DeviceHandle* handle) {
  const DRAWMODE mode = qnv::fuzz::TakeDrawMode(input);
  const BandRect clip = input.Rect();
  const int8_t x = static_cast<int8_t>(input.Byte());
  const int8_t y = static_cast<int8_t>(input.Byte());
  const uint32_t color = input.Long();
  const int32_t point[2] = {input.Coordinate(), input.Coordinate()};
  QNVPixel(handle, point[0], point[1], color, input.Byte() & 1 ? &mode : nullptr, &clip);
  const int32_t corner[2] = {x + static_cast<int8_t>(input.Byte()) / 8, y + static_cast<int8_t>(input.Byte()) / 8};
  QNVPolyPixel(handle, x, y, corner[0], corner[1], color, &mode, &clip);
}

// A brush or pen from random fields, and a color.
void CallObjects(Input& input, DeviceHandle* handle) {
  const qnv::fuzz::Block pixels(input.Bytes(8 * 24));
  const SourceBitmap bitmap{0, 8, 8, 24, 1, input.Byte(), pixels.data()};
  LogicalBrush logical;
  std::memset(&logical, 0, sizeof logical);
  logical.style = input.Byte() % 5;
  logical.colour = logical.style == BS_PATTERN ? reinterpret_cast<uintptr_t>(&bitmap) : input.Long();
  logical.hatch = static_cast<int16_t>(input.Word());
  PhysicalBrush brush;
  const uint32_t kind = input.Byte() % 4;
  QNVRealizeObject(handle, kind, &logical, input.Byte() == 0 ? nullptr : &brush, nullptr);
  QNVColorInfo(handle, input.Long(), nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  Input input(data, size);
  const qnv::fuzz::FuzzDevice device(input);
  using Call = void (*)(Input&, DeviceHandle*);
  const Call calls[] = {qnv::fuzz::CallOutput, qnv::fuzz::CallText, qnv::fuzz::CallImage, qnv::fuzz::CallTransfer,
                        CallControl,           CallPixels,          CallObjects};
  for (int i = 0; i < 12 && !input.empty(); ++i) calls[input.Byte() % 7](input, device.handle());
  return 0;
}
