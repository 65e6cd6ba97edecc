// Seeded lists of drawing calls with everything they point to, for laws that hold between two devices: both play the
// same scene, call by call.
#pragma once

#include <cstdint>
#include <memory>

#include "qnvdrv10.h"

namespace qnv::test {

struct SceneOptions {
  uint32_t steps = 60;
  int32_t left = 0;  // the part of the page that the calls are about
  int32_t top = 0;
  int32_t width = 48;
  int32_t height = 32;
  bool gray = false;          // 8-bit sources instead of 24-bit ones
  bool nullDrawModes = true;  // transfers and spans that keep the pattern of the call before
  bool extendedCodes = true;  // of images
  bool cellTransfers = true;  // transfers whose pattern has cells, counted from the band's corner
  bool stretchedImages = true;
};

class Scene {
 public:
  Scene(uint64_t seed, const SceneOptions& options);

  std::size_t size() const { return options_.steps; }
  const char* Name(std::size_t step) const;

  // The call's result on the bits that carry one. The call depends on the step alone, not on the device; brushes and
  // pens are realised by the device that draws.
  uint32_t Play(std::size_t step, DeviceHandle* handle) const;

 private:
  // Far apart: the numbers of neighbouring seeds are the same ones, shifted.
  uint64_t SeedOf(std::size_t step) const { return (seed_ * 1000 + step) * 1000003; }

  uint64_t seed_;
  SceneOptions options_;
  std::shared_ptr<const struct SceneMemory> memory_;  // what the calls point to
};

}  // namespace qnv::test
