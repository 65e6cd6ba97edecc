// Stores calls with what they read and what they return.
#include "calls/call_capture.h"

#include "calls/hash.h"

namespace qnv::calls {
namespace {

// A band that claims to be larger is not looked at.
constexpr uint64_t kMaxBandBytes = kMaxArgumentBytes;

uint8_t* PutTag(uint8_t* at, PointerTag tag) {
  *at++ = static_cast<uint8_t>(tag);
  return at;
}

bool IsEndOfBand(Function function, const Slots& slots) {
  if (function == Function::kDisable) return true;
  const uint16_t code = slots.Low16(1);
  return function == Function::kControl && (code == QNV_SET_BAND_RECT || code == QNV_CLEAR_BAND);
}

}  // namespace

CallCapture::CallCapture(std::FILE* file, const CaptureOptions& options)
    : writer_(file, options.compress), options_(options), checker_([this](const Finding& finding) {
        writer_.Found(static_cast<uint32_t>(finding.mistake), finding.call, static_cast<uint32_t>(finding.function),
                      static_cast<uint32_t>(finding.argument));
        options_.check(finding);
      }) {}

void CallCapture::Note(const std::string& key, const std::string& text) {
  const std::lock_guard locked(mutex_);
  writer_.Note(key, text);
}

void CallCapture::Close() {
  const std::lock_guard locked(mutex_);
  writer_.Close();
}

void CallCapture::ForgetContents(const DeviceHandle* handle) {
  const std::lock_guard locked(mutex_);
  Device* const device = Find(reinterpret_cast<uintptr_t>(handle));
  if (device != nullptr) device->isKnown = false;
}

bool CallCapture::Failed() {
  const std::lock_guard locked(mutex_);
  return writer_.Failed();
}

bool CallCapture::IsFree() {
  if (!mutex_.try_lock()) return false;
  mutex_.unlock();
  return true;
}

uint64_t CallCapture::Calls() {
  const std::lock_guard locked(mutex_);
  return writer_.Calls();
}

CallCapture::Device* CallCapture::Find(uintptr_t handle) {
  const auto found = devices_.find(handle);
  return found == devices_.end() ? nullptr : &found->second;
}

uint32_t CallCapture::RecordBlob(Memory memory, const void* record, std::size_t bytes) {
  RecentBlob& recent = recent_[static_cast<std::size_t>(memory)];
  if (recent.number != 0 && recent.bytes == bytes && std::memcmp(recent.content, record, bytes) == 0) {
    return recent.number;
  }
  recent.number = writer_.Blob(record, bytes);
  recent.bytes = bytes;
  std::memcpy(recent.content, record, bytes);
  return recent.number;
}

uint8_t* CallCapture::PutHandle(uint8_t* at, uintptr_t handle, const Device* device) {
  if (device != nullptr) return PutNumber(at, uint64_t{1} + device->number);
  return PutNumber(at, handle == 0 ? 0 : 1);
}

uint8_t* CallCapture::PutBlob(uint8_t* at, uint32_t blob, std::ptrdiff_t offset) {
  at = PutTag(at, PointerTag::kBlob);
  at = PutNumber(at, blob);
  return PutNumber(at, Fold(offset));
}

uint8_t* CallCapture::PutRows(uint8_t* at, const void* bits, const SourceRange& range, PendingCall* call) {
  if (bits == nullptr) return PutTag(at, PointerTag::kNull);
  if (range.rows == 0) return PutTag(at, PointerTag::kUnread);
  if (range.Bytes() > kMaxArgumentBytes) {
    call->flags |= kIncomplete;
    return PutTag(at, PointerTag::kUnread);
  }
  const auto* const first = static_cast<const uint8_t*>(bits) + range.first;
  // What lies between the rows is left out when it is more than the rows.
  if (range.rows == 1 || range.stride < 2 * range.rowBytes) {
    return PutBlob(at, writer_.Blob(first, range.Bytes()), range.first);
  }
  Bytes packed;
  packed.reserve(range.rows * range.rowBytes);
  for (std::size_t row = 0; row < range.rows; ++row) {
    packed.insert(packed.end(), first + row * range.stride, first + row * range.stride + range.rowBytes);
  }
  at = PutTag(at, PointerTag::kRows);
  at = PutNumber(at, writer_.Blob(packed.data(), packed.size()));
  at = PutNumber(at, Fold(range.first));
  at = PutNumber(at, range.rowBytes);
  return PutNumber(at, range.stride);
}

uint8_t* CallCapture::PutSource(uint8_t* at, const void* record, bool reads, const SourceRange& range,
                                PendingCall* call) {
  const auto bitmap = ReadAs<SourceBitmap>(record);
  at = PutTag(at, PointerTag::kRecord);
  at = PutNumber(at, RecordBlob(Memory::kSource, record, sizeof(SourceFields)));
  if (!reads) return PutTag(at, bitmap.bmBits == nullptr ? PointerTag::kNull : PointerTag::kUnread);
  return PutRows(at, bitmap.bmBits, range, call);
}

uint8_t* CallCapture::PutPointer(uint8_t* at, std::size_t argument, const Slots& slots, const Device* device,
                                 PendingCall* call) {
  const Memory memory = EntryPointOf(call->function).arguments[argument].memory;
  const void* const pointer = slots.Pointer<void>(argument);
  if (pointer == nullptr) return PutTag(at, PointerTag::kNull);
  const auto unread = [&] { return PutTag(at, PointerTag::kUnread); };
  const auto record = [&](std::size_t bytes) { return PutBlob(at, RecordBlob(memory, pointer, bytes), 0); };
  const auto range = [&](std::ptrdiff_t first, uint64_t bytes) {
    if (bytes == 0) return unread();
    if (bytes > kMaxArgumentBytes) {
      call->flags |= kIncomplete;
      return unread();
    }
    return PutBlob(at, writer_.Blob(static_cast<const uint8_t*>(pointer) + first, static_cast<std::size_t>(bytes)),
                   first);
  };
  // The library reads nothing of a call with a bad handle.
  const bool needsDevice = call->function != Function::kEnable && call->function != Function::kGetDeviceInfo;
  if (needsDevice && device == nullptr) return unread();
  switch (memory) {
    case Memory::kNone:
    case Memory::kHandle:
    case Memory::kUnread:
    case Memory::kBand:
    case Memory::kTagPlane:
    case Memory::kDeviceSize:
    case Memory::kColor:
    case Memory::kRealisedObject: return unread();
    case Memory::kDescription: return record(sizeof(DeviceDescription));
    case Memory::kRect: return record(sizeof(BandRect));
    case Memory::kDrawMode:
    case Memory::kTextDrawMode: return record(sizeof(DRAWMODE));
    case Memory::kPen: return record(sizeof(PhysicalPen));
    case Memory::kBrush: return record(BrushBytes(pointer));
    case Memory::kEscapeData: return range(0, EscapeBytes(slots.Low16(1)));
    case Memory::kLogicalObject: {
      constexpr std::size_t kOutput = 3;
      if (slots.at[kOutput] == 0) return unread();
      const uint16_t kind = slots.Low16(1);
      if (kind == OBJ_PEN) return record(sizeof(LogicalPen));
      if (kind != OBJ_BRUSH) return unread();
      const auto brush = ReadAs<LogicalBrush>(pointer);
      const bool isPattern = brush.style == BS_PATTERN;
      // The same record on every machine: a pointer is stored behind it.
      uint8_t fields[12];
      uint8_t* end = PutLittle(fields, brush.style);
      end = PutLittle(end, isPattern ? uint32_t{0} : static_cast<uint32_t>(brush.colour));
      end = PutLittle(end, static_cast<uint16_t>(brush.hatch));
      PutLittle(end, brush.background);
      at = PutTag(at, PointerTag::kRecord);
      at = PutNumber(at, RecordBlob(memory, fields, sizeof fields));
      if (!isPattern || brush.colour == 0) return PutTag(at, PointerTag::kNull);
      const auto* const bitmap = reinterpret_cast<const void*>(brush.colour);
      return PutSource(at, bitmap, true, PatternSourceRange(ReadSourceFields(bitmap)), call);
    }
    case Memory::kSource: {
      constexpr std::size_t kRop = 8;
      // A source that the operation does not use need not be a record.
      if (!RopReadsSource(slots.Unsigned(kRop))) return unread();
      return PutSource(at, pointer, true, TransferSourceRange(ReadSourceFields(pointer), device->shape, slots), call);
    }
    case Memory::kSpanList: {
      std::size_t bytes;
      SpanListBytes(slots.Low16(1), slots.Low16(2), pointer, Limit(), &bytes);
      return range(0, bytes);
    }
    case Memory::kString: return text_.reads ? range(0, text_.stringBytes) : unread();
    case Memory::kCharWidths: return text_.reads ? range(0, text_.widthBytes) : unread();
    case Memory::kFont: {
      if (!text_.reads) return unread();
      const uint32_t image = fonts_.ImageFor(slots, text_, writer_);
      if (image == 0) {
        call->flags |= kIncomplete;
        return unread();
      }
      at = PutTag(at, PointerTag::kImage);
      return PutNumber(at, image);
    }
    case Memory::kDibBits:
    case Memory::kDibHeader: {
      const bool stretch = call->function == Function::kStretchDIBits;
      const void* const info = slots.Pointer<void>(stretch ? 11 : 8);
      const void* const bits = slots.Pointer<void>(stretch ? 10 : 7);
      const bool refused = (stretch && slots.Low16(1) == 1) || slots.at[stretch ? 16 : 5] == 0 || info == nullptr;
      // Unscaled calls read the width before anything is checked.
      if (refused || bits == nullptr) {
        return memory == Memory::kDibHeader && !stretch ? range(0, sizeof(BITMAPINFOHEADER)) : unread();
      }
      DibShape shape;
      ReadDibShape(info, Limit(), &shape);
      if (memory == Memory::kDibHeader) return range(0, shape.headerBytes);
      const int32_t originY = device->shape.origin.y;
      const ImageRequest request =
          stretch ? ImageRequest{slots.Signed(3), slots.Signed(5), slots.Signed(7), slots.Signed(9), originY}
                  : ImageRequest{slots.Signed(2), slots.Signed(4), slots.Signed(3), slots.Signed(4), originY};
      Range part;
      DibBitsRange(shape, request, bits, Limit(), &part);
      return range(part.first, part.bytes);
    }
  }
  return unread();
}

uint64_t CallCapture::HashOf(const void* plane, uint64_t bytes) {
  return Hash64(plane, static_cast<std::size_t>(bytes));
}

void CallCapture::KeepContents(Device& device) {
  const uint64_t band = device.shape.BandBytes(), tags = device.shape.TagBytes();
  if (device.band != nullptr && band <= kMaxBandBytes) {
    writer_.Band(device.number, 0, writer_.Blob(device.band, static_cast<std::size_t>(band)));
  }
  if (device.tags != nullptr && tags <= kMaxBandBytes) {
    writer_.Band(device.number, 1, writer_.Blob(device.tags, static_cast<std::size_t>(tags)));
  }
  device.isKnown = true;
}

void CallCapture::Before(Function function, const Slots& slots, uint64_t thread, PendingCall* call) {
  const std::lock_guard locked(mutex_);
  const EntryPoint& entry = EntryPointOf(function);
  const bool takesHandle = entry.arguments[0].type == Type::kHandle;
  Device* const device = takesHandle ? Find(slots.at[0]) : nullptr;
  call->function = function;
  call->device = device != nullptr ? device->number : 0;
  call->flags = 0;
  if (options_.check) checker_.Before(static_cast<std::size_t>(writer_.Calls()), function, slots, call->device);
  if (function == Function::kDevExtTextOut && device != nullptr) ReadTextShape(slots, Limit(), &text_);
  if (device != nullptr) {
    if (entry.draws && !device->isKnown) KeepContents(*device);
    if (IsEndOfBand(function, slots) && device->isPainted) {
      const uint64_t band = device->shape.BandBytes(), tags = device->shape.TagBytes();
      if (device->band != nullptr && band <= kMaxBandBytes) {
        call->bandBefore = HashOf(device->band, band);
        call->flags |= kHasBandBefore;
      }
      if (device->tags != nullptr && tags != 0 && tags <= kMaxBandBytes) {
        call->tagsBefore = HashOf(device->tags, tags);
        call->flags |= kHasTagsBefore;
      }
      device->isPainted = false;
    }
    if (entry.draws) device->isPainted = true;
  }
  const uint32_t threadNumber = threads_.try_emplace(thread, static_cast<uint32_t>(threads_.size() + 1)).first->second;
  uint8_t* at = call->payload;
  *at++ = static_cast<uint8_t>(function);
  at = PutNumber(at, threadNumber);
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    switch (entry.arguments[i].type) {
      case Type::kHandle: at = PutHandle(at, slots.at[i], device); break;
      case Type::kInt32: at = PutNumber(at, Fold(slots.Signed(i))); break;
      case Type::kUint32: at = PutNumber(at, slots.Unsigned(i)); break;
      default: at = PutPointer(at, i, slots, device, call); break;
    }
  }
  call->bytes = static_cast<std::size_t>(at - call->payload);
  // The handle may be given to another device as soon as the call runs.
  if (function == Function::kDisable && device != nullptr) devices_.erase(slots.at[0]);
}

