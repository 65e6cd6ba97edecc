// Image headers, tables, masks and places, on every device class. A document may claim what it likes.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  qnv::fuzz::Input input(data, size);
  const qnv::fuzz::FuzzDevice device(input);
  qnv::fuzz::CallImage(input, device.handle());
  return 0;
}
