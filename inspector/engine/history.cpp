// Replays a file once and remembers; later replays parts of it.
#include "inspector/engine/history.h"

#include <algorithm>
#include <cstring>

#include "calls/checked_replay.h"
#include "calls/text.h"

namespace qnv::inspector {
namespace {

using calls::CallFile;
using calls::Function;
using calls::Reach;

// What a call costs even when it paints few pixels.
constexpr uint64_t kCostOfCall = 2000;

bool EndsBand(Function function, uint32_t code) {
  return function == Function::kDisable ||
         (function == Function::kControl && (code == QNV_SET_BAND_RECT || code == QNV_CLEAR_BAND));
}

uint64_t BytesOf(const RowGroups& groups, const RowGroups* shared) {
  uint64_t bytes = groups.size() * sizeof(void*) * 2;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (shared == nullptr || (*shared)[i] != groups[i]) bytes += groups[i]->MemoryBytes();
  }
  return bytes;
}

}  // namespace

History::~History() {
  for (auto& [number, live] : live_) Disable(live.get());
}

std::size_t History::KeptMoments() const {
  std::size_t count = 0;
  for (const TrackedDevice& device : devices_) count += device.moments.size();
  return count;
}

bool History::Open(const uint8_t* bytes, std::size_t count, const HistoryLimits& limits, std::string* error) {
  limits_ = limits;
  const CallFile::Status status = CallFile::Read(bytes, count, &file_, limits.maxFileBytes);
  if (status.error == calls::FileError::kTruncated) {
    shortcoming_ = calls::Text("at byte ", status.offset, ": ", status.message, "; the ", file_.CallCount(),
                               " calls before it are shown");
  } else if (status.error != calls::FileError::kNone) {
    *error = calls::Text("at byte ", status.offset, ": ", status.message);
    return false;
  }
  placer_ = std::make_unique<calls::CallPlacer>(file_);
  Index();
  Replay(limits);
  return true;
}

// The rows of the list, and which items belong to which device.
void History::Index() {
  rows_.resize(file_.CallCount());
  devices_.resize(std::size_t{file_.DeviceCount()} + 1);
  calls::StoredCall stored;
  std::size_t call = 0;
  for (std::size_t i = 0; i < file_.Items().size(); ++i) {
    const calls::FileItem& item = file_.Items()[i];
    const Item entry{static_cast<uint32_t>(i), static_cast<uint32_t>(call)};
    if (item.kind == calls::ItemKind::kBand) {
      calls::StoredBand band;
      file_.DecodeBand(item, &band);
      devices_[band.device].items.push_back(entry);
      continue;
    }
    file_.DecodeCall(item, &stored);
    CallRow& row = rows_[call++];
    row.function = stored.function;
    const bool makes = stored.function == Function::kEnable;
    row.device = makes ? stored.result : stored.Device();
    row.nanoseconds = stored.nanoseconds;
    row.result = makes ? stored.result != 0 : stored.result;
    TrackedDevice& device = devices_[row.device];
    row.position = static_cast<uint32_t>(device.items.size());
    if (row.device == 0) continue;
    device.items.push_back(entry);
    if (calls::StateCalls::TakesEarlierPattern(stored)) device.takesPatterns = true;
  }
}

