// Replays call files. The arguments of a call are put in place and checked well before it is made, some hundred calls
// at a time, so that between two calls nothing but the comparison of the result is done.
#include "calls/player.h"

#include <algorithm>
#include <cstdio>

#include "calls/hash.h"

namespace qnv::calls {
namespace {

constexpr std::size_t kChunk = 512;  // calls that are prepared at a time

// What pointers lead to that the library does not follow.
const uint8_t kUnreadMemory[64] = {};

std::string Hex(uint64_t value) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
  return text;
}

std::string Place(const FileItem& item) {
  return "block at " + std::to_string(item.blockOffset) + ", item at byte " + std::to_string(item.position);
}

uint64_t Nanoseconds(std::chrono::steady_clock::duration time) {
  return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
}

}  // namespace

Player::Player(const CallFile& file, const Functions& functions)
    : file_(file), functions_(functions), devices_(file.DeviceCount() + 1), shapes_(file.DeviceCount() + 1) {}

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

void Player::SetContents(uint32_t number, const PlayedDevice& from) {
  PlayedDevice& device = devices_[number];
  if (device.band.size() == from.band.size()) std::copy(from.band.begin(), from.band.end(), device.band.begin());
  if (device.tags.size() == from.tags.size()) std::copy(from.tags.begin(), from.tags.end(), device.tags.begin());
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
        *error = Place(file_.CallItem(i)) + ": a device without description";
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
      *error = Place(file_.CallItem(i)) + ": a band of " + std::to_string(bandBytes_[number]) + " bytes is too large";
      return false;
    }
  }
  return true;
}

const Player::Region* Player::RegionOf(uint32_t image) {
  const uint32_t root = file_.Image(image).root;
  const auto [found, isNew] = regions_.try_emplace(root);
  Region& region = found->second;
  if (!isNew) return region.tooLarge ? nullptr : &region;
  const auto forEachPiece = [&](const auto& use) {
    for (uint32_t i = root; i <= file_.ImageCount(); ++i) {
      const StoredImage& part = file_.Image(i);
      if (part.root != root) continue;
      for (std::size_t p = 0; p < part.pieces; ++p) use(file_.Piece(part.firstPiece + p));
    }
  };
  int64_t first = INT64_MAX, end = 0;
  forEachPiece([&](const StoredPiece& piece) {
    first = std::min(first, piece.offset);
    end = std::max(end, piece.offset + static_cast<int64_t>(file_.Blob(piece.blob).bytes));
  });
  if (first > end) first = end;
  region.first = first;
  region.tooLarge = static_cast<uint64_t>(end - first) > 4 * kMaxArgumentBytes;
  if (region.tooLarge) return nullptr;
  region.memory.resize(static_cast<std::size_t>(end - first));
  forEachPiece([&](const StoredPiece& piece) {
    const BlobView& blob = file_.Blob(piece.blob);
    if (blob.bytes != 0) std::memcpy(region.memory.data() + (piece.offset - first), blob.data, blob.bytes);
  });
  return &region;
}

// The rows at their distance, with zeros between them.
const Bytes* Player::RowsOf(const StoredPointer& pointer) {
  const auto [found, isNew] = rows_.try_emplace({{pointer.number, pointer.first}, {pointer.rowBytes, pointer.stride}});
  Bytes& memory = found->second;
  if (!isNew) return &memory;
  const BlobView& blob = file_.Blob(pointer.number);
  const uint64_t rows = blob.bytes / pointer.rowBytes;
  if (rows == 0 || rows * pointer.rowBytes != blob.bytes || rows * pointer.stride > 2 * kMaxArgumentBytes) {
    return &memory;
  }
  memory.resize(static_cast<std::size_t>((rows - 1) * pointer.stride + pointer.rowBytes));
  for (uint64_t row = 0; row < rows; ++row) {
    std::memcpy(memory.data() + row * pointer.stride, blob.data + row * pointer.rowBytes,
                static_cast<std::size_t>(pointer.rowBytes));
  }
  return &memory;
}

