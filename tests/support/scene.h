// Seeded lists of drawing calls with everything they point to, for laws that hold between two devices: both play the
// same scene, call by call.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qnvdrv10.h"

namespace qnv::test {

struct SceneOptions {
  uint32_t steps = 60;
  int32_t left = 0;  // the part of the page that the calls are about
  int32_t top = 0;
  int32_t width = 48;
  int32_t height = 32;
  bool gray = false;  // 8-bit sources instead of 24-bit ones
  bool originMoves = true;
  bool nullDrawModes = true;  // transfers and spans that keep the pattern of the call before
  bool extendedCodes = true;  // of images
  bool cellTransfers = true;  // transfers whose pattern has cells, counted from the band's corner
  bool stretchedImages = true;
  bool zeroOriginClips = true;  // clips that may be all zeros
};

struct SceneStep {
  std::string name;
  std::function<uint32_t(DeviceHandle*)> call;
};

class Scene {
 public:
  Scene(uint64_t seed, const SceneOptions& options);

  std::size_t size() const { return steps_.size(); }
  const std::string& Name(std::size_t step) const { return steps_[step].name; }

  // The call's result on the bits that carry one. Brushes and pens are realised by the device that draws.
  uint32_t Play(std::size_t step, DeviceHandle* handle) const { return steps_[step].call(handle); }

 private:
  std::shared_ptr<const void> memory_;  // what the calls point to
  std::vector<SceneStep> steps_;
};

}  // namespace qnv::test
