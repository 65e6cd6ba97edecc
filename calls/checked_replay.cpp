// Replays with the checker.
#include "calls/checked_replay.h"

namespace qnv::calls {

PlayReport PlayChecked(Player& player, const PlayOptions& options, const std::function<void(const Finding&)>& found,
                       const Player::Watcher& watcher) {
  CallChecker checker(found);
  Player::Watcher both;
  both.before = [&](std::size_t call, const StoredCall& stored, const Slots& slots) {
    checker.Before(call, stored.function, slots, stored.Device());
    return !watcher.before || watcher.before(call, stored, slots);
  };
  both.after = [&](const Player::MadeCall& made) {
    const bool makes = made.stored.function == Function::kEnable;
    checker.After(made.stored.function, made.slots, makes ? made.stored.result : made.stored.Device(),
                  static_cast<uint32_t>(made.result));
    return !watcher.after || watcher.after(made);
  };
  return player.Play(options, both);
}

}  // namespace qnv::calls
