// Where on the page the calls of a file may paint.
#include "qnvtool/calls/call_areas.h"

#include <fmt/core.h>

#include <cstdio>

#include "calls/player.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_input.h"

namespace qnv::tool {

std::vector<CallArea> CallAreas(const calls::CallFile& file, const calls::Functions& functions,
                                const std::string& path) {
  std::vector<CallArea> areas(file.CallCount());
  calls::Player player(file, functions);
  calls::Player::Watcher watcher;
  watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots& slots) {
    const calls::PlayedDevice* const device = player.Device(stored.Device());
    if (device == nullptr) return true;
    const calls::Reach reach = calls::ReachOf(stored.function, slots, device->shape);
    const BandRect& band = device->shape.rect;
    areas[call] = {{int64_t{band.left} + reach.left, int64_t{band.top} + reach.top, int64_t{band.left} + reach.right,
                    int64_t{band.top} + reach.bottom},
                   reach.Pixels()};
    return true;
  };
  Completed(player.Play({.compare = false}, watcher), path);
  return areas;
}

BandRect ParseRect(const std::string& text) {
  BandRect rect;
  char end;
  if (std::sscanf(text.c_str(), "%d,%d,%d,%d%c", &rect.left, &rect.top, &rect.right, &rect.bottom, &end) != 4 ||
      rect.left >= rect.right || rect.top >= rect.bottom) {
    throw ToolError(ExitCode::kUsage, fmt::format("--rect: LEFT,TOP,RIGHT,BOTTOM is expected, not {}", text));
  }
  return rect;
}

}  // namespace qnv::tool
