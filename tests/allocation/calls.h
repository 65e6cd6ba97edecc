// One call of every exported function that takes a device, ordinary ones over ordinary records: for tests of what a
// call takes from the heap and of what is left when it fails.
#pragma once

#include <cstdint>
#include <vector>

#include "support/test_device.h"

namespace qnv::test {

struct OrdinaryCall {
  const char* name;
  bool allocates;  // it may
  uint32_t (*make)(const TestDevice& device);
};

const std::vector<OrdinaryCall>& OrdinaryCalls();

struct OrdinaryDevice {
  const char* name;
  DeviceOptions options;
};

inline const OrdinaryDevice kOrdinaryDevices[] = {
    {"24 bits", {}},
    {"8 bits", {.bitsPerPixel = 8}},
    {"two planes", {.tagPlane = true}},
    {"resolution mapping", {.kind = QNV_KIND_SCALED, .resolutionA = 600, .resolutionB = 400}},
    {"resolution mapping, gray", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0}},
};

}  // namespace qnv::test
