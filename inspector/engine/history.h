// A call file that has been replayed once, so that the contents of every device can be had again at any call: the
// contents are kept now and then, and a replay resumes from the last ones kept before the call.
//
// Memory: contents are packed, and groups of rows that did not change are shared. When they grow over a limit every
// other moment is given up, so that later steps take longer but the memory stays bounded.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "calls/call_file.h"
#include "calls/call_placer.h"
#include "calls/call_reach.h"
#include "calls/checker.h"
#include "calls/functions.h"
#include "calls/state_calls.h"
#include "inspector/engine/packed_planes.h"

namespace qnv::inspector {

// What a list of calls shows of one.
struct CallRow {
  calls::Function function{};
  uint32_t device = 0;  // 0: none
  int32_t page = -1;
  uint32_t band = 0;  // of the page
  uint64_t nanoseconds = 0;
  uint32_t result = 0;  // of QNVEnable 0 or 1: made
  bool isMade = false;  // false: its memory is not in the file, or the replay ended before it
  bool differs = false;
  uint32_t position = 0;  // in the items of its device
  calls::Reach reach;     // what it may have painted; see calls/call_reach.h
};

// The calls of a device from one move or clearing of its painted band to the next.
struct BandOfPage {
  uint32_t device = 0, page = 0, number = 0;
  std::size_t firstCall = 0, lastCall = 0;
  uint32_t first = 0, end = 0;  // items of the device; before item `end` the band is complete
  uint32_t begun = 0;           // the position behind the first call that clears or paints
  calls::DeviceShape shape;     // when it is complete
  calls::Reach size;

  int64_t Left() const { return shape.rect.left; }
  int64_t Top() const { return shape.rect.top; }
  bool Holds(int64_t x, int64_t y) const { return size.Holds(x - Left(), y - Top()); }
};

struct Page {
  uint32_t device = 0;
  int64_t left = 0, top = 0, right = 0, bottom = 0;
  std::size_t firstCall = 0, lastCall = 0;
  std::vector<uint32_t> bands;  // in History::Bands()
};

// A device at some moment. Belongs to the history and changes when it is asked for another moment.
struct LiveDevice {
  DeviceHandle* handle = nullptr;
  calls::DeviceShape shape;
  std::vector<uint8_t> band, tags;
  uint32_t position = 0;  // items that have been done
  bool isKnown = false;   // false: the contents belong to no position
  // What the planes hold of contents that are kept, and a number for each group that changes with its bytes.
  RowGroups bandGroups, tagGroups;
  std::vector<uint64_t> bandVersions, tagVersions;
};

struct HistoryLimits {
  uint64_t maxFileBytes = uint64_t{1} << 31;   // uncompressed
  uint64_t maxPlaneBytes = uint64_t{1} << 29;  // of a band
  uint64_t maxKeptBytes = uint64_t{1} << 28;   // contents that are kept
  uint64_t maxLiveBytes = uint64_t{1} << 29;   // planes of devices that are replayed
  // What is replayed between two moments that are kept, in pixels; a call counts as some even when it paints few.
  uint64_t costBetweenMoments = uint64_t{8} << 20;
};

class History {
 public:
  explicit History(const calls::Functions& functions) : functions_(functions) {}
  ~History();
  History(const History&) = delete;
  History& operator=(const History&) = delete;

  // Reads and replays a file. False when it cannot be read; *error is the sentence.
  bool Open(const uint8_t* bytes, std::size_t count, const HistoryLimits& limits, std::string* error);

  const calls::CallFile& File() const { return file_; }
  const calls::Functions& Functions() const { return functions_; }
  const std::vector<CallRow>& Rows() const { return rows_; }
  const std::vector<Page>& Pages() const { return pages_; }
  const std::vector<BandOfPage>& Bands() const { return bands_; }
  const std::vector<calls::Finding>& Findings() const { return findings_; }
  // Of devices as they are made, by number; 0 is not used.
  const calls::DeviceShape& ShapeAtStart(uint32_t device) const { return devices_[device].shape; }
  // Why not the whole file could be read or replayed; empty when it could.
  const std::string& Shortcoming() const { return shortcoming_; }
  uint64_t KeptBytes() const { return keptBytes_; }
  std::size_t KeptMoments() const;

  // The items of a device that are done once a call of the file has been made; -1: none.
  uint32_t PositionAfter(uint32_t device, int64_t call) const;
  // The call that an item belongs to. Contents of a band belong to the call that follows.
  std::size_t CallAt(uint32_t device, uint32_t position) const { return devices_[device].items[position].call; }
  bool IsCall(uint32_t device, uint32_t position) const;

  // The device with its first `position` items done. Null when it cannot be made, with *error.
  LiveDevice* At(uint32_t device, uint32_t position, std::string* error);
  // Makes one item on a device that At has returned. To leave items out, clear isKnown first: the contents then belong
  // to no moment.
  bool Make(uint32_t device, LiveDevice* live, uint32_t position, std::string* error);
  // Of the items from `first` on, marks those too that leave the state that marked ones need.
  void NeedState(uint32_t device, uint32_t first, std::vector<bool>* needed) const;
  // The groups of rows of a complete band; null when they were given up.
  const RowGroups* Complete(const BandOfPage& band, bool tags) const;
  const GroupLayout& Layout(uint32_t device, bool tags) const {
    return tags ? devices_[device].tagLayout : devices_[device].bandLayout;
  }
  calls::CallPlacer& Placer() { return *placer_; }

 private:
  struct Item {
    uint32_t item, call;
  };
  // Kept contents.
  struct Moment {
    uint32_t position;
    bool completesBand;
    std::vector<std::size_t> calls;  // that lead to the state besides the contents
    RowGroups band, tags;
  };
  struct TrackedDevice {
    TrackedDevice() : state(false) {}
    std::vector<Item> items;
    calls::DeviceShape shape;
    GroupLayout bandLayout, tagLayout;
    bool takesPatterns = false;  // some call paints with the pattern of an earlier one
    std::vector<Moment> moments;
    // While the file is opened:
    calls::StateCalls state;
    calls::DeviceShape current;
    bool isPainted = false, isAlive = false;
    uint32_t bandFirst = 0, bandBegun = 0;
    std::vector<bool> changedBand, changedTags;  // groups, since the last moment
    uint64_t cost = 0;
    int64_t lastTop = 0;
    int32_t lastPage = -1;
  };

  void Index();
  void Replay(const HistoryLimits& limits);
  void NoteChange(TrackedDevice& device, calls::Function function, const calls::Reach& reach);
  void Keep(TrackedDevice& device, uint32_t position, bool completesBand, std::span<const uint8_t> band,
            std::span<const uint8_t> tags);
  void GiveUpMoments();
  void CloseBand(uint32_t number, uint32_t end);
  bool Restore(uint32_t number, LiveDevice* live, const Moment& moment, std::string* error);
  void Disable(LiveDevice* live);
  LiveDevice* Live(uint32_t number);

  calls::Functions functions_;
  calls::CallFile file_;
  std::unique_ptr<calls::CallPlacer> placer_;
  HistoryLimits limits_;
  std::vector<CallRow> rows_;
  std::vector<TrackedDevice> devices_;
  std::vector<BandOfPage> bands_;
  std::vector<Page> pages_;
  std::vector<calls::Finding> findings_;
  std::string shortcoming_;
  uint64_t keptBytes_ = 0, momentCost_ = 0, nextVersion_ = 2;
  std::map<uint32_t, std::unique_ptr<LiveDevice>> live_;
  std::vector<uint32_t> liveOrder_;  // used last at the end
};

}  // namespace qnv::inspector