void History::Replay(const HistoryLimits& limits) {
  calls::Player player(file_, functions_);
  const auto positionOf = [&](std::size_t call) { return rows_[call].position; };
  // Contents that were set since the last item of the device.
  const auto noteContents = [&](TrackedDevice& device, uint32_t position) {
    if (position != 0 && file_.Items()[device.items[position - 1].item].kind == calls::ItemKind::kBand) {
      NoteChange(device, Function::kControl, {});
    }
  };
  calls::Player::Watcher watcher;
  watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots& slots) {
    const uint32_t number = stored.Device();
    if (number == 0) return true;
    TrackedDevice& device = devices_[number];
    noteContents(device, positionOf(call));
    rows_[call].reach = ReachOf(stored.function, slots, device.current);
    if (EndsBand(stored.function, slots.Low16(1)) && device.isPainted) {
      const calls::PlayedDevice* const played = player.Device(number);
      Keep(device, positionOf(call), true, played->band, played->tags);
      CloseBand(number, positionOf(call));
    }
    return true;
  };
  watcher.after = [&](const calls::Player::MadeCall& made) {
    const calls::StoredCall& stored = made.stored;
    const bool makes = stored.function == Function::kEnable;
    const uint32_t number = makes ? stored.result : stored.Device();
    CallRow& row = rows_[made.call];
    row.isMade = true;
    if (number == 0) return true;
    TrackedDevice& device = devices_[number];
    const calls::PlayedDevice* const played = player.Device(number);
    if (makes) {
      if (played == nullptr) return true;
      FollowShape(stored, made.slots, &device.current);
      device.shape = device.current;
      device.isAlive = true;
      device.state = calls::StateCalls(device.shape.dualPlane);
      device.bandLayout = GroupLayout::Of(played->band.size(), device.shape.Stride());
      device.tagLayout = GroupLayout::Of(played->tags.size(), device.shape.TagStride());
      device.changedBand.assign(device.bandLayout.Count(), true);
      device.changedTags.assign(device.tagLayout.Count(), true);
      Keep(device, row.position + 1, false, played->band, played->tags);
      return true;
    }
    if (stored.function == Function::kDisable) {
      device.isAlive = false;
      return true;
    }
    FollowShape(stored, made.slots, &device.current);
    device.state.After(made.call, stored);
    NoteChange(device, stored.function, row.reach);
    const bool cleared = stored.function == Function::kControl && made.slots.Low16(1) == QNV_CLEAR_BAND;
    if (cleared || calls::EntryPointOf(stored.function).draws) {
      if (!device.isPainted) device.bandBegun = row.position + 1;
      device.isPainted = true;
    }
    device.cost += kCostOfCall + static_cast<uint64_t>(row.reach.Pixels());
    if (device.cost > momentCost_) Keep(device, row.position + 1, false, played->band, played->tags);
    return true;
  };
  momentCost_ = limits.costBetweenMoments;
  calls::PlayOptions options;
  options.stopAtFirst = false;
  options.maxPlaneBytes = limits.maxPlaneBytes;
  options.maxAllBytes = limits.maxLiveBytes;
  const calls::PlayReport report = PlayChecked(
      player, options, [&](const calls::Finding& finding) { findings_.push_back(finding); }, watcher);
  for (const calls::Difference& difference : report.differences) rows_[difference.call].differs = true;
  if (!report.error.empty()) {
    shortcoming_ += (shortcoming_.empty() ? "" : "; ") + report.error;
  }
  // Devices that were never ended.
  for (uint32_t number = 1; number < devices_.size(); ++number) {
    TrackedDevice& device = devices_[number];
    const calls::PlayedDevice* const played = player.Device(number);
    if (!device.isAlive || !device.isPainted || played == nullptr) continue;
    auto end = static_cast<uint32_t>(device.items.size());
    while (end > 0 && !(IsCall(number, end - 1) && rows_[device.items[end - 1].call].isMade)) --end;
    Keep(device, end, true, played->band, played->tags);
    CloseBand(number, end);
  }
  // Pages in the order of their first calls, whichever device painted them.
  std::vector<uint32_t> order(pages_.size()), places(pages_.size());
  for (uint32_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](uint32_t a, uint32_t b) { return pages_[a].firstCall < pages_[b].firstCall; });
  std::vector<Page> sorted;
  for (uint32_t i = 0; i < order.size(); ++i) {
    places[order[i]] = i;
    sorted.push_back(std::move(pages_[order[i]]));
  }
  pages_ = std::move(sorted);
  for (BandOfPage& band : bands_) {
    band.page = places[band.page];
    for (uint32_t position = band.first; position < band.end; ++position) {
      if (!IsCall(band.device, position)) continue;
      CallRow& row = rows_[CallAt(band.device, position)];
      row.page = static_cast<int32_t>(band.page);
      row.band = band.number;
    }
  }
}

bool History::IsCall(uint32_t device, uint32_t position) const {
  return file_.Items()[devices_[device].items[position].item].kind == calls::ItemKind::kCall;
}

// Marks the groups that a call may have changed.
void History::NoteChange(TrackedDevice& device, Function function, const Reach& reach) {
  const bool isAll = function == Function::kControl || reach == BandReach(device.current);
  const auto mark = [&](std::vector<bool>& changed, const GroupLayout& layout) {
    if (changed.empty()) return;
    if (isAll) {
      changed.assign(changed.size(), true);
    } else if (!reach.IsEmpty()) {
      const std::size_t first = static_cast<std::size_t>(reach.top) * layout.stride / layout.groupBytes;
      const std::size_t last = static_cast<std::size_t>(reach.bottom - 1) * layout.stride / layout.groupBytes;
      for (std::size_t i = first; i <= last && i < changed.size(); ++i) changed[i] = true;
    }
  };
  mark(device.changedBand, device.bandLayout);
  mark(device.changedTags, device.tagLayout);
}