uint32_t CallCapture::Output(const Slots& slots, uintptr_t result, const PendingCall& call) {
  constexpr std::size_t kBreakErr = 16;
  switch (call.function) {
    case Function::kGetDeviceInfo:
      return result == sizeof(DeviceSize) ? writer_.Blob(slots.Pointer<void>(1), sizeof(DeviceSize)) : 0;
    case Function::kColorInfo:
      return call.device != 0 && slots.at[2] != 0 ? writer_.Blob(slots.Pointer<void>(2), sizeof(uint32_t)) : 0;
    case Function::kRealizeObject: {
      const std::size_t bytes = call.device == 0 ? 0 : RealisedBytes(slots, static_cast<uint32_t>(result));
      if (bytes == 0) return 0;
      uint8_t realised[sizeof(PhysicalBrush)];
      std::memcpy(realised, slots.Pointer<void>(3), bytes);
      ForgetAddress(realised, bytes);
      return writer_.Blob(realised, bytes);
    }
    case Function::kDevExtTextOut: {
      const bool measures = static_cast<int16_t>(slots.Low16(5)) <= 0;
      if (call.device == 0 || !measures || slots.at[6] == 0 || slots.at[8] == 0) return 0;
      return writer_.Blob(slots.Pointer<uint8_t>(8) + kBreakErr, sizeof(int16_t));
    }
    default: return 0;
  }
}

