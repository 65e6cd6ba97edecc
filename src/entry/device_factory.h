#pragma once

#include "device/device.h"

namespace qnv {

// A device of the class that kind, depth and second buffer ask for, enabled; null for an unknown combination,
// for a description that cannot be mapped, or without memory. The caller deletes it.
Device* MakeDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer, void* secondBuffer);

// The scaled size that a device of this description reports, without making a band. False for an unknown
// kind or depth.
bool ReportDeviceInfo(const DeviceDescription& description, DeviceSize* result, uint32_t* written);

}  // namespace qnv