bool Player::PlacePointer(const StoredPointer& pointer, uintptr_t* slot, Limit* limit) {
  *limit = Limit(kUnreadMemory, 0);
  const auto place = [&](const uint8_t* data, std::size_t bytes, int64_t first) {
    // The pointer may lie before the memory that is there. No pointer is null by accident.
    *slot = reinterpret_cast<uintptr_t>(data) - static_cast<uintptr_t>(first);
    *limit = Limit(data, bytes);
    return *slot != 0;
  };
  switch (pointer.tag) {
    case PointerTag::kNull: *slot = 0; return true;
    case PointerTag::kUnread: *slot = reinterpret_cast<uintptr_t>(kUnreadMemory); return true;
    case PointerTag::kBlob: {
      const BlobView& blob = file_.Blob(pointer.number);
      return place(blob.data, blob.bytes, pointer.first);
    }
    case PointerTag::kImage: {
      const Region* const region = RegionOf(pointer.number);
      return region != nullptr && place(region->memory.data(), region->memory.size(), region->first);
    }
    case PointerTag::kRows: {
      const Bytes* const rows = RowsOf(pointer);
      return place(rows->data(), rows->size(), pointer.first);
    }
    case PointerTag::kRecord: break;
  }
  return false;
}

bool Player::PlaceArgument(std::size_t index, Prepared* prepared, Limit* limits, Limit* nestedRecord, Limit* nestedBits,
                           uint8_t* scratch) {
  const StoredArgument& argument = prepared->stored.arguments[index];
  uintptr_t& slot = prepared->slots.at[index];
  const Memory memory = EntryPointOf(prepared->stored.function).arguments[index].memory;
  switch (memory) {
    case Memory::kDeviceSize:
    case Memory::kColor:
    case Memory::kRealisedObject:
      slot = argument.pointer.tag == PointerTag::kNull ? 0 : reinterpret_cast<uintptr_t>(scratch);
      limits[index] = Limit(scratch, sizeof output_);
      return true;
    default: break;
  }
  if (!argument.isRecord) return PlacePointer(argument.pointer, &slot, &limits[index]);
  const auto makeSource = [&](uint32_t number) {
    const BlobView& blob = file_.Blob(number);
    if (blob.bytes != sizeof(SourceFields)) return false;
    uintptr_t bits;
    if (!PlacePointer(argument.pointer, &bits, nestedBits)) return false;
    std::memcpy(&prepared->source, blob.data, blob.bytes);
    prepared->source.bmBits = reinterpret_cast<const void*>(bits);
    return true;
  };
  if (memory == Memory::kSource) {
    if (!makeSource(argument.record)) return false;
    slot = reinterpret_cast<uintptr_t>(&prepared->source);
    limits[index] = Limit(&prepared->source, sizeof prepared->source);
    return true;
  }
  const BlobView& blob = file_.Blob(argument.record);
  if (blob.bytes != 12) return false;
  prepared->brush.style = GetLittle<uint16_t>(blob.data);
  prepared->brush.colour = GetLittle<uint32_t>(blob.data + 2);
  prepared->brush.hatch = static_cast<int16_t>(GetLittle<uint16_t>(blob.data + 6));
  prepared->brush.background = GetLittle<uint32_t>(blob.data + 8);
  if (prepared->brush.style == BS_PATTERN) prepared->brush.colour = 0;
  if (argument.isNestedRecord) {
    if (!makeSource(argument.nestedRecord)) return false;
    *nestedRecord = Limit(&prepared->source, sizeof prepared->source);
    prepared->brush.colour = reinterpret_cast<uintptr_t>(&prepared->source);
  }
  slot = reinterpret_cast<uintptr_t>(&prepared->brush);
  limits[index] = Limit(&prepared->brush, sizeof prepared->brush);
  return true;
}

