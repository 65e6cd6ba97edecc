#pragma once

#include <cstdint>

#include "device/device.h"
#include "qnvdrv10.h"

#pragma pack(push, 1)
// 6 bytes where pointers have four. The host sees only its address.
struct DeviceHandle {
  uint16_t magic;
  qnv::Device* device;
};
#pragma pack(pop)

namespace qnv {

inline constexpr uint16_t kHandleMagic = 0x4E51;

inline bool IsValid(const DeviceHandle* handle) { return handle != nullptr && handle->magic == kHandleMagic; }

}  // namespace qnv
