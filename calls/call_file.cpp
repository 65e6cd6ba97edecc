// Reads call files. Everything here may be damaged or written by somebody hostile.
#include "calls/call_file.h"

#include <algorithm>

#include "calls/block_codec.h"
#include "calls/hash.h"

namespace qnv::calls {
namespace {

CallFile::Status Failure(FileError error, uint64_t offset, std::string message) {
  return {error, offset, std::move(message)};
}

std::string Number(uint64_t value) { return std::to_string(value); }

// What a file may hold uncompressed.
constexpr uint64_t kMaxFileBytes = uint64_t{1} << 33;
// Calls, blobs or images of a file that is read in parts.
constexpr uint64_t kMaxItems = uint64_t{1} << 26;

// The footer at `at`, behind which nothing may follow.
CallFile::Status ReadFooter(FileBytes& bytes, uint64_t at) {
  const uint64_t size = bytes.Size();
  if (size - at < kFooterBytes) return Failure(FileError::kTruncated, size, "the file ends inside its footer");
  const uint8_t* const footer = bytes.At(at, kFooterBytes);
  if (footer == nullptr || std::memcmp(footer + 8, kFooterMagic, sizeof kFooterMagic) != 0) {
    return Failure(FileError::kDamaged, at, "the footer is damaged");
  }
  if (size - at > kFooterBytes) {
    return Failure(FileError::kDamaged, at + kFooterBytes, "something follows the footer");
  }
  return {};
}

}  // namespace

uint32_t StoredCall::Device() const {
  const EntryPoint& entry = EntryPointOf(function);
  if (entry.arguments[0].type != Type::kHandle) return 0;
  return arguments[0].number < 2 ? 0 : arguments[0].number - 1;
}

CallFile::Status CallFile::Read(const uint8_t* bytes, std::size_t count, CallFile* file, uint64_t maxBytes) {
  FileBytes memory(bytes, count);
  return ReadAll(memory, file, maxBytes);
}

CallFile::Status CallFile::ReadFrom(const std::string& path, CallFile* file) {
  FileBytes disk(path);
  if (!disk.IsOpen()) {
    *file = CallFile();
    return Failure(FileError::kDamaged, 0, "the file cannot be opened");
  }
  return ReadAll(disk, file, kMaxFileBytes);
}

CallFile::Status CallFile::ReadAll(FileBytes& bytes, CallFile* file, uint64_t maxBytes) {
  *file = CallFile();
  Status status = ReadHeader(bytes, file);
  uint64_t at = kFileHeaderBytes;
  for (bool indexed = false; status.error == FileError::kNone && !indexed;) {
    Block block;
    status = file->ReadBlock(bytes, at, maxBytes, &block);
    if (status.error != FileError::kNone) break;
    if (block.kind == BlockKind::kIndex) {
      ByteReader index(block.data.data(), block.data.size());
      if (index.Number() != file->CallCount() || index.Number() != file->BlobCount() || !index.ok()) {
        status = Failure(FileError::kDamaged, at, "the index does not fit the blocks");
      }
      indexed = true;
    } else {
      file->blocks_.push_back(std::move(block.data));
      if (!file->ReadItems(file->blocks_.back(), at, &status)) break;
    }
    at = block.end;
  }
  if (status.error == FileError::kNone) status = ReadFooter(bytes, at);
  if (status.error != FileError::kNone && status.error != FileError::kTruncated) *file = CallFile();
  return status;
}

CallFile::Status CallFile::ReadHeader(FileBytes& bytes, CallFile* file) {
  const auto there = static_cast<std::size_t>(std::min<uint64_t>(bytes.Size(), kFileHeaderBytes));
  const uint8_t* const header = bytes.At(0, there);
  if (header == nullptr) return Failure(FileError::kDamaged, 0, "the file cannot be read");
  if (std::memcmp(header, kFileMagic, std::min(there, sizeof kFileMagic)) != 0) {
    return Failure(FileError::kDamaged, 0, "this is no call file");
  }
  if (there < kFileHeaderBytes) return Failure(FileError::kTruncated, there, "the file ends inside its header");
  const uint32_t version = GetLittle<uint32_t>(header + 8);
  if (version > kFileVersion) {
    return Failure(FileError::kNewer, 8, "version " + Number(version) + " is newer than " + Number(kFileVersion));
  }
  if (version == 0 || GetLittle<uint64_t>(header + 16) != Hash64(header, 16)) {
    return Failure(FileError::kDamaged, 8, "the header is damaged");
  }
  file->pointerBytes_ = header[12];
  file->system_ = header[13];
  return {};
}

CallFile::Status CallFile::ReadBlock(FileBytes& bytes, uint64_t at, uint64_t maxBytes, Block* block) {
  const uint64_t size = bytes.Size();
  if (at > size || size - at < kBlockHeaderBytes) {
    return Failure(FileError::kTruncated, size, "the file ends without an index");
  }
  const auto unreadable = [at] { return Failure(FileError::kDamaged, at, "the file cannot be read"); };
  const uint8_t* const header = bytes.At(at, kBlockHeaderBytes);
  if (header == nullptr) return unreadable();
  if (std::memcmp(header, kBlockMagic, sizeof kBlockMagic) != 0) {
    return Failure(FileError::kDamaged, at, "a block is expected here");
  }
  const uint8_t kind = header[4], codec = header[5];
  const uint32_t stored = GetLittle<uint32_t>(header + 8), raw = GetLittle<uint32_t>(header + 12);
  const uint64_t sum = GetLittle<uint64_t>(header + 16), seed = Hash64(header, 16);
  if (raw > kMaxBlockBytes || stored > kMaxBlockBytes) {
    return Failure(FileError::kDamaged, at + 8, "a block claims to have " + Number(std::max(raw, stored)) + " bytes");
  }
  if (size - at - kBlockHeaderBytes < stored) {
    return Failure(FileError::kTruncated, size, "the file ends inside the block at " + Number(at));
  }
  const uint8_t* const data = bytes.At(at + kBlockHeaderBytes, stored);
  if (data == nullptr) return unreadable();
  if (sum != Hash64(data, stored, seed)) {
    return Failure(FileError::kDamaged, at, "the checksum of the block does not fit");
  }
  if (codec > static_cast<uint8_t>(Codec::kZstd)) {
    return Failure(FileError::kNewer, at + 5, "compression " + Number(codec) + " is not known");
  }
  if (codec == static_cast<uint8_t>(Codec::kZstd) && !HasZstd()) {
    return Failure(FileError::kNewer, at + 5, "this build reads no compressed blocks");
  }
  rawBytes_ += raw;
  if (rawBytes_ > maxBytes) return Failure(FileError::kDamaged, at, "the blocks have too many bytes");
  if (kind != static_cast<uint8_t>(BlockKind::kItems) && kind != static_cast<uint8_t>(BlockKind::kIndex)) {
    return Failure(FileError::kNewer, at + 4, "blocks of kind " + Number(kind) + " are not known");
  }
  block->kind = static_cast<BlockKind>(kind);
  block->end = at + kBlockHeaderBytes + stored;
  if (!DecompressBlock(static_cast<Codec>(codec), data, stored, raw, &block->data)) {
    return Failure(FileError::kDamaged, at + kBlockHeaderBytes, "the block cannot be decompressed");
  }
  return {};
}

// A part of a file: the index says where the blocks are. Blobs and images keep their numbers; those that were not read
// are empty.
CallFile::Status CallFile::ReadPart(FileBytes& bytes, std::size_t first, std::size_t count, CallFile* file) {
  *file = CallFile();
  Status status = ReadHeader(bytes, file);
  if (status.error == FileError::kNone) status = file->ReadWanted(bytes, first, count);
  if (status.error != FileError::kNone) *file = CallFile();
  return status;
}

CallFile::Status CallFile::ReadIndex(FileBytes& bytes, std::vector<BlockPlace>* places) {
  const uint64_t size = bytes.Size();
  const uint8_t* const footer = size < kFooterBytes ? nullptr : bytes.At(size - kFooterBytes, kFooterBytes);
  if (footer == nullptr || std::memcmp(footer + 8, kFooterMagic, sizeof kFooterMagic) != 0) {
    return Failure(FileError::kTruncated, size, "the file has no index");
  }
  const uint64_t at = GetLittle<uint64_t>(footer);
  Block block;
  Status status = ReadBlock(bytes, at, kMaxFileBytes, &block);
  if (status.error != FileError::kNone) return status;
  const auto damaged = [at] { return Failure(FileError::kDamaged, at, "the index is damaged"); };
  ByteReader reader(block.data.data(), block.data.size());
  const uint64_t calls = reader.Number(), blobs = reader.Number(), images = reader.Number(), count = reader.Number();
  // Every number takes at least a byte somewhere in the file.
  if (block.kind != BlockKind::kIndex || block.end != size - kFooterBytes ||
      std::max({calls, blobs, images}) > kMaxItems || count > block.data.size()) {
    return damaged();
  }
  BlockPlace before{kFileHeaderBytes, 0, 1, 1};
  for (uint64_t i = 0; i <= count; ++i) {
    BlockPlace place{at, calls, blobs + 1, images + 1};
    if (i < count) place = {reader.Number(), reader.Number(), reader.Number(), reader.Number()};
    if (!reader.ok() || place.offset < before.offset || place.firstCall < before.firstCall ||
        place.firstBlob < before.firstBlob || place.firstImage < before.firstImage) {
      return damaged();
    }
    places->push_back(place);
    before = place;
  }
  return {};
}

CallFile::Status CallFile::ReadPlace(FileBytes& bytes, const BlockPlace& place, const BlockPlace& next) {
  Block block;
  Status status = ReadBlock(bytes, place.offset, kMaxFileBytes, &block);
  if (status.error != FileError::kNone) return status;
  part_.call = place.firstCall;
  part_.blob = static_cast<std::size_t>(place.firstBlob);
  part_.image = static_cast<std::size_t>(place.firstImage);
  blocks_.push_back(std::move(block.data));
  if (block.kind != BlockKind::kItems || !ReadItems(blocks_.back(), place.offset, &status)) {
    if (status.error == FileError::kNone) status = Failure(FileError::kDamaged, place.offset, "the index is damaged");
  } else if (part_.call != next.firstCall || part_.blob != next.firstBlob || part_.image != next.firstImage) {
    status = Failure(FileError::kDamaged, place.offset, "the index does not fit the block");
  }
  return status;
}

CallFile::Status CallFile::ReadWanted(FileBytes& bytes, std::size_t first, std::size_t count) {
  std::vector<BlockPlace> places;
  Status status = ReadIndex(bytes, &places);
  if (status.error != FileError::kNone) return status;
  const BlockPlace& all = places.back();
  isPart_ = true;
  part_.first = firstCall_ = static_cast<std::size_t>(std::min<uint64_t>(first, all.firstCall));
  part_.end = part_.first + static_cast<std::size_t>(std::min<uint64_t>(count, all.firstCall - part_.first));
  blobs_.resize(static_cast<std::size_t>(all.firstBlob));
  images_.resize(static_cast<std::size_t>(all.firstImage));
  // The devices of earlier calls are not known: any number may be one.
  devices_ = UINT32_MAX - 1;

  std::vector<bool> isRead(places.size());
  const auto read = [&](std::size_t place) {
    if (isRead[place]) return;
    isRead[place] = true;
    if (status.error == FileError::kNone) status = ReadPlace(bytes, places[place], places[place + 1]);
  };
  for (std::size_t i = 0; i + 1 < places.size(); ++i) {
    if (places[i].firstCall < part_.end && places[i + 1].firstCall > part_.first) read(i);
  }
  // The block that holds a blob or an image is the last one that begins at or before its number.
  const auto readHolding = [&](uint64_t BlockPlace::*number, uint32_t wanted) {
    const auto behind = std::upper_bound(places.begin(), places.end() - 1, wanted,
                                         [=](uint32_t w, const BlockPlace& place) { return w < place.*number; });
    if (wanted != 0 && behind != places.begin()) read(static_cast<std::size_t>(behind - places.begin() - 1));
  };
  const auto readBlob = [&](uint32_t blob) { readHolding(&BlockPlace::firstBlob, blob); };
  const auto readPointer = [&](const StoredPointer& pointer) {
    if (pointer.tag == PointerTag::kBlob || pointer.tag == PointerTag::kRows) readBlob(pointer.number);
    if (pointer.tag != PointerTag::kImage) return;
    for (uint32_t image = pointer.number; image != 0 && status.error == FileError::kNone; image = Image(image).parent) {
      readHolding(&BlockPlace::firstImage, image);
      const StoredImage pieces = Image(image);
      for (std::size_t i = 0; i < pieces.pieces; ++i) readBlob(Piece(pieces.firstPiece + i).blob);
    }
  };
  StoredCall call;
  for (std::size_t i = part_.first; i < EndCall() && status.error == FileError::kNone; ++i) {
    DecodeCall(CallItem(i), &call);
    readBlob(call.output);
    for (std::size_t k = 0; k < EntryPointOf(call.function).argumentCount; ++k) {
      const StoredArgument& argument = call.arguments[k];
      readPointer(argument.pointer);
      if (argument.isRecord) readBlob(argument.record);
      if (argument.isNestedRecord) readBlob(argument.nestedRecord);
    }
  }
  return status;
}

bool CallFile::AddBlob(const BlobView& blob) {
  if (!isPart_) {
    blobs_.push_back(blob);
    return true;
  }
  if (part_.blob >= blobs_.size()) return false;
  blobs_[part_.blob++] = blob;
  return true;
}

bool CallFile::ReadItems(const Bytes& raw, uint64_t blockOffset, Status* status) {
  ByteReader reader(raw.data(), raw.size());
  while (reader.Left() != 0) {
    const auto position = static_cast<uint32_t>(reader.Position());
    const uint8_t kind = reader.Byte();
    const uint64_t bytes = reader.Number();
    const uint8_t* const payload = reader.Take(bytes);
    const auto fail = [&](FileError error, const char* message) {
      *status = Failure(error, blockOffset,
                        "block at " + Number(blockOffset) + ", item at byte " + Number(position) + ": " + message);
      return false;
    };
    if (payload == nullptr) return fail(FileError::kDamaged, "it is longer than the block");
    const FileItem item{static_cast<ItemKind>(kind), payload, static_cast<uint32_t>(bytes), blockOffset, position};
    const auto size = static_cast<std::size_t>(bytes);
    switch (item.kind) {
      case ItemKind::kBlob:
        if (!AddBlob({payload, size})) return fail(FileError::kDamaged, "the index knows of no such blob");
        break;
      case ItemKind::kImage:
        if (!AddImage(ByteReader(payload, size))) return fail(FileError::kDamaged, "this image cannot be read");
        break;
      case ItemKind::kNote:
        if (!AddNote(ByteReader(payload, size))) return fail(FileError::kDamaged, "this note cannot be read");
        break;
      case ItemKind::kBand: {
        if (isPart_) break;
        StoredBand band;
        if (!DecodeBand(item, &band)) return fail(FileError::kDamaged, "these contents of a band cannot be read");
        items_.push_back(item);
        break;
      }
      case ItemKind::kCall: {
        if (isPart_ && (part_.call < part_.first || part_.call >= part_.end)) {
          ++part_.call;
          break;
        }
        ++part_.call;
        StoredCall call;
        if (!DecodeCall(item, &call)) return fail(FileError::kDamaged, "this call cannot be read");
        if (!isPart_ && call.function == Function::kEnable && call.result != 0) {
          if (call.result != devices_ + 1) return fail(FileError::kDamaged, "its device is not the next one");
          ++devices_;
        }
        calls_.push_back(items_.size());
        items_.push_back(item);
        break;
      }
      case ItemKind::kFinding: {
        ByteReader finding(payload, size);
        StoredFinding stored;
        stored.mistake = finding.Number32();
        stored.call = finding.Number();
        stored.function = finding.Number32();
        stored.argument = finding.Number32();
        // Optional: what cannot be read is left out.
        if (finding.ok()) findings_.push_back(stored);
        break;
      }
      default:
        if (kind < kFirstOptionalItem) return fail(FileError::kNewer, "its kind is not known");
    }
  }
  return true;
}

bool CallFile::AddImage(ByteReader reader) {
  StoredImage image;
  image.parent = reader.Number32();
  const auto number = static_cast<uint32_t>(isPart_ ? part_.image : images_.size());
  if (image.parent >= number || (isPart_ && number >= images_.size())) return false;
  image.root = image.parent == 0 ? number : images_[image.parent].root;
  image.firstPiece = pieces_.size();
  const uint64_t count = reader.Number();
  int64_t offset = 0;
  for (uint64_t i = 0; i < count && reader.ok(); ++i) {
    const int64_t step = reader.SignedNumber();
    const uint32_t blob = reader.Number32();
    constexpr int64_t kMaxStep = int64_t{1} << 33;
    if (step < -kMaxStep || step > kMaxStep) return false;
    offset += step;
    if (offset < 0 || offset > (int64_t{1} << 32) || !IsBlob(blob)) return false;
    pieces_.push_back({offset, blob});
  }
  image.pieces = pieces_.size() - image.firstPiece;
  if (isPart_) {
    images_[part_.image++] = image;
  } else {
    images_.push_back(image);
  }
  return reader.ok() && reader.Left() == 0;
}

bool CallFile::AddNote(ByteReader reader) {
  const uint64_t keyBytes = reader.Number();
  const uint8_t* const key = reader.Take(keyBytes);
  if (key == nullptr) return false;
  const std::size_t textBytes = reader.Left();
  const uint8_t* const text = reader.Take(textBytes);
  notes_.emplace_back(std::string(key, key + keyBytes), std::string(text, text + textBytes));
  return true;
}

bool CallFile::DecodeBand(const FileItem& item, StoredBand* band) const {
  ByteReader reader(item.payload, item.bytes);
  band->device = reader.Number32();
  band->plane = reader.Number32();
  band->blob = reader.Number32();
  return reader.ok() && reader.Left() == 0 && band->device != 0 && band->device <= devices_ && band->plane <= 1 &&
         IsBlob(band->blob);
}

bool CallFile::DecodePointer(ByteReader& reader, Memory memory, StoredArgument* argument) const {
  StoredPointer& pointer = argument->pointer;
  pointer.tag = static_cast<PointerTag>(reader.Byte());
  if (pointer.tag == PointerTag::kRecord) {
    if (memory != Memory::kSource && memory != Memory::kLogicalObject) return false;
    argument->isRecord = true;
    argument->record = reader.Number32();
    if (!IsBlob(argument->record)) return false;
    pointer.tag = static_cast<PointerTag>(reader.Byte());
    if (pointer.tag == PointerTag::kRecord) {
      if (memory != Memory::kLogicalObject) return false;
      argument->isNestedRecord = true;
      argument->nestedRecord = reader.Number32();
      if (!IsBlob(argument->nestedRecord)) return false;
      pointer.tag = static_cast<PointerTag>(reader.Byte());
    }
  }
  switch (pointer.tag) {
    case PointerTag::kNull:
    case PointerTag::kUnread: return reader.ok();
    case PointerTag::kImage:
      pointer.number = reader.Number32();
      return pointer.number != 0 && pointer.number < images_.size();
    case PointerTag::kBlob:
    case PointerTag::kRows:
      pointer.number = reader.Number32();
      pointer.first = reader.SignedNumber();
      if (pointer.tag == PointerTag::kRows) {
        pointer.rowBytes = reader.Number();
        pointer.stride = reader.Number();
        if (pointer.rowBytes == 0 || pointer.rowBytes > pointer.stride || pointer.stride > UINT16_MAX) return false;
      }
      return reader.ok() && IsBlob(pointer.number) && pointer.first > -(int64_t{1} << 40) &&
             pointer.first < (int64_t{1} << 40);
    case PointerTag::kRecord: break;
  }
  return false;
}

bool CallFile::DecodeCall(const FileItem& item, StoredCall* call) const {
  ByteReader reader(item.payload, item.bytes);
  const uint8_t function = reader.Byte();
  if (!reader.ok() || function >= kFunctionCount) return false;
  call->function = static_cast<Function>(function);
  // Only what the call has is set: the whole record is large, and this runs for every call of a replay.
  call->output = 0;
  call->bandBefore = call->tagsBefore = call->bandAfter = call->tagsAfter = 0;
  call->thread = reader.Number32();
  const EntryPoint& entry = EntryPointOf(call->function);
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    StoredArgument& argument = call->arguments[i];
    argument = StoredArgument{};
    switch (entry.arguments[i].type) {
      case Type::kHandle:
        argument.number = reader.Number32();
        if (argument.number > devices_ + 1) return false;
        break;
      case Type::kInt32: {
        const int64_t value = reader.SignedNumber();
        if (value < INT32_MIN || value > INT32_MAX) return false;
        argument.number = static_cast<uint32_t>(static_cast<int32_t>(value));
        break;
      }
      case Type::kUint32: argument.number = reader.Number32(); break;
      default:
        if (!DecodePointer(reader, entry.arguments[i].memory, &argument)) return false;
    }
  }
  call->flags = reader.Number32();
  call->result = reader.Number32();
  call->nanoseconds = reader.Number();
  if ((call->flags & kHasOutput) != 0) {
    call->output = reader.Number32();
    if (!IsBlob(call->output)) return false;
  }
  if ((call->flags & kHasBandBefore) != 0) call->bandBefore = reader.Little<uint64_t>();
  if ((call->flags & kHasTagsBefore) != 0) call->tagsBefore = reader.Little<uint64_t>();
  if ((call->flags & kHasBandAfter) != 0) call->bandAfter = reader.Little<uint64_t>();
  if ((call->flags & kHasTagsAfter) != 0) call->tagsAfter = reader.Little<uint64_t>();
  return reader.ok() && reader.Left() == 0;
}

}  // namespace qnv::calls