bool Player::Prepare(const FileItem& item, std::size_t call, Prepared* prepared, std::string* error) {
  prepared->call = call;
  prepared->item = &item;
  prepared->skipped = false;
  if (item.kind != ItemKind::kCall) return true;
  file_.DecodeCall(item, &prepared->stored);
  const StoredCall& stored = prepared->stored;
  const EntryPoint& entry = EntryPointOf(stored.function);
  if ((stored.flags & kIncomplete) != 0) {
    prepared->skipped = true;
    return true;
  }
  Limit limits[kMaxArguments], nestedRecord(nullptr, 0), nestedBits(nullptr, 0);
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    limits[i] = Limit(nullptr, 0);
    switch (entry.arguments[i].type) {
      case Type::kHandle: prepared->slots.at[i] = 0; break;
      case Type::kInt32:
      case Type::kUint32: prepared->slots.at[i] = stored.arguments[i].number; break;
      default:
        if (PlaceArgument(i, prepared, limits, &nestedRecord, &nestedBits, output_)) break;
        *error = Place(item) + ": " + entry.name + ", " + entry.arguments[i].name + " cannot be rebuilt";
        return false;
    }
  }
  const bool needsDevice = entry.arguments[0].type == Type::kHandle;
  const uint32_t device = stored.Device();
  if (needsDevice && device == 0) return true;
  if (!MemorySuffices(stored.function, prepared->slots, shapes_[device], limits, nestedRecord, nestedBits)) {
    *error = Place(item) + ": " + entry.name + " reads memory that the file does not hold";
    return false;
  }
  Follow(stored, prepared->slots);
  const uint32_t changed = stored.function == Function::kEnable ? stored.result : device;
  const DeviceShape& shape = shapes_[changed];
  if (changed != 0 &&
      (shape.MaxBandBytes(shape.rect) > bandBytes_[changed] || shape.MaxTagBytes(shape.rect) > tagBytes_[changed])) {
    *error = Place(item) + ": the band is larger than its memory";
    return false;
  }
  return true;
}

// Keeps the state of devices that later formulas need.
void Player::Follow(const StoredCall& call, const Slots& slots) {
  if (call.function == Function::kEnable && call.result != 0) {
    DeviceShape& shape = shapes_[call.result];
    shape.description = ReadAs<DeviceDescription>(slots.Pointer<void>(0));
    shape.rect = ReadAs<BandRect>(slots.Pointer<void>(1));
    shape.dualPlane = slots.at[3] != 0 && shape.description.kind == QNV_KIND_RASTER;
  }
  if (call.function != Function::kControl || slots.at[2] == 0) return;
  DeviceShape& shape = shapes_[call.Device()];
  if (slots.Low16(1) == QNV_SET_ORIGIN) shape.origin = ReadAs<DrawingOrigin>(slots.Pointer<void>(2));
  if (slots.Low16(1) == QNV_SET_BAND_RECT) shape.rect = ReadAs<BandRect>(slots.Pointer<void>(2));
}

