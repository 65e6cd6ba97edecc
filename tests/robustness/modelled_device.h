// A device and the slow model of it, which begin with the same bytes.
#pragma once

#include <memory>

#include "reference/model.h"
#include "support/test_device.h"

namespace qnv::test {

struct ModelledDevice : TestDevice {
  explicit ModelledDevice(const DeviceOptions& o) : TestDevice(o), before(BandBytes()) {
    const DeviceDescription description{o.kind, o.bitsPerPixel, o.resolutionA, o.width, o.height, o.resolutionB};
    const BandRect band{o.left, o.top, o.left + static_cast<int32_t>(o.width), o.top + static_cast<int32_t>(o.height)};
    model = reference::MakeModel(&description, &band, &before, nullptr);
  }

  const std::vector<uint8_t> before;
  std::unique_ptr<reference::Model> model;
};

}  // namespace qnv::test
