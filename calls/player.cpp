// Replays call files. The arguments of a call are put in place and checked well before it is made, some hundred calls
// at a time, so that between two calls nothing but the comparison of the result is done.
#include "calls/player.h"

#include <algorithm>

#include "calls/hash.h"
#include "calls/text.h"

namespace qnv::calls {
namespace {

constexpr std::size_t kChunk = 512;  // calls that are prepared at a time

std::string InHex(uint64_t value) { return Text("0x", Hex{value}); }

uint64_t Nanoseconds(std::chrono::steady_clock::duration time) {
  return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
}

}  // namespace

Player::Player(const CallFile& file, const Functions& functions)
    : file_(file),
      functions_(functions),
      placer_(file),
      devices_(file.DeviceCount() + 1),
      shapes_(file.DeviceCount() + 1) {}

Player::~Player() { End(); }

void Player::End() {
  for (PlayedDevice& device : devices_) {
    if (device.handle != nullptr) functions_.disable(device.handle);
    device = PlayedDevice{};
  }
}

const PlayedDevice* Player::Device(uint32_t number) const {
  return number < devices_.size() && devices_[number].handle != nullptr ? &devices_[number] : nullptr;
}

void Player::SetContents(uint32_t number, const PlaneContents& contents) {
  const auto fill = [](GuardedPlane& plane, const std::vector<uint8_t>& bytes) {
    if (plane.size() == bytes.size()) std::copy(bytes.begin(), bytes.end(), plane.begin());
  };
  fill(devices_[number].band, contents.band);
  fill(devices_[number].tags, contents.tags);
}

// The bands get all the memory that the rectangles of the file ever ask for.
bool Player::FindBandSizes(uint64_t maxPlaneBytes, std::string* error) {
  bandBytes_.assign(devices_.size(), 0);
  tagBytes_.assign(devices_.size(), 0);
  std::vector<DeviceShape> shapes(devices_.size());
  StoredCall call;
  for (std::size_t i = 0; i < file_.CallCount(); ++i) {
    const Function function = CallFile::FunctionOf(file_.CallItem(i));
    if (function != Function::kEnable && function != Function::kControl) continue;
    file_.DecodeCall(file_.CallItem(i), &call);
    const auto record = [&](std::size_t argument, std::size_t bytes) -> const uint8_t* {
      const StoredPointer& pointer = call.arguments[argument].pointer;
      const BlobView& blob = file_.Blob(pointer.tag == PointerTag::kBlob ? pointer.number : 0);
      return blob.bytes >= bytes ? blob.data : nullptr;
    };
    uint32_t number = 0;
    if (call.function == Function::kEnable && call.result != 0) {
      number = call.result;
      const uint8_t* const description = record(0, sizeof(DeviceDescription));
      const uint8_t* const rect = record(1, sizeof(BandRect));
      if (description == nullptr || rect == nullptr) {
        *error = PlaceOf(file_.CallItem(i)) + ": a device without description";
        return false;
      }
      shapes[number].description = ReadAs<DeviceDescription>(description);
      shapes[number].rect = ReadAs<BandRect>(rect);
      shapes[number].dualPlane =
          call.arguments[3].pointer.tag != PointerTag::kNull && shapes[number].description.kind == QNV_KIND_RASTER;
    } else if (call.function == Function::kControl && (call.arguments[1].number & 0xFFFF) == QNV_SET_BAND_RECT &&
               call.Device() != 0) {
      const uint8_t* const rect = record(2, sizeof(BandRect));
      if (rect == nullptr) continue;
      number = call.Device();
      shapes[number].rect = ReadAs<BandRect>(rect);
    } else {
      continue;
    }
    bandBytes_[number] = std::max(bandBytes_[number], shapes[number].MaxBandBytes(shapes[number].rect));
    tagBytes_[number] = std::max(tagBytes_[number], shapes[number].MaxTagBytes(shapes[number].rect));
    if (bandBytes_[number] > maxPlaneBytes || tagBytes_[number] > maxPlaneBytes) {
      *error = PlaceOf(file_.CallItem(i)) + ": a band of " + std::to_string(bandBytes_[number]) + " bytes is too large";
      return false;
    }
  }
  return true;
}

bool Player::Prepare(const FileItem& item, std::size_t call, PlacedCall* prepared, std::string* error) {
  prepared->call = call;
  prepared->item = &item;
  prepared->skipped = false;
  if (item.kind != ItemKind::kCall) return true;
  file_.DecodeCall(item, &prepared->stored);
  const StoredCall& stored = prepared->stored;
  const uint32_t device = stored.Device();
  if (!placer_.Place(shapes_[device], prepared, error)) return false;
  if (prepared->skipped) return true;
  const uint32_t changed = stored.function == Function::kEnable ? stored.result : device;
  if (changed == 0) return true;
  DeviceShape& shape = shapes_[changed];
  FollowShape(stored, prepared->slots, &shape);
  if (shape.MaxBandBytes(shape.rect) > bandBytes_[changed] || shape.MaxTagBytes(shape.rect) > tagBytes_[changed]) {
    *error = PlaceOf(item) + ": the band is larger than its memory";
    return false;
  }
  return true;
}

bool Player::Compare(const PlacedCall& prepared, uintptr_t result, std::string* what) {
  const StoredCall& call = prepared.stored;
  const EntryPoint& entry = EntryPointOf(call.function);
  const bool badHandle = entry.arguments[0].type == Type::kHandle && call.Device() == 0;
  const auto differ = [&](uint64_t got, uint64_t expected) {
    *what = "the result is " + InHex(got) + ", in the file " + InHex(expected);
    return false;
  };
  switch (entry.result) {
    case Result::kNothing: break;
    case Result::kHandle:
      if ((result != 0) != (call.result != 0)) {
        *what =
            result == 0 ? "the device is refused, in the file it is made" : "the device is made, in the file refused";
        return false;
      }
      break;
    case Result::kWhole:
    case Result::kSigned:
      if (static_cast<uint32_t>(result) != call.result) return differ(static_cast<uint32_t>(result), call.result);
      break;
    case Result::kLow16:
      // A bad handle leaves its own upper half in the result.
      if ((result & 0xFFFF) != (call.result & 0xFFFF) || (!badHandle && static_cast<uint32_t>(result) != call.result)) {
        return differ(static_cast<uint32_t>(result), call.result);
      }
      break;
  }
  if (call.output != 0) {
    const BlobView& expected = file_.Blob(call.output);
    constexpr std::size_t kBreakErr = 16;
    const auto* const got = call.function == Function::kDevExtTextOut
                                ? reinterpret_cast<const uint8_t*>(&placer_.textMode()) + kBreakErr
                                : placer_.output();
    if (call.function == Function::kRealizeObject) ForgetAddress(placer_.output(), expected.bytes);
    const std::size_t room = call.function == Function::kDevExtTextOut ? sizeof(int16_t) : sizeof(PhysicalBrush);
    if (expected.bytes > room || std::memcmp(got, expected.data, expected.bytes) != 0) {
      *what = "what it writes differs";
      return false;
    }
  }
  return true;
}

bool Player::CompareBands(const StoredCall& call, bool before, std::string* what, PlayReport* report) const {
  const PlayedDevice* const device = Device(call.Device());
  if (device == nullptr) return true;
  const auto compare = [&](uint32_t flag, const GuardedPlane& plane, uint64_t bytes, uint64_t expected,
                           const char* name) {
    if ((call.flags & flag) == 0) return true;
    ++report->compared;
    const uint64_t got = Hash64(plane.data(), static_cast<std::size_t>(std::min<uint64_t>(bytes, plane.size())));
    if (got == expected) return true;
    *what = std::string("the ") + name + (before ? " before the call" : "") + " has the checksum " + InHex(got) +
            ", in the file " + InHex(expected);
    return false;
  };
  const uint64_t band = device->shape.BandBytes(), tags = device->shape.TagBytes();
  if (before) {
    return compare(kHasBandBefore, device->band, band, call.bandBefore, "band") &&
           compare(kHasTagsBefore, device->tags, tags, call.tagsBefore, "tag plane");
  }
  return compare(kHasBandAfter, device->band, band, call.bandAfter, "band") &&
         compare(kHasTagsAfter, device->tags, tags, call.tagsAfter, "tag plane");
}

bool Player::CompareGuards(PlayedDevice* device, bool nearOnly, std::string* what) const {
  const std::size_t bytes = nearOnly ? GuardedPlane::kNearBytes : GuardedPlane::kGuardBytes;
  for (GuardedPlane* const plane : {&device->band, &device->tags}) {
    const std::ptrdiff_t changed = plane->ChangedGuard(bytes);
    if (changed == 0) continue;
    *what = Text("byte ", changed < 0 ? -changed : changed, changed < 0 ? " before" : " behind",
                 plane == &device->band ? " the band" : " the tag plane", " was written");
    plane->RenewGuards();
    return false;
  }
  return true;
}

PlayReport Player::Play(const PlayOptions& options) { return Play(options, Watcher{}); }

PlayReport Player::Play(const PlayOptions& options, const Watcher& watcher) {
  PlayReport report;
  End();
  std::fill(shapes_.begin(), shapes_.end(), DeviceShape{});
  if (!FindBandSizes(options.maxPlaneBytes, &report.error)) return report;
  // Prepared calls hold records that their slots point to, so they do not move.
  std::vector<PlacedCall> chunk(std::min(kChunk, file_.Items().size()));
  std::size_t call = 0;
  uint64_t allBytes = 0;  // of the planes of living devices
  using Clock = std::chrono::steady_clock;
  for (std::size_t at = 0; at < file_.Items().size();) {
    std::size_t count = 0;
    for (; count < chunk.size() && at < file_.Items().size(); ++count, ++at) {
      const FileItem& item = file_.Items()[at];
      if (!Prepare(item, call, &chunk[count], &report.error)) {
        // The calls before it can be made.
        at = file_.Items().size();
        break;
      }
      if (item.kind == ItemKind::kCall) ++call;
    }
    for (std::size_t i = 0; i < count; ++i) {
      PlacedCall& prepared = chunk[i];
      if (prepared.call >= options.end) {
        report.completed = true;
        return report;
      }
      if (prepared.item->kind == ItemKind::kBand) {
        StoredBand band;
        file_.DecodeBand(*prepared.item, &band);
        PlayedDevice& device = devices_[band.device];
        GuardedPlane& plane = band.plane == 0 ? device.band : device.tags;
        const BlobView& blob = file_.Blob(band.blob);
        if (blob.bytes > plane.size()) {
          report.error = PlaceOf(*prepared.item) + ": the contents are larger than the band";
          return report;
        }
        if (blob.bytes != 0) std::memcpy(plane.data(), blob.data, blob.bytes);
        continue;
      }
      if (prepared.skipped) {
        ++report.skipped;
        continue;
      }
      if (options.keep && !options.keep(prepared.call)) continue;
      const StoredCall& stored = prepared.stored;
      Slots& slots = prepared.slots;
      const EntryPoint& entry = EntryPointOf(stored.function);
      const auto differs = [&](std::string what) {
        report.differences.push_back({prepared.call, std::string(entry.name) + ": " + std::move(what)});
        return options.stopAtFirst;
      };
      PlayedDevice newDevice;
      const uint32_t number = stored.Device();
      if (entry.arguments[0].type == Type::kHandle) {
        if (number != 0 && devices_[number].handle == nullptr) {
          // A file that was written by the recorder has no such call unless the library refused the device.
          if (differs("its device does not exist")) return report;
          continue;
        }
      } else if (stored.function == Function::kEnable) {
        const uint32_t made = stored.result;
        if (allBytes + bandBytes_[made] + tagBytes_[made] > options.maxAllBytes) {
          report.error = PlaceOf(*prepared.item) + ": with this device the bands are too large";
          return report;
        }
        // A band without pixels has an address, too.
        const auto planeOf = [](uint64_t bytes) {
          return GuardedPlane(static_cast<std::size_t>(std::max<uint64_t>(bytes, 1)));
        };
        if (slots.at[2] != 0) newDevice.band = planeOf(bandBytes_[made]);
        if (slots.at[3] != 0) newDevice.tags = planeOf(tagBytes_[made]);
        slots.at[2] = reinterpret_cast<uintptr_t>(newDevice.band.data());
        slots.at[3] = reinterpret_cast<uintptr_t>(newDevice.tags.data());
      }
      placer_.SetHandle(&prepared, number == 0 ? nullptr : devices_[number].handle);
      std::string what;
      if (options.compare && (stored.flags & (kHasBandBefore | kHasTagsBefore)) != 0 &&
          !CompareBands(stored, true, &what, &report) && differs(what)) {
        return report;
      }
      if (watcher.before && !watcher.before(prepared.call, stored, slots)) {
        report.completed = true;
        return report;
      }
      const Clock::time_point start = Clock::now();
      const uintptr_t result = Invoke(functions_, stored.function, slots);
      const uint64_t nanoseconds = Nanoseconds(Clock::now() - start);
      report.nanoseconds += nanoseconds;
      ++report.made;
      if (stored.function == Function::kEnable && result != 0) {
        auto* const handle = reinterpret_cast<DeviceHandle*>(result);
        if (stored.result == 0) {
          functions_.disable(handle);
        } else {
          newDevice.handle = handle;
          FollowShape(stored, slots, &newDevice.shape);
          allBytes += newDevice.band.size() + newDevice.tags.size();
          devices_[stored.result] = std::move(newDevice);
        }
      } else if (stored.function == Function::kControl && number != 0 && slots.at[2] != 0) {
        FollowShape(stored, slots, &devices_[number].shape);
      }
      if (options.compare) {
        if (!Compare(prepared, result, &what) && differs(what)) return report;
        if ((stored.flags & (kHasBandAfter | kHasTagsAfter)) != 0 && !CompareBands(stored, false, &what, &report) &&
            differs(what)) {
          return report;
        }
        // All guards where the band may end, the near ones after every call.
        const bool endsBand = stored.function == Function::kControl || stored.function == Function::kDisable;
        if (number != 0 && !CompareGuards(&devices_[number], !endsBand, &what) && differs(what)) return report;
      }
      if (watcher.after && !watcher.after({prepared.call, stored, slots, result, nanoseconds})) {
        report.completed = true;
        return report;
      }
      if (stored.function == Function::kDisable && number != 0) {
        allBytes -= devices_[number].band.size() + devices_[number].tags.size();
        devices_[number] = PlayedDevice{};
      }
    }
  }
  report.completed = report.error.empty();
  return report;
}

}  // namespace qnv::calls
