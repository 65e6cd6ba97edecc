// Chooses the device class for a description. A new class is one more case here.
#include "entry/device_factory.h"

#include "device/dual_plane/dual_plane_device.h"
#include "device/plain/raster_device.h"
#include "device/scaled/scaled_raster_device.h"

namespace qnv {
namespace {

// Null for an unknown combination of kind and depth, and without memory.
Device* NewDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer, void* secondBuffer) {
  switch (description.kind) {
    case QNV_KIND_SCALED: return new ScaledRasterDevice(description, bandRect, buffer);
    case QNV_KIND_RASTER:
      if (secondBuffer != nullptr) {
        return new DualPlaneDevice(description, bandRect, buffer, secondBuffer);
      }
      if (description.bitsPerPixel == 24) return new RasterDevice24(description, bandRect, buffer);
      if (description.bitsPerPixel == 8) return new RasterDevice8(description, bandRect, buffer);
      return nullptr;
    default: return nullptr;  // Intended: also kind 2, which only ReportDeviceInfo accepts.
  }
}

}  // namespace

Device* MakeDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer, void* secondBuffer) {
  Device* device = NewDevice(description, bandRect, buffer, secondBuffer);
  if (device == nullptr) return nullptr;
  if (!device->IsReady()) {  // no memory for its tables or buffers
    delete device;
    return nullptr;
  }
  device->Enable(bandRect);
  return device;
}

// The devices made here have no band; they only compute their size.
bool ReportDeviceInfo(const DeviceDescription& description, DeviceSize* result, uint32_t* written) {
  switch (description.kind) {
    case QNV_KIND_SCALED:
      if (description.resolutionA == 0) return false;
      *written = ScaledRasterDevice(description).GetDeviceInfo(result);
      return true;
    case QNV_KIND_RASTER:
      if (description.bitsPerPixel == 24) {
        *written = RasterDevice24(description).GetDeviceInfo(result);
      } else if (description.bitsPerPixel == 8) {
        *written = RasterDevice8(description).GetDeviceInfo(result);
      } else {
        return false;
      }
      return true;
    case QNV_KIND_DUAL_PLANE: *written = DualPlaneDevice(description).GetDeviceInfo(result); return true;
    default: return false;
  }
}

}  // namespace qnv
