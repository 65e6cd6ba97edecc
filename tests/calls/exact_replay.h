// Replays a recorded page and expects that every call gives the recorded result and bands, and that the checker finds
// nothing wrong with it.
#pragma once

#include <functional>
#include <string>

#include "calls/player.h"

namespace qnv::test {

calls::Bytes ReadAll(const std::string& path);

// atEnd: for each device, just before the call that ends it.
calls::PlayReport ReplayExactly(const std::string& name, const calls::Bytes& bytes,
                                const std::function<void(uint32_t number, const calls::PlayedDevice&)>& atEnd = {});

}  // namespace qnv::test
