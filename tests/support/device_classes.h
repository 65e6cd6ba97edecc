// The device classes as lists to run a test over, and devices at a place of the page.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/test_device.h"
#include "support/text.h"

namespace qnv::test {

// The depths of a plain device's band.
inline constexpr uint16_t kBandDepths[] = {24, 8};

inline DeviceOptions WithDepth(DeviceOptions options, uint16_t kind, uint16_t bitsPerPixel, bool tagPlane = false) {
  options.kind = kind;
  options.bitsPerPixel = bitsPerPixel;
  options.tagPlane = tagPlane;
  return options;
}

// One of each class that paints by rules of its own, with everything else as `base` says.
inline std::vector<DeviceOptions> DeviceClasses(const DeviceOptions& base = {}) {
  return {WithDepth(base, QNV_KIND_RASTER, 24), WithDepth(base, QNV_KIND_RASTER, 8),
          WithDepth(base, QNV_KIND_SCALED, 24), WithDepth(base, QNV_KIND_SCALED, 0),
          WithDepth(base, QNV_KIND_RASTER, 24, true)};
}

// The same, and the descriptions whose depth is not their band's.
inline std::vector<DeviceOptions> AllDescriptions(const DeviceOptions& base = {}) {
  std::vector<DeviceOptions> all = DeviceClasses(base);
  for (uint16_t depth : {uint16_t{8}, uint16_t{16}}) all.push_back(WithDepth(base, QNV_KIND_SCALED, depth));
  for (uint16_t depth : {uint16_t{8}, uint16_t{16}, uint16_t{0}}) {
    all.push_back(WithDepth(base, QNV_KIND_RASTER, depth, true));
  }
  return all;
}

// "scaled, 24 bits, 600 to 400": for SCOPED_TRACE.
inline std::string Describe(const DeviceOptions& options) {
  const char* kind = options.tagPlane ? "dual-plane, " : options.kind == QNV_KIND_SCALED ? "scaled, " : "plain, ";
  const bool mapped = options.resolutionA != options.resolutionB;
  return Text(kind, options.bitsPerPixel, " bits",
              mapped ? Text(", ", options.resolutionA, " to ", options.resolutionB) : "");
}

// Where the band lies on the page, and the drawing origin.
struct BandPlace {
  int32_t left = 0;
  int32_t top = 0;
  int32_t originX = 0;
  int32_t originY = 0;
};

class PlacedDevice : public TestDevice {
 public:
  PlacedDevice(DeviceOptions options, const BandPlace& place)
      : TestDevice((options.left = place.left, options.top = place.top, options)) {
    SetOrigin(place.originX, place.originY);
  }
};

}  // namespace qnv::test