void History::Keep(TrackedDevice& device, uint32_t position, bool completesBand, std::span<const uint8_t> band,
                   std::span<const uint8_t> tags) {
  Moment moment;
  moment.position = position;
  moment.completesBand = completesBand;
  if (!device.state.Calls(device.takesPatterns, &moment.calls)) {
    if (!completesBand) return;
    // Good enough to look at, but not to go on from.
    moment.calls.assign(1, SIZE_MAX);
  }
  const Moment* const before = device.moments.empty() ? nullptr : &device.moments.back();
  const auto pack = [&](std::span<const uint8_t> plane, const GroupLayout& layout, std::vector<bool>& changed,
                        const RowGroups* last) {
    RowGroups groups(layout.Count());
    for (std::size_t i = 0; i < groups.size(); ++i) {
      groups[i] = last != nullptr && !changed[i]
                      ? (*last)[i]
                      : std::make_shared<const RowGroup>(plane.data() + layout.First(i), layout.Bytes(i));
      changed[i] = false;
    }
    keptBytes_ += BytesOf(groups, last);
    return groups;
  };
  moment.band = pack(band, device.bandLayout, device.changedBand, before == nullptr ? nullptr : &before->band);
  moment.tags = pack(tags, device.tagLayout, device.changedTags, before == nullptr ? nullptr : &before->tags);
  device.cost = 0;
  device.moments.push_back(std::move(moment));
  while (keptBytes_ > limits_.maxKeptBytes && KeptMoments() > 2 * devices_.size()) GiveUpMoments();
}

// Every other moment: first those within bands. The first and the last of a device stay.
void History::GiveUpMoments() {
  bool isWithin = false;
  for (const TrackedDevice& device : devices_) {
    for (std::size_t i = 1; i + 1 < device.moments.size(); ++i) isWithin = isWithin || !device.moments[i].completesBand;
  }
  for (TrackedDevice& device : devices_) {
    std::vector<Moment> left;
    bool skip = true;
    for (std::size_t i = 0; i < device.moments.size(); ++i) {
      Moment& moment = device.moments[i];
      const bool isEdge = i == 0 || i + 1 == device.moments.size();
      if (isEdge || (isWithin && moment.completesBand)) {
        left.push_back(std::move(moment));
        continue;
      }
      if (!skip) left.push_back(std::move(moment));
      skip = !skip;
    }
    device.moments = std::move(left);
  }
  if (isWithin) momentCost_ *= 2;
  keptBytes_ = 0;
  for (const TrackedDevice& device : devices_) {
    for (std::size_t i = 0; i < device.moments.size(); ++i) {
      const Moment* const before = i == 0 ? nullptr : &device.moments[i - 1];
      keptBytes_ += BytesOf(device.moments[i].band, before == nullptr ? nullptr : &before->band) +
                    BytesOf(device.moments[i].tags, before == nullptr ? nullptr : &before->tags);
    }
  }
}

void History::CloseBand(uint32_t number, uint32_t end) {
  TrackedDevice& device = devices_[number];
  device.isPainted = false;
  BandOfPage band;
  band.device = number;
  band.first = device.bandFirst;
  band.end = end;
  band.begun = device.bandBegun;
  band.shape = device.current;
  band.size = BandReach(device.current);
  device.bandFirst = end;
  if (band.size.IsEmpty() || device.bandLayout.planeBytes <= 1) return;
  const auto isCall = [&](uint32_t position) { return IsCall(number, position); };
  uint32_t first = band.first, last = band.end;
  while (first < last && !isCall(first)) ++first;
  while (last > first && !isCall(last - 1)) --last;
  if (first == last) return;
  band.firstCall = device.items[first].call;
  band.lastCall = device.items[last - 1].call;
  // A band that does not lie below the one before it begins a new page.
  if (device.lastPage < 0 || band.Top() <= device.lastTop) {
    device.lastPage = static_cast<int32_t>(pages_.size());
    Page page;
    page.device = number;
    page.left = band.Left();
    page.top = band.Top();
    page.right = page.left + band.size.right;
    page.bottom = page.top + band.size.bottom;
    page.firstCall = band.firstCall;
    pages_.push_back(page);
  }
  device.lastTop = band.Top();
  Page& page = pages_[static_cast<std::size_t>(device.lastPage)];
  page.left = std::min(page.left, band.Left());
  page.right = std::max(page.right, band.Left() + band.size.right);
  page.bottom = std::max(page.bottom, band.Top() + band.size.bottom);
  page.lastCall = band.lastCall;
  band.page = static_cast<uint32_t>(device.lastPage);
  band.number = static_cast<uint32_t>(page.bands.size());
  page.bands.push_back(static_cast<uint32_t>(bands_.size()));
  bands_.push_back(band);
}

