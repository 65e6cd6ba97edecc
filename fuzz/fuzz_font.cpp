// Fuzz target: font records, strings, widths and rectangles, on every device class.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  qnv::fuzz::Input input(data, size);
  const qnv::fuzz::FuzzDevice device(input);
  const DrawingOrigin origin{input.Coordinate(), input.Coordinate()};
  QNVControl(device.handle(), QNV_SET_ORIGIN, &origin, nullptr);
  qnv::fuzz::CallText(input, device.handle());
  return 0;
}
