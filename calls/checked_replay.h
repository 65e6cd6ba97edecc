// Replays a call file and shows every call to the checker.
#pragma once

#include <functional>

#include "calls/checker.h"
#include "calls/player.h"

namespace qnv::calls {

// found: gets what the checker finds. watcher: called after the checker has seen the call, before and after it is made.
PlayReport PlayChecked(Player& player, const PlayOptions& options, const std::function<void(const Finding&)>& found,
                       const Player::Watcher& watcher = {});

}  // namespace qnv::calls
