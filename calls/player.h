// Makes the calls of a call file again, on any library, and compares results and bands with those in the file.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "calls/call_file.h"
#include "calls/call_placer.h"
#include "calls/device_shape.h"
#include "calls/guarded_plane.h"
#include "calls/invoke.h"
#include "calls/memory_reads.h"

namespace qnv::calls {

// A device while the file is replayed.
struct PlayedDevice {
  DeviceHandle* handle = nullptr;
  DeviceShape shape;
  GuardedPlane band, tags;  // empty: the host gave none
};

// What the planes of a device hold at a time.
struct PlaneContents {
  std::vector<uint8_t> band, tags;
};

// What differs from the file.
struct Difference {
  std::size_t call = 0;
  std::string what;
};

struct PlayOptions {
  bool compare =
      true;  // results, outputs, the checksums that the file has, and that nothing beside the bands is written
  bool stopAtFirst = true;                          // at the first difference
  uint64_t maxPlaneBytes = uint64_t{1} << 30;       // files that ask for larger bands are refused
  uint64_t maxAllBytes = UINT64_MAX;                // of all devices at a time
  std::function<bool(std::size_t call)> keep = {};  // calls for which it is false are not made
  std::size_t end = SIZE_MAX;                       // calls from here on are not made
};

struct PlayReport {
  bool completed = false;  // false: `error` says why the replay ended early
  std::string error;       // the file cannot be replayed: with the place in the file
  std::vector<Difference> differences;
  std::size_t made = 0;      // calls
  std::size_t skipped = 0;   // calls whose memory was too large to be kept
  std::size_t compared = 0;  // checksums of bands
  uint64_t nanoseconds = 0;  // in calls, without what is done between them
};

class Player {
 public:
  // file: outlives the player.
  Player(const CallFile& file, const Functions& functions);
  ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  // A call that was just made.
  struct MadeCall {
    std::size_t call;
    const StoredCall& stored;
    const Slots& slots;
    uintptr_t result;
    uint64_t nanoseconds;
  };
  // Called before each call (after the contents of bands are set) and after it. False ends the replay.
  struct Watcher {
    std::function<bool(std::size_t call, const StoredCall&, const Slots&)> before;
    std::function<bool(const MadeCall&)> after;
  };

  PlayReport Play(const PlayOptions& options);
  PlayReport Play(const PlayOptions& options, const Watcher& watcher);

  // Devices by number; null before the call that makes them and for numbers that the file does not have.
  const PlayedDevice* Device(uint32_t number) const;
  // Gives the planes of a device other contents, of the same size, while a watcher runs.
  void SetContents(uint32_t number, const PlaneContents& contents);

 private:
  bool Prepare(const FileItem& item, std::size_t call, PlacedCall* prepared, std::string* error);
  bool FindBandSizes(uint64_t maxPlaneBytes, std::string* error);
  bool Compare(const PlacedCall& prepared, uintptr_t result, std::string* what);
  bool CompareBands(const StoredCall& call, bool before, std::string* what, PlayReport* report) const;
  bool CompareGuards(PlayedDevice* device, bool nearOnly, std::string* what) const;
  void End();

  const CallFile& file_;
  const Functions functions_;
  CallPlacer placer_;
  std::vector<PlayedDevice> devices_;  // by number; 0 is not used
  std::vector<DeviceShape> shapes_;    // the same, as the calls that are prepared leave them
  std::vector<uint64_t> bandBytes_, tagBytes_;
};

}  // namespace qnv::calls