uint32_t History::PositionAfter(uint32_t device, int64_t call) const {
  if (call < 0) return 0;
  const auto& items = devices_[device].items;
  if (call >= static_cast<int64_t>(rows_.size())) return static_cast<uint32_t>(items.size());
  const auto& last = file_.CallItem(static_cast<std::size_t>(call));
  const auto item = static_cast<uint32_t>(&last - file_.Items().data());
  const auto end =
      std::upper_bound(items.begin(), items.end(), item, [](uint32_t a, const Item& b) { return a < b.item; });
  return static_cast<uint32_t>(end - items.begin());
}

void History::NeedState(uint32_t number, uint32_t first, std::vector<bool>* needed) const {
  const TrackedDevice& device = devices_[number];
  const bool isDual = device.shape.dualPlane;
  if (!device.takesPatterns && !isDual) return;
  calls::StateCalls state(isDual);
  calls::StoredCall stored;
  std::vector<std::size_t> earlier;
  for (std::size_t i = 0; i < needed->size(); ++i) {
    const auto position = first + static_cast<uint32_t>(i);
    if (!IsCall(number, position)) continue;
    const std::size_t call = device.items[position].call;
    file_.DecodeCall(file_.CallItem(call), &stored);
    if ((*needed)[i]) {
      // Origins and places of the band are needed anyhow; what is left are patterns and images.
      if (!state.Calls(calls::StateCalls::TakesEarlierPattern(stored), &earlier)) {
        needed->assign(needed->size(), true);
        return;
      }
      for (const std::size_t other : earlier) (*needed)[rows_[other].position - first] = true;
    }
    state.After(call, stored);
  }
}

const RowGroups* History::Complete(const BandOfPage& band, bool tags) const {
  const auto& moments = devices_[band.device].moments;
  const auto found = std::lower_bound(moments.begin(), moments.end(), band.end,
                                      [](const Moment& moment, uint32_t end) { return moment.position < end; });
  if (found == moments.end() || found->position != band.end) return nullptr;
  return tags ? &found->tags : &found->band;
}

void History::Disable(LiveDevice* live) {
  if (live->handle != nullptr) functions_.disable(live->handle);
  live->handle = nullptr;
  live->isKnown = false;
}

LiveDevice* History::Live(uint32_t number) {
  liveOrder_.erase(std::remove(liveOrder_.begin(), liveOrder_.end(), number), liveOrder_.end());
  liveOrder_.push_back(number);
  std::unique_ptr<LiveDevice>& live = live_[number];
  if (live != nullptr) return live.get();
  // The devices that were looked at longest ago make room.
  const auto bytesOf = [&](uint32_t device) {
    return uint64_t{devices_[device].bandLayout.planeBytes} + devices_[device].tagLayout.planeBytes;
  };
  uint64_t bytes = 0;
  for (const uint32_t device : liveOrder_) bytes += bytesOf(device);
  while (bytes > limits_.maxLiveBytes && liveOrder_.front() != number) {
    const uint32_t oldest = liveOrder_.front();
    bytes -= bytesOf(oldest);
    Disable(live_[oldest].get());
    live_.erase(oldest);
    liveOrder_.erase(liveOrder_.begin());
  }
  const TrackedDevice& device = devices_[number];
  std::unique_ptr<LiveDevice>& made = live_[number];
  made = std::make_unique<LiveDevice>();
  made->band.resize(device.bandLayout.planeBytes);
  made->tags.resize(device.tagLayout.planeBytes);
  made->bandGroups.resize(device.bandLayout.Count());
  made->tagGroups.resize(device.tagLayout.Count());
  made->bandVersions.resize(device.bandLayout.Count());
  made->tagVersions.resize(device.tagLayout.Count());
  return made.get();
}

