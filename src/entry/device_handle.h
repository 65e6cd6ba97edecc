// The handle that hosts hold: a device behind a number that tells a handle from other memory.
#pragma once

#include <cstdint>

#include "device/device.h"
#include "qnvdrv10.h"

#pragma pack(push, 1)
// 6 bytes where pointers have four. Hosts pass its address and read nothing in it.
struct DeviceHandle {
  uint16_t magic;
  qnv::Device* device;
};
#pragma pack(pop)

namespace qnv {

// The first two bytes of every handle.
inline constexpr uint16_t kHandleMagic = 0x4E51;

inline bool IsValid(const DeviceHandle* handle) { return handle != nullptr && handle->magic == kHandleMagic; }

}  // namespace qnv
