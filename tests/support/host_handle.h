// A device made straight from records, for tests whose buffers are no ordinary band. Disabled when it goes.
#pragma once

#include "qnvdrv10.h"

namespace qnv::test {

class HostHandle {
 public:
  HostHandle(const DeviceDescription& description, const BandRect& band, void* buffer, void* secondBuffer = nullptr)
      : handle_(QNVEnable(&description, &band, buffer, secondBuffer)) {}
  ~HostHandle() { QNVDisable(handle_); }
  HostHandle(const HostHandle&) = delete;
  HostHandle& operator=(const HostHandle&) = delete;

  DeviceHandle* get() const { return handle_; }

 private:
  DeviceHandle* handle_;
};

}  // namespace qnv::test
