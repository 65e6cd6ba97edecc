// Fuzz target: image headers, color tables, masks and places, on every device class.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  qnv::fuzz::Input input(data, size);
  const qnv::fuzz::FuzzDevice device(input);
  qnv::fuzz::CallImage(input, device.handle());
  return 0;
}
