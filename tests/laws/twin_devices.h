// Two equal devices that must still be equal after a call to each.
#pragma once

#include <vector>

#include "support/device_classes.h"
#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/tag_plane.h"

namespace qnv::test {

// Every device class; the scaled ones down, up and in gray mode.
inline std::vector<DeviceOptions> LawDevices() {
  constexpr DeviceOptions kBand{.width = 45, .height = 21, .left = 3, .top = 5};
  std::vector<DeviceOptions> all = {WithDepth(kBand, QNV_KIND_RASTER, 24), WithDepth(kBand, QNV_KIND_RASTER, 8),
                                    WithDepth(kBand, QNV_KIND_RASTER, 24, true)};
  struct Mapped {
    uint16_t depth;
    uint16_t resolutionA;
    uint16_t resolutionB;
  };
  for (const Mapped& m : {Mapped{24, 600, 400}, Mapped{24, 300, 400}, Mapped{0, 600, 400}, Mapped{0, 300, 360}}) {
    all.push_back({.kind = QNV_KIND_SCALED,
                   .bitsPerPixel = m.depth,
                   .width = 45,
                   .height = 21,
                   .resolutionA = m.resolutionA,
                   .resolutionB = m.resolutionB});
  }
  return all;
}

class TwinDevices {
 public:
  explicit TwinDevices(const DeviceOptions& options) : first(options), second(options) {}

  // Noise in both bands, and tags that every call has to write.
  void FillWith(uint64_t seed) {
    for (TestDevice* device : {&first, &second}) {
      if (device->options().tagPlane) {
        MakeTagsMixed(device, seed);
      } else {
        FillWithNoise(&device->band(), seed);
      }
    }
  }

  void SetOrigin(int32_t x, int32_t y) {
    first.SetOrigin(x, y);
    second.SetOrigin(x, y);
  }

  testing::AssertionResult AreEqual() const {
    if (!first.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
    const testing::AssertionResult bands = BandShows(second, BandImage(first));
    if (!bands || !first.options().tagPlane) return bands;
    return TagsShow(second, TagImage(first));
  }

  TestDevice first;
  TestDevice second;
};

}  // namespace qnv::test