bool History::Make(uint32_t number, LiveDevice* live, uint32_t position, std::string* error) {
  const TrackedDevice& device = devices_[number];
  const Item& entry = device.items[position];
  const calls::FileItem& item = file_.Items()[entry.item];
  const auto change = [&](bool isAll, const Reach& reach) {
    const auto mark = [&](RowGroups& groups, std::vector<uint64_t>& versions, const GroupLayout& layout) {
      if (groups.empty() || (!isAll && reach.IsEmpty())) return;
      std::size_t first = 0, last = groups.size() - 1;
      if (!isAll) {
        first = static_cast<std::size_t>(reach.top) * layout.stride / layout.groupBytes;
        last = std::min(last, static_cast<std::size_t>(reach.bottom - 1) * layout.stride / layout.groupBytes);
      }
      for (std::size_t i = first; i <= last; ++i) {
        groups[i] = nullptr;
        versions[i] = nextVersion_;
      }
      ++nextVersion_;
    };
    mark(live->bandGroups, live->bandVersions, device.bandLayout);
    mark(live->tagGroups, live->tagVersions, device.tagLayout);
  };
  if (item.kind == calls::ItemKind::kBand) {
    calls::StoredBand band;
    file_.DecodeBand(item, &band);
    std::vector<uint8_t>& plane = band.plane == 0 ? live->band : live->tags;
    const calls::BlobView& blob = file_.Blob(band.blob);
    if (blob.bytes > plane.size()) {
      *error = PlaceOf(item) + ": the contents are larger than the band";
      return false;
    }
    if (blob.bytes != 0) std::memcpy(plane.data(), blob.data, blob.bytes);
    change(true, {});
    return true;
  }
  const CallRow& row = rows_[entry.call];
  // A device stays until the history is closed, so that one can look at it later.
  if (!row.isMade || row.function == Function::kDisable) return true;
  calls::PlacedCall placed;
  placed.call = entry.call;
  placed.item = &item;
  file_.DecodeCall(item, &placed.stored);
  if (!placer_->Place(live->shape, &placed, error)) return false;
  calls::Slots& slots = placed.slots;
  if (row.function == Function::kEnable) {
    live->shape = calls::DeviceShape{};
    slots.at[2] = slots.at[2] != 0 ? reinterpret_cast<uintptr_t>(live->band.data()) : 0;
    slots.at[3] = slots.at[3] != 0 ? reinterpret_cast<uintptr_t>(live->tags.data()) : 0;
    live->handle = reinterpret_cast<DeviceHandle*>(Invoke(functions_, row.function, slots));
    FollowShape(placed.stored, slots, &live->shape);
    if (live->handle != nullptr) return true;
    *error = PlaceOf(item) + ": the device cannot be made again";
    return false;
  }
  if (live->handle == nullptr) return true;
  placer_->SetHandle(&placed, live->handle);
  const bool clears = row.function == Function::kControl && slots.Low16(1) == QNV_CLEAR_BAND;
  change(clears || (calls::EntryPointOf(row.function).draws && row.reach == BandReach(live->shape)), row.reach);
  Invoke(functions_, row.function, slots);
  FollowShape(placed.stored, slots, &live->shape);
  return true;
}

bool History::Restore(uint32_t number, LiveDevice* live, const Moment& moment, std::string* error) {
  const TrackedDevice& device = devices_[number];
  Disable(live);
  // The calls that make the device and its state paint too; what they paint is replaced below.
  if (!Make(number, live, rows_[device.items[0].call].position, error)) return false;
  for (const std::size_t call : moment.calls) {
    if (!Make(number, live, rows_[call].position, error)) return false;
  }
  const auto unpack = [&](std::vector<uint8_t>& plane, RowGroups& held, std::vector<uint64_t>& versions,
                          const GroupLayout& layout, const RowGroups& groups) {
    for (std::size_t i = 0; i < groups.size(); ++i) {
      if (held[i] == groups[i]) continue;
      groups[i]->Unpack(plane.data() + layout.First(i));
      held[i] = groups[i];
      versions[i] = nextVersion_++;
    }
  };
  unpack(live->band, live->bandGroups, live->bandVersions, device.bandLayout, moment.band);
  unpack(live->tags, live->tagGroups, live->tagVersions, device.tagLayout, moment.tags);
  live->position = moment.position;
  live->isKnown = true;
  return true;
}

LiveDevice* History::At(uint32_t number, uint32_t position, std::string* error) {
  const TrackedDevice& device = devices_[number];
  if (device.moments.empty() || position < device.moments.front().position) {
    *error = "the device has not been made yet";
    return nullptr;
  }
  LiveDevice* const live = Live(number);
  auto found = std::upper_bound(device.moments.begin(), device.moments.end(), position,
                                [](uint32_t at, const Moment& moment) { return at < moment.position; });
  do --found;
  while (!found->calls.empty() && found->calls.front() == SIZE_MAX);
  // A few calls are made sooner than contents are unpacked.
  constexpr uint32_t kFewCalls = 16;
  const bool isAhead = live->isKnown && live->position <= position;
  if (!isAhead || (live->position < found->position && position - live->position > kFewCalls)) {
    if (!Restore(number, live, *found, error)) {
      live->isKnown = false;
      return nullptr;
    }
  }
  while (live->position < position) {
    if (!Make(number, live, live->position, error)) {
      live->isKnown = false;
      return nullptr;
    }
    ++live->position;
  }
  return live;
}

}  // namespace qnv::inspector