bool Player::Compare(const Prepared& prepared, uintptr_t result, std::string* what) {
  const StoredCall& call = prepared.stored;
  const EntryPoint& entry = EntryPointOf(call.function);
  const bool badHandle = entry.arguments[0].type == Type::kHandle && call.Device() == 0;
  const auto differ = [&](uint64_t got, uint64_t expected) {
    *what = "the result is " + Hex(got) + ", in the file " + Hex(expected);
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
    const auto* const got =
        call.function == Function::kDevExtTextOut ? reinterpret_cast<const uint8_t*>(&textMode_) + kBreakErr : output_;
    if (call.function == Function::kRealizeObject) ForgetAddress(output_, expected.bytes);
    const std::size_t room = call.function == Function::kDevExtTextOut ? sizeof(int16_t) : sizeof output_;
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
  const auto compare = [&](uint32_t flag, const std::vector<uint8_t>& plane, uint64_t bytes, uint64_t expected,
                           const char* name) {
    if ((call.flags & flag) == 0) return true;
    ++report->compared;
    const uint64_t got = Hash64(plane.data(), static_cast<std::size_t>(std::min<uint64_t>(bytes, plane.size())));
    if (got == expected) return true;
    *what = std::string("the ") + name + (before ? " before the call" : "") + " has the checksum " + Hex(got) +
            ", in the file " + Hex(expected);
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

PlayReport Player::Play(const PlayOptions& options) { return Play(options, Watcher{}); }

PlayReport Player::Play(const PlayOptions& options, const Watcher& watcher) {
  PlayReport report;
  End();
  std::fill(shapes_.begin(), shapes_.end(), DeviceShape{});
  if (!FindBandSizes(options.maxPlaneBytes, &report.error)) return report;
  // Prepared calls hold records that their slots point to, so they do not move.
  std::vector<Prepared> chunk(std::min(kChunk, file_.Items().size()));
  std::size_t call = 0;
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
      Prepared& prepared = chunk[i];
      if (prepared.call >= options.end) {
        report.completed = true;
        return report;
      }
      if (prepared.item->kind == ItemKind::kBand) {
        StoredBand band;
        file_.DecodeBand(*prepared.item, &band);
        PlayedDevice& device = devices_[band.device];
        std::vector<uint8_t>& plane = band.plane == 0 ? device.band : device.tags;
        const BlobView& blob = file_.Blob(band.blob);
        if (blob.bytes > plane.size()) {
          report.error = Place(*prepared.item) + ": the contents are larger than the band";
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
      if (entry.arguments[0].type == Type::kHandle) {
        const uint32_t number = stored.Device();
        if (number != 0 && devices_[number].handle == nullptr) {
          // A file that was written by the recorder has no such call unless the library refused the device.
          if (differs("its device does not exist")) return report;
          continue;
        }
        slots.at[0] = number != 0                       ? reinterpret_cast<uintptr_t>(devices_[number].handle)
                      : stored.arguments[0].number == 0 ? 0
                                                        : reinterpret_cast<uintptr_t>(&badHandle_);
      } else if (stored.function == Function::kEnable) {
        const uint32_t number = stored.result;
        if (slots.at[2] != 0) newDevice.band.resize(static_cast<std::size_t>(bandBytes_[number]) + 1);
        if (slots.at[3] != 0) newDevice.tags.resize(static_cast<std::size_t>(tagBytes_[number]) + 1);
        slots.at[2] = reinterpret_cast<uintptr_t>(newDevice.band.data());
        slots.at[3] = reinterpret_cast<uintptr_t>(newDevice.tags.data());
      }
      if (stored.function == Function::kDevExtTextOut && static_cast<int16_t>(slots.Low16(5)) <= 0 &&
          slots.at[8] != 0 && stored.Device() != 0) {
        textMode_ = ReadAs<DRAWMODE>(slots.Pointer<void>(8));
        slots.at[8] = reinterpret_cast<uintptr_t>(&textMode_);
      }
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
      const uint32_t number = stored.Device();
      if (stored.function == Function::kEnable && result != 0) {
        auto* const handle = reinterpret_cast<DeviceHandle*>(result);
        if (stored.result == 0) {
          functions_.disable(handle);
        } else {
          newDevice.handle = handle;
          newDevice.shape = DeviceShape{ReadAs<DeviceDescription>(slots.Pointer<void>(0)),
                                        ReadAs<BandRect>(slots.Pointer<void>(1)),
                                        {},
                                        slots.at[3] != 0};
          newDevice.shape.dualPlane = newDevice.shape.dualPlane && newDevice.shape.description.kind == QNV_KIND_RASTER;
          devices_[stored.result] = std::move(newDevice);
        }
      } else if (stored.function == Function::kControl && number != 0 && slots.at[2] != 0) {
        DeviceShape& shape = devices_[number].shape;
        if (slots.Low16(1) == QNV_SET_ORIGIN) shape.origin = ReadAs<DrawingOrigin>(slots.Pointer<void>(2));
        if (slots.Low16(1) == QNV_SET_BAND_RECT) shape.rect = ReadAs<BandRect>(slots.Pointer<void>(2));
      }
      if (options.compare) {
        if (!Compare(prepared, result, &what) && differs(what)) return report;
        if ((stored.flags & (kHasBandAfter | kHasTagsAfter)) != 0 && !CompareBands(stored, false, &what, &report) &&
            differs(what)) {
          return report;
        }
      }
      if (watcher.after && !watcher.after({prepared.call, stored, slots, result, nanoseconds})) {
        report.completed = true;
        return report;
      }
      if (stored.function == Function::kDisable && number != 0) {
        devices_[number].handle = nullptr;
        devices_[number] = PlayedDevice{};
      }
    }
  }
  report.completed = report.error.empty();
  return report;
}

}  // namespace qnv::calls
