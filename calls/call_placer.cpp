// Puts the arguments of stored calls in place.
#include "calls/call_placer.h"

#include <algorithm>

namespace qnv::calls {
namespace {

// What pointers lead to that the library does not follow.
const uint8_t kUnreadMemory[64] = {};

}  // namespace

std::string PlaceOf(const FileItem& item) {
  return "block at " + std::to_string(item.blockOffset) + ", item at byte " + std::to_string(item.position);
}

void FollowShape(const StoredCall& call, const Slots& slots, DeviceShape* shape) {
  if (call.function == Function::kEnable) {
    shape->description = ReadAs<DeviceDescription>(slots.Pointer<void>(0));
    shape->rect = ReadAs<BandRect>(slots.Pointer<void>(1));
    shape->dualPlane = slots.at[3] != 0 && shape->description.kind == QNV_KIND_RASTER;
  }
  if (call.function != Function::kControl || slots.at[2] == 0) return;
  if (slots.Low16(1) == QNV_SET_ORIGIN) shape->origin = ReadAs<DrawingOrigin>(slots.Pointer<void>(2));
  if (slots.Low16(1) == QNV_SET_BAND_RECT) shape->rect = ReadAs<BandRect>(slots.Pointer<void>(2));
}

const CallPlacer::Region* CallPlacer::RegionOf(uint32_t image) {
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
const Bytes* CallPlacer::RowsOf(const StoredPointer& pointer) {
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

bool CallPlacer::PlacePointer(const StoredPointer& pointer, uintptr_t* slot, Limit* limit) {
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

bool CallPlacer::PlaceArgument(std::size_t index, PlacedCall* placed, Limit* limits, Limit* nestedRecord,
                               Limit* nestedBits) {
  const StoredArgument& argument = placed->stored.arguments[index];
  uintptr_t& slot = placed->slots.at[index];
  const Memory memory = EntryPointOf(placed->stored.function).arguments[index].memory;
  switch (memory) {
    case Memory::kDeviceSize:
    case Memory::kColor:
    case Memory::kRealisedObject:
      slot = argument.pointer.tag == PointerTag::kNull ? 0 : reinterpret_cast<uintptr_t>(output_);
      limits[index] = Limit(output_, sizeof output_);
      return true;
    default: break;
  }
  if (!argument.isRecord) return PlacePointer(argument.pointer, &slot, &limits[index]);
  const auto makeSource = [&](uint32_t number) {
    const BlobView& blob = file_.Blob(number);
    if (blob.bytes != sizeof(SourceFields)) return false;
    uintptr_t bits;
    if (!PlacePointer(argument.pointer, &bits, nestedBits)) return false;
    std::memcpy(&placed->source, blob.data, blob.bytes);
    placed->source.bmBits = reinterpret_cast<const void*>(bits);
    return true;
  };
  if (memory == Memory::kSource) {
    if (!makeSource(argument.record)) return false;
    slot = reinterpret_cast<uintptr_t>(&placed->source);
    limits[index] = Limit(&placed->source, sizeof placed->source);
    return true;
  }
  const BlobView& blob = file_.Blob(argument.record);
  if (blob.bytes != 12) return false;
  placed->brush.style = GetLittle<uint16_t>(blob.data);
  placed->brush.colour = GetLittle<uint32_t>(blob.data + 2);
  placed->brush.hatch = static_cast<int16_t>(GetLittle<uint16_t>(blob.data + 6));
  placed->brush.background = GetLittle<uint32_t>(blob.data + 8);
  if (placed->brush.style == BS_PATTERN) placed->brush.colour = 0;
  if (argument.isNestedRecord) {
    if (!makeSource(argument.nestedRecord)) return false;
    *nestedRecord = Limit(&placed->source, sizeof placed->source);
    placed->brush.colour = reinterpret_cast<uintptr_t>(&placed->source);
  }
  slot = reinterpret_cast<uintptr_t>(&placed->brush);
  limits[index] = Limit(&placed->brush, sizeof placed->brush);
  return true;
}

bool CallPlacer::Place(const DeviceShape& shape, PlacedCall* placed, std::string* error) {
  const StoredCall& stored = placed->stored;
  const EntryPoint& entry = EntryPointOf(stored.function);
  placed->skipped = (stored.flags & kIncomplete) != 0;
  if (placed->skipped) return true;
  Limit limits[kMaxArguments], nestedRecord(nullptr, 0), nestedBits(nullptr, 0);
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    limits[i] = Limit(nullptr, 0);
    switch (entry.arguments[i].type) {
      case Type::kHandle: placed->slots.at[i] = 0; break;
      case Type::kInt32:
      case Type::kUint32: placed->slots.at[i] = stored.arguments[i].number; break;
      default:
        if (PlaceArgument(i, placed, limits, &nestedRecord, &nestedBits)) break;
        *error = PlaceOf(*placed->item) + ": " + entry.name + ", " + entry.arguments[i].name + " cannot be rebuilt";
        return false;
    }
  }
  if (entry.arguments[0].type == Type::kHandle && stored.Device() == 0) return true;
  if (MemorySuffices(stored.function, placed->slots, shape, limits, nestedRecord, nestedBits)) return true;
  *error = PlaceOf(*placed->item) + ": " + entry.name + " reads memory that the file does not hold";
  return false;
}

void CallPlacer::SetHandle(PlacedCall* placed, DeviceHandle* handle) {
  const StoredCall& stored = placed->stored;
  Slots& slots = placed->slots;
  if (EntryPointOf(stored.function).arguments[0].type != Type::kHandle) return;
  slots.at[0] = stored.Device() != 0              ? reinterpret_cast<uintptr_t>(handle)
                : stored.arguments[0].number == 0 ? 0
                                                  : reinterpret_cast<uintptr_t>(&badHandle_);
  if (stored.function == Function::kDevExtTextOut && static_cast<int16_t>(slots.Low16(5)) <= 0 && slots.at[8] != 0 &&
      stored.Device() != 0) {
    textMode_ = ReadAs<DRAWMODE>(slots.Pointer<void>(8));
    slots.at[8] = reinterpret_cast<uintptr_t>(&textMode_);
  }
}

}  // namespace qnv::calls