void CallCapture::After(const Slots& slots, uintptr_t result, uint64_t nanoseconds, PendingCall* call) {
  const std::lock_guard locked(mutex_);
  const EntryPoint& entry = EntryPointOf(call->function);
  const uint32_t output = Output(slots, result, *call);
  if (output != 0) call->flags |= kHasOutput;
  uint32_t newDevice = 0;
  if (call->function == Function::kEnable && result != 0) {
    Device device{};
    device.number = newDevice = ++deviceCount_;
    device.shape.description = ReadAs<DeviceDescription>(slots.Pointer<void>(0));
    device.shape.rect = ReadAs<BandRect>(slots.Pointer<void>(1));
    device.shape.dualPlane = slots.at[3] != 0 && device.shape.description.kind == QNV_KIND_RASTER;
    device.band = slots.Pointer<void>(2);
    device.tags = device.shape.dualPlane ? slots.Pointer<void>(3) : nullptr;
    devices_[result] = device;
  }
  if (options_.check) {
    const uint32_t device = call->function == Function::kEnable ? newDevice : call->device;
    checker_.After(call->function, slots, device, static_cast<uint32_t>(result));
  }
  uint64_t bandAfter = 0, tagsAfter = 0;
  if (Device* const device = call->device != 0 && call->function != Function::kDisable ? Find(slots.at[0]) : nullptr;
      device != nullptr) {
    if (call->function == Function::kControl && (result & 0xFFFF) == 1) {
      switch (slots.Low16(1)) {
        case QNV_SET_ORIGIN: device->shape.origin = ReadAs<DrawingOrigin>(slots.Pointer<void>(2)); break;
        case QNV_SET_BAND_RECT:
          device->shape.rect = ReadAs<BandRect>(slots.Pointer<void>(2));
          device->isKnown = false;  // the host may have used the memory for itself
          break;
        default: device->isKnown = true;
      }
    }
    if (options_.hashEveryCall && entry.draws) {
      const uint64_t band = device->shape.BandBytes(), tags = device->shape.TagBytes();
      if (device->band != nullptr && band <= kMaxBandBytes) {
        bandAfter = HashOf(device->band, band);
        call->flags |= kHasBandAfter;
      }
      if (device->tags != nullptr && tags != 0 && tags <= kMaxBandBytes) {
        tagsAfter = HashOf(device->tags, tags);
        call->flags |= kHasTagsAfter;
      }
    }
  }
  uint8_t* at = call->payload + call->bytes;
  at = PutNumber(at, call->flags);
  at = PutNumber(at, entry.result == Result::kHandle ? newDevice : static_cast<uint32_t>(result));
  at = PutNumber(at, nanoseconds);
  if (output != 0) at = PutNumber(at, output);
  if ((call->flags & kHasBandBefore) != 0) at = PutLittle(at, call->bandBefore);
  if ((call->flags & kHasTagsBefore) != 0) at = PutLittle(at, call->tagsBefore);
  if ((call->flags & kHasBandAfter) != 0) at = PutLittle(at, bandAfter);
  if ((call->flags & kHasTagsAfter) != 0) at = PutLittle(at, tagsAfter);
  writer_.Call(call->payload, static_cast<std::size_t>(at - call->payload));
  if (options_.flushEveryCall) writer_.Flush();
}

}  // namespace qnv::calls
