// Makes devices from the host's description.
#pragma once

#include "device/device.h"

namespace qnv {

// Makes and enables a device of the class that kind, depth and second buffer ask for. Null for an unknown combination,
// for a resolution-mapping device with a resolution A of 0, and without memory. The caller deletes it.
Device* MakeDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer, void* secondBuffer);

// Writes the size at resolution B that a device of this description would have, in pixels, and the number of bytes
// written (0 for a null result). False for an unknown kind or depth and for a resolution that cannot be mapped.
bool ReportDeviceInfo(const DeviceDescription& description, DeviceSize* result, uint32_t* written);

}  // namespace qnv
